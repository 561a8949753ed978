#include "atlas/ReferenceCatalog.h"

#include "project/ReferenceDb.h"

namespace mervola::atlas {

namespace {

Status insertStructures(SqliteDb &db, const std::vector<ThemeTable> &themes)
{
    for (const ThemeTable &t : themes) {
        if (auto r = db.run(QStringLiteral("INSERT INTO ALIASTEMI (ALIAS, NOMETEMAORIGINALE) VALUES (?1, ?2)"),
                            {t.alias, t.layer.name});
            !r)
            return r.error();
        for (size_t i = 0; i < t.layer.fields.size(); ++i) {
            const AtlasField &f = t.layer.fields[i];
            const bool thematic = isIndicatorField(f.name) || f.type != AtlasField::Type::Text;
            const bool key = t.keyFields.contains(f.name, Qt::CaseInsensitive);
            auto r = db.run(QStringLiteral("INSERT INTO STRUTTURE (Label, Alias, Tabella, Tematizza, Fieldjoin) "
                                           "VALUES (?1, ?2, ?3, ?4, ?5)"),
                            {f.name, t.fieldAliases.value(static_cast<int>(i)), t.layer.name, thematic ? -1 : 0,
                             key ? -1 : 0});
            if (!r)
                return r.error();
        }
    }
    return {};
}

Status insertIndicators(SqliteDb &db)
{
    for (const Category &c : categories())
        if (auto r = db.run(QStringLiteral("INSERT INTO CATEGORIE (\"Codice Categoria\", Categoria) VALUES (?1, ?2)"),
                            {c.code, c.name});
            !r)
            return r.error();
    for (const Indicator &i : indicators()) {
        QString category;
        for (const Category &c : categories())
            if (c.code == i.category)
                category = c.name;
        if (auto r = db.run(QStringLiteral("INSERT INTO INDICATORI (ind, cod_ind, Cat, Fonte, Unita) "
                                           "VALUES (?1, ?2, ?3, ?4, ?5)"),
                            {i.description, i.codInd(), category, i.source, i.unit});
            !r)
            return r.error();
    }
    return {};
}

Status insertCategoryTables(SqliteDb &db, const AtlasModel &model)
{
    const auto &all = indicators();
    for (const Category &c : categories()) {
        QStringList columns = {QStringLiteral("PROG_MONT TEXT COLLATE NOCASE PRIMARY KEY"),
                               QStringLiteral("Label TEXT COLLATE NOCASE")};
        QStringList names = {QStringLiteral("PROG_MONT"), QStringLiteral("Label")};
        std::vector<size_t> members;
        for (size_t k = 0; k < all.size(); ++k)
            if (all[k].category == c.code) {
                columns << all[k].communityField() + QStringLiteral(" REAL");
                names << all[k].communityField();
                members.push_back(k);
            }
        if (auto s = db.exec(QStringLiteral("CREATE TABLE %1 (%2)").arg(sqlIdentifier(c.code), columns.join(QStringLiteral(", "))));
            !s)
            return s;
        QStringList marks;
        for (int i = 1; i <= names.size(); ++i)
            marks << QStringLiteral("?%1").arg(i);
        const QString insert = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                   .arg(sqlIdentifier(c.code), names.join(QStringLiteral(", ")),
                                        marks.join(QStringLiteral(", ")));
        for (size_t i = 0; i < model.communities.size(); ++i) {
            QVariantList row = {model.communities[i].progMont, model.communities[i].name};
            for (size_t k : members) {
                const Value v = rounded(model.communityValues[i][k], all[k].precision);
                row << (v ? QVariant(*v) : QVariant());
            }
            if (auto r = db.run(insert, row); !r)
                return r.error();
        }
    }
    return {};
}

}  // namespace

Status writeReferenceDb(const QString &path, const std::vector<ThemeTable> &themes, const AtlasModel &model)
{
    if (auto s = ReferenceDb::createSchema(path); !s)
        return s;
    auto db = ReferenceDb(path).open();
    if (!db)
        return db.error();
    if (auto s = db->begin(); !s)
        return s;
    Status s = insertStructures(*db, themes);
    if (s)
        s = insertIndicators(*db);
    if (s)
        s = insertCategoryTables(*db, model);
    if (!s) {
        (void)db->rollback();
        return s;
    }
    return db->commit();
}

}  // namespace mervola::atlas
