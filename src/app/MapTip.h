#pragma once
// Map tips: while the tip tool is pressed, resting the mouse over the map
// shows the kind of the element under the cursor ("COMUNE:", "FIUME:", ...)
// and its name. MapTip debounces the mouse through the tip timer: a movement
// arms the timer, a further movement while armed hides the panel, and the
// tick shows the tip only when the cursor still stands where it was when the
// timer was armed. Timer, panel and map are injected so that tests drive them.

#include "map/MapModel.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <optional>

class QTimer;

namespace mervola {

// True when the layer's first five letters (lower case) are those of a kind
// that shows tips ("comu_", "cmont", "strad", ...).
bool isTipLayer(const QString &layerName);
// Caption by the first four letters of the layer name; empty when none fits.
QString tipCaptionByPrefix(const QString &layerName);
// Caption by the whole standard layer name ("comuni", "bacini", "mari" ...);
// empty when the name is not a standard one.
QString tipCaptionByName(const QString &layerName);
// The caption shown for a layer: its standard name first, else its prefix.
QString tipCaption(const QString &layerName);

// The panel `picToolTip` as the tip logic sees it.
class MapTipView {
public:
    virtual ~MapTipView() = default;
    virtual void hideTip() = 0;
    // Puts the caption into lbl_desc and the text into lblToolTip and shows
    // the panel beside `cursor` (map widget coordinates).
    virtual void showTip(const QString &caption, const QString &text, QPoint cursor) = 0;
    virtual bool tipVisible() const = 0;
};

// Where the tip reads the map and the cursor from.
class MapTipSource {
public:
    virtual ~MapTipSource() = default;
    virtual const map::MapModel &tipModel() const = 0;
    virtual QPoint cursorPosition() const = 0;  // map widget coordinates
    virtual QPointF toMapPoint(QPoint widgetPoint) const = 0;
    virtual double unitsPerPixel() const = 0;
};

// The element found under a point.
struct TipHit {
    QString layer;
    int feature = -1;
    QString caption;
    QString text;
};

// The first element under `mapPoint` in the visible eligible layers, the top
// layer first. Lines and points are hit within `tolerance` map units.
std::optional<TipHit> findTipElement(const map::MapModel &model, QPointF mapPoint, double tolerance);

class MapTip : public QObject {
    Q_OBJECT
public:
    static constexpr int kIntervalMs = 100;
    // Lines and points are hit within this many pixels of the cursor.
    static constexpr double kHitPixels = 3;

    explicit MapTip(QObject *parent = nullptr);

    // Binds the tip timer and the panel (start-up) and the map it reads.
    // The timer's timeout is connected to tick(). Nothing is owned.
    void bind(QTimer *timer, MapTipView *panel, const MapTipSource *source);

    // Clears the layer the tip reads from.
    void NoLayer();
    // The map's mouse moved while the tip tool is pressed.
    void MouseMove();
    // The tip timer fired.
    void tick();
    // The tip tool was released: timer disarmed, panel hidden.
    void reset();

    // The layer of the element last shown; empty after NoLayer().
    const QString &layerName() const { return m_layer; }
    bool armed() const;

private:
    QPointer<QTimer> m_timer;
    MapTipView *m_panel = nullptr;
    const MapTipSource *m_source = nullptr;
    QString m_layer;
    QPoint m_armedAt;
    QPoint m_shownAt;
};

}  // namespace mervola
