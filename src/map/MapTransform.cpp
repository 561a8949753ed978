#include "map/MapTransform.h"

#include <algorithm>

namespace mervola::map {

MapTransform::MapTransform(const MapRect &requested, QSize device) : m_device(device)
{
    if (device.width() <= 0 || device.height() <= 0 || requested.isEmpty())
        return;
    m_upp = std::max(requested.width() / device.width(), requested.height() / device.height());
    const QPointF c = requested.center();
    const double hw = m_upp * device.width() / 2, hh = m_upp * device.height() / 2;
    m_extent = MapRect(c.x() - hw, c.y() + hh, c.x() + hw, c.y() - hh);
}

MapRect MapTransform::toMap(const QRectF &device) const
{
    const QPointF a = toMap(device.topLeft()), b = toMap(device.bottomRight());
    return MapRect::fromCorners(a.x(), a.y(), b.x(), b.y());
}

}  // namespace mervola::map
