#include "app/ui/AppStart.h"

#include "app/Startup.h"
#include "app/ui/MainWindow.h"
#include "app/ui/SplashWindow.h"
#include "platform/InstanceLock.h"
#include "platform/Messages.h"
#include "platform/WriteJournal.h"
#include "platform/ui/ScreenFit.h"

#include <QApplication>

namespace mervola
{

AppStart::AppStart(AtlasHome home, AppState &state) : m_home(std::move(home)), m_state(state) {}

AppStart::~AppStart() = default;

std::optional<int> AppStart::begin()
{
    m_state.splash = true;
    m_splash = std::make_unique<SplashWindow>(SplashWindow::Mode::StartUp);
    m_splash->show();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QApplication::processEvents();

    // Only one copy of the program may work on an atlas home at a time.
    m_lock = std::make_unique<InstanceLock>(m_home.root());
    const InstanceLock::State lock = m_lock->acquire();
    if (lock != InstanceLock::State::Held) {
        QApplication::restoreOverrideCursor();
        m_splash->hide();
        showMessage(MsgStyle::Critical,
                    lock == InstanceLock::State::InUse ? StartupText::kAlreadyRunning : m_lock->message());
        return 1;
    }
    // The home is ours: an operation a killed process left half-done is
    // settled before anything reads the home.
    setJournalFolder(m_home.root());
    (void)recoverInterruptedWrites(m_home);
    connect(m_splash.get(), &SplashWindow::timedOut, this, [this] {
        m_splashOver = true;
        showMainWhenReady();
    });
    m_splash->startTimer(kSplashMilliseconds);

    m_window = std::make_unique<MainWindow>(m_home, m_state);
    if (!m_window->load()) {
        QApplication::restoreOverrideCursor();
        return 1;
    }
    m_window->setEnabled(false);
    m_loaded = true;
    showMainWhenReady();
    return std::nullopt;
}

void AppStart::showMainWhenReady()
{
    if (!m_loaded || !m_splashOver || m_shown)
        return;
    m_shown = true;
    QApplication::restoreOverrideCursor();
    m_window->setEnabled(true);
    m_state.splash = false;
    resizeWithinScreen(m_window.get(), QSize(1280, 860));
    m_window->show();
    m_splash->close();
    emit mainWindowShown();
}

} // namespace mervola
