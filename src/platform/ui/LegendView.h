#pragma once
// The legend panel: one entry per theme under its alias with a visibility
// box; under a classified theme its class swatches, labels and counts.
// The selected entry is the active theme.

#include "platform/Legend.h"

#include <QTreeWidget>

namespace mervola {

class LegendView : public QTreeWidget {
    Q_OBJECT
public:
    explicit LegendView(QWidget *parent = nullptr);

    // Entries in legend order: the first entry is the top of the list.
    void setEntries(const std::vector<LegendEntry> &entries);
    // The entries as shown, visibility boxes included.
    const std::vector<LegendEntry> &entries() const { return m_entries; }
    int entryCount() const { return topLevelItemCount(); }
    QString layerNameAt(int index) const;
    QString aliasAt(int index) const;
    bool isVisibleAt(int index) const;
    int activeIndex() const;  // -1 when none
    void setActiveIndex(int index);
    QString activeLayerName() const;

    static QIcon swatch(const QColor &fill, const QColor &outline, bool outlined, int geometryKind, int size = 16);

signals:
    void visibilityToggled(const QString &layerName, bool visible);
    void activeThemeChanged(const QString &layerName);
    void themeDoubleClicked(const QString &layerName);
    void themeContextMenu(const QString &layerName, const QPoint &globalPos);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    // Enter on a theme does what a double click does (keyboard access).
    void keyPressEvent(QKeyEvent *event) override;

private:
    QTreeWidgetItem *topItem(const QTreeWidgetItem *item) const;
    bool m_filling = false;
    std::vector<LegendEntry> m_entries;
};

}  // namespace mervola
