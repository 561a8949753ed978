// Theme commands of the main window: classification, legend editor, export
// and printing of the map.
#include "app/ExportFlow.h"
#include "app/RegionSwitch.h"
#include "app/Scale.h"
#include "app/Startup.h"
#include "app/TemaLabel.h"
#include "app/ThemeLegend.h"
#include "app/ThemeStyle.h"
#include "app/ui/FrmLabelProperties.h"
#include "app/ui/MainWindow.h"
#include "app/ui/ThemeClassification.h"
#include "classify/ColumnReader.h"
#include "data/AttributeTableCatalog.h"
#include "data/Search.h"
#include "data/ui/FrmInfor.h"
#include "data/ui/FrmSearch.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/LegendView.h"
#include "print/MapPage.h"
#include "print/ui/FrmStampaNew.h"
#include "project/Indicators.h"
#include "project/ProjectFile.h"
#include "project/SettingsWriters.h"
#include "project/ui/FrmInfoIndicatore.h"

#include <QAction>
#include <QComboBox>
#include <QDate>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QStatusBar>

namespace mervola
{

QString MainWindow::themeIniPath(const QString &layerName) const
{
    return m_home.supporto() + QLatin1Char('/') + settingsNameOfLayer(layerName) + QStringLiteral(".ini");
}

// Keeps a theme's visibility in its settings file, which is what a saved
// project records.
void MainWindow::storeVisibility(const QString &layerName, bool visible)
{
    const QString ini = themeIniPath(layerName);
    if (!QFileInfo::exists(ini))
        return;
    if (auto st = updateThemeKeys(ini, settingsNameOfLayer(layerName),
                                  {{ThemeKey::Visibile, visible ? QStringLiteral("1") : QStringLiteral("0")}});
        !st)
        showMessage(MsgStyle::Critical, st.errorMessage());
}

// Re-reads a theme's settings file and draws the layer by it.
void MainWindow::reapplyTheme(const QString &layerName)
{
    map::MapLayer *layer = m_map->model().find(layerName);
    if (!layer)
        return;
    applyThemeSettings(*layer, readThemeSettingsFile(themeIniPath(layerName), settingsNameOfLayer(layerName)));
    m_state.projectModified = true;
    refreshLegend();
    m_map->refresh();
}

void MainWindow::openClassification(const QString &layerName)
{
    const map::MapLayer *layer = m_map->model().find(layerName);
    if (!layer || !layer->data)
        return;
    const QString ini = themeIniPath(layerName);
    const QString section = settingsNameOfLayer(layerName);
    const ThemeSettings settings = readThemeSettingsFile(ini, section);
    const QList<classify::CandidateField> fields =
        candidateFields(*layer->data, m_state.structure, ReferenceDb(m_home));
    if (fields.isEmpty()) {
        showMessage(MsgStyle::Exclamation, QStringLiteral("Il tema non ha campi da classificare."));
        return;
    }
    QString dbf = layer->data->sourcePath;
    dbf = dbf.left(dbf.size() - 4) + QStringLiteral(".dbf");
    // Without saved classes the window starts on the theme's indicator
    // field (CAMPO), e.g. I010 for the mountain communities.
    classify::Classification current = savedClassification(settings).value_or(classify::Classification{});
    if (current.classes.empty() && current.field.isEmpty())
        current.field = settings.campo.field;
    classify::ClassificationDialog dialog(
        aliasOf(layerName), fields, [dbf](const QString &f) { return classify::readFieldColumn(dbf, f); }, current,
        this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (auto st = storeClassification(ini, section, dialog.classification()); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return;
    }
    reapplyTheme(layerName);
}

void MainWindow::openLegendEditor(const QString &layerName)
{
    if (!m_map->model().find(layerName))
        return;
    const QString ini = themeIniPath(layerName);
    const QString section = settingsNameOfLayer(layerName);
    ThemeSettings settings = readThemeSettingsFile(ini, section);
    settings.visible = m_map->model().find(layerName)->visible;
    classify::LegendEditor editor(legendEntryOf(settings, aliasOf(layerName)), this);
    if (editor.exec() != QDialog::Accepted)
        return;
    if (auto st = storeLegendEntry(ini, section, settings, editor.entry()); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return;
    }
    reapplyTheme(layerName);
}

void MainWindow::showLegendMenu(const QString &layerName, const QPoint &globalPos)
{
    QMenu menu(this);
    menu.addAction(QStringLiteral("&Classificazione..."), this, [this, layerName] { openClassification(layerName); });
    menu.addAction(QStringLiteral("&Editor della legenda..."), this,
                   [this, layerName] { openLegendEditor(layerName); });
    const ThemeSettings settings = readThemeSettingsFile(themeIniPath(layerName), settingsNameOfLayer(layerName));
    const QString field = settings.campo.field;
    if (!field.isEmpty() && field != QLatin1String("0") && field != QLatin1String("I000"))
        menu.addAction(QStringLiteral("&Descrizione indicatore..."), this, [this, field] { showIndicator(field); });
    menu.addSeparator();
    menu.addAction(QStringLiteral("&Zoom al tema"), this, [this] { dispatch(QStringLiteral("zoomtema")); });
    menu.addAction(QStringLiteral("&Aggiungi etichette..."), this, [this] { dispatch(QStringLiteral("label")); });
    menu.exec(globalPos);
}

void MainWindow::exportMap()
{
    const Status st = runExportCommand(m_map->model(), m_map->extent(), m_map->size(),
                                       [this](const QString &title, const QString &filter, QString *selected) {
                                           const QString path = QFileDialog::getSaveFileName(
                                               this, title, lastUsedFolder(m_home.root()), filter, selected,
                                               QFileDialog::DontConfirmOverwrite);
                                           rememberFolderOf(path);
                                           return path;
                                       });
    if (!st && !st.errorMessage().isEmpty())
        showMessage(MsgStyle::Critical, st.errorMessage());
}

void MainWindow::printMap()
{
    if (!hasVisibleTheme(m_map->model())) {
        showMessage(MsgStyle::Exclamation,
                    QStringLiteral("La procedura di stampa non può esssere avviata senza temi visibili."));
        return;
    }
    MapPageContent pageContent;
    const QString caption = windowTitle();
    pageContent.title = caption.startsWith(ProjectText::kCaptionPrefix)
                            ? caption.mid(ProjectText::kCaptionPrefix.size())
                            : QStringLiteral("Mervola");
    pageContent.titleFont = m_state.labelFont;
    pageContent.dateText = QLocale(QLocale::Italian).toString(QDate::currentDate(), QStringLiteral("d MMMM yyyy"));
    pageContent.model = m_map->model();
    pageContent.extent = m_map->extent();
    // The page prints the legend exactly as the panel shows it.
    pageContent.legend = m_legend->entries();
    addFitTexts(pageContent.legend, pageContent.model);
    openMapPrintPage(this, pageContent);
}

void MainWindow::addLabels()
{
    const QString name = m_legend->activeLayerName();
    if (name.isEmpty())
        return;
    if (runLabelCommand(this, m_map->model(), m_home, m_state, name, aliasOf(name))) {
        m_state.projectModified = true;
        m_map->refresh();
        updateCommandStates();
    }
}

void MainWindow::removeLabels()
{
    const QString name = m_legend->activeLayerName();
    if (name.isEmpty())
        return;
    if (auto st = RemoveLabels(m_map->model(), name, themeIniPath(name)); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return;
    }
    m_state.projectModified = true;
    m_map->refresh();
    updateCommandStates();
}

void MainWindow::chooseRegion(int index)
{
    m_loadedRegion = index;
    const RegionEntry region{m_regions->itemText(index), m_regions->itemData(index).toString()};
    auto result = switchRegion(m_map->model(), m_home, region, m_state);
    if (!result) {
        // Nothing changed: the box shows the region that is still on the map.
        const QSignalBlocker block(m_regions);
        m_regions->setCurrentIndex(std::max(0, m_regions->findData(m_state.regionCode)));
        showMessage(MsgStyle::Critical, result.errorMessage());
        return;
    } else {
        // The project records which mountain-community table is on the map.
        m_state.communityTable = mountainTheme(region.code);
        // switchRegion shows the new themes even where the pristine region
        // files keep them hidden; their settings files say so too.
        for (const QString &name : result->added)
            storeVisibility(name, true);
        if (result->extent)
            moveView(*result->extent);
    }
    m_state.projectModified = true;
    refreshLegend();
    m_map->refresh();
    if (m_legend->activeIndex() < 0 && m_legend->entryCount() > 0)
        m_legend->setActiveIndex(m_legend->entryCount() - 1);
    m_state.activeTheme = aliasOf(m_legend->activeLayerName());
    (void)Startup(m_home, m_state).setActiveTheme(m_state.activeTheme);
    updateCommandStates();
    startScaleTimer();
}

void MainWindow::showIndicator(const QString &field)
{
    const ReferenceDb db(m_home);
    const QList<Indicator> indicators = readIndicators(db);
    const Indicator *i = indicatorOf(indicators, field);
    const Indicator found =
        i ? *i : Indicator{field.startsWith(QLatin1Char('_')) ? field.mid(1) : QString(), {}, {}, {}, {}};
    const QString &code = found.code, &category = found.category, &source = found.source, &unit = found.unit;
    QString description = found.description;
    if (description.isEmpty())
        description = Indicators(m_state.structure, db).fieldToDescription(field, QStringLiteral("00"));
    FrmInfoIndicatore window(indicatorDescriptionText(field, description, code, category, source, unit), this);
    window.exec();
}

void MainWindow::searchElement()
{
    const QString name = m_legend->activeLayerName();
    map::MapLayer *layer = m_map->model().find(name);
    if (!layer || !layer->data)
        return;
    const QFileInfo shp(layer->data->sourcePath);
    auto labels = distinctLabels(shp.absolutePath(), shp.completeBaseName());
    if (!labels) {
        showMessage(MsgStyle::Critical, labels.errorMessage());
        return;
    }
    if (labels->isEmpty()) {
        showMessage(MsgStyle::Information, kNothingToSearch);
        return;
    }
    FrmSearch search(aliasOf(name), *labels, this);
    if (search.exec() != QDialog::Accepted)
        return;
    auto found = map::findFeatures(*layer->data, labelExpression(search.chosenName()));
    if (!found || found->empty())
        return;
    showSelection(*layer, {found->front()});
}

void MainWindow::showElementInfo(QPointF mapPoint)
{
    const double tolerance = 3 * m_map->extent().width() / std::max(1, m_map->width());
    const ReferenceDb db(m_home);
    // The community and municipality layers name their fields by the
    // indicators' descriptions; the other layers show the field names.
    auto read = IndicatorCatalog::read(db, m_state.structure);
    const IndicatorCatalog catalog = read ? std::move(*read) : IndicatorCatalog{};
    QList<FoundElement> found =
        collectElements(m_map->model(), mapPoint, tolerance, [&catalog](const QString &theme, const QString &field) {
            if (!isCommunityLayer(theme) && !isMunicipalityLayer(theme))
                return QString();
            const QString d = catalog.description(field, kBaseCategoryCode);
            return d == kNoMatch ? QString() : d;
        });
    if (found.isEmpty()) {
        statusBar()->showMessage(QStringLiteral("Nessun elemento nel punto indicato."), 3000);
        return;
    }
    for (FoundElement &e : found)
        e.title = aliasOf(e.theme);
    QStringList categories;
    if (auto rows = db.query(QStringLiteral("SELECT * FROM CATEGORIE ORDER BY [Codice Categoria]")))
        for (const auto &r : rows->rows)
            categories << r.back().toString();
    selectInTable(found);
    FrmInfor info(m_legend->activeLayerName(), std::move(found), categories, db, this);
    info.exec();
    m_map->refresh();
}

} // namespace mervola
