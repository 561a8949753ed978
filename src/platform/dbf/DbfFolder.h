#pragma once
// A folder of dBase tables queried with Jet-style SQL. Tables are loaded on
// first use into an in-memory SQLite database (with the Jet functions such
// as sample Var/StDev) and reloaded only when their file changes. Table and
// field names compare without regard to case (COMUNI.DBF answers to comuni).
//
// Statements that write go back to the files: SELECT ... INTO name creates
// name.dbf, INSERT/UPDATE/DELETE rewrite the table (new file + rename),
// DROP TABLE deletes the .dbf. A table beside a shapefile keeps its record
// count, so that the .dbf stays in step with the .shp.

#include "platform/Result.h"
#include "platform/Sqlite.h"
#include "platform/dbf/DbfTable.h"

#include <QStringList>
#include <memory>

namespace mervola
{

class DbfFolder
{
public:
    explicit DbfFolder(QString folder);
    ~DbfFolder();
    DbfFolder(DbfFolder &&) noexcept;
    DbfFolder &operator=(DbfFolder &&) noexcept;

    QString folder() const;
    // Base names of the folder's .dbf files, sorted without regard to case.
    QStringList tableNames() const;
    // The .dbf of a table, matched without regard to case; empty when absent.
    QString tablePath(const QString &name) const;

    // A statement that returns rows (SELECT without INTO).
    Result<RowSet> query(const QString &sql);
    // Any statement; returns the number of records changed or written.
    Result<int> run(const QString &sql);
    Status execute(const QString &sql);
    // The table as currently on disk (from the cache when unchanged).
    Result<DbfTable> table(const QString &name);

    // True for statements that return rows (SELECT without INTO).
    static bool returnsRows(const QString &sql);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace mervola
