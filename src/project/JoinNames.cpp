#include "project/JoinNames.h"

#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "project/ReferenceDb.h"

namespace mervola
{

namespace
{

const QString kCreate = QStringLiteral(
    "CREATE TABLE IF NOT EXISTS ALIASJOIN (SHPCOLLEGATO TEXT COLLATE NOCASE, PATHDB TEXT COLLATE NOCASE, "
    "NOMEDB TEXT COLLATE NOCASE, NOMETABELLA TEXT COLLATE NOCASE, CAMPOAGGIUNTO TEXT COLLATE NOCASE, "
    "NOMECAMPO TEXT COLLATE NOCASE)");

QString sameJoin(const JoinFields &join)
{
    return QStringLiteral("SHPCOLLEGATO=") + sqlQuote(join.shpCollegato) + QStringLiteral(" AND PATHDB=") +
           sqlQuote(join.pathDb) + QStringLiteral(" AND NOMEDB=") + sqlQuote(join.nomeDb) +
           QStringLiteral(" AND NOMETABELLA=") + sqlQuote(join.nomeTabella);
}

bool sameName(const QString &a, const QString &b)
{
    return a.left(kDbfMaxFieldNameLength).compare(b.left(kDbfMaxFieldNameLength), Qt::CaseInsensitive) == 0;
}

// The row a name designates by itself: the field's own name, or the
// automatic "z" + name of a conflict.
int rowNamedBy(const QList<StagedField> &rows, const QString &name, const std::vector<bool> &used)
{
    for (int i = 0; i < rows.size(); ++i)
        if (!used[size_t(i)] &&
            (sameName(rows[i].nomeCampo, name) || (rows[i].conflitto && sameName(rows[i].nomeConflitto, name))))
            return i;
    return -1;
}

} // namespace

QStringList columnNameStatements(const JoinFields &join, const QList<StagedField> &rows)
{
    QStringList out{kCreate};
    for (const StagedField &r : rows) {
        if (!r.incluso)
            continue;
        const QString name = r.outputName().left(kDbfMaxFieldNameLength);
        out << QStringLiteral("DELETE FROM ALIASJOIN WHERE ") + sameJoin(join) + QStringLiteral(" AND CAMPOAGGIUNTO=") +
                   sqlQuote(name);
        out << QStringLiteral("INSERT INTO ALIASJOIN (SHPCOLLEGATO,PATHDB,NOMEDB,NOMETABELLA,CAMPOAGGIUNTO,NOMECAMPO) "
                              "VALUES (") +
                   sqlQuote(join.shpCollegato) + QLatin1Char(',') + sqlQuote(join.pathDb) + QLatin1Char(',') +
                   sqlQuote(join.nomeDb) + QLatin1Char(',') + sqlQuote(join.nomeTabella) + QLatin1Char(',') +
                   sqlQuote(name) + QLatin1Char(',') + sqlQuote(r.nomeCampo) + QStringLiteral(")");
    }
    return out;
}

QHash<QString, QString> recordedColumnNames(const ReferenceDb &db, const JoinFields &join)
{
    QHash<QString, QString> names;
    auto rows = db.query(QStringLiteral("SELECT CAMPOAGGIUNTO, NOMECAMPO FROM ALIASJOIN WHERE ") + sameJoin(join));
    if (!rows) // an atlas where no join was ever made has no such table
        return names;
    for (size_t i = 0; i < rows->size(); ++i)
        names.insert(rows->value(i, QStringLiteral("CAMPOAGGIUNTO")).toString().toUpper(),
                     rows->value(i, QStringLiteral("NOMECAMPO")).toString());
    return names;
}

void chooseRejoinColumns(QList<StagedField> &rows, const QStringList &wanted, const QHash<QString, QString> &recorded,
                         const QString &extJoinField)
{
    std::vector<bool> used(size_t(rows.size()), false);
    std::vector<int> target(size_t(wanted.size()), -1);
    for (int w = 0; w < wanted.size(); ++w) {
        const QString field = recorded.value(wanted[w].toUpper());
        for (int i = 0; i < rows.size() && !field.isEmpty(); ++i)
            if (!used[size_t(i)] && rows[i].nomeCampo.compare(field, Qt::CaseInsensitive) == 0) {
                target[size_t(w)] = i;
                used[size_t(i)] = true;
                break;
            }
    }
    for (int w = 0; w < wanted.size(); ++w)
        if (target[size_t(w)] < 0)
            if (const int i = rowNamedBy(rows, wanted[w], used); i >= 0) {
                target[size_t(w)] = i;
                used[size_t(i)] = true;
            }
    // Aliases recorded nowhere: the next unused importable field after the
    // previous column, in source order.
    int previous = -1;
    for (int w = 0; w < wanted.size(); ++w) {
        if (target[size_t(w)] >= 0) {
            previous = target[size_t(w)];
            continue;
        }
        for (int i = previous + 1; i < rows.size(); ++i)
            if (!used[size_t(i)] && isImportable(rows[i].tipoCampo)) {
                target[size_t(w)] = previous = i;
                used[size_t(i)] = true;
                break;
            }
    }

    for (StagedField &r : rows)
        r.incluso = wanted.isEmpty() && isImportable(r.tipoCampo);
    for (int w = 0; w < wanted.size(); ++w) {
        const int i = target[size_t(w)];
        if (i < 0)
            continue;
        StagedField &r = rows[i];
        r.incluso = true;
        if (r.conflitto)
            r.nomeConflitto = wanted[w];
        else
            r.aliasCampo = wanted[w];
    }
    for (StagedField &r : rows)
        if (sameName(r.nomeCampo, extJoinField) && !r.incluso)
            r.incluso = true;
}

} // namespace mervola
