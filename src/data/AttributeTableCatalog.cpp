#include "data/AttributeTableCatalog.h"

#include "project/Indicators.h"

namespace mervola {

Result<IndicatorCatalog> IndicatorCatalog::read(const ReferenceDb &db, const StructureTable &structure)
{
    IndicatorCatalog catalog;
    catalog.m_structure = structure;
    auto ind = db.query(QStringLiteral("Select cod_ind, ind, Cat from INDICATORI"));
    if (!ind)
        return ind.error();
    for (size_t r = 0; r < ind->size(); ++r)
        catalog.addIndicator(ind->rows[r][0].toString(), ind->rows[r][1].toString(), ind->rows[r][2].toString());
    auto cats = db.query(QStringLiteral("Select * from qryTutteCategorie"));
    if (!cats)
        return cats.error();
    for (size_t r = 0; r < cats->size(); ++r)
        catalog.addCategory(cats->rows[r][0].toString(), cats->rows[r][1].toString());
    return catalog;
}

void IndicatorCatalog::addIndicator(const QString &code, const QString &description, const QString &category)
{
    m_indicators.insert(code.trimmed().toUpper(), Indicator{description, category});
}

QString IndicatorCatalog::categoryName(const QString &code) const
{
    for (const auto &[c, name] : m_categories)
        if (c == code)
            return name;
    return QString();
}

const IndicatorCatalog::Indicator *IndicatorCatalog::find(const QString &field, const QString &category) const
{
    auto it = m_indicators.constFind(Indicators::indicatorCode(field, category).toUpper());
    return it == m_indicators.constEnd() ? nullptr : &*it;
}

QString IndicatorCatalog::description(const QString &field, const QString &category) const
{
    if (const StructureRow *row = m_structure.findByLabel(field))
        return row->alias;
    const Indicator *found = find(field, category);
    // The older "I" fields carry only the number within a category: with no
    // category chosen, the first category that knows the number names it.
    if (!found && category == kBaseCategoryCode && field.startsWith(QLatin1Char('I'), Qt::CaseInsensitive)) {
        for (const auto &cat : m_categories)
            if ((found = find(field, cat.first)))
                break;
    }
    return found ? found->description.toUpper() : kNoMatch;
}

bool IndicatorCatalog::isIndicator(const QString &field) const
{
    if (find(field, kBaseCategoryCode))
        return true;
    for (const auto &cat : m_categories)
        if (find(field, cat.first))
            return true;
    return false;
}

bool IndicatorCatalog::inCategory(const QString &field, const QString &category) const
{
    const Indicator *found = find(field, category);
    return found && found->category.compare(categoryName(category), Qt::CaseInsensitive) == 0;
}

}  // namespace mervola
