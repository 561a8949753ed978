#include "classify/ThemeClassify.h"

#include "classify/ClassFit.h"
#include "classify/ColorRamp.h"
#include "classify/ColumnReader.h"
#include "platform/AtlasHome.h"

#include <QJsonArray>

namespace mervola::classify {

QString methodFromName(const QString &name)
{
    const QString m = name.trimmed().toUpper();
    if (m == kQuantile || m == kRegolari || m == kUnico || m == kNaturali)
        return m;
    if (m == QLatin1String("UNICI"))
        return kUnico;
    return {};
}

Result<ClassifyOutcome> classifyThemeField(const AtlasHome &home, const QString &theme, const QString &field,
                                           const QString &method, int classes, int rampIndex)
{
    const ClassificationMethod *m = methodById(method);
    if (!m && method != kNaturali)
        return Result<ClassifyOutcome>::fail(QStringLiteral("Metodo di classificazione sconosciuto: %1").arg(method));
    const QString dbf = resolveCaseInsensitive(home.italia(), theme + QStringLiteral(".dbf"));
    Result<FieldColumn> column = readFieldColumn(dbf, field);
    if (!column)
        return Result<ClassifyOutcome>(column.error());
    if (m)
        return m->classes(*column, classes, rampIndex);
    // Natural breaks give user limits, as the classification window's button does.
    ClassifyOutcome out;
    out.classification = naturalBreaksClassification(*column, classes, rampIndex);
    out.status = out.classification.isEmpty() ? ClassifyStatus::NoData : ClassifyStatus::Done;
    if (out.ok())
        out.gvf = goodnessOfFit(column->sortedNumbers(), out.classification.classes);
    return out;
}

namespace {

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

QJsonObject rangeJson(const ClassRange &r, bool unique)
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

QJsonObject outcomeJson(const QString &theme, const ClassifyOutcome &outcome, const QString &field,
                        const QString &method, int requested)
{
    const bool unique = method == kUnico;
    QJsonObject root;
    root.insert(QStringLiteral("theme"), theme);
    root.insert(QStringLiteral("field"), outcome.ok() ? outcome.classification.field : field);
    root.insert(QStringLiteral("method"), method);
    root.insert(QStringLiteral("requested"), unique ? 0 : requested);
    root.insert(QStringLiteral("status"), statusWord(outcome.status));
    QJsonArray list;
    for (const ClassRange &r : outcome.classification.classes)
        list.append(rangeJson(r, unique));
    root.insert(QStringLiteral("classes"), list);
    if (outcome.gvf)
        root.insert(QStringLiteral("gvf"), *outcome.gvf);
    return root;
}

}  // namespace mervola::classify
