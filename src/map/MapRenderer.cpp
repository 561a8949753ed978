#include "map/MapRenderer.h"

#include "map/LabelPlacement.h"
#include "map/Parallel.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace mervola::map {

namespace {

constexpr int kFeaturesPerPath = 128;

// Builds device paths for one layer, one path per symbol.
class PathBuilder {
public:
    PathBuilder(const LayerData &d, const MapTransform &t) : m_d(d), m_t(t)
    {
        const MapRect &e = t.extent();
        m_left = e.left();
        m_top = e.top();
        m_inv = 1.0 / t.unitsPerPixel();
    }

    // Appends the rings of feature f; rings are closed for polygons.
    void append(QPainterPath &path, int f, bool close) const
    {
        const std::size_t fi = std::size_t(f);
        for (std::uint32_t r = m_d.featureRing[fi]; r < m_d.featureRing[fi + 1]; ++r) {
            const std::uint32_t a = m_d.ringStart[r], b = m_d.ringStart[r + 1];
            if (a == b)
                continue;
            const double *p = m_d.xy.data();
            double lx = (p[2 * a] - m_left) * m_inv, ly = (m_top - p[2 * a + 1]) * m_inv;
            path.moveTo(lx, ly);
            int kept = 1;
            for (std::uint32_t i = a + 1; i < b; ++i) {
                const double x = (p[2 * i] - m_left) * m_inv, y = (m_top - p[2 * i + 1]) * m_inv;
                // Drop vertices within half a pixel of the last kept one,
                // but always keep a ring's last vertex.
                if (std::abs(x - lx) + std::abs(y - ly) < 0.5 && i + 1 < b)
                    continue;
                path.lineTo(x, y);
                lx = x;
                ly = y;
                ++kept;
            }
            if (close && kept > 1)
                path.closeSubpath();
        }
    }

    QPointF device(int vertex) const
    {
        return {(m_d.xy[2 * std::size_t(vertex)] - m_left) * m_inv, (m_top - m_d.xy[2 * std::size_t(vertex) + 1]) * m_inv};
    }

private:
    const LayerData &m_d;
    const MapTransform &m_t;
    double m_left, m_top, m_inv;
};

QPen outlinePen(const Symbol &s)
{
    QPen pen(colorFromValue(s.outlineColor));
    // Polygon outlines are a thin anti-aliased line, light enough that a
    // dense area of small municipalities still shows its colours.
    pen.setWidthF(s.symbolType == SymbolType::Fill ? 0.6 : std::max(1, s.size));
    pen.setCosmetic(true);
    return pen;
}

QBrush fillBrush(const Symbol &s)
{
    return QBrush(colorFromValue(s.color), fillBrushStyle(s.style));
}

void drawMarker(QPainter &p, QPointF c, const Symbol &s)
{
    const double r = std::max(2, s.size) / 2.0;
    switch (s.style) {
    case 1: p.drawRect(QRectF(c.x() - r, c.y() - r, 2 * r, 2 * r)); break;
    case 2: {
        const QPointF tri[3] = {{c.x(), c.y() - r}, {c.x() + r, c.y() + r}, {c.x() - r, c.y() + r}};
        p.drawPolygon(tri, 3);
        break;
    }
    case 3:
        p.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
        p.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
        break;
    default: p.drawEllipse(c, r, r); break;
    }
}

// Gathers the visible polygons of every symbol that `include` accepts into
// paths of kFeaturesPerPath features (Qt rasterises many moderate paths much
// faster than one huge one) and hands each full path, then each remainder in
// symbol order, to `draw`. The sequence depends only on the features, so two
// passes meet the same chunks in the same order. `paths` holds one reusable
// path per symbol.
template <class Include, class Draw>
void forEachChunk(const PathBuilder &builder, const LayerData &d, const ResolvedStyle &style, const MapRect &cull,
                  std::vector<QPainterPath> &paths, Include include, Draw draw)
{
    std::vector<int> inPath(paths.size(), 0);
    auto flush = [&](std::size_t s) {
        if (!paths[s].isEmpty())
            draw(style.symbols[s], paths[s]);
        paths[s].clear();
        inPath[s] = 0;
    };
    std::vector<std::uint8_t> wanted(paths.size());
    for (std::size_t s = 0; s < paths.size(); ++s)
        wanted[s] = include(style.symbols[s]) ? 1 : 0;
    for (int f = 0; f < d.featureCount(); ++f) {
        const int s = style.featureSymbol[std::size_t(f)];
        if (s < 0 || !wanted[std::size_t(s)] || !d.boxes[std::size_t(f)].intersects(cull))
            continue;
        builder.append(paths[std::size_t(s)], f, true);
        if (++inPath[std::size_t(s)] >= kFeaturesPerPath)
            flush(std::size_t(s));
    }
    for (std::size_t s = 0; s < paths.size(); ++s)
        if (wanted[s])
            flush(s);
}

void paintLayer(QPainter &painter, const MapLayer &layer, const ResolvedStyle &style, const MapTransform &t,
                const MapRect &cull, const RenderOptions &o)
{
    const LayerData &d = *layer.data;
    const PathBuilder builder(d, t);
    const int n = d.featureCount();

    if (d.kind == GeometryKind::Point) {
        for (int f = 0; f < n; ++f) {
            const int s = style.featureSymbol[std::size_t(f)];
            if (s < 0 || !d.boxes[std::size_t(f)].intersects(cull))
                continue;
            const Symbol &sym = style.symbols[std::size_t(s)];
            painter.setPen(QPen(colorFromValue(sym.color)));
            painter.setBrush(QBrush(colorFromValue(sym.color)));
            for (std::uint32_t r = d.featureRing[std::size_t(f)]; r < d.featureRing[std::size_t(f) + 1]; ++r)
                for (std::uint32_t v = d.ringStart[r]; v < d.ringStart[r + 1]; ++v)
                    drawMarker(painter, builder.device(int(v)), sym);
        }
    } else {
        std::vector<QPainterPath> paths(style.symbols.size());
        for (QPainterPath &p : paths)
            p.setFillRule(Qt::OddEvenFill);
        if (d.kind == GeometryKind::Polygon) {
            // All fills first, then all outlines, so that no fill covers a
            // neighbour's outline. Both passes walk the features in the same
            // chunks, each built in a path whose memory is reused.
            painter.setPen(Qt::NoPen);
            forEachChunk(builder, d, style, cull, paths, [&](const Symbol &sym) {
                return fillBrushStyle(sym.style) != Qt::NoBrush;
            }, [&](const Symbol &sym, const QPainterPath &path) {
                // An outlined fill needs no anti-aliasing of its own: the
                // anti-aliased outline covers its edge.
                painter.setRenderHint(QPainter::Antialiasing, o.antialias && !sym.outline);
                painter.fillPath(path, fillBrush(sym));
            });
            painter.setRenderHint(QPainter::Antialiasing, o.antialias);
            painter.setBrush(Qt::NoBrush);
            forEachChunk(builder, d, style, cull, paths, [](const Symbol &sym) { return sym.outline; },
                         [&](const Symbol &sym, const QPainterPath &path) { painter.strokePath(path, outlinePen(sym)); });
        } else {
            for (int f = 0; f < n; ++f) {
                const int s = style.featureSymbol[std::size_t(f)];
                if (s >= 0 && d.boxes[std::size_t(f)].intersects(cull))
                    builder.append(paths[std::size_t(s)], f, false);
            }
            for (std::size_t s = 0; s < paths.size(); ++s) {
                if (paths[s].isEmpty())
                    continue;
                const Symbol &sym = style.symbols[s];
                QPen pen(colorFromValue(sym.color), std::max(1, sym.size), linePenStyle(sym.style));
                pen.setCosmetic(true);
                painter.strokePath(paths[s], pen);
            }
        }
    }
}

// The found or selected features of a layer in the selection colour. Drawn
// after every layer, so that a selection on a lower layer (a municipality
// under the mountain communities) stays visible.
void paintSelection(QPainter &painter, const MapLayer &layer, const MapTransform &t, const MapRect &cull,
                    const RenderOptions &o)
{
    const LayerData &d = *layer.data;
    const PathBuilder builder(d, t);
    const int n = d.featureCount();
    QPainterPath sel;
    sel.setFillRule(Qt::OddEvenFill);
    for (int f : layer.selection)
        if (f >= 0 && f < n && d.boxes[std::size_t(f)].intersects(cull))
            builder.append(sel, f, d.kind == GeometryKind::Polygon);
    if (sel.isEmpty())
        return;
    QPen pen(o.selectionColor.darker(150));
    pen.setCosmetic(true);
    pen.setWidthF(d.kind == GeometryKind::Line ? 3 : 1);
    if (d.kind == GeometryKind::Polygon)
        painter.fillPath(sel, o.selectionColor);
    else if (d.kind == GeometryKind::Line)
        pen.setColor(o.selectionColor);
    painter.setRenderHint(QPainter::Antialiasing, o.antialias);
    painter.strokePath(sel, pen);
}

// Paints the layers within `clip`; `styles`, when given, holds the resolved
// style of every visible layer by index, else each is resolved here.
void paintLayersIn(QPainter &painter, const MapModel &model, const MapTransform &t, const QRect &clip,
                   const RenderOptions &o, const std::vector<ResolvedStyle> *styles)
{
    if (!t.isValid())
        return;
    // Two pixels of margin so that outlines of features just outside show.
    const MapRect cull = t.toMap(QRectF(clip).adjusted(-2, -2, 2, 2));
    painter.setRenderHint(QPainter::Antialiasing, o.antialias);
    // Bottom layer (last index) first.
    const auto &layers = model.layers();
    for (std::size_t i = layers.size(); i-- > 0;) {
        const MapLayer &layer = layers[i];
        if (!layer.visible || !layer.data || !layer.data->extent.intersects(cull))
            continue;
        if (styles)
            paintLayer(painter, layer, (*styles)[i], t, cull, o);
        else
            paintLayer(painter, layer, resolveStyle(layer.renderer, *layer.data), t, cull, o);
    }
    if (!o.selection)
        return;
    for (std::size_t i = layers.size(); i-- > 0;) {
        const MapLayer &layer = layers[i];
        if (layer.visible && layer.data && !layer.selection.empty() && layer.data->extent.intersects(cull))
            paintSelection(painter, layer, t, cull, o);
    }
}

}  // namespace

void MapRenderer::paintLayers(QPainter &painter, const MapModel &model, const MapTransform &t, const QRect &clip,
                              const RenderOptions &o)
{
    paintLayersIn(painter, model, t, clip, o, nullptr);
}

void MapRenderer::paintSelections(QPainter &painter, const MapModel &model, const MapTransform &t,
                                  const RenderOptions &o)
{
    if (!t.isValid())
        return;
    const MapRect cull = t.toMap(QRectF(QPointF(0, 0), QSizeF(t.deviceSize())).adjusted(-2, -2, 2, 2));
    const auto &layers = model.layers();
    for (std::size_t i = layers.size(); i-- > 0;) {
        const MapLayer &layer = layers[i];
        if (layer.visible && layer.data && !layer.selection.empty() && layer.data->extent.intersects(cull))
            paintSelection(painter, layer, t, cull, o);
    }
}

void MapRenderer::paintLabels(QPainter &painter, const MapModel &model, const MapTransform &t)
{
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    for (const PlacedLabel &l : placeLabels(model, t, painter.device())) {
        painter.setFont(l.font);
        painter.setPen(l.color);
        const QFontMetricsF fm(l.font, painter.device());
        const QRectF local = fm.boundingRect(l.text);
        painter.save();
        painter.translate(l.centre);
        painter.rotate(-l.rotation);
        painter.drawText(QPointF(-local.width() / 2, fm.ascent() - local.height() / 2), l.text);
        painter.restore();
    }
}

void MapRenderer::paint(QPainter &painter, const MapModel &model, const MapTransform &t, const RenderOptions &o)
{
    paintLayers(painter, model, t, QRect(QPoint(0, 0), t.deviceSize()), o);
    if (o.labels)
        paintLabels(painter, model, t);
}

QImage MapRenderer::renderImage(const MapModel &model, const MapRect &extent, QSize size, const RenderOptions &o)
{
    // An opaque background needs no alpha channel; such an image is quicker
    // to draw on the screen and to encode.
    QImage image(size, o.background.alpha() == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(o.background);
    const MapTransform t(extent, size);
    if (!t.isValid())
        return image;

    // Two bands per core by default: the north of Italy holds far more
    // vertices than the south, and the thread that finishes first takes
    // the bands still queued, which evens out the load.
    int bands = o.bands > 0 ? o.bands : 2 * parallelPieces();
    bands = std::clamp(bands, 1, std::max(1, size.height() / 32));
    const int bandHeight = (size.height() + bands - 1) / bands;

    // Styles are resolved once here rather than again in every band.
    const auto &layers = model.layers();
    std::vector<ResolvedStyle> styles(layers.size());
    for (std::size_t i = 0; i < layers.size(); ++i)
        if (layers[i].visible && layers[i].data)
            styles[i] = resolveStyle(layers[i].renderer, *layers[i].data);

    auto renderBand = [&](int b) {
        const int y0 = b * bandHeight;
        const int h = std::min(bandHeight, size.height() - y0);
        if (h <= 0)
            return;
        // The band image is a view on rows y0 .. y0 + h of the result, so
        // composing the bands costs nothing.
        QImage band(image.scanLine(y0), size.width(), h, image.bytesPerLine(), image.format());
        QPainter p(&band);
        p.translate(0, -y0);
        paintLayersIn(p, model, t, QRect(0, y0, size.width(), h), o, &styles);
    };

    runInParallel(bands, renderBand);

    if (o.labels) {
        QPainter p(&image);
        paintLabels(p, model, t);
    }
    return image;
}

}  // namespace mervola::map
