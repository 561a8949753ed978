#pragma once
// The paint engine behind EmfDevice. It receives shapes in user coordinates
// with the painter's state (pen, brush, font, transform), maps them to
// logical units and turns them into metafile records, creating a GDI pen,
// brush or font only when the one selected differs.

#include "map/emf/EmfRecords.h"
#include "map/emf/Hatch.h"

#include <QBrush>
#include <QFont>
#include <QPaintEngine>
#include <QPen>
#include <QTransform>
#include <optional>

namespace mervola::emf {

class EmfDevice;

class EmfPaintEngine : public QPaintEngine {
public:
    // Logical units per device pixel.
    static constexpr int kUnitsPerPixel = 16;

    EmfPaintEngine();

    bool begin(QPaintDevice *device) override;
    bool end() override;
    void updateState(const QPaintEngineState &state) override;
    void drawPath(const QPainterPath &path) override;
    void drawPolygon(const QPointF *points, int pointCount, PolygonDrawMode mode) override;
    void drawTextItem(const QPointF &p, const QTextItem &textItem) override;
    void drawPixmap(const QRectF &r, const QPixmap &pm, const QRectF &sr) override;
    void drawImage(const QRectF &r, const QImage &image, const QRectF &sr, Qt::ImageConversionFlags flags) override;
    Type type() const override { return QPaintEngine::User; }

private:
    using Polys = std::vector<std::vector<QPoint>>;

    // Flattened device polygons in logical units; `closed` per subpath.
    Polys toLogical(const QPainterPath &path, std::vector<bool> *closed, QRect *deviceBounds) const;
    void fill(const Polys &polys, Qt::FillRule rule, const QRect &bounds, bool withPen);
    void fillHatched(const QPainterPath &path, const std::vector<HatchLines> &families, const QRect &bounds);
    void stroke(const Polys &polys, const QRect &bounds);
    void selectNullPen();
    void selectBrush(const QBrush &brush);
    void selectNullBrush();
    void selectFont(const LogFont &font);
    void setFillMode(Qt::FillRule rule);
    bool hasPen() const { return m_pen.style() != Qt::NoPen && m_pen.color().alpha() > 0; }
    bool hasBrush() const { return m_brush.style() != Qt::NoBrush && m_brush.color().alpha() > 0; }

    struct PenKey {
        std::uint32_t style, color;
        std::int32_t width;
        bool operator==(const PenKey &) const = default;
    };
    PenKey penKey(const QPen &pen) const;
    void selectPenKey(const PenKey &key);
    struct BrushKey {
        std::uint32_t style, color, hatch;
        bool operator==(const BrushKey &) const = default;
    };

    EmfDevice *m_device = nullptr;
    std::optional<RecordWriter> m_writer;
    QPen m_pen;
    QBrush m_brush;
    QFont m_font;
    QTransform m_transform;
    // Each kind of object alternates between two handles, so that the new
    // object is selected before the old one is deleted.
    std::optional<PenKey> m_selectedPen;  // nullopt: the stock null pen (or none yet)
    std::optional<BrushKey> m_selectedBrush;
    std::optional<LogFont> m_selectedFont;
    bool m_nullPen = false, m_nullBrush = false;
    std::uint32_t m_penHandle = 0, m_brushHandle = 0, m_fontHandle = 0;
    std::uint32_t m_fillMode = 0, m_textColor = 0xffffffff;
};

}  // namespace mervola::emf
