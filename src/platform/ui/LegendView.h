#pragma once
// The legend panel: one entry per theme under its alias with a visibility
// box; under a classified theme its class swatches, labels and counts.
// The selected entry is the active theme.

#include <QColor>
#include <QTreeWidget>

namespace mervola {

struct LegendClass {
    QColor fill;
    QColor outline;
    QString label;
    int count = -1;  // number of elements, -1 when unknown
};

struct LegendEntry {
    QString layerName;  // the theme's layer name
    QString alias;      // shown text
    bool visible = true;
    QColor fill;        // swatch of an unclassified theme
    QColor outline;
    bool outlined = true;
    int geometryKind = 2;  // 0 point, 1 line, 2 polygon
    std::vector<LegendClass> classes;
};

class LegendView : public QTreeWidget {
    Q_OBJECT
public:
    explicit LegendView(QWidget *parent = nullptr);

    // Entries in legend order: the first entry is the top of the list.
    void setEntries(const std::vector<LegendEntry> &entries);
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
};

}  // namespace mervola
