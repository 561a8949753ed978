// mervola-cli sql: runs one statement on a folder of dBase tables or on the
// reference database of an atlas home and prints the rows as CSV.

#include "cli/Commands.h"
#include "platform/AtlasHome.h"
#include "platform/WriteJournal.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/dbf/DbfSql.h"
#include "platform/dbf/DbfValues.h"
#include "project/ReferenceDb.h"

#include <QDate>
#include <cstdio>

namespace mervola::cli
{

namespace
{

QString csvField(const QVariant &v)
{
    if (v.isNull())
        return {};
    QString s;
    switch (v.typeId()) {
    case QMetaType::Double:
        s = dbfvalues::formatNumber(v.toDouble());
        break;
    case QMetaType::Bool:
        s = v.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
        break;
    case QMetaType::QDate:
        s = v.toDate().toString(Qt::ISODate);
        break;
    case QMetaType::QByteArray:
        s = QString::fromLatin1(v.toByteArray().toHex());
        break;
    default:
        s = v.toString();
    }
    if (s.contains(QLatin1Char(',')) || s.contains(QLatin1Char('"')) || s.contains(QLatin1Char('\n')) ||
        s.contains(QLatin1Char('\r'))) {
        s.replace(QLatin1Char('"'), QStringLiteral("\"\""));
        s = QLatin1Char('"') + s + QLatin1Char('"');
    }
    return s;
}

void printCsv(const RowSet &rs)
{
    QString out;
    QStringList line;
    for (const QString &c : rs.columns)
        line << csvField(c);
    out += line.join(QLatin1Char(',')) + QLatin1Char('\n');
    for (const auto &row : rs.rows) {
        line.clear();
        for (const QVariant &v : row)
            line << csvField(v);
        out += line.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    const QByteArray bytes = out.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void printChanged(int n)
{
    std::fprintf(stderr, "%s\n", QStringLiteral("%1 record modificati.").arg(n).toUtf8().constData());
}

// The statement is the one argument that is neither an option nor its value.
QString statementOf(const QStringList &args)
{
    static const QStringList withValue = {QStringLiteral("--folder"), QStringLiteral("--home")};
    for (int i = 0; i < args.size(); ++i) {
        if (withValue.contains(args[i])) {
            ++i;
            continue;
        }
        if (!args[i].startsWith(QStringLiteral("--")))
            return args[i];
    }
    return {};
}

bool returnsRows(const QString &sqliteText)
{
    const auto t = dbfsql::tokenize(sqliteText);
    return !t.isEmpty() &&
           (t[0].isWord("SELECT") || t[0].isWord("WITH") || t[0].isWord("PRAGMA") || t[0].isWord("VALUES"));
}

int runOnFolder(const QString &dir, const QString &sql)
{
    DbfFolder folder(dir);
    if (DbfFolder::returnsRows(sql)) {
        auto rs = folder.query(sql);
        if (!rs)
            return fail(rs.errorMessage());
        printCsv(*rs);
        return 0;
    }
    // A write interrupted earlier may have left its work folder behind.
    removeStaleDbfWork(dir);
    auto n = folder.run(sql);
    if (!n)
        return fail(n.errorMessage());
    printChanged(*n);
    return 0;
}

int runOnReferenceDb(const QString &home, const QString &sql)
{
    const ReferenceDb ref(AtlasHome::locate(home));
    if (returnsRows(ReferenceDb::toSqlite(sql))) {
        auto rs = ref.query(sql);
        if (!rs)
            return fail(rs.errorMessage());
        printCsv(*rs);
        return 0;
    }
    auto n = ref.run(sql);
    if (!n)
        return fail(n.errorMessage());
    printChanged(*n);
    return 0;
}

} // namespace

int cmdSql(const QStringList &args)
{
    const QString folder = option(args, QStringLiteral("--folder"));
    const QString home = option(args, QStringLiteral("--home"));
    const QString sql = statementOf(args);
    if (!folder.isEmpty() && !home.isEmpty())
        return usageError(QStringLiteral("indicare --folder oppure --home, non entrambi."));
    if ((flag(args, QStringLiteral("--folder")) && folder.isEmpty()) ||
        (flag(args, QStringLiteral("--home")) && home.isEmpty()))
        return usageError(QStringLiteral("manca la cartella dopo --folder o --home."));
    if (sql.trimmed().isEmpty())
        return usageError(QStringLiteral("manca l'istruzione SQL."));
    return folder.isEmpty() ? runOnReferenceDb(home, sql) : runOnFolder(folder, sql);
}

} // namespace mervola::cli
