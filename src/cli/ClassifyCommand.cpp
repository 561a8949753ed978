// mervola-cli classify: the classes of a theme's field as JSON, computed by
// the same code as the classification window. Questions take their default
// answer (the message facade has no presenter here).
#include "classify/ThemeClassify.h"
#include "cli/Commands.h"
#include "platform/AtlasHome.h"

#include <QJsonDocument>
#include <cstdio>

namespace mervola::cli {

int cmdClassify(const QStringList &args)
{
    using namespace mervola::classify;
    const QString theme = option(args, QStringLiteral("--theme"));
    const QString field = option(args, QStringLiteral("--field"));
    const QString method = methodFromName(option(args, QStringLiteral("--method")));
    if (theme.isEmpty() || field.isEmpty())
        return usageError(QStringLiteral("occorrono --theme e --field"));
    if (method.isEmpty())
        return usageError(QStringLiteral("--method deve essere quantile, regolari, unico o naturali"));
    int classes = 5;
    const QString classesArg = option(args, QStringLiteral("--classes"));
    if (!classesArg.isEmpty()) {
        bool ok = false;
        classes = classesArg.toInt(&ok);
        if (!ok || classes < 1)
            return usageError(QStringLiteral("--classes deve essere un numero intero positivo"));
    }
    const int ramp = option(args, QStringLiteral("--ramp")).toInt();

    const AtlasHome home = AtlasHome::locate(option(args, QStringLiteral("--home")));
    const Result<ClassifyOutcome> r = classifyThemeField(home, theme, field, method, classes, ramp);
    if (!r)
        return fail(r.errorMessage());
    const QByteArray json = QJsonDocument(outcomeJson(theme, *r, field, method, classes)).toJson();
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    // A refusal or a "No" is not a classification: exit 1.
    return r->status == ClassifyStatus::Done || r->status == ClassifyStatus::NoData ? 0 : 1;
}

}  // namespace mervola::cli
