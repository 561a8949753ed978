#pragma once
// The map on screen. It shows the last rendered picture and renders again
// only when the extent, the size or the style changes (refresh()). While the
// user pans, the cached picture is moved and rendered once on release; a
// rubber-band drag draws a rectangle over the picture. What a drag or a click
// means (zoom in, zoom out, info) is decided by the caller through the mode
// and the signals.

#include "map/MapModel.h"
#include "map/MapRenderer.h"

#include <QImage>
#include <QWidget>

namespace mervola {

class MapWidget : public QWidget {
    Q_OBJECT
public:
    enum class Mode { None, RubberBand, Pan, Click };

    explicit MapWidget(QWidget *parent = nullptr);

    map::MapModel &model() { return m_model; }
    const map::MapModel &model() const { return m_model; }

    void setMode(Mode mode) { m_mode = mode; }
    Mode mode() const { return m_mode; }

    // The extent shown: the requested extent fitted to the widget's shape.
    map::MapRect extent() const;
    void setExtent(const map::MapRect &extent);
    map::MapRect fullExtent() const { return m_model.fullExtent(); }
    QPointF toMapPoint(QPoint widgetPoint) const;
    QPoint toWidgetPoint(QPointF mapPoint) const;

    // Re-renders after a change of layers, renderers, labels or selection.
    void refresh();
    // Redraws after a change of the selection alone: the layers already
    // drawn are kept, only the highlight and the labels go on again.
    void refreshSelection();
    // The current extent rendered at `size` (the map's shape kept).
    QImage exportImage(QSize size) const;

    void setRenderOptions(const map::RenderOptions &o);
    int renderCount() const { return m_renderCount; }

signals:
    void mouseMoved(double x, double y);
    // Every button press, before any tracking (the map point pressed).
    void mousePressed(QPointF mapPoint, Qt::MouseButton button, Qt::KeyboardModifiers modifiers);
    void extentChanged(const map::MapRect &extent);
    // Rubber-band mode: the rectangle dragged, in map units; a point (a
    // rectangle of no size) for a click, even one that moved a pixel or two.
    void rectangleChosen(const map::MapRect &rect);
    // Click mode: a press and release without dragging.
    void clicked(QPointF mapPoint, Qt::MouseButton button);
    void panFinished();

protected:
    void paintEvent(QPaintEvent *) override;
    void resizeEvent(QResizeEvent *) override;
    void mousePressEvent(QMouseEvent *) override;
    void mouseMoveEvent(QMouseEvent *) override;
    void mouseReleaseEvent(QMouseEvent *) override;

private:
    map::MapTransform transform() const;
    void ensurePicture();

    map::MapModel m_model;
    map::RenderOptions m_options;
    Mode m_mode = Mode::None;
    QImage m_picture;
    QImage m_layers; // the layers alone, under the highlight and labels
    map::MapTransform m_pictureTransform;
    bool m_dirty = true;
    bool m_selectionDirty = false;
    int m_renderCount = 0;
    // Drag state.
    bool m_dragging = false;
    Qt::MouseButton m_dragButton = Qt::NoButton;
    QPoint m_pressAt;
    QPoint m_dragAt;
};

}  // namespace mervola
