#pragma once
// The table query: the condition a user composes over the attribute table's
// fields and its effect on the table's filter. A failed query never leaves
// the table empty: a syntax error keeps the previous filter, a query without
// result shows the whole table again.

#include "data/AttributeTable.h"

#include <QStringList>

namespace mervola {

// One entry of the field list: what is shown and the field's stored name.
struct QueryField {
    QString shown;
    QString name;
    bool text = false;
};

// Fields of the table for the list, by description for the base tables
// ("NOMATCH" keeps the stored name); DUMMY left out.
QList<QueryField> queryFields(const AttributeTable &table, const IndicatorCatalog &catalog, const QString &category);

// "Select distinct [f] from [t] ORDER BY [f] Asc;"
QString distinctValuesStatement(const QString &field, const QString &table);
// The field's distinct values as text, in that order (null left out).
Result<QStringList> distinctValues(const QString &folder, const QString &table, const QString &field);
// A value as it enters the condition: in apostrophes (doubled inside) for text.
QString conditionValue(const QString &value, bool textField);
// An operator button's caption with a blank before and after it.
QString operatorText(const QString &caption);
// Captions of the operator buttons, by index.
const QStringList &operatorCaptions();

// Commas become points (decimal comma); a condition without a blank that is
// a bare number is refused as a syntax error.
Result<QString> normalizeCondition(const QString &condition);

enum class QueryOutcome {
    NoCondition,  // "Nessuna query valida." - nothing changed
    NoRecord,     // "Nessun record trovato." - filter cleared, whole table shown
    SyntaxError,  // "Errore di sintassi nella query." - previous filter kept
    Found,        // the filter is " WHERE " + condition
};

// Runs the condition on the table and sets its filter as the outcome says.
QueryOutcome runTableQuery(AttributeTable &table, const QString &condition);

}  // namespace mervola
