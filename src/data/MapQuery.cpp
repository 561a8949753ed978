// The map query builder's logic.
#include "data/MapQuery.h"

#include "data/TableQuery.h"

#include "platform/SqlText.h"
#include "platform/dbf/DbfFolder.h"

#include <QFileInfo>

namespace mervola
{

QString querytext::manyFoundMessage(int count)
{
    return QStringLiteral("La query ha trovato ") + QString::number(count) +
           QStringLiteral(" valori. Poiché non è possibile evidenziarli sulla mappa contemporaneamente, è "
                          "necessario selezionarne uno.");
}

QString queryTableFolder(const QString &shapePath)
{
    return QFileInfo(shapePath).absolutePath();
}

QString queryTableName(const QString &shapePath)
{
    return QFileInfo(shapePath).completeBaseName();
}

const QStringList &queryOperators()
{
    static const QStringList ops{QStringLiteral("="), QStringLiteral("<>"), QStringLiteral("and"),
                                 QStringLiteral(">"), QStringLiteral(">="), QStringLiteral("or"),
                                 QStringLiteral("<"), QStringLiteral("<="), QStringLiteral("not"),
                                 QStringLiteral("("), QStringLiteral(")")};
    return ops;
}

QString operatorInsertion(int index)
{
    const QStringList &ops = queryOperators();
    if (index < 0 || index >= ops.size())
        return {};
    return QLatin1Char(' ') + ops.at(index) + QLatin1Char(' ');
}

QString fieldInsertion(const QString &field)
{
    return QLatin1Char('[') + field + QLatin1Char(']');
}

QString valueInsertion(const QString &value, bool textField)
{
    // The user edits the text afterwards, so an apostrophe inside the value
    // is doubled here: the condition stays valid SQL as inserted.
    return textField ? sqlQuote(value) : value;
}

QString normalizeDecimalComma(const QString &condition)
{
    QString c = condition;
    return c.replace(QLatin1Char(','), QLatin1Char('.'));
}

bool isBareNumber(const QString &condition)
{
    const QString c = condition.trimmed();
    if (c.isEmpty() || c.contains(QLatin1Char(' ')))
        return false;
    bool ok = false;
    c.toDouble(&ok);
    return ok;
}

QString mapQueryStatement(const QString &table, const QString &condition)
{
    return QStringLiteral("Select LABEL ") + QStringLiteral(" from ") + table + QStringLiteral(" Where (") + condition +
           QStringLiteral(")");
}

QString singleResultExpression(const QString &label)
{
    return QStringLiteral("LABEL = ") + sqlQuote(label);
}

QString chosenResultExpression(const QString &value)
{
    bool numeric = false;
    value.trimmed().toDouble(&numeric);
    if (numeric)
        return QStringLiteral("Label = ") + value.trimmed();
    return QStringLiteral("Label = ") + sqlQuote(displayNameToTableName(value));
}

Result<MapQueryResult> runMapQuery(DbfFolder &folder, const QString &table, const QString &condition)
{
    const QString c = normalizeDecimalComma(condition);
    if (c.trimmed().isEmpty() || isBareNumber(c) || !isSingleCondition(c))
        return Error{querytext::kSyntaxError};
    auto rows = folder.query(mapQueryStatement(table, c));
    if (!rows)
        return Error{querytext::kSyntaxError, rows.error().code};
    MapQueryResult r;
    r.count = int(rows->size());
    for (const auto &row : rows->rows)
        if (!row.empty() && !row.front().isNull())
            r.labels << row.front().toString();
    r.kind = r.count == 0   ? MapQueryResult::Kind::None
             : r.count == 1 ? MapQueryResult::Kind::One
                            : MapQueryResult::Kind::Many;
    return r;
}

Result<QList<MapQueryField>> mapQueryFields(DbfFolder &folder, const QString &table)
{
    auto t = folder.table(table);
    if (!t)
        return t.error();
    QList<MapQueryField> fields;
    for (const DbfField &f : t->fields)
        fields.push_back({f.name, f.type == DbfType::Text});
    return fields;
}

Result<QStringList> mapQueryValues(DbfFolder &folder, const QString &table, const QString &field)
{
    auto rows = folder.query(distinctValuesStatement(field, table));
    if (!rows)
        return rows.error();
    QStringList values;
    for (const auto &row : rows->rows)
        if (!row.empty() && !row.front().isNull())
            values << row.front().toString();
    return values;
}

} // namespace mervola
