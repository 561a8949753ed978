#include "map/emf/EmfDevice.h"

#include "map/emf/EmfPaintEngine.h"

#include <climits>
#include <cmath>

namespace mervola::emf {

EmfDevice::EmfDevice(QSize pixels, double dpi, const QString &description)
    : m_pixels(pixels.expandedTo(QSize(1, 1))), m_dpi(dpi > 0 ? dpi : 96), m_description(description),
      m_engine(std::make_unique<EmfPaintEngine>())
{
}

EmfDevice::~EmfDevice() = default;

QPaintEngine *EmfDevice::paintEngine() const { return m_engine.get(); }

int EmfDevice::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmWidth: return m_pixels.width();
    case PdmHeight: return m_pixels.height();
    case PdmWidthMM: return int(std::lround(m_pixels.width() * 25.4 / m_dpi));
    case PdmHeightMM: return int(std::lround(m_pixels.height() * 25.4 / m_dpi));
    case PdmNumColors: return INT_MAX;
    case PdmDepth: return 32;
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY: return int(std::lround(m_dpi));
    case PdmDevicePixelRatio: return 1;
    case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
    default: return QPaintDevice::metric(metric);
    }
}

}  // namespace mervola::emf
