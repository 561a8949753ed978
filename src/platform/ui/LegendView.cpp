#include "platform/ui/LegendView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QHeaderView>
#include <QHash>
#include <QPainter>
#include <QPixmap>

namespace mervola {

namespace {
constexpr int kNameRole = Qt::UserRole + 1;
}

LegendView::LegendView(QWidget *parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("MapLegend1"));
    setHeaderHidden(true);
    setColumnCount(1);
    setRootIsDecorated(true);
    setIndentation(18);
    setIconSize(QSize(18, 14));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setContextMenuPolicy(Qt::DefaultContextMenu);
    setAccessibleName(QStringLiteral("Legenda"));

    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *item, int) {
        if (m_filling || item->parent())
            return;
        const int index = indexOfTopLevelItem(item);
        if (index >= 0 && index < int(m_entries.size()))
            m_entries[size_t(index)].visible = item->checkState(0) == Qt::Checked;
        emit visibilityToggled(item->data(0, kNameRole).toString(), item->checkState(0) == Qt::Checked);
    });
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *current, QTreeWidgetItem *) {
        if (m_filling || !current)
            return;
        emit activeThemeChanged(topItem(current)->data(0, kNameRole).toString());
    });
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *item, int) {
        emit themeDoubleClicked(topItem(item)->data(0, kNameRole).toString());
    });
}

QTreeWidgetItem *LegendView::topItem(const QTreeWidgetItem *item) const
{
    while (item && item->parent())
        item = item->parent();
    return const_cast<QTreeWidgetItem *>(item);
}

QIcon LegendView::swatch(const QColor &fill, const QColor &outline, bool outlined, int geometryKind, int size)
{
    // Themes and classes repeat the same few symbols: one icon per symbol is
    // drawn and shared, so a project of thousands of themes costs a few
    // pictures, not thousands. The cache is emptied when it grows large.
    static QHash<QString, QIcon> drawn;
    const QString key = QStringLiteral("%1 %2 %3 %4 %5")
                            .arg(fill.rgba())
                            .arg(outline.rgba())
                            .arg(int(outlined))
                            .arg(geometryKind)
                            .arg(size);
    if (const auto it = drawn.constFind(key); it != drawn.constEnd())
        return *it;
    if (drawn.size() > 4096)
        drawn.clear();
    // One picture per device pixel ratio, each drawn at its own resolution,
    // so that the swatches stay sharp on a high-DPI screen.
    QIcon icon;
    for (const qreal ratio : {1.0, 1.5, 2.0, 3.0}) {
        QPixmap pm(QSize(size + 4, size) * ratio);
        pm.setDevicePixelRatio(ratio);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing, geometryKind != 2);
        const QRectF r(1, 1, size + 1, size - 3);
        if (geometryKind == 0) {
            p.setBrush(fill);
            p.setPen(outlined ? QPen(outline, 1) : Qt::NoPen);
            p.drawEllipse(r.center(), size / 4.0, size / 4.0);
        } else if (geometryKind == 1) {
            p.setPen(QPen(fill, 2));
            p.drawLine(QPointF(r.left(), r.center().y()), QPointF(r.right(), r.center().y()));
        } else {
            p.setBrush(fill);
            p.setPen(outlined ? QPen(outline, 1) : Qt::NoPen);
            p.drawRect(r.adjusted(0.5, 0.5, -0.5, -0.5));
        }
        p.end();
        icon.addPixmap(pm.copy()); // the copy drops the painter's buffers
    }
    drawn.insert(key, icon);
    return icon;
}

void LegendView::setEntries(const std::vector<LegendEntry> &entries)
{
    const QString active = activeLayerName();
    m_entries = entries;
    m_filling = true;
    clear();
    QTreeWidgetItem *toSelect = nullptr;
    for (const LegendEntry &e : entries) {
        auto *item = new QTreeWidgetItem(this);
        item->setText(0, e.alias.isEmpty() ? e.layerName : e.alias);
        item->setData(0, kNameRole, e.layerName);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(0, e.visible ? Qt::Checked : Qt::Unchecked);
        item->setToolTip(0, e.layerName);
        if (e.classes.empty()) {
            item->setIcon(0, swatch(e.fill, e.outline, e.outlined, e.geometryKind));
        } else {
            for (const LegendClass &c : e.classes) {
                auto *child = new QTreeWidgetItem(item);
                child->setText(0, legendClassText(c));
                child->setIcon(0, swatch(c.fill, c.outline, e.outlined, e.geometryKind));
                child->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            }
            item->setExpanded(true);
        }
        if (e.layerName == active)
            toSelect = item;
    }
    if (toSelect)
        setCurrentItem(toSelect);
    m_filling = false;
}

void LegendView::contextMenuEvent(QContextMenuEvent *event)
{
    QTreeWidgetItem *item = topItem(itemAt(event->pos()));
    if (!item)
        return;
    setCurrentItem(item);
    emit themeContextMenu(item->data(0, kNameRole).toString(), event->globalPos());
}

void LegendView::keyPressEvent(QKeyEvent *event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && activeIndex() >= 0) {
        emit themeDoubleClicked(activeLayerName());
        return;
    }
    if (event->key() == Qt::Key_Menu && activeIndex() >= 0) {
        const QRect r = visualItemRect(topLevelItem(activeIndex()));
        emit themeContextMenu(activeLayerName(), viewport()->mapToGlobal(r.center()));
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

QString LegendView::layerNameAt(int index) const
{
    auto *it = topLevelItem(index);
    return it ? it->data(0, kNameRole).toString() : QString();
}

QString LegendView::aliasAt(int index) const
{
    auto *it = topLevelItem(index);
    return it ? it->text(0) : QString();
}

bool LegendView::isVisibleAt(int index) const
{
    auto *it = topLevelItem(index);
    return it && it->checkState(0) == Qt::Checked;
}

int LegendView::activeIndex() const
{
    auto *it = topItem(currentItem());
    return it ? indexOfTopLevelItem(it) : -1;
}

void LegendView::setActiveIndex(int index)
{
    if (auto *it = topLevelItem(index))
        setCurrentItem(it);
}

QString LegendView::activeLayerName() const
{
    auto *it = topItem(currentItem());
    return it ? it->data(0, kNameRole).toString() : QString();
}

}  // namespace mervola
