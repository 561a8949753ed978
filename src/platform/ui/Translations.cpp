#include "platform/ui/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace mervola {

bool installItalian()
{
    const QLocale italian(QLocale::Italian, QLocale::Italy);
    QLocale::setDefault(italian);
    static QTranslator *qtbase = nullptr;
    if (qtbase)
        return true;
    auto *translator = new QTranslator(QCoreApplication::instance());
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (!translator->load(italian, QStringLiteral("qtbase"), QStringLiteral("_"), folder)) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    qtbase = translator;
    return true;
}

}  // namespace mervola
