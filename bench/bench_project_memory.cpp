// Memory and time of opening very large projects in the main window, on the
// atlas of all Italy: a project of 10,000 themes (each a legend entry with
// its swatch) and a project whose one classification line is 50 MB. Prints
// the time and the growth of the peak resident memory of each opening.
//
//   ./bench_project_memory [themes]     (default 10000; builds the atlas once,
//                                        in a separate mervola-cli process so
//                                        that this one's memory starts clean)
//   MERVOLA_BENCH_HOME=/path/to/atlas-home ./bench_project_memory
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "map/ui/MapWidget.h"
#include "support/LargeProjects.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

using namespace mervola;

namespace
{

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeAll(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

bool opened(MainWindow &w, const QString &path, const char *what)
{
    QApplication::processEvents();
    test::resetPeakMemory();
    const qint64 before = test::peakMemoryMb();
    QElapsedTimer clock;
    clock.start();
    const bool ok = w.openProject(path);
    const qint64 ms = clock.elapsed();
    std::printf("%-28s %8lld ms %+8lld MB%s\n", what, ms, test::peakMemoryMb() - before, ok ? "" : "  (non aperto)");
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int themes = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 10000;

    QTemporaryDir dir;
    const QByteArray given = qgetenv("MERVOLA_BENCH_HOME");
    const QString root = given.isEmpty() ? dir.filePath(QStringLiteral("home")) : QString::fromLocal8Bit(given);
    if (given.isEmpty() &&
        QProcess::execute(QStringLiteral(MERVOLA_CLI), {QStringLiteral("build-atlas"), QStringLiteral("--sources"),
                                                        QStringLiteral(MERVOLA_SOURCE_DIR "/data/sources"),
                                                        QStringLiteral("--home"), root}) != 0) {
        std::fprintf(stderr, "atlante non costruito\n");
        return 1;
    }
    // The two projects are written first, so that their making is not
    // counted in the window's memory.
    const QString many = dir.filePath(QStringLiteral("molti.rlx"));
    const QString large = dir.filePath(QStringLiteral("cinquanta.rlx"));
    {
        QByteArray big = readAll(root + QStringLiteral("/supporto/default.rlx"));
        big.replace("CLASSIFICAZIONE=0", "CLASSIFICAZIONE=" + QByteArray(50 * 1024 * 1024, '7'));
        if (!writeAll(many, test::manyThemes(root, themes)) || !writeAll(large, big))
            return 1;
    }
    test::resetPeakMemory();

    MainWindow w{AtlasHome(root), appState()};
    if (!w.load()) {
        std::fprintf(stderr, "finestra non caricata\n");
        return 1;
    }
    w.resize(1000, 700);
    w.show();
    QApplication::processEvents();
    std::printf("finestra aperta sull'Italia: picco %lld MB\n", test::peakMemoryMb());
    const QByteArray label = QByteArray::number(themes) + " temi";
    if (!opened(w, many, label.constData()) || w.mapWidget()->model().layerCount() != themes)
        return 1;
    return opened(w, large, "riga di 50 MB") ? 0 : 1;
}
