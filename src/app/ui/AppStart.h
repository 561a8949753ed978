#pragma once
// Start-up as the user sees it: the splash window, the single-instance lock,
// the main window's load, then the main window shown and the splash closed.
// The main window appears when both the load and the splash's minimum time
// are over, whichever ends last; a message box shown while loading (its own
// event loop runs the splash timer) therefore never loses that moment.

#include "app/AppState.h"
#include "platform/AtlasHome.h"

#include <QObject>
#include <memory>
#include <optional>

namespace mervola
{

class InstanceLock;
class MainWindow;
class SplashWindow;

class AppStart : public QObject
{
    Q_OBJECT
public:
    // How long the splash stays at least (ms).
    static constexpr int kSplashMilliseconds = 600;

    AppStart(AtlasHome home, AppState &state);
    ~AppStart() override;

    // Shows the splash, takes the lock and loads the main window. Returns an
    // exit code when the program must end now; nullopt when the event loop
    // takes over (the main window is shown from there).
    std::optional<int> begin();

    MainWindow *mainWindow() const { return m_window.get(); }
    SplashWindow *splash() const { return m_splash.get(); }

signals:
    void mainWindowShown();

private:
    void showMainWhenReady();

    AtlasHome m_home;
    AppState &m_state;
    std::unique_ptr<SplashWindow> m_splash;
    std::unique_ptr<InstanceLock> m_lock;
    std::unique_ptr<MainWindow> m_window;
    bool m_loaded = false;
    bool m_splashOver = false;
    bool m_shown = false;
};

} // namespace mervola
