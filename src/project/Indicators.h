#pragma once
// Conversions between an attribute field name and the text shown for it:
// the structure rows give names to ordinary fields, the INDICATORI and
// Categorie tables of the reference database describe indicator fields
// ("_" + five-character code, or the older "I" + three digits within a category).

#include "project/ReferenceDb.h"
#include "project/StructureTable.h"

namespace mervola {

class Indicators {
public:
    Indicators(const StructureTable &structure, ReferenceDb db) : m_structure(structure), m_db(std::move(db)) {}

    // The alias of a field in the structure rows, else the indicator's
    // description upper-cased, else empty text.
    QString fieldToDescription(const QString &field, const QString &category) const;
    // The field of an alias in the structure rows, else "_" + the code of the
    // indicator with that description in the category; empty text for
    // category "00" or when nothing matches.
    QString descriptionToField(const QString &description, const QString &category) const;

    // The code looked up for a field that is not in the structure rows.
    static QString indicatorCode(const QString &field, const QString &category);

private:
    const StructureTable &m_structure;
    ReferenceDb m_db;
};

// The folder of a path: the path without its last component and separator.
QString folderOfPath(const QString &path);

}  // namespace mervola
