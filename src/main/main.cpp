// Mervola: the desktop statistical atlas.
//   mervola [--home DIR] [--quit-after-start] [--screenshot FILE.png] | --help | --version
// --quit-after-start quits once the first map has been painted and prints
// the start-up time on stderr; --screenshot saves the main window as it is
// then (both for timing and smoke tests).
#include "app/AppState.h"
#include "app/ui/AppStart.h"
#include "app/ui/AtlasPreparation.h"
#include "app/ui/MainWindow.h"
#include "platform/AtlasHome.h"
#include "platform/Messages.h"
#include "platform/ui/MessageBoxPresenter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QTimer>
#include <cstdio>
#include <optional>

using namespace mervola;

namespace {

// Exit codes: 0 normal end, 1 the program cannot start, 2 wrong command line.
enum { kExitCannotStart = 1, kExitUsage = 2 };

const char *const kUsage = "Uso: mervola [--home CARTELLA] [--quit-after-start] [--screenshot FILE.png]\n"
                           "     mervola --help | --version\n"
                           "\n"
                           "Atlante statistico delle comunità montane e dei comuni italiani.\n"
                           "\n"
                           "  --home CARTELLA      cartella dell'atlante; altrimenti $MERVOLA_HOME, altrimenti\n"
                           "                       $XDG_DATA_HOME/mervola (~/.local/share/mervola)\n"
                           "  --quit-after-start   esce appena disegnata la prima carta e stampa il tempo di avvio\n"
                           "  --screenshot FILE    salva l'immagine della finestra appena disegnata la prima carta\n"
                           "  --help               mostra questo aiuto ed esce\n"
                           "  --version            mostra la versione ed esce\n"
                           "\n"
                           "Se la cartella dell'atlante non esiste o è vuota, il primo avvio prepara l'atlante\n"
                           "dai dati di origine installati con il programma (o da quelli della cartella\n"
                           "indicata da $MERVOLA_SOURCES).\n"
                           "\n"
                           "Codici di uscita: 0 uscita normale, 1 avvio impossibile (atlante assente e non\n"
                           "preparabile, atlante già in uso, caricamento fallito), 2 riga di comando errata.\n";

// --help and --version answer before any window system is needed.
std::optional<int> answerInformationOptions(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--help") == 0 || qstrcmp(argv[i], "-h") == 0) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (qstrcmp(argv[i], "--version") == 0) {
            std::printf("mervola %s\n", MERVOLA_VERSION);
            return 0;
        }
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char **argv)
{
    if (const auto answered = answerInformationOptions(argc, argv))
        return *answered;
    QElapsedTimer clock;
    clock.start();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mervola"));
    QApplication::setApplicationVersion(QStringLiteral(MERVOLA_VERSION));
    QApplication::setOrganizationName(QStringLiteral("Mervola"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("mervola")));
    // Qt has taken its own options out of the arguments; ours are left.
    const QStringList args = QApplication::arguments();
    QString homeArg, screenshot;
    bool quitAfterStart = false;
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--home") && i + 1 < args.size()) {
            homeArg = args[++i];
        } else if (args[i] == QLatin1String("--screenshot") && i + 1 < args.size()) {
            screenshot = args[++i];
        } else if (args[i] == QLatin1String("--quit-after-start")) {
            quitAfterStart = true;
        } else {
            const QString what = args[i] == QLatin1String("--home") || args[i] == QLatin1String("--screenshot")
                                     ? QStringLiteral("manca il valore dopo ") + args[i]
                                     : QStringLiteral("argomento sconosciuto: ") + args[i];
            std::fprintf(stderr, "mervola: %s\nUsare mervola --help per l'elenco delle opzioni.\n",
                         what.toUtf8().constData());
            return kExitUsage;
        }
    }

    // MERVOLA_NONINTERACTIVE=1 prints messages on stderr and takes the
    // default answer (for smoke tests and scripted runs).
    MessageBoxPresenter presenter;
    if (!qEnvironmentVariableIsSet("MERVOLA_NONINTERACTIVE"))
        setMessagePresenter(&presenter);

    // The first start on an empty home prepares the atlas from the installed
    // source data; a folder that holds something else is refused by the builder.
    const AtlasHome home = AtlasHome::locate(homeArg);
    if (!home.exists() && !prepareAtlasHome(home))
        return kExitCannotStart;

    AppState &state = appState();
    AppStart start(home, state);
    if (const auto code = start.begin())
        return *code;  // 1: no lock or the load failed
    MainWindow &window = *start.mainWindow();
    presenter.setParent(&window);
    if (!screenshot.isEmpty()) {
        QObject::connect(&window, &MainWindow::firstMapPainted, &app, [&] {
            if (!window.grab().save(screenshot))
                std::fprintf(stderr, "mervola: impossibile salvare %s\n", screenshot.toUtf8().constData());
        });
    }
    if (quitAfterStart) {
        QObject::connect(&window, &MainWindow::firstMapPainted, &app, [&] {
            std::fprintf(stderr, "Mappa disegnata dopo %lld ms\n", static_cast<long long>(clock.elapsed()));
            state.projectModified = false;
            QTimer::singleShot(0, &app, [&] { QApplication::exit(0); });
        });
    }
    return QApplication::exec();
}
