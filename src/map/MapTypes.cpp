#include "map/MapTypes.h"

#include <algorithm>

namespace mervola::map {

MapRect MapRect::fromCorners(double x1, double y1, double x2, double y2)
{
    return MapRect(std::min(x1, x2), std::max(y1, y2), std::max(x1, x2), std::min(y1, y2));
}

double MapRect::property(int number) const
{
    switch (number) {
    case Right: return m_right;
    case Left: return m_left;
    case Bottom: return m_bottom;
    case Top: return m_top;
    default: return 0;
    }
}

void MapRect::setProperty(int number, double value)
{
    switch (number) {
    case Right: m_right = value; break;
    case Left: m_left = value; break;
    case Bottom: m_bottom = value; break;
    case Top: m_top = value; break;
    default: break;
    }
}

void MapRect::scale(double factor)
{
    const QPointF c = center();
    const double hw = width() * factor / 2, hh = height() * factor / 2;
    m_left = c.x() - hw;
    m_right = c.x() + hw;
    m_bottom = c.y() - hh;
    m_top = c.y() + hh;
}

void MapRect::centerOn(QPointF c)
{
    const double hw = width() / 2, hh = height() / 2;
    m_left = c.x() - hw;
    m_right = c.x() + hw;
    m_bottom = c.y() - hh;
    m_top = c.y() + hh;
}

MapRect MapRect::united(const MapRect &o) const
{
    return MapRect(std::min(m_left, o.m_left), std::max(m_top, o.m_top), std::max(m_right, o.m_right),
                   std::min(m_bottom, o.m_bottom));
}

QColor colorFromValue(std::int32_t value)
{
    const auto v = static_cast<std::uint32_t>(value);
    if (v & 0xFF000000u)
        return QColor(0, 0, 0);
    return QColor(int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF));
}

std::int32_t colorToValue(const QColor &c)
{
    return std::int32_t(c.red() + 256 * c.green() + 65536 * c.blue());
}

Qt::BrushStyle fillBrushStyle(int style)
{
    switch (style) {
    case 0: return Qt::SolidPattern;
    case 1: return Qt::NoBrush;
    case 2: return Qt::HorPattern;
    case 3: return Qt::VerPattern;
    case 4: return Qt::BDiagPattern;
    case 5: return Qt::FDiagPattern;
    case 6: return Qt::CrossPattern;
    case 7: return Qt::DiagCrossPattern;
    case 8: return Qt::Dense6Pattern;
    case 9: return Qt::Dense4Pattern;
    case 10: return Qt::Dense2Pattern;
    default: return Qt::SolidPattern;
    }
}

Qt::PenStyle linePenStyle(int style)
{
    switch (style) {
    case 1: return Qt::DashLine;
    case 2: return Qt::DotLine;
    case 3: return Qt::DashDotLine;
    case 4: return Qt::DashDotDotLine;
    default: return Qt::SolidLine;
    }
}

}  // namespace mervola::map
