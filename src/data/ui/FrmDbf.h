#pragma once
// frmDbf: the attribute table of the active theme in a grid, with sorting,
// the table query, the category filter, export to dBase, the chart panel
// and "show on map". One window at a time; it does not block the main window.

#include "data/AttributeTable.h"
#include "data/AttributeTableModel.h"
#include "platform/AtlasHome.h"

#include <QDialog>
#include <QHash>
#include <functional>
#include <memory>

class QAction;
class QComboBox;
class QLabel;
class QTableView;
class QTimer;
class QToolBar;
class QWidget;

namespace mervola {

class FrmGraficoPanel;

// What the window needs to know about the theme it shows.
struct DbfWindowSource {
    QString themeName;      // the name in the caption (the legend's alias)
    QString layerName;      // the map layer, handed back by showOnMap
    QString shapefilePath;  // the theme's .shp; the table is the .dbf beside it
    bool joined = false;    // the theme carries a join of external data
    AtlasHome home;         // for the reference database
    StructureTable structure;
};

// What the table report prints: the window's rows as the grid shows them,
// in the grid's order, and its visible columns.
struct TablePrintout {
    QStringList fields;    // stored names of the visible columns
    QStringList captions;  // their header captions
    std::vector<QStringList> rows;  // value texts; a null value is empty
    bool printerAvailable = false;  // without a printer the preview only saves PDF
};

// The main window's side of the attribute table window.
class AttributeTableHost {
public:
    virtual ~AttributeTableHost() = default;
    // Select and highlight the elements of `layerName` whose key field has one
    // of `keyValues`; `condition` is the same choice as an expression
    // ("Label = 'A' and Label = 'B'").
    virtual void showOnMap(const QString &layerName, const QString &condition, const QString &keyField,
                           const QStringList &keyValues) = 0;
    // The window closed: enable the "dbf" button again, raise the main window.
    virtual void attributeWindowClosed() = 0;
    // The rows selected in the table changed: highlight these records
    // (feature numbers) of `layerName` on the map at once, without moving
    // the view. Nothing by default.
    virtual void highlightRecords(const QString &layerName, const std::vector<int> &records);
    // Windows opened from the table, over the table window `parent`: by
    // default the statistics and chart windows; printing and the join say
    // they are not available yet.
    virtual void openStatistics(QWidget *parent, const DbfWindowState &state);
    virtual void openChart(QWidget *parent, const DbfWindowState &state, const QString &indicatorField, int typeIndex,
                           bool threeD);
    virtual void printTable(QWidget *parent, const TablePrintout &printout);
    virtual void openJoin(const QString &layerName);
};

class FrmDbf : public QDialog {
    Q_OBJECT
public:
    // Reads the table; on failure the message is in loadError() and the grid is empty.
    FrmDbf(AttributeTableHost &host, DbfWindowSource source, QWidget *parent = nullptr);
    ~FrmDbf() override;

    QString loadError() const { return m_loadError; }
    QString layerName() const { return m_source.layerName; }
    // Runs a toolbar command by its key ("statistiche", "query", "Mostra" ...).
    void runCommand(const QString &key);
    // The state that statistics, charts and the report read.
    DbfWindowState windowState() const;
    AttributeTable *table() const { return m_table.get(); }
    QTableView *grid() const { return m_grid; }
    QAction *command(const QString &key) const { return m_actions.value(key); }
    int currentColumn() const { return m_column; }
    const IndicatorCatalog &catalog() const { return m_catalog; }

    // The file the export writes; the save dialog by default (tests replace it).
    std::function<QString()> chooseExportFile;
    // Opens the table query; the query dialog by default (tests replace it).
    std::function<void(FrmDbf &)> openQuery;

    // The theme's table changed on disk (a join made or removed): the table
    // is read again and the caption tells whether it carries external data.
    void tableChanged(bool joined);

    // Selects the grid row of a record (an element clicked on the map) and
    // scrolls to it; false when the record is not among the rows shown.
    bool selectRecord(int record);

    // Called by the table query after a filter was set or dropped.
    void queryApplied(bool found);
    // The column set-up: captions, DUMMY and the category's columns, widths kept.
    void setUpColumns();
    void refreshStatus();
    QString categoryCode() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildToolbar();
    void buildGrid();
    void fitColumnWidths();
    void columnClicked(int column);
    void sort(SortOrder order);
    void statistics();
    void print();
    void exportTable();
    void showOnMap();
    void showChart();
    void updateSelectionCount();
    void selectionChanged();
    void followChart();
    QList<int> selectedRows() const;

    AttributeTableHost &m_host;
    DbfWindowSource m_source;
    std::unique_ptr<AttributeTable> m_table;
    IndicatorCatalog m_catalog;
    AttributeTableModel *m_model = nullptr;
    QString m_loadError;
    int m_column = -1;
    QList<int> m_selectionOrder;  // shown rows in the order the user selected them

    QToolBar *m_toolbar = nullptr;
    QHash<QString, QAction *> m_actions;
    QComboBox *m_categories = nullptr;
    QTableView *m_grid = nullptr;
    QLabel *m_infoSel = nullptr;
    QLabel *m_infoOn = nullptr;
    FrmGraficoPanel *m_chartPanel = nullptr;
    QTimer *m_timer = nullptr;
    QString m_chartField; // indicator of the chart opened from this window
};

// Opens the attribute table window of a theme (or raises the one already
// open) and shows it without blocking. Returns nullptr, after the message,
// when the table cannot be read.
FrmDbf *openAttributeTable(QWidget *parent, AttributeTableHost &host, const DbfWindowSource &source);
// The attribute table window open now, or nullptr.
FrmDbf *currentAttributeWindow();

// Tells the open attribute table window, when it shows `layerName`, that
// its table changed (see FrmDbf::tableChanged).
void attributeTableChanged(const QString &layerName, bool joined);

}  // namespace mervola
