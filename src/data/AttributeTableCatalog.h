#pragma once
// The indicator names the attribute windows show: the structure rows, the
// INDICATORI rows and the categories, read from the reference database once
// per window instead of one query per column.

#include "platform/Result.h"
#include "project/ReferenceDb.h"
#include "project/StructureTable.h"

#include <QHash>
#include <QList>
#include <QPair>

namespace mervola {

inline const QString kNoMatch = QStringLiteral("NOMATCH");
inline const QString kBaseCategoryCode = QStringLiteral("00");
inline const QString kBaseCategoryName = QStringLiteral("INFORMAZIONI DI BASE");

class IndicatorCatalog {
public:
    struct Indicator {
        QString description;  // ind
        QString category;     // Cat (the category's name)
    };

    IndicatorCatalog() = default;
    // Reads INDICATORI and qryTutteCategorie; the structure rows are copied.
    static Result<IndicatorCatalog> read(const ReferenceDb &db, const StructureTable &structure);

    void setStructure(StructureTable structure) { m_structure = std::move(structure); }
    void addIndicator(const QString &code, const QString &description, const QString &category);
    void addCategory(const QString &code, const QString &name) { m_categories.append({code, name}); }

    // (code, name) of every category in code order.
    const QList<QPair<QString, QString>> &categories() const { return m_categories; }
    QString categoryName(const QString &code) const;

    // The text shown for a field: the structure alias, else the indicator's
    // description upper-cased, else "NOMATCH". An "I" field under category
    // "00" takes the first category that has its number.
    QString description(const QString &field, const QString &category) const;
    // True when the field is an indicator of the category (its code is listed
    // with that category's name).
    bool inCategory(const QString &field, const QString &category) const;
    bool inStructure(const QString &field) const { return m_structure.findByLabel(field) != nullptr; }
    // True when the field is an indicator of some category; the other
    // fields are the table's base information.
    bool isIndicator(const QString &field) const;

private:
    const Indicator *find(const QString &field, const QString &category) const;

    StructureTable m_structure;
    QHash<QString, Indicator> m_indicators;  // by upper-case cod_ind
    QList<QPair<QString, QString>> m_categories;
};

}  // namespace mervola
