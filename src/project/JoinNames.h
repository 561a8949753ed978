#pragma once
// The names joined columns were given. A theme's settings file lists the
// columns a join added (STRUCTJOIN) under their new names only; the
// reference database table ALIASJOIN keeps, for each join source and theme,
// the source field behind each name, so that the join re-run when a project
// opens brings back exactly the same columns under the same names, aliases
// and renamed conflicts included. ALIASJOIN is not cleared when a project
// opens; a row is replaced when a later join gives the same name again.

#include "project/JoinStaging.h"
#include "project/ThemeSettings.h"

#include <QHash>

namespace mervola
{

class ReferenceDb;

// The statements that record the included rows' names for `join` (the
// table is created when an older reference database lacks it).
QStringList columnNameStatements(const JoinFields &join, const QList<StagedField> &rows);

// Source field by column name (upper-cased) as recorded for `join`; empty
// when nothing was recorded.
QHash<QString, QString> recordedColumnNames(const ReferenceDb &db, const JoinFields &join);

// Chooses and names the staged rows of a stored join: the columns listed in
// `wanted` (STRUCTJOIN, in order) under exactly those names. A name is
// matched to its source field through `recorded`, else by the field's own
// name or its automatic conflict name, else (an alias recorded nowhere) to
// the next unused field between its neighbours. The external join field is
// always included. With an empty `wanted` every importable field is.
void chooseRejoinColumns(QList<StagedField> &rows, const QStringList &wanted, const QHash<QString, QString> &recorded,
                         const QString &extJoinField);

} // namespace mervola
