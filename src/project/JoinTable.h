#pragma once
// The tables a join builds in memory: the external columns chosen in the
// wizard (joinmdb), the theme table left-joined with them (temp), and the
// fitting of their columns to what a dBase table of the theme's code page
// can hold.

#include "platform/Result.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"

namespace mervola
{

// The included columns of the source, renamed as staged, names cut to the
// dBase limit. Fails with the join's error numbers (3061 a staged field is
// missing, 3063 two columns get the same name).
Result<DbfTable> selectColumns(const SourceTable &source, const QList<StagedField> &rows);

// The column of the selected table that holds the external key: its name
// cut to ten characters, or the new name of the staged field it came from.
int externalKeyColumn(const DbfTable &ext, const QString &field, const QList<StagedField> &rows);

// theme LEFT JOIN ext ON theme.key = ext.key, every column of both sides,
// theme records in their order (a key found twice repeats the record).
// Text keys compare trimmed and without regard to case.
Result<DbfTable> leftJoin(const DbfTable &theme, int themeKey, const DbfTable &ext, int extKey);

// Sizes the columns so that every value fits when the table is written in
// `encoding`: text widths counted in bytes of that code page (at most 254,
// longer values cut at a character), characters the code page lacks
// replaced by "?", numbers wider than dBase allows narrowed by dropping
// decimals (N(24,15) as GDAL writes them becomes N(20,d)).
void fitColumns(DbfTable &table, const QString &encoding);

} // namespace mervola
