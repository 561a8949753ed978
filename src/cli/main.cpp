// mervola-cli: headless operations on an atlas home.
#include "cli/Commands.h"
#include "cli/ToolModule.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <memory>

int main(int argc, char **argv)
{
    // Rendering draws text (labels), which needs the font database of a GUI
    // application; it runs on the offscreen platform unless told otherwise.
    const bool gui = argc > 1 && qstrcmp(argv[1], "render") == 0;
    if (gui && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::unique_ptr<QCoreApplication> app(gui ? new QGuiApplication(argc, argv)
                                                    : new QCoreApplication(argc, argv));
    QCoreApplication::setApplicationName(QStringLiteral("mervola-cli"));
    // Shapefiles the direct reader leaves aside are read through GDAL in the
    // tools module, loaded only then.
    mervola::map::setForeignLayerReader(&mervola::cli::readLayerThroughTools);
    return mervola::cli::run(QCoreApplication::arguments());
}
