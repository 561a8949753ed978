#pragma once
// Moving dBase tables in and out of SQLite: table creation and loading,
// reading a table or a SELECT back as a DbfTable with dBase field types,
// and value conversions (internal to the dBase folder, and number text).

#include "platform/Result.h"
#include "platform/dbf/DbfTable.h"

#include <QHash>

struct sqlite3;

namespace mervola::dbfvalues
{

// Registers the JETTEXT collation used by the text columns: case-insensitive
// for every letter, not only ASCII.
void registerJetTextCollation(sqlite3 *db);

// (Re)creates table `name` in SQLite with one column per field and fills it.
// Text compares as JETTEXT, logical values are -1 / 0, dates ISO text.
Status createSqlTable(sqlite3 *db, const QString &name, const DbfTable &table);

// Reads SQLite table `name` back with the fields (and encoding) of `shape`.
Result<DbfTable> tableFromSql(sqlite3 *db, const QString &name, const DbfTable &shape);

// Runs a SELECT and builds a new table: a column that is a plain column of a
// loaded table keeps that field's type, width and decimals; other columns get
// types inferred from their values. `sources` is keyed by lower-case table name.
Result<DbfTable> selectToTable(sqlite3 *db, const QString &sql, const QHash<QString, const DbfTable *> &sources);

// A value from SQLite converted for a field of the given type.
QVariant toFieldValue(const DbfField &field, const QVariant &value);

// Shortest text that reads back as the same double, without locale grouping ("0.1", "12", "-3.5e-07").
QString formatNumber(double value);

// SQLite's English error text made Italian for the user where it is a common case.
QString italianSqlError(const QString &message);

} // namespace mervola::dbfvalues
