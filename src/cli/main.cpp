// mervola-cli: headless operations on an atlas home.
#include "cli/Commands.h"
#include "cli/ToolModule.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <cerrno>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

int g_argc = 0;
char **g_argv = nullptr;
std::unique_ptr<QCoreApplication> g_app;

} // namespace

namespace mervola::cli
{

void ensureGuiApplication()
{
    if (qobject_cast<QGuiApplication *>(g_app.get()))
        return;
    // Text needs the font database of a GUI application; it runs on the
    // offscreen platform unless told otherwise.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Without a session (cron, ssh, CI) Qt warns on standard error that it
    // picks a runtime folder itself; take a private one quietly instead.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QByteArray dir = QDir::tempPath().toLocal8Bit() + "/mervola-runtime-" + QByteArray::number(getuid());
        if (::mkdir(dir.constData(), 0700) == 0 || errno == EEXIST)
            qputenv("XDG_RUNTIME_DIR", dir);
    }
    g_app.reset();
    g_app.reset(new QGuiApplication(g_argc, g_argv));
    QCoreApplication::setApplicationName(QStringLiteral("mervola-cli"));
}

} // namespace mervola::cli

int main(int argc, char **argv)
{
    g_argc = argc;
    g_argv = argv;
    // A plain core application: the render command upgrades it only for a
    // picture that needs text or a vector format.
    g_app.reset(new QCoreApplication(g_argc, g_argv));
    QCoreApplication::setApplicationName(QStringLiteral("mervola-cli"));
    // Shapefiles the direct reader leaves aside are read through GDAL in the
    // tools module, loaded only then.
    mervola::map::setForeignLayerReader(&mervola::cli::readLayerThroughTools);
    const int code = mervola::cli::run(QCoreApplication::arguments());
    g_app.reset();
    return code;
}
