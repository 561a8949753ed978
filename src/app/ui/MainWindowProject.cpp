// Opening a project from the main window: the progress window, and the
// region box, mountain-community table and caption taken from the project.
#include "app/Startup.h"
#include "app/ui/MainWindow.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "project/ProjectFile.h"

#include <QApplication>
#include <QComboBox>
#include <QProgressDialog>

namespace mervola
{

namespace
{
// The progress window appears only for an opening that lasts longer than this (ms).
constexpr int kProgressDelayMs = 500;
} // namespace

bool MainWindow::openProject(const QString &path)
{
    QProgressDialog progress(QStringLiteral("Apertura del progetto in corso..."), QStringLiteral("Annulla"), 0, 1000,
                             this);
    progress.setObjectName(QStringLiteral("frmProgresso"));
    progress.setWindowTitle(kAppTitle);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(kProgressDelayMs);
    // At its end the window closes by itself.
    progress.setAutoClose(true);
    progress.setValue(0);
    m_projects->hooks().progress = [&progress](double fraction) {
        progress.setValue(int(fraction * 1000));
        QApplication::processEvents();
        return !progress.wasCanceled();
    };
    const Status st = m_projects->open(path);
    m_projects->hooks().progress = {};
    progress.close();

    applyProjectSession(m_state, m_projects->session());
    m_state.extentHistory.clear();
    afterProjectLoaded(m_projects->session().notices);
    refreshLegend();
    m_map->refresh();
    if (m_legend->entryCount() > 0) {
        m_legend->setActiveIndex(m_legend->entryCount() - 1);
        (void)Startup(m_home, m_state).setActiveTheme(m_legend->aliasAt(m_legend->entryCount() - 1));
    }
    updateCommandStates();
    startScaleTimer();
    m_state.projectModified = false;
    return st.ok();
}

void MainWindow::afterProjectLoaded(const QStringList &notices)
{
    const QSignalBlocker block(m_regions);
    const int index = m_regions->findData(m_state.regionCode);
    m_regions->setCurrentIndex(index >= 0 ? index : 0);
    for (const QString &notice : notices)
        showMessage(MsgStyle::Exclamation, notice);
}

} // namespace mervola
