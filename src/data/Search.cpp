#include "data/Search.h"

#include "platform/SqlText.h"
#include "platform/dbf/DbfFolder.h"

namespace mervola {

Result<QStringList> distinctLabels(const QString &folder, const QString &table)
{
    DbfFolder db(folder);
    auto rows = db.query(QStringLiteral("Select distinct Label from ") + table);
    if (!rows)
        return rows.error();
    QStringList out;
    for (const auto &r : rows->rows)
        if (!r.empty() && r[0].isValid() && !r[0].isNull() && !r[0].toString().isEmpty())
            out << r[0].toString();
    return out;
}

QString labelExpression(const QString &name) { return QStringLiteral("Label = ") + sqlQuote(name); }

QString searchCaption(const QString &themeName)
{
    return QStringLiteral("Cerca in...") + displayNameToTableName(themeName);
}

}  // namespace mervola
