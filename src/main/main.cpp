// Mervola: the desktop statistical atlas.
//   mervola [--home DIR] [--quit-after-start]
// --quit-after-start quits once the first map has been painted and prints
// the start-up time on stderr (for timing and smoke tests).
#include "app/AppState.h"
#include "app/ui/AppStart.h"
#include "app/ui/MainWindow.h"
#include "platform/Allocator.h"
#include "platform/AtlasHome.h"
#include "platform/Messages.h"
#include "platform/ui/MessageBoxPresenter.h"
#include "platform/ui/Translations.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <cstdio>

using namespace mervola;

int main(int argc, char **argv)
{
    QElapsedTimer clock;
    clock.start();
    keepFreedMemoryForReuse();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mervola"));
    QApplication::setOrganizationName(QStringLiteral("Mervola"));
    installItalian();
    const QStringList args = QApplication::arguments();
    const int homeAt = int(args.indexOf(QStringLiteral("--home")));
    const QString homeArg = homeAt >= 0 && homeAt + 1 < args.size() ? args[homeAt + 1] : QString();
    const bool quitAfterStart = args.contains(QStringLiteral("--quit-after-start"));

    // MERVOLA_NONINTERACTIVE=1 prints messages on stderr and takes the
    // default answer (for smoke tests and scripted runs).
    MessageBoxPresenter presenter;
    if (!qEnvironmentVariableIsSet("MERVOLA_NONINTERACTIVE"))
        setMessagePresenter(&presenter);

    const AtlasHome home = AtlasHome::locate(homeArg);
    if (!home.exists()) {
        showMessage(MsgStyle::Critical,
                    QStringLiteral("Atlante non trovato in %1.\nCrearlo con: mervola-cli build-atlas --sources "
                                   "CARTELLA --home %1")
                        .arg(home.root()));
        return 1;
    }

    AppState &state = appState();
    AppStart start(home, state);
    if (const auto code = start.begin())
        return *code;
    MainWindow &window = *start.mainWindow();
    presenter.setParent(&window);
    if (quitAfterStart) {
        QObject::connect(&window, &MainWindow::firstMapPainted, &app, [&] {
            std::fprintf(stderr, "Mappa disegnata dopo %lld ms\n", static_cast<long long>(clock.elapsed()));
            state.projectModified = false;
            QTimer::singleShot(0, &app, [&] { QApplication::exit(0); });
        });
    }
    return QApplication::exec();
}
