#include "data/ElementInfo.h"
#include "platform/FieldNames.h"

#include "platform/NumberText.h"
#include "platform/SqlText.h"

namespace mervola {

QString infoValueText(const QString &text)
{
    for (const QLatin1String tail : {QLatin1String(".00000"), QLatin1String(",00000")}) {
        const int at = text.indexOf(tail);
        if (at >= 0)
            return text.left(at);
    }
    return text;
}

bool isMunicipalityLayer(const QString &theme)
{
    return theme.compare(QLatin1String("comuni"), Qt::CaseInsensitive) == 0
           || theme.left(5).toUpper() == QLatin1String("COMU_");
}

bool isCommunityLayer(const QString &theme)
{
    return theme.compare(QLatin1String("commont"), Qt::CaseInsensitive) == 0
           || theme.left(4).toUpper() == QLatin1String("CMON");
}

QString categoryCodeOf(int index) { return QStringLiteral("%1").arg(index, 2, 10, QLatin1Char('0')); }

QList<FoundElement> collectElements(const map::MapModel &model, QPointF mapPoint, double tolerance,
                                    const FieldNamer &nameOf)
{
    QList<FoundElement> out;
    for (int i = 0; i < model.layerCount(); ++i) {
        const map::MapLayer &layer = model.layer(i);
        if (!layer.visible || !layer.data)
            continue;
        const std::vector<int> hits = map::hitTest(*layer.data, mapPoint, tolerance);
        if (hits.empty())
            continue;
        FoundElement e;
        e.theme = layer.name;
        e.feature = hits.front();
        for (const map::Column &c : layer.data->columns) {
            if (isPlaceholderField(c.name))
                continue;
            const QString value = c.text(e.feature);
            if (c.name.compare(QLatin1String("PROG_MONT"), Qt::CaseInsensitive) == 0)
                e.progMont = value;
            const QString shown = nameOf ? nameOf(layer.name, c.name) : QString();
            e.fields.append({shown.isEmpty() ? c.name : shown, decimalCommaText(infoValueText(value))});
        }
        out.append(e);
    }
    return out;
}

Result<QList<QPair<QString, QString>>> categoryRow(const ReferenceDb &db, const QString &code, const QString &progMont)
{
    auto rows = db.query(QStringLiteral("SELECT * FROM ") + code + QStringLiteral(" WHERE PROG_MONT = ")
                         + sqlQuote(progMont));
    if (!rows)
        return rows.error();
    QList<QPair<QString, QString>> out;
    if (rows->rows.empty())
        return out;
    for (int c = 0; c < rows->columns.size(); ++c) {
        if (isPlaceholderField(rows->columns[c]))
            continue;
        const QVariant v = rows->rows.front()[size_t(c)];
        out.append({rows->columns[c], v.isNull() ? QString() : decimalCommaText(infoValueText(v.toString()))});
    }
    return out;
}

}  // namespace mervola
