// The attribute-data windows opened from the main window (table, query
// builder) and the joins of external tables, with the map side they need.
#include "app/Scale.h"
#include "app/ui/MainWindow.h"
#include "data/ElementInfo.h"
#include "data/MapQuery.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/FrmQuery.h"
#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "print/ui/ReportPreview.h"
#include "project/JoinTheme.h"
#include "project/ProjectFile.h"
#include "project/ui/ListMdb.h"

#include <QAction>
#include <QFileInfo>

namespace mervola {

// The main window as the table window and the query builder see it.
class MainWindow::DataHost : public AttributeTableHost, public MapSelectionHost {
public:
    explicit DataHost(MainWindow &w) : m_w(w) {}

    void showOnMap(const QString &layerName, const QString &, const QString &keyField,
                   const QStringList &keyValues) override
    {
        QStringList expressions;
        for (const QString &v : keyValues)
            expressions << keyField + QStringLiteral(" = ") + sqlQuote(v);
        if (!m_w.selectAndZoom(layerName, expressions))
            showMessage(MsgStyle::Information, QStringLiteral("Non è stato trovato alcun elemento"));
    }
    void highlightRecords(const QString &layerName, const std::vector<int> &records) override
    {
        m_w.highlightFeatures(layerName, records);
    }
    void attributeWindowClosed() override
    {
        m_w.action(QStringLiteral("dbf"))->setEnabled(true);
        m_w.raise();
        m_w.activateWindow();
    }
    void openJoin(const QString &layerName) override { m_w.openJoinWizard(layerName); }
    void printTable(QWidget *parent, const TablePrintout &out) override
    {
        QList<ReportColumn> columns;
        for (int i = 0; i < out.fields.size(); ++i)
            columns.append({out.fields[i], out.captions.value(i, out.fields[i])});
        openTableReport(parent, m_w.m_home, columns, out.rows, out.printerAvailable);
    }
    bool selectAndZoom(const QString &theme, const QString &expression) override
    {
        return m_w.selectAndZoom(theme, {expression});
    }

private:
    MainWindow &m_w;
};

// Defined here, where DataHost is complete.
MainWindow::~MainWindow() = default;

MainWindow::DataHost &MainWindow::dataHost()
{
    if (!m_dataHost)
        m_dataHost = std::make_shared<DataHost>(*this);
    return *m_dataHost;
}

bool MainWindow::selectAndZoom(const QString &layerName, const QStringList &expressions)
{
    map::MapLayer *layer = m_map->model().find(layerName);
    if (!layer || !layer->data)
        return false;
    std::vector<int> chosen;
    for (const QString &e : expressions)
        if (auto found = map::findFeatures(*layer->data, e))
            chosen.insert(chosen.end(), found->begin(), found->end());
    std::sort(chosen.begin(), chosen.end());
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    if (chosen.empty()) {
        for (int i = 0; i < m_map->model().layerCount(); ++i)
            m_map->model().layer(i).selection.clear();
        m_map->refresh();
        return false;
    }
    showSelection(*layer, chosen);
    return true;
}

// Makes `features` the map's only selection, drawn at once above every
// layer; the view stays where it is.
void MainWindow::highlightFeatures(const QString &layerName, const std::vector<int> &features)
{
    map::MapLayer *layer = m_map->model().find(layerName);
    if (!layer || !layer->data)
        return;
    for (int i = 0; i < m_map->model().layerCount(); ++i)
        if (&m_map->model().layer(i) != layer)
            m_map->model().layer(i).selection.clear();
    layer->selection = features;
    m_map->refreshSelection();
}

// The element clicked with the information tool becomes the selected row
// of the open table window of its theme.
void MainWindow::selectInTable(const QList<FoundElement> &found)
{
    FrmDbf *table = currentAttributeWindow();
    if (!table)
        return;
    for (const FoundElement &e : found)
        if (e.theme == table->layerName() && table->selectRecord(e.feature))
            return;
}

// Makes `features` the map's only selection and zooms so that they fill most
// of the view, never closer than the zoom limit allows.
void MainWindow::showSelection(map::MapLayer &layer, const std::vector<int> &features)
{
    for (int i = 0; i < m_map->model().layerCount(); ++i)
        m_map->model().layer(i).selection.clear();
    layer.selection = features;
    map::MapRect box = layer.data->featureExtent(features.front());
    for (int f : features)
        box = box.united(layer.data->featureExtent(f));
    box.scale(1.4);
    if (box.width() < kMinExtentWidth * 4)
        box.scale(kMinExtentWidth * 4 / std::max(box.width(), 1.0));
    if (!moveView(box))
        m_map->refresh();  // the selection changed even if the view did not
}

void MainWindow::openAttributeWindow()
{
    const QString name = m_legend->activeLayerName();
    const map::MapLayer *layer = m_map->model().find(name);
    if (!layer || !layer->data) {
        showMessage(MsgStyle::Exclamation, QStringLiteral("Selezionare un tema nella legenda."));
        return;
    }
    const ThemeSettings s = readThemeSettingsFile(themeIniPath(name), settingsNameOfLayer(name));
    DbfWindowSource source{aliasOf(name), name, layer->data->sourcePath, s.join.isSet(), m_home, m_state.structure};
    if (openAttributeTable(this, dataHost(), source))
        action(QStringLiteral("dbf"))->setEnabled(false);
}

void MainWindow::openQueryBuilder()
{
    QList<QueryTheme> themes;
    for (const map::MapLayer &l : m_map->model().layers())
        if (l.data)
            themes.append({l.name, aliasOf(l.name), l.data->sourcePath});
    auto catalog = IndicatorCatalog::read(ReferenceDb(m_home), m_state.structure);
    openMapQuery(this, themes, dataHost(), catalog ? std::move(*catalog) : IndicatorCatalog{},
                 m_legend->activeLayerName());
}

void MainWindow::openJoinWizard(const QString &layerName)
{
    const int index = m_map->model().indexOf(layerName);
    if (index < 0)
        return;
    const map::MapLayer &layer = m_map->model().layer(index);
    JoinTarget target;
    target.home = m_home;
    target.shapefilePath = layer.data->sourcePath;
    target.layerIndex = index;
    target.iniPath = themeIniPath(layerName);
    target.structure = m_state.structure;
    const ThemeSettings s = readThemeSettingsFile(target.iniPath, settingsNameOfLayer(layerName));
    target.layer.name = layerName;
    target.layer.folder = QFileInfo(target.shapefilePath).absolutePath();
    target.layer.baseName = QFileInfo(target.shapefilePath).completeBaseName();
    target.layer.symbol = s.symbol;
    target.layer.outline = s.outline;
    target.layer.visible = layer.visible;
    target.layer.labelsOn = layer.labels.enabled();
    target.layer.labelField = s.labelField;
    if (!mervola::openJoinWizard(this, target))
        return;
    afterJoinChange(layerName, true);
}

void MainWindow::removeActiveJoin()
{
    const QString name = m_legend->activeLayerName();
    const map::MapLayer *layer = m_map->model().find(name);
    if (!layer || !layer->data)
        return;
    if (auto st = removeJoin(m_home, layer->data->sourcePath, themeIniPath(name)); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return;
    }
    afterJoinChange(name, false);
}

// The theme's table changed: the layer re-reads it, the settings (a
// classification dropped with the join included) are drawn anew, and an
// open table window shows the new columns and caption.
void MainWindow::afterJoinChange(const QString &layerName, bool joined)
{
    if (auto st = reloadLayerAttributes(m_map->model(), layerName); !st)
        showMessage(MsgStyle::Critical, st.errorMessage());
    reapplyTheme(layerName);
    updateCommandStates();
    attributeTableChanged(layerName, joined);
}

}  // namespace mervola
