#pragma once
// Conversion between map coordinates and device pixels. The map keeps its
// aspect ratio: a requested extent is widened in one direction to fill the
// device, centred on the requested centre.

#include "map/MapTypes.h"

#include <QPointF>
#include <QSize>

namespace mervola::map {

class MapTransform {
public:
    MapTransform() = default;
    MapTransform(const MapRect &requested, QSize device);

    // The extent actually shown (requested extent fitted to the device).
    const MapRect &extent() const { return m_extent; }
    QSize deviceSize() const { return m_device; }
    double unitsPerPixel() const { return m_upp; }
    bool isValid() const { return m_upp > 0; }

    QPointF toDevice(QPointF map) const
    {
        return {(map.x() - m_extent.left()) / m_upp, (m_extent.top() - map.y()) / m_upp};
    }
    QPointF toMap(QPointF device) const
    {
        return {m_extent.left() + device.x() * m_upp, m_extent.top() - device.y() * m_upp};
    }
    // The map rectangle covered by a device rectangle.
    MapRect toMap(const QRectF &device) const;

private:
    MapRect m_extent;
    QSize m_device;
    double m_upp = 0;  // map units per pixel
};

}  // namespace mervola::map
