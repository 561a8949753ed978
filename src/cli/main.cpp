// mervola-cli: headless operations on an atlas home.
#include "cli/Commands.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <cerrno>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

int main(int argc, char **argv)
{
    // Rendering draws text (labels), which needs the font database of a GUI
    // application; it runs on the offscreen platform unless told otherwise.
    const bool gui = argc > 1 && qstrcmp(argv[1], "render") == 0;
    if (gui && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Without a session (cron, ssh, CI) Qt warns on standard error that it
    // picks a runtime folder itself; take a private one quietly instead.
    if (gui && qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QByteArray dir = QDir::tempPath().toLocal8Bit() + "/mervola-runtime-" + QByteArray::number(getuid());
        if (::mkdir(dir.constData(), 0700) == 0 || errno == EEXIST)
            qputenv("XDG_RUNTIME_DIR", dir);
    }
    const std::unique_ptr<QCoreApplication> app(gui ? new QGuiApplication(argc, argv)
                                                    : new QCoreApplication(argc, argv));
    QCoreApplication::setApplicationName(QStringLiteral("mervola-cli"));
    return mervola::cli::run(QCoreApplication::arguments());
}
