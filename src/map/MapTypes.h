#pragma once
// Plain value types of the map: the extent rectangle, colour values and
// symbols. Map coordinates are projected metres with y growing upwards.

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <cstdint>

namespace mervola::map {

// A map rectangle. `top` is the larger y (north), `bottom` the smaller.
class MapRect {
public:
    // Property numbers used by project files: 1 right, 2 left, 3 bottom, 4 top.
    enum Property { Right = 1, Left = 2, Bottom = 3, Top = 4 };

    MapRect() = default;
    MapRect(double left, double top, double right, double bottom)
        : m_left(left), m_top(top), m_right(right), m_bottom(bottom)
    {
    }
    static MapRect fromCorners(double x1, double y1, double x2, double y2);

    double left() const { return m_left; }
    double top() const { return m_top; }
    double right() const { return m_right; }
    double bottom() const { return m_bottom; }
    double width() const { return m_right - m_left; }
    double height() const { return m_top - m_bottom; }
    QPointF center() const { return {(m_left + m_right) / 2, (m_top + m_bottom) / 2}; }
    void setLeft(double v) { m_left = v; }
    void setTop(double v) { m_top = v; }
    void setRight(double v) { m_right = v; }
    void setBottom(double v) { m_bottom = v; }

    double property(int number) const;  // 0 for an unknown number
    void setProperty(int number, double value);

    // Scales width and height by `factor` keeping the centre (0.5 halves the
    // rectangle, 1.5 enlarges it).
    void scale(double factor);
    // Moves the rectangle so that its centre is `c`.
    void centerOn(QPointF c);
    MapRect scaled(double factor) const
    {
        MapRect r = *this;
        r.scale(factor);
        return r;
    }

    bool isEmpty() const { return !(width() > 0 && height() > 0); }
    bool contains(QPointF p) const { return p.x() >= m_left && p.x() <= m_right && p.y() >= m_bottom && p.y() <= m_top; }
    bool intersects(const MapRect &o) const
    {
        return o.m_left <= m_right && o.m_right >= m_left && o.m_bottom <= m_top && o.m_top >= m_bottom;
    }
    MapRect united(const MapRect &o) const;
    bool operator==(const MapRect &o) const = default;

private:
    double m_left = 0, m_top = 0, m_right = 0, m_bottom = 0;
};

// Colour values are signed 32-bit red + 256 * green + 65536 * blue. A value
// with any bit set above the blue byte (such as 0x02000000, the default
// outline colour of the settings files) stands for black.
QColor colorFromValue(std::int32_t value);
std::int32_t colorToValue(const QColor &c);

enum class SymbolType { Point = 0, Line = 1, Fill = 2 };

// Fill styles (0 solid, 1 transparent, 2..7 hatches); marker styles (0
// circle, 1 square, 2 triangle, 3 cross); line styles (0 solid, 1 dash, 2 dot,
// 3 dash-dot, 4 dash-dot-dot).
struct Symbol {
    SymbolType symbolType = SymbolType::Fill;
    int size = 0;  // marker size or line width in pixels; 0 = thinnest
    int style = 0;
    std::int32_t color = 16776960;
    std::int32_t outlineColor = 0x02000000;
    bool outline = true;
    bool drawn = true;  // false: features of this symbol are not drawn

    bool operator==(const Symbol &) const = default;
};

Qt::BrushStyle fillBrushStyle(int style);
Qt::PenStyle linePenStyle(int style);

}  // namespace mervola::map
