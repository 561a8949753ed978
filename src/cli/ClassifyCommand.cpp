// mervola-cli classify: the classes of a theme's field as JSON, computed by
// the same code as the classification window. Questions take their default
// answer (the message facade has no presenter here).
#include "classify/ColorRamp.h"
#include "classify/ColumnReader.h"
#include "classify/ClassificationMethod.h"
#include "cli/Commands.h"
#include "platform/AtlasHome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace mervola::cli {

using namespace mervola::classify;

namespace {

QString methodKeyword(const QString &arg)
{
    const QString m = arg.trimmed().toLower();
    if (m == QLatin1String("quantile"))
        return kQuantile;
    if (m == QLatin1String("regolari"))
        return kRegolari;
    if (m == QLatin1String("unico"))
        return kUnico;
    return {};
}

QString statusWord(ClassifyStatus s)
{
    switch (s) {
    case ClassifyStatus::Done: return QStringLiteral("ok");
    case ClassifyStatus::NoData: return QStringLiteral("nessun dato");
    case ClassifyStatus::Refused: return QStringLiteral("rifiutata");
    case ClassifyStatus::Declined: return QStringLiteral("annullata");
    }
    return {};
}

QJsonObject toJson(const ClassRange &r, bool unique)
{
    QJsonObject o;
    if (unique) {
        o.insert(QStringLiteral("value"), r.valueText);
    } else {
        o.insert(QStringLiteral("lower"), r.lower);
        o.insert(QStringLiteral("upper"), r.upper);
    }
    o.insert(QStringLiteral("text"), r.valueText);
    o.insert(QStringLiteral("label"), r.label);
    o.insert(QStringLiteral("count"), r.count);
    o.insert(QStringLiteral("color"), int(r.fillColor));
    o.insert(QStringLiteral("rgb"), QStringLiteral("#%1%2%3")
                                        .arg(redOf(r.fillColor), 2, 16, QLatin1Char('0'))
                                        .arg(greenOf(r.fillColor), 2, 16, QLatin1Char('0'))
                                        .arg(blueOf(r.fillColor), 2, 16, QLatin1Char('0')));
    return o;
}

}  // namespace

int cmdClassify(const QStringList &args)
{
    const QString theme = option(args, QStringLiteral("--theme"));
    const QString field = option(args, QStringLiteral("--field"));
    const QString method = methodKeyword(option(args, QStringLiteral("--method")));
    if (theme.isEmpty() || field.isEmpty())
        return fail(QStringLiteral("occorrono --theme e --field"));
    if (method.isEmpty())
        return fail(QStringLiteral("--method deve essere quantile, regolari o unico"));
    int classes = 5;
    const QString classesArg = option(args, QStringLiteral("--classes"));
    if (!classesArg.isEmpty()) {
        bool ok = false;
        classes = classesArg.toInt(&ok);
        if (!ok || classes < 1)
            return fail(QStringLiteral("--classes deve essere un numero intero positivo"));
    }
    int ramp = 0;
    const QString rampArg = option(args, QStringLiteral("--ramp"));
    if (!rampArg.isEmpty())
        ramp = rampArg.toInt();

    const AtlasHome home = AtlasHome::locate(option(args, QStringLiteral("--home")));
    const QString dbf = resolveCaseInsensitive(home.italia(), theme + QStringLiteral(".dbf"));
    Result<FieldColumn> column = readFieldColumn(dbf, field);
    if (!column)
        return fail(column.errorMessage());

    const ClassifyOutcome o = methodById(method)->classes(*column, classes, ramp);
    QJsonObject root;
    root.insert(QStringLiteral("theme"), theme);
    root.insert(QStringLiteral("field"), column->name);
    root.insert(QStringLiteral("method"), method);
    root.insert(QStringLiteral("requested"), method == kUnico ? 0 : classes);
    root.insert(QStringLiteral("status"), statusWord(o.status));
    QJsonArray list;
    for (const ClassRange &r : o.classification.classes)
        list.append(toJson(r, method == kUnico));
    root.insert(QStringLiteral("classes"), list);
    const QByteArray json = QJsonDocument(root).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    return o.status == ClassifyStatus::Done || o.status == ClassifyStatus::NoData ? 0 : 1;
}

}  // namespace mervola::cli
