#include "data/Search.h"

#include "platform/SqlText.h"
#include "platform/dbf/DbfFolder.h"

#include <QCollator>
#include <QLocale>
#include <algorithm>

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
    QCollator italian{QLocale(QLocale::Italian, QLocale::Italy)};
    italian.setCaseSensitivity(Qt::CaseInsensitive);
    italian.setNumericMode(true);
    std::sort(out.begin(), out.end(), [&italian](const QString &a, const QString &b) {
        const int c = italian.compare(a, b);
        return c != 0 ? c < 0 : a < b;
    });
    return out;
}

QString foldedName(const QString &name)
{
    const QString decomposed = name.normalized(QString::NormalizationForm_D);
    QString out;
    out.reserve(decomposed.size());
    for (const QChar ch : decomposed) {
        if (ch.category() == QChar::Mark_NonSpacing)
            continue;
        if (ch == QLatin1Char('\'') || ch == QChar(0x2019) || ch == QLatin1Char('-'))
            out += QLatin1Char(' ');
        else
            out += ch.toLower();
    }
    return out.simplified();
}

QStringList matchingNames(const QStringList &names, const QString &typed)
{
    const QString wanted = foldedName(typed);
    QStringList out;
    for (const QString &n : names)
        if (foldedName(n).contains(wanted))
            out << n;
    return out;
}

QString resolveName(const QStringList &names, const QString &typed)
{
    if (names.contains(typed))
        return typed;
    const QString wanted = foldedName(typed);
    QString found;
    for (const QString &n : names)
        if (foldedName(n) == wanted) {
            if (!found.isEmpty())
                return typed;  // two names fold alike: the user must choose
            found = n;
        }
    return found.isEmpty() ? typed : found;
}

QString labelExpression(const QString &name) { return QStringLiteral("Label = ") + sqlQuote(name); }

QString searchCaption(const QString &themeName)
{
    return QStringLiteral("Cerca in...") + displayNameToTableName(themeName);
}

}  // namespace mervola
