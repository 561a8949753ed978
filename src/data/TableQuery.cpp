#include "data/TableQuery.h"
#include "platform/FieldNames.h"

#include "data/AttributeTableTexts.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfValues.h"

namespace mervola {

QList<QueryField> queryFields(const AttributeTable &table, const IndicatorCatalog &catalog, const QString &category)
{
    QList<QueryField> fields;
    const bool base = isBaseTable(table.table());
    for (int c = 0; c < table.columnCount(); ++c) {
        const DbfField &f = table.column(c).field;
        if (isPlaceholderField(f.name))
            continue;
        QString shown = f.name;
        if (base) {
            const QString d = catalog.description(f.name, category.isEmpty() ? kBaseCategoryCode : category);
            if (!d.isEmpty() && d != kNoMatch)
                shown = d;
        }
        fields.append({shown, f.name, f.type == DbfType::Text});
    }
    return fields;
}

QString distinctValuesStatement(const QString &field, const QString &table)
{
    return QStringLiteral("Select distinct [") + field + QStringLiteral("] from [") + table
           + QStringLiteral("] ORDER BY [") + field + QStringLiteral("] Asc;");
}

Result<QStringList> distinctValues(const QString &folder, const QString &table, const QString &field)
{
    DbfFolder db(folder);
    auto rs = db.query(distinctValuesStatement(field, table));
    if (!rs)
        return rs.error();
    QStringList values;
    for (const auto &row : rs->rows) {
        const QVariant &v = row[0];
        if (v.isNull())
            continue;
        values << (v.typeId() == QMetaType::Double ? dbfvalues::formatNumber(v.toDouble()) : v.toString());
    }
    return values;
}

QString conditionValue(const QString &value, bool textField) { return textField ? sqlQuote(value) : value; }

QString operatorText(const QString &caption) { return QLatin1Char(' ') + caption + QLatin1Char(' '); }

const QStringList &operatorCaptions()
{
    static const QStringList captions = {QStringLiteral("="),  QStringLiteral("<>"),  QStringLiteral("and"),
                                         QStringLiteral(">"),  QStringLiteral(">="),  QStringLiteral("or"),
                                         QStringLiteral("<"),  QStringLiteral("<="),  QStringLiteral("not"),
                                         QStringLiteral("("),  QStringLiteral(")")};
    return captions;
}

Result<QString> normalizeCondition(const QString &condition)
{
    QString c = condition;
    c.replace(QLatin1Char(','), QLatin1Char('.'));
    bool number = false;
    c.trimmed().toDouble(&number);
    if (number && !c.trimmed().contains(QLatin1Char(' ')))
        return Result<QString>::fail(texts::kQuerySyntax);
    if (!isSingleCondition(c))  // a second statement or a comment would swallow the sort order
        return Result<QString>::fail(texts::kQuerySyntax);
    return c;
}

QueryOutcome runTableQuery(AttributeTable &table, const QString &condition)
{
    if (condition.trimmed().isEmpty())
        return QueryOutcome::NoCondition;
    auto normalized = normalizeCondition(condition);
    if (!normalized)
        return QueryOutcome::SyntaxError;
    // applyFilter changes nothing when the statement fails: the previous
    // filter stays.
    if (!table.applyFilter(QStringLiteral(" WHERE ") + *normalized))
        return QueryOutcome::SyntaxError;
    if (table.shownCount() == 0) {
        (void)table.showAll();
        return QueryOutcome::NoRecord;
    }
    return QueryOutcome::Found;
}

}  // namespace mervola
