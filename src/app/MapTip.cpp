#include "app/MapTip.h"

#include <QTimer>
#include <array>

namespace mervola {

namespace {

struct Caption {
    const char *key;
    const char *caption;
};

// Layer kinds that show tips, by the first five letters of the name.
constexpr std::array<const char *, 11> kTipPrefixes = {"comu_", "cmont", "strad", "ferro", "fiumi", "laghi",
                                                       "regio", "provi", "citta", "parch", "astra"};

// By the first four letters, in this order: "astr" comes before "stra" so
// that motorways are not taken for ordinary roads.
constexpr std::array<Caption, 12> kPrefixCaptions = {{
    {"astr", "AUTOSTRADA:"},
    {"stra", "STRADA:"},
    {"regi", "REGIONE:"},
    {"prov", "PROVINCIA:"},
    {"fium", "FIUME:"},
    {"comm", "C. MONTANA:"},
    {"cmon", "C. MONTANA:"},
    {"lagh", "LAGO:"},
    {"citt", "CAPOLUOGO:"},
    {"comu", "COMUNE:"},
    {"ferr", "FERROVIA:"},
    {"parc", "PARCO:"},
}};

// By the whole standard layer name.
constexpr std::array<Caption, 13> kNameCaptions = {{
    {"astrade", "AUTOSTRADA:"},
    {"strade", "STRADA:"},
    {"province", "PROVINCIA:"},
    {"fiumi", "FIUME:"},
    {"laghi", "LAGO:"},
    {"bacini", "BACINO:"},
    {"comuni", "COMUNE:"},
    {"commont", "C. MONTANA:"},
    {"citta", "CAPOLUOGO:"},
    {"regioni", "REGIONE:"},
    {"ferrovie", "FERROVIA:"},
    {"parchi", "PARCO:"},
    {"mari", "MARE:"},
}};

}  // namespace

bool isTipLayer(const QString &layerName)
{
    const QString head = layerName.left(5).toLower();
    for (const char *p : kTipPrefixes)
        if (head == QLatin1String(p))
            return true;
    // The standard whole-Italy layers ("comuni", "commont", "bacini" ...)
    // carry one of the names of the second caption table: they show tips too,
    // so the all-Italy view is not silent.
    return !tipCaptionByName(layerName).isEmpty();
}

QString tipCaptionByPrefix(const QString &layerName)
{
    const QString head = layerName.left(4).toLower();
    for (const Caption &c : kPrefixCaptions)
        if (head == QLatin1String(c.key))
            return QString::fromUtf8(c.caption);
    return QString();
}

QString tipCaptionByName(const QString &layerName)
{
    const QString name = layerName.toLower();
    for (const Caption &c : kNameCaptions)
        if (name == QLatin1String(c.key))
            return QString::fromUtf8(c.caption);
    return QString();
}

QString tipCaption(const QString &layerName)
{
    const QString byName = tipCaptionByName(layerName);
    return byName.isEmpty() ? tipCaptionByPrefix(layerName) : byName;
}

std::optional<TipHit> findTipElement(const map::MapModel &model, QPointF mapPoint, double tolerance)
{
    // Index 0 is the top layer: what the user sees first is what the tip names.
    for (const map::MapLayer &layer : model.layers()) {
        if (!layer.visible || !layer.data || !isTipLayer(layer.name))
            continue;
        const std::vector<int> hits = map::hitTest(*layer.data, mapPoint, tolerance);
        if (hits.empty())
            continue;
        TipHit hit;
        hit.layer = layer.name;
        hit.feature = hits.front();
        hit.caption = tipCaption(layer.name);
        if (const map::Column *label = layer.data->column(QStringLiteral("Label")))
            hit.text = label->text(hit.feature);
        return hit;
    }
    return std::nullopt;
}

MapTip::MapTip(QObject *parent) : QObject(parent) {}

void MapTip::bind(QTimer *timer, MapTipView *panel, const MapTipSource *source)
{
    if (m_timer)
        disconnect(m_timer, nullptr, this, nullptr);
    m_timer = timer;
    m_panel = panel;
    m_source = source;
    if (m_timer) {
        m_timer->stop();
        m_timer->setInterval(0);
        m_timer->setSingleShot(true);
        connect(m_timer, &QTimer::timeout, this, &MapTip::tick);
    }
}

void MapTip::NoLayer() { m_layer.clear(); }

bool MapTip::armed() const { return m_timer && m_timer->interval() != 0; }

void MapTip::MouseMove()
{
    if (!m_timer || !m_panel || !m_source)
        return;
    const QPoint cursor = m_source->cursorPosition();
    if (armed()) {
        // The cursor moved on before the timer fired: no tip here.
        m_panel->hideTip();
        return;
    }
    // A shown tip belongs to the place where it was shown.
    if (m_panel->tipVisible() && cursor != m_shownAt)
        m_panel->hideTip();
    m_armedAt = cursor;
    m_timer->setInterval(kIntervalMs);
    m_timer->start();
}

void MapTip::reset()
{
    if (m_timer) {
        m_timer->stop();
        m_timer->setInterval(0);
    }
    if (m_panel)
        m_panel->hideTip();
}

void MapTip::tick()
{
    if (m_timer) {
        m_timer->stop();
        m_timer->setInterval(0);
    }
    if (!m_panel || !m_source)
        return;
    const QPoint cursor = m_source->cursorPosition();
    if (cursor != m_armedAt) {
        // Still moving: wait another interval from where the cursor is now,
        // so the tip comes once it rests, without waiting for another move.
        m_armedAt = cursor;
        if (m_timer) {
            m_timer->setInterval(kIntervalMs);
            m_timer->start();
        }
        return;
    }
    const double tolerance = kHitPixels * m_source->unitsPerPixel();
    const auto hit = findTipElement(m_source->tipModel(), m_source->toMapPoint(cursor), tolerance);
    if (!hit)
        return;
    m_layer = hit->layer;
    m_shownAt = cursor;
    m_panel->showTip(hit->caption, hit->text, cursor);
}

}  // namespace mervola
