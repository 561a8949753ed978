#pragma once
// The reference database dati/mervola.sqlite: catalogue of table structures,
// theme aliases, indicators and categories, and the join bookkeeping.
// Every use opens the file, runs its statements and closes it again; the
// statements are written in the Jet dialect and translated on the way.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "platform/Sqlite.h"

namespace mervola
{

class ReferenceDb
{
public:
    explicit ReferenceDb(QString path) : m_path(std::move(path)) {}
    explicit ReferenceDb(const AtlasHome &home) : m_path(home.referenceDb()) {}

    QString path() const { return m_path; }

    // Creates (or re-creates) the file with every table and view, empty.
    static Status createSchema(const QString &path);

    // Opens, runs one Jet statement, closes.
    Result<RowSet> query(const QString &jetSql) const;
    Status execute(const QString &jetSql) const;
    // Opens, runs one Jet statement, closes; returns the number of changed rows.
    Result<int> run(const QString &jetSql) const;
    // Opens, runs several statements in one transaction, closes. Rolls back on failure.
    Status executeAll(const QStringList &jetStatements) const;

    // The SQLite text of a Jet statement: Jet-only syntax rewritten and table
    // names that begin with a digit (the category tables "01" ...) bracketed.
    static QString toSqlite(const QString &jetSql);

    // Opens a connection for a caller that runs many statements (the atlas builder).
    Result<SqliteDb> open(SqliteDb::Mode mode = SqliteDb::Mode::ReadWrite) const;

private:
    QString m_path;
};

} // namespace mervola
