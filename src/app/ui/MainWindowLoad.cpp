// The main window's load sequence, the legend and the command states.
#include "app/CommandTable.h"
#include "project/Regions.h"
#include "app/Startup.h"
#include "app/ui/MainWindow.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "app/ThemeLegend.h"
#include "project/PristineSettings.h"
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
        // Without originali/ there is nothing to start from; a table or a
        // settings file that could not be restored leaves its theme as it was.
        if (st.error().code == kMissingFolder)
            return false;
    }
    T("restore");
    startup.setScaleDefaults();
    QStringList notices;
    // Themes that cannot be shown are named here; the others are on the map.
    if (auto st = startup.restoreDefaultProject(*m_host, {}, &notices); !st)
        showMessage(MsgStyle::Critical, st.errorMessage());
    T("project");
    m_map->refresh();

    fillRegionBox();
    afterProjectLoaded(notices);

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

void MainWindow::refreshLegend()
{
    const QString supporto = m_home.supporto();
    m_legend->setEntries(themeLegend(
        m_map->model(), [this](const QString &name) { return aliasOf(name); },
        [&supporto](const QString &layerName) {
            const QString name = settingsNameOfLayer(layerName);
            return readThemeSettingsFile(supporto + QLatin1Char('/') + name + QStringLiteral(".ini"), name);
        }));
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
