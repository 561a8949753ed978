#include "map/ui/MapWidget.h"

#include <QMouseEvent>
#include <QPainter>

namespace mervola {

using map::MapRect;
using map::MapTransform;

namespace {
constexpr int kClickSlop = 3;  // pixels a click may move and stay a click
}

MapWidget::MapWidget(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("MapMain"));
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(50, 50);
}

MapTransform MapWidget::transform() const { return MapTransform(m_model.extent(), size()); }

MapRect MapWidget::extent() const
{
    const MapTransform t = transform();
    return t.isValid() ? t.extent() : m_model.extent();
}

void MapWidget::setExtent(const MapRect &r)
{
    if (r.isEmpty())
        return;
    m_model.setExtent(r);
    m_dirty = true;
    update();
    emit extentChanged(extent());
}

QPointF MapWidget::toMapPoint(QPoint p) const { return transform().toMap(QPointF(p)); }

QPoint MapWidget::toWidgetPoint(QPointF p) const { return transform().toDevice(p).toPoint(); }

void MapWidget::refresh()
{
    m_dirty = true;
    update();
}

void MapWidget::setRenderOptions(const map::RenderOptions &o)
{
    m_options = o;
    refresh();
}

QImage MapWidget::exportImage(QSize size) const
{
    return map::MapRenderer::renderImage(m_model, extent(), size, m_options);
}

void MapWidget::refreshSelection()
{
    m_selectionDirty = true;
    update();
}

void MapWidget::ensurePicture()
{
    const qreal dpr = devicePixelRatioF();
    const QSize device = (QSizeF(size()) * dpr).toSize();
    if (m_dirty || m_layers.size() != device) {
        // The layers are kept apart so that a new selection redraws only
        // the highlight and the labels above them.
        map::RenderOptions layersOnly = m_options;
        layersOnly.selection = false;
        layersOnly.labels = false;
        m_layers = map::MapRenderer::renderImage(m_model, extent(), device, layersOnly);
        m_pictureTransform = transform();
        m_dirty = false;
        m_selectionDirty = true;
        ++m_renderCount;
    }
    if (!m_selectionDirty)
        return;
    m_picture = m_layers;
    {
        QPainter p(&m_picture);
        p.setRenderHint(QPainter::Antialiasing, m_options.antialias);
        const map::MapTransform t(extent(), device);
        map::MapRenderer::paintSelections(p, m_model, t, m_options);
        if (m_options.labels)
            map::MapRenderer::paintLabels(p, m_model, t);
    }
    m_picture.setDevicePixelRatio(dpr);
    m_selectionDirty = false;
}

void MapWidget::paintEvent(QPaintEvent *)
{
    const bool panning = m_dragging && m_mode == Mode::Pan;
    if (!panning)
        ensurePicture();
    QPainter p(this);
    const QPoint offset = panning ? m_dragAt - m_pressAt : QPoint();
    if (panning || m_picture.isNull())
        p.fillRect(rect(), m_options.background);
    p.drawImage(offset, m_picture);
    if (m_dragging && m_mode == Mode::RubberBand) {
        p.setPen(QPen(Qt::black, 1, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRect(m_pressAt, m_dragAt).normalized());
    }
}

void MapWidget::resizeEvent(QResizeEvent *)
{
    m_dirty = true;
    emit extentChanged(extent());
}

void MapWidget::mousePressEvent(QMouseEvent *e)
{
    const QPoint at = e->position().toPoint();
    emit mousePressed(toMapPoint(at), e->button(), e->modifiers());
    if (m_dragging)
        return;
    m_dragging = true;
    m_dragButton = e->button();
    m_pressAt = m_dragAt = at;
}

void MapWidget::mouseMoveEvent(QMouseEvent *e)
{
    const QPoint at = e->position().toPoint();
    const QPointF mp = toMapPoint(at);
    emit mouseMoved(mp.x(), mp.y());
    if (!m_dragging)
        return;
    m_dragAt = at;
    if (m_mode == Mode::Pan || m_mode == Mode::RubberBand)
        update();  // moves the cached picture or the rectangle; no render
}

void MapWidget::mouseReleaseEvent(QMouseEvent *e)
{
    if (!m_dragging || e->button() != m_dragButton)
        return;
    m_dragging = false;
    m_dragAt = e->position().toPoint();
    const QPoint moved = m_dragAt - m_pressAt;
    switch (m_mode) {
    case Mode::Pan: {
        if (moved.isNull()) {
            update();
            break;
        }
        // Shift the extent by the drag, in map units; the map follows the hand.
        MapRect r = m_model.extent();
        const double upp = transform().unitsPerPixel();
        r.centerOn(r.center() + QPointF(-moved.x() * upp, moved.y() * upp));
        setExtent(r);
        emit panFinished();
        break;
    }
    case Mode::RubberBand: {
        // A press that moved no more than a click may gives no rectangle.
        const QPointF a = toMapPoint(m_pressAt);
        const QPointF b = moved.manhattanLength() <= kClickSlop ? a : toMapPoint(m_dragAt);
        update();
        emit rectangleChosen(MapRect::fromCorners(a.x(), a.y(), b.x(), b.y()));
        break;
    }
    case Mode::Click:
        if (moved.manhattanLength() <= kClickSlop)
            emit clicked(toMapPoint(m_pressAt), m_dragButton);
        break;
    case Mode::None:
        break;
    }
}

}  // namespace mervola
