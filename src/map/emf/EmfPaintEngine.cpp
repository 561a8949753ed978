#include "map/emf/EmfPaintEngine.h"

#include "map/emf/Dashes.h"
#include "map/emf/EmfDevice.h"
#include "map/emf/Hatch.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QTextItem>
#include <cmath>
#include <numbers>

namespace mervola::emf {

namespace {

constexpr std::uint32_t kPenHandles[2] = {1, 2};
constexpr std::uint32_t kBrushHandles[2] = {3, 4};
constexpr std::uint32_t kFontHandles[2] = {5, 6};
constexpr std::uint16_t kHandleCount = 7;       // six objects plus the reserved index 0
constexpr std::uint32_t kDeviceDefaultFont = 0x8000000E;

constexpr QPaintEngine::PaintEngineFeatures kFeatures =
    QPaintEngine::PaintEngineFeatures(QPaintEngine::AllFeatures & ~QPaintEngine::PerspectiveTransform &
                                      ~QPaintEngine::PorterDuff & ~QPaintEngine::BlendModes &
                                      ~QPaintEngine::RasterOpModes);

std::uint32_t otherHandle(std::uint32_t current, const std::uint32_t (&pair)[2])
{
    return current == pair[0] ? pair[1] : pair[0];
}

std::uint32_t penStyle(Qt::PenStyle s)
{
    switch (s) {
    case Qt::DashLine: return PS_DASH;
    case Qt::DotLine: return PS_DOT;
    case Qt::DashDotLine: return PS_DASHDOT;
    case Qt::DashDotDotLine: return PS_DASHDOTDOT;
    case Qt::NoPen: return PS_NULL;
    default: return PS_SOLID;
    }
}

double transformScale(const QTransform &t) { return std::sqrt(std::abs(t.m11() * t.m22() - t.m12() * t.m21())); }

}  // namespace

EmfPaintEngine::EmfPaintEngine() : QPaintEngine(kFeatures) {}

bool EmfPaintEngine::begin(QPaintDevice *device)
{
    m_device = static_cast<EmfDevice *>(device);
    const QSize px = m_device->m_pixels;
    m_writer.emplace(px, m_device->m_dpi, m_device->m_description);
    m_selectedPen.reset();
    m_selectedBrush.reset();
    m_selectedFont.reset();
    m_nullPen = m_nullBrush = false;
    m_penHandle = m_brushHandle = m_fontHandle = 0;
    m_fillMode = 0;
    m_textColor = 0xffffffff;

    // Logical units are 1/16 pixel: the window is 16 times the viewport.
    m_writer->appendSaveDC();
    m_writer->appendMapMode(MM_ANISOTROPIC);
    m_writer->appendWindowOrg(QPoint(0, 0));
    m_writer->appendWindowExt(px * kUnitsPerPixel);
    m_writer->appendViewportOrg(QPoint(0, 0));
    m_writer->appendViewportExt(px);
    m_writer->appendBkMode(TRANSPARENT_BK);
    m_writer->appendTextAlign(TA_BASELINE);
    m_writer->appendIntersectClipRect(QRect(QPoint(0, 0), px * kUnitsPerPixel));
    setActive(true);
    return true;
}

bool EmfPaintEngine::end()
{
    if (!m_writer)
        return false;
    // Leave nothing of ours selected, then free the objects.
    m_writer->appendSelectObject(kNullPen);
    m_writer->appendSelectObject(kNullBrush);
    if (m_fontHandle)
        m_writer->appendSelectObject(kDeviceDefaultFont);
    for (std::uint32_t h : {m_penHandle, m_brushHandle, m_fontHandle})
        if (h)
            m_writer->appendDeleteObject(h);
    m_writer->appendRestoreDC();
    m_device->m_data = m_writer->finish(kHandleCount);
    m_writer.reset();
    setActive(false);
    return true;
}

void EmfPaintEngine::updateState(const QPaintEngineState &state)
{
    const DirtyFlags f = state.state();
    if (f & DirtyPen)
        m_pen = state.pen();
    if (f & DirtyBrush)
        m_brush = state.brush();
    if (f & DirtyFont)
        m_font = state.font();
    if (f & DirtyTransform)
        m_transform = state.transform();
}

EmfPaintEngine::Polys EmfPaintEngine::toLogical(const QPainterPath &path, std::vector<bool> *closed,
                                                QRect *deviceBounds) const
{
    Polys out;
    QRectF bounds;
    for (const QPolygonF &poly : path.toSubpathPolygons(m_transform)) {
        if (poly.size() < 2)
            continue;
        std::vector<QPoint> pts;
        pts.reserve(std::size_t(poly.size()));
        for (const QPointF &p : poly) {
            const QPoint q(int(std::lround(p.x() * kUnitsPerPixel)), int(std::lround(p.y() * kUnitsPerPixel)));
            if (pts.empty() || pts.back() != q)
                pts.push_back(q);
        }
        if (pts.size() < 2)
            continue;
        closed->push_back(poly.isClosed());
        out.push_back(std::move(pts));
        bounds = bounds.united(poly.boundingRect());
    }
    *deviceBounds = bounds.toAlignedRect();
    return out;
}

void EmfPaintEngine::drawPath(const QPainterPath &path)
{
    if (!m_writer || (!hasPen() && !hasBrush()))
        return;
    std::vector<bool> closed;
    QRect bounds;
    Polys polys = toLogical(path, &closed, &bounds);
    if (polys.empty())
        return;
    if (!hasBrush()) {
        stroke(polys, bounds);
        return;
    }
    if (const auto families = hatchFamilies(m_brush.style()); !families.empty()) {
        fillHatched(path, families, bounds);
        if (hasPen())
            stroke(polys, bounds);
        return;
    }
    const bool allClosed = std::all_of(closed.begin(), closed.end(), [](bool c) { return c; });
    // A polygon record closes its rings itself; the repeated first point goes.
    Polys rings = polys;
    for (auto &r : rings)
        if (r.size() > 2 && r.front() == r.back())
            r.pop_back();
    if (hasPen() && allClosed) {
        fill(rings, path.fillRule(), bounds, true);
    } else {
        fill(rings, path.fillRule(), bounds, false);
        if (hasPen())
            stroke(polys, bounds);
    }
}

void EmfPaintEngine::drawPolygon(const QPointF *points, int pointCount, PolygonDrawMode mode)
{
    if (pointCount < 2)
        return;
    QPainterPath path;
    path.moveTo(points[0]);
    for (int i = 1; i < pointCount; ++i)
        path.lineTo(points[i]);
    if (mode == PolylineMode) {
        const QBrush keep = m_brush;
        m_brush = Qt::NoBrush;
        drawPath(path);
        m_brush = keep;
        return;
    }
    path.closeSubpath();
    path.setFillRule(mode == OddEvenMode ? Qt::OddEvenFill : Qt::WindingFill);
    drawPath(path);
}

void EmfPaintEngine::fill(const Polys &polys, Qt::FillRule rule, const QRect &bounds, bool withPen)
{
    if (withPen)
        selectPenKey(penKey(m_pen));
    else
        selectNullPen();
    selectBrush(m_brush);
    setFillMode(rule);
    m_writer->appendPolyPolygon(polys, bounds);
}

void EmfPaintEngine::fillHatched(const QPainterPath &path, const std::vector<HatchLines> &families,
                                 const QRect &bounds)
{
    const QList<QPolygonF> rings = path.toSubpathPolygons(m_transform);
    Polys segments;
    for (HatchLines family : families)
        for (const QLineF &l : hatchSegments(rings, path.fillRule(), family)) {
            const QPoint a(int(std::lround(l.x1() * kUnitsPerPixel)), int(std::lround(l.y1() * kUnitsPerPixel)));
            const QPoint b(int(std::lround(l.x2() * kUnitsPerPixel)), int(std::lround(l.y2() * kUnitsPerPixel)));
            segments.push_back({a, b});
        }
    if (segments.empty())
        return;
    // Hatch lines are one pixel wide in the brush colour.
    selectPenKey({PS_SOLID, colorRef(m_brush.color()), kUnitsPerPixel});
    selectNullBrush();
    m_writer->appendPolyPolyline(segments, bounds);
}

void EmfPaintEngine::stroke(const Polys &polys, const QRect &bounds)
{
    const PenKey key = penKey(m_pen);
    selectNullBrush();
    if (key.width > kUnitsPerPixel && key.style != PS_SOLID) {
        // Dashed pen wider than a pixel: the dashes themselves with a solid pen.
        QVector<double> pattern = m_pen.dashPattern();
        for (double &d : pattern)
            d *= key.width;
        selectPenKey({PS_SOLID, key.color, key.width});
        m_writer->appendPolyPolyline(dashPolylines(polys, pattern), bounds);
        return;
    }
    selectPenKey(key);
    const auto fits = [](QPoint p) { return std::abs(p.x()) < 32768 && std::abs(p.y()) < 32768; };
    if (polys.size() == 1 && std::all_of(polys[0].begin(), polys[0].end(), fits))
        m_writer->appendPolyline16(polys[0], bounds);
    else
        m_writer->appendPolyPolyline(polys, bounds);
}

EmfPaintEngine::PenKey EmfPaintEngine::penKey(const QPen &pen) const
{
    // Cosmetic pens are measured in device pixels, others scale with the
    // transform; Qt draws a pen of width 0 one pixel wide. The width is
    // written in logical units as it is: GDI's width 0 would leave the
    // thickness to each reader, and some draw it as a hairline.
    double px = pen.isCosmetic() ? pen.widthF() : pen.widthF() * transformScale(m_transform);
    if (px <= 0)
        px = 1;
    return {penStyle(pen.style()), colorRef(pen.color()), std::max(1, int(std::lround(px * kUnitsPerPixel)))};
}

void EmfPaintEngine::selectPenKey(const PenKey &key)
{
    if (m_selectedPen == key) {
        if (m_nullPen) {
            m_writer->appendSelectObject(m_penHandle);
            m_nullPen = false;
        }
        return;
    }
    const std::uint32_t h = otherHandle(m_penHandle, kPenHandles);
    m_writer->appendCreatePen(h, key.style, key.width, key.color);
    m_writer->appendSelectObject(h);
    if (m_penHandle)
        m_writer->appendDeleteObject(m_penHandle);
    m_penHandle = h;
    m_selectedPen = key;
    m_nullPen = false;
}

void EmfPaintEngine::selectNullPen()
{
    if (m_nullPen)
        return;
    m_writer->appendSelectObject(kNullPen);
    m_nullPen = true;
}

void EmfPaintEngine::selectBrush(const QBrush &brush)
{
    // Hatches are drawn as lines (fillHatched); every other pattern is solid.
    const BrushKey key{BS_SOLID, colorRef(brush.color()), 0};
    if (m_selectedBrush == key) {
        if (m_nullBrush) {
            m_writer->appendSelectObject(m_brushHandle);
            m_nullBrush = false;
        }
        return;
    }
    const std::uint32_t h = otherHandle(m_brushHandle, kBrushHandles);
    m_writer->appendCreateBrush(h, key.style, key.color, key.hatch);
    m_writer->appendSelectObject(h);
    if (m_brushHandle)
        m_writer->appendDeleteObject(m_brushHandle);
    m_brushHandle = h;
    m_selectedBrush = key;
    m_nullBrush = false;
}

void EmfPaintEngine::selectNullBrush()
{
    if (m_nullBrush)
        return;
    m_writer->appendSelectObject(kNullBrush);
    m_nullBrush = true;
}

void EmfPaintEngine::selectFont(const LogFont &font)
{
    if (m_selectedFont == font)
        return;
    const std::uint32_t h = otherHandle(m_fontHandle, kFontHandles);
    m_writer->appendCreateFont(h, font);
    m_writer->appendSelectObject(h);
    if (m_fontHandle)
        m_writer->appendDeleteObject(m_fontHandle);
    m_fontHandle = h;
    m_selectedFont = font;
}

void EmfPaintEngine::setFillMode(Qt::FillRule rule)
{
    const std::uint32_t mode = rule == Qt::WindingFill ? WINDING : ALTERNATE;
    if (mode != m_fillMode) {
        m_writer->appendPolyFillMode(mode);
        m_fillMode = mode;
    }
}

void EmfPaintEngine::drawTextItem(const QPointF &p, const QTextItem &textItem)
{
    const QString text = textItem.text();
    if (!m_writer || text.isEmpty() || m_pen.style() == Qt::NoPen)
        return;
    const QFont font = textItem.font();
    const double scale = transformScale(m_transform);
    const double pixelSize = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * m_device->m_dpi / 72.0;
    // The painter's rotation is clockwise on screen; escapement counts
    // counter-clockwise.
    const double degrees = std::atan2(m_transform.m12(), m_transform.m11()) * 180.0 / std::numbers::pi;
    int escapement = int(std::lround(-degrees * 10)) % 3600;
    if (escapement < 0)
        escapement += 3600;

    LogFont lf;
    lf.height = -std::max(1, int(std::lround(pixelSize * scale * kUnitsPerPixel)));
    lf.escapement = escapement;
    lf.weight = std::clamp(int(font.weight()), 100, 900);
    lf.italic = font.italic();
    lf.underline = font.underline();
    lf.strikeOut = font.strikeOut();
    lf.faceName = font.family();
    selectFont(lf);

    const std::uint32_t color = colorRef(m_pen.color());
    if (color != m_textColor) {
        m_writer->appendTextColor(color);
        m_textColor = color;
    }

    // Advances from the font as measured on this device, so the text spans
    // what Qt would have drawn.
    const QFontMetricsF fm(font, m_device);
    std::vector<std::int32_t> advances;
    advances.reserve(std::size_t(text.size()));
    double pen = 0;
    std::int32_t placed = 0;
    for (int i = 0; i < text.size(); ++i) {
        const bool pair = text.at(i).isHighSurrogate() && i + 1 < text.size();
        pen += fm.horizontalAdvance(text.mid(i, pair ? 2 : 1)) * scale * kUnitsPerPixel;
        const std::int32_t next = std::int32_t(std::lround(pen));
        advances.push_back(next - placed);
        placed = next;
        if (pair) {
            advances.push_back(0);
            ++i;
        }
    }
    const QPointF at = m_transform.map(p);
    m_writer->appendExtTextOut(QPoint(int(std::lround(at.x() * kUnitsPerPixel)), int(std::lround(at.y() * kUnitsPerPixel))),
                               text, advances);
}

// Raster pictures are not part of the maps we record.
void EmfPaintEngine::drawPixmap(const QRectF &, const QPixmap &, const QRectF &) {}

void EmfPaintEngine::drawImage(const QRectF &, const QImage &, const QRectF &, Qt::ImageConversionFlags) {}

}  // namespace mervola::emf
