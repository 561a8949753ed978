#include "project/StructureTable.h"

#include "platform/SqlText.h"
#include "project/ReferenceDb.h"

namespace mervola {

namespace {

const StructureRow *findBy(const std::vector<StructureRow> &rows, const QString &text, QString StructureRow::*column)
{
    const QString wanted = text.toUpper();
    for (const StructureRow &r : rows)
        if ((r.*column).toUpper() == wanted)
            return &r;
    return nullptr;
}

}  // namespace

const StructureRow *StructureTable::findByLabel(const QString &field) const
{
    return findBy(rows, field, &StructureRow::label);
}

const StructureRow *StructureTable::findByAlias(const QString &alias) const
{
    return findBy(rows, alias, &StructureRow::alias);
}

Result<StructureTable> readStructureTable(const ReferenceDb &db)
{
    auto rs = db.query(kStructureQuery);
    if (!rs)
        return rs.error();
    StructureTable t;
    t.rows.reserve(rs->size());
    for (size_t i = 0; i < rs->size(); ++i) {
        auto text = [&](const char *col) { return rs->value(i, QString::fromLatin1(col)).toString(); };
        t.rows.push_back({text("label"), text("alias"), text("tabella"), text("tematizza"), text("fieldjoin")});
    }
    return t;
}

Result<QString> sourceThemeName(const ReferenceDb &db, const QString &alias)
{
    auto rs = db.query(QStringLiteral("SELECT NOMETEMAORIGINALE FROM ALIASTEMI WHERE ALIAS = ") + sqlQuote(alias));
    if (!rs)
        return rs.error();
    return rs->empty() ? QString() : rs->value(0, QStringLiteral("NOMETEMAORIGINALE")).toString();
}

}  // namespace mervola
