#pragma once
// The in-memory copy of the STRUTTURE table: one row per field of a map
// table with its display alias. Read once at start-up; the indicator
// conversions and the attribute windows look field names up in it.

#include "platform/Result.h"

#include <QString>
#include <vector>

namespace mervola {

class ReferenceDb;

struct StructureRow {
    QString label;      // the field name
    QString alias;      // the name shown to the user
    QString tabella;    // the theme table the field belongs to
    QString tematizza;  // theme-able flag as stored (-1 / 0)
    QString fieldjoin;  // join-field flag as stored (-1 / 0)
};

struct StructureTable {
    std::vector<StructureRow> rows;

    // Rows compare field names and aliases upper-cased; nullptr when absent.
    const StructureRow *findByLabel(const QString &field) const;
    const StructureRow *findByAlias(const QString &alias) const;
};

inline const QString kStructureQuery = QStringLiteral("Select Label,Alias,Tabella,Tematizza,Fieldjoin from STRUTTURE");

// Runs the start-up query; an empty table is a valid (empty) result.
Result<StructureTable> readStructureTable(const ReferenceDb &db);

// The source theme name of a theme alias (ALIASTEMI.NOMETEMAORIGINALE);
// empty text when the alias is not listed.
Result<QString> sourceThemeName(const ReferenceDb &db, const QString &alias);

}  // namespace mervola
