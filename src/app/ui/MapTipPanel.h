#pragma once
// picToolTip: the small panel of the map tips, with the kind caption in
// lbl_desc and the element's name in lblToolTip, placed beside the cursor
// over the map. MapWidgetTipSource lets the tip logic read the map widget.

#include "app/MapTip.h"

#include <QFrame>

class QLabel;
class QTimer;

namespace mervola {

class MapWidget;

class MapTipPanel : public QFrame, public MapTipView {
    Q_OBJECT
public:
    // A child of the map widget, hidden until a tip is shown.
    explicit MapTipPanel(QWidget *map);

    void hideTip() override { hide(); }
    void showTip(const QString &caption, const QString &text, QPoint cursor) override;
    bool tipVisible() const override { return isVisible(); }

    QLabel *caption() const { return m_desc; }
    QLabel *text() const { return m_text; }

    // Where the panel goes for a cursor: below right of it, moved back
    // inside `area` when it would stick out.
    static QPoint placeBeside(QPoint cursor, QSize panel, QSize area);

private:
    QLabel *m_desc = nullptr;
    QLabel *m_text = nullptr;
};

class MapWidgetTipSource : public MapTipSource {
public:
    explicit MapWidgetTipSource(MapWidget *map) : m_map(map) {}
    const map::MapModel &tipModel() const override;
    QPoint cursorPosition() const override;
    QPointF toMapPoint(QPoint widgetPoint) const override;
    double unitsPerPixel() const override;

private:
    MapWidget *m_map;
};

// Everything the main window needs for map tips: the panel over `map`, the
// source and the MapTip bound to `timer` (tmrToolTip). Owned by `map`.
MapTip *installMapTips(MapWidget *map, QTimer *timer);

}  // namespace mervola
