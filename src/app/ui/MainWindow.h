#pragma once
// frmMain: the map with its legend, the cool-bar with the toolbar, the
// region box and the scale box, and the status bar with the cursor position.

#include "app/AppState.h"
#include "app/MapModelHost.h"
#include "app/Stack.h"
#include "platform/AtlasHome.h"

#include <QHash>
#include <QMainWindow>

class QAction;
class QComboBox;
class QFrame;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QTimer;
class QToolBar;

namespace mervola {

struct FoundElement;
class LegendView;
class MapTip;
class MapWidget;
class ProjectFiles;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    MainWindow(AtlasHome home, AppState &state, QWidget *parent = nullptr);
    ~MainWindow() override;

    // The load sequence of start-up (after the single-instance check).
    // Returns false when the program cannot go on.
    bool load();

    // Runs the command of a toolbar key; unknown keys do nothing.
    void dispatch(const QString &key);
    QAction *action(const QString &key) const { return m_actions.value(key); }
    // Command groups: 0/1 disable/enable the theme commands, 2/3 the project commands.
    void setCommandGroup(int mode);

    MapWidget *mapWidget() const { return m_map; }
    LegendView *legend() const { return m_legend; }
    Stack &history() { return m_state.extentHistory; }
    QString scaleText() const;
    // The status bar's cursor position: "X:" x "   Y:" y, decimal comma.
    static QString coordinateText(double x, double y);
    void refreshLegend();

    // Selects the features of a layer matching any of the expressions
    // ("Label = 'X'"), highlights them and zooms to them; false when none.
    bool selectAndZoom(const QString &layerName, const QStringList &expressions);
    // Makes the features of a layer the map's selection without moving the
    // view (the rows selected in the attribute table).
    void highlightFeatures(const QString &layerName, const std::vector<int> &features);

    // Saves the project through the save dialog; false when not saved.
    bool saveProjectInteractive();
    bool openProjectInteractive();
    // Opens a project file with a progress window the user can cancel;
    // false when it was not opened (the initial project is then shown).
    bool openProject(const QString &path);

signals:
    void firstMapPainted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildMenus();
    static QString focusMarkStyle(const QString &widgetClass);
    void showMapFocus(bool on);
    bool regionBoxKey(QKeyEvent *event);
    void buildCoolBar();
    void buildCentre();
    void connectMapTools();
    void fillRegionBox();
    void updateScaleBox();
    void startScaleTimer();
    void updateCommandStates();
    void setDividerTwips(double twips);
    double twipsPerPixel() const;
    // Shows `r` and records the view left in the history; false (nothing
    // recorded) when the view stays as it was.
    bool moveView(const map::MapRect &r);
    void previousView();
    void zoomFixed(double factor);
    // Zooms by `factor` keeping `anchor` under the cursor (mouse wheel).
    void zoomAt(QPointF anchor, double factor);
    // +, -, arrows on the map; true when the key was a navigation key.
    bool handleMapKey(int key);
    bool useToolAtCentre();
    void panBy(double dx, double dy);
    void applyTypedScale();
    void selectTool(const QString &key, bool checked);
    void activeThemeChanged(const QString &layerName);
    QString aliasOf(const QString &layerName) const;
    QString themeIniPath(const QString &layerName) const;
    void reapplyTheme(const QString &layerName);
    void storeVisibility(const QString &layerName, bool visible);
    void openClassification(const QString &layerName);
    void openLegendEditor(const QString &layerName);
    void showLegendMenu(const QString &layerName, const QPoint &globalPos);
    void exportMap();
    void printMap();
    void searchElement();
    void showSelection(map::MapLayer &layer, const std::vector<int> &features);
    void showElementInfo(QPointF mapPoint);
    void selectInTable(const QList<FoundElement> &found);
    void openAttributeWindow();
    void openQueryBuilder();
    void openJoinWizard(const QString &layerName);
    void removeActiveJoin();
    void afterJoinChange(const QString &layerName, bool joined);
    class DataHost;
    DataHost &dataHost();
    void showIndicator(const QString &field);
    void addLabels();
    void removeLabels();
    void chooseRegion(int index);
    // The region box set from the project's region, and the notices of its
    // opening (tables repaired) shown.
    void afterProjectLoaded(const QStringList &notices);
    bool runGuarded(const QString &key, const std::function<void()> &fn);

    AtlasHome m_home;
    AppState &m_state;
    MapWidget *m_map = nullptr;
    LegendView *m_legend = nullptr;
    QWidget *m_divider = nullptr;
    QFrame *m_mapFrame = nullptr;
    int m_loadedRegion = 0;        // the region on the map (index in the box)
    bool m_regionStepping = false; // an arrow key is moving through the box
    QComboBox *m_regions = nullptr;
    QLineEdit *m_scale = nullptr;
    QLabel *m_coord = nullptr;
    QToolBar *m_toolbar = nullptr;
    QToolBar *m_viewBar = nullptr;  // region and scale boxes
    bool m_bandsBroken = false;     // the boxes sit below the buttons
    QTimer *m_scaleTimer = nullptr;
    QTimer *m_resizeTimer = nullptr;
    QTimer *m_tipTimer = nullptr;
    QHash<QString, QAction *> m_actions;  // toolbar keys and menu names
    QHash<QString, QString> m_aliases;    // theme name (upper case) -> alias
    std::unique_ptr<MapModelHost> m_host;
    std::unique_ptr<ProjectFiles> m_projects;
    map::MapRect m_panStart;  // the view a pan started from
    double m_lastValidScale = 0;
    double m_legendTwips = 3795;
    bool m_painted = false;
    MapTip *m_mapTip = nullptr;
    std::shared_ptr<DataHost> m_dataHost;  // shared: its type is complete only in MainWindowData.cpp
};

}  // namespace mervola
