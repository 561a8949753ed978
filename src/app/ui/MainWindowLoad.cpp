// The main window's load sequence, the legend and the command states.
#include "app/CommandTable.h"
#include "app/Regions.h"
#include "app/Startup.h"
#include "app/ui/MainWindow.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "app/ThemeStyle.h"
#include "project/ProjectFile.h"
#include "project/ReferenceDb.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <cstdio>

namespace mervola {

bool MainWindow::load()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    struct CursorGuard {
        ~CursorGuard() { QApplication::restoreOverrideCursor(); }
    } guard;

    Startup startup(m_home, m_state);
    // MERVOLA_TRACE=1 prints the time of each start-up step on stderr.
    QElapsedTimer clock;
    clock.start();
    const bool trace = qEnvironmentVariableIsSet("MERVOLA_TRACE");
    auto T = [&](const char *step) {
        if (trace)
            std::fprintf(stderr, "%s %lld ms\n", step, static_cast<long long>(clock.elapsed()));
    };
    if (auto written = startup.ensurePristineSettings(); !written) {
        showMessage(MsgStyle::Critical, written.errorMessage());
        return false;
    }
    T("pristine");
    startup.setRuntimeDefaults();
    if (auto st = startup.restorePristineState(); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return false;
    }
    T("restore");
    startup.setScaleDefaults();
    if (auto st = startup.restoreDefaultProject(*m_host); !st)
        showMessage(MsgStyle::Critical, st.errorMessage());
    T("project");
    m_map->refresh();

    fillRegionBox();

    // Aliases of the themes, read once for the legend.
    if (auto rows = ReferenceDb(m_home).query(QStringLiteral("SELECT ALIAS, NOMETEMAORIGINALE FROM ALIASTEMI"))) {
        for (const auto &row : rows->rows)
            m_aliases.insert(row[1].toString().toUpper(), row[0].toString());
    }
    m_state.busyLoading = false;
    refreshLegend();

    T("legend");
    // An empty STRUTTURE shows its own message inside; a database that
    // cannot be read at all is said here, and start-up goes on.
    if (auto st = startup.loadStructureTable(); !st)
        showMessage(MsgStyle::Critical, QStringLiteral("Impossibile leggere il database di riferimento %1.\n%2")
                                            .arg(m_home.referenceDb(), st.errorMessage()));
    T("structure");

    if (m_legend->entryCount() > 0) {
        m_legend->setActiveIndex(m_legend->entryCount() - 1);
        (void)startup.setActiveTheme(m_legend->aliasAt(m_legend->entryCount() - 1));
    }
    updateCommandStates();
    m_state.projectModified = false;
    return true;
}

void MainWindow::fillRegionBox()
{
    const QSignalBlocker block(m_regions);
    m_regions->clear();
    for (const RegionEntry &r : regionEntries())
        m_regions->addItem(r.text, r.code);
    m_regions->setCurrentIndex(0);
    m_loadedRegion = 0;
}

QString MainWindow::aliasOf(const QString &layerName) const
{
    return m_aliases.value(layerName.toUpper(), layerName);
}

// One legend row per class of a class-breaks or value-map renderer.
template <class Renderer, class LabelFn>
static void addLegendClasses(LegendEntry &e, const Renderer &r, int count, const std::vector<int> &counts,
                             const LabelFn &label)
{
    for (int c = 0; c < count; ++c) {
        LegendClass lc;
        lc.fill = map::colorFromValue(r.symbol(c).color);
        lc.outline = map::colorFromValue(r.symbol(c).outlineColor);
        lc.label = label(c);
        lc.count = c < int(counts.size()) ? counts[size_t(c)] : -1;
        e.classes.push_back(lc);
    }
}

void MainWindow::refreshLegend()
{
    std::vector<LegendEntry> entries;
    const map::MapModel &model = m_map->model();
    for (int i = 0; i < model.layerCount(); ++i) {
        const map::MapLayer &layer = model.layer(i);
        LegendEntry e;
        e.layerName = layer.name;
        e.alias = aliasOf(layer.name);
        e.visible = layer.visible;
        e.geometryKind = layer.data ? int(layer.data->kind) : 2;
        const QString name = settingsNameOfLayer(layer.name);
        const ThemeSettings settings = readThemeSettingsFile(m_home.supporto() + QLatin1Char('/') + name + QStringLiteral(".ini"), name);
        auto classLabel = [&settings](int c) {
            if (c >= settings.classes.size())
                return QString();
            const ClassItem &item = settings.classes[c];
            return item.label.isEmpty() ? item.value : item.label;
        };
        if (const auto *simple = std::get_if<map::SimpleRenderer>(&layer.renderer)) {
            e.fill = map::colorFromValue(simple->symbol.color);
            e.outline = map::colorFromValue(simple->symbol.outlineColor);
            e.outlined = simple->symbol.outline;
            if (simple->symbol.style == 1)
                e.fill = Qt::transparent;
        } else if (const auto *cb = std::get_if<map::ClassBreaksRenderer>(&layer.renderer)) {
            addLegendClasses(e, *cb, cb->breakCount(), classCounts(layer), classLabel);
        } else if (const auto *vm = std::get_if<map::ValueMapRenderer>(&layer.renderer)) {
            addLegendClasses(e, *vm, vm->valueCount(), classCounts(layer), classLabel);
        }
        entries.push_back(e);
    }
    m_legend->setEntries(entries);
}

void MainWindow::activeThemeChanged(const QString &layerName)
{
    if (m_state.busyLoading)
        return;
    m_state.activeTheme = aliasOf(layerName);
    Startup(m_home, m_state).setActiveTheme(m_state.activeTheme).ok();
    updateCommandStates();
}

void MainWindow::setCommandGroup(int mode)
{
    const QStringList *keys = nullptr;
    bool enable = false;
    switch (mode) {
    case 0: keys = &themeCommandKeys(); break;
    case 1: keys = &themeCommandKeys(); enable = true; break;
    case 2: keys = &projectCommandKeys(); break;
    case 3: keys = &projectCommandKeys(); enable = true; break;
    default: return;
    }
    for (const QString &k : *keys)
        if (QAction *a = action(k))
            a->setEnabled(enable);
}

void MainWindow::updateCommandStates()
{
    const bool hasTheme = m_legend->activeIndex() >= 0;
    setCommandGroup(hasTheme ? 1 : 0);
    setCommandGroup(3);
    const map::MapLayer *layer = m_map->model().find(m_legend->activeLayerName());
    const bool labels = layer && layer->labels.enabled();
    action(QStringLiteral("label"))->setEnabled(hasTheme);
    action(QStringLiteral("nolabel"))->setEnabled(labels);
    action(QStringLiteral("mnuInsEtichette"))->setEnabled(hasTheme);
    action(QStringLiteral("mnuElimEtichette"))->setEnabled(labels);
    const bool history = m_state.extentHistory.count() > 0;
    action(QStringLiteral("zoomprec"))->setEnabled(history);
    action(QStringLiteral("mnuZoomPrec"))->setEnabled(history);
}

}  // namespace mervola
