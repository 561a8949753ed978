#include "app/ui/MapTipPanel.h"

#include "map/ui/MapWidget.h"

#include <QCursor>
#include <QHBoxLayout>
#include <QLabel>

namespace mervola {

namespace {
constexpr int kOffset = 12;  // pixels between the cursor and the panel
}

MapTipPanel::MapTipPanel(QWidget *map) : QFrame(map)
{
    setObjectName(QStringLiteral("picToolTip"));
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, QColor(255, 255, 225));
    pal.setColor(QPalette::WindowText, Qt::black);
    setPalette(pal);
    setAttribute(Qt::WA_TransparentForMouseEvents);

    m_desc = new QLabel(this);
    m_desc->setObjectName(QStringLiteral("lbl_desc"));
    QFont bold = m_desc->font();
    bold.setBold(true);
    m_desc->setFont(bold);
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("lblToolTip"));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(4);
    layout->addWidget(m_desc);
    layout->addWidget(m_text);
    hide();
}

QPoint MapTipPanel::placeBeside(QPoint cursor, QSize panel, QSize area)
{
    int x = cursor.x() + kOffset;
    int y = cursor.y() + kOffset;
    if (x + panel.width() > area.width())
        x = cursor.x() - kOffset - panel.width();
    if (y + panel.height() > area.height())
        y = cursor.y() - kOffset - panel.height();
    return {std::max(0, x), std::max(0, y)};
}

void MapTipPanel::showTip(const QString &caption, const QString &text, QPoint cursor)
{
    m_desc->setText(caption);
    m_text->setText(text);
    adjustSize();
    const QSize area = parentWidget() ? parentWidget()->size() : QSize(10000, 10000);
    move(placeBeside(cursor, size(), area));
    raise();
    show();
}

const map::MapModel &MapWidgetTipSource::tipModel() const { return m_map->model(); }

QPoint MapWidgetTipSource::cursorPosition() const { return m_map->mapFromGlobal(QCursor::pos()); }

QPointF MapWidgetTipSource::toMapPoint(QPoint widgetPoint) const { return m_map->toMapPoint(widgetPoint); }

double MapWidgetTipSource::unitsPerPixel() const
{
    const int w = std::max(1, m_map->width());
    return m_map->extent().width() / w;
}

namespace {

// Keeps the panel, the source and the tip together under the map widget.
class MapTipBundle : public MapTip {
public:
    MapTipBundle(MapWidget *map, QTimer *timer) : MapTip(map), m_panel(new MapTipPanel(map)), m_source(map)
    {
        bind(timer, m_panel, &m_source);
    }

private:
    MapTipPanel *m_panel;  // owned by the map widget
    MapWidgetTipSource m_source;
};

}  // namespace

MapTip *installMapTips(MapWidget *map, QTimer *timer) { return new MapTipBundle(map, timer); }

}  // namespace mervola
