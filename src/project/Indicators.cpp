#include "project/Indicators.h"

#include "platform/SqlText.h"

#include <QFileInfo>

namespace mervola {

QString Indicators::indicatorCode(const QString &field, const QString &category)
{
    if (field.startsWith(QLatin1Char('I'), Qt::CaseInsensitive))
        return category + field.right(3);
    return field.right(5);
}

QString Indicators::fieldToDescription(const QString &field, const QString &category) const
{
    if (const StructureRow *row = m_structure.findByLabel(field))
        return row->alias;
    auto rs = m_db.query(QStringLiteral("Select ind from INDICATORI where cod_ind =")
                         + sqlQuote(indicatorCode(field, category)));
    if (!rs || rs->empty())
        return QString();
    return rs->value(0, QStringLiteral("ind")).toString().toUpper();
}

QString Indicators::descriptionToField(const QString &description, const QString &category) const
{
    if (const StructureRow *row = m_structure.findByAlias(description))
        return row->label;
    if (category == QLatin1String("00"))
        return QString();
    auto cat = m_db.query(QStringLiteral("Select Categoria from Categorie where [Codice Categoria] = ")
                          + sqlQuote(category));
    if (!cat)
        return QString();
    const QString categoryName = cat->empty() ? QString() : cat->value(0, QStringLiteral("Categoria")).toString();
    auto rs = m_db.query(QStringLiteral("Select cod_ind from INDICATORI where ind =") + sqlQuote(description)
                         + QStringLiteral(" and Cat = ") + sqlQuote(categoryName));
    if (!rs || rs->empty())
        return QString();
    return QLatin1Char('_') + rs->value(0, QStringLiteral("cod_ind")).toString().right(5).toUpper();
}

QString folderOfPath(const QString &path)
{
    QString p = path;
    p.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const int slash = p.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : p.left(slash);
}

}  // namespace mervola
