// mervola-cli: headless operations on an atlas home.
#include "cli/Commands.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("mervola-cli"));
    return mervola::cli::run(QCoreApplication::arguments());
}
