#include "atlas/ThemeTables.h"

#include "project/Regions.h"

#include <QHash>

namespace mervola::atlas {

namespace {

using T = AtlasField::Type;

AtlasField text(const char *name, int width) { return {QLatin1String(name), T::Text, width, 0}; }

QVariant toVariant(const Value &v, int precision)
{
    const Value r = rounded(v, precision);
    return r ? QVariant(*r) : QVariant();
}

QString fieldAlias(const QString &field)
{
    static const QHash<QString, QString> aliases = {
        {QStringLiteral("Label"), QStringLiteral("Denominazione")},
        {QStringLiteral("COD_ISTAT"), QStringLiteral("Codice ISTAT")},
        {QStringLiteral("COD_PROV"), QStringLiteral("Codice provincia")},
        {QStringLiteral("PROVINCIA"), QStringLiteral("Provincia")},
        {QStringLiteral("SIGLA"), QStringLiteral("Sigla provincia")},
        {QStringLiteral("COD_REG"), QStringLiteral("Codice regione")},
        {QStringLiteral("PROG_MONT"), QStringLiteral("Codice comunità montana")},
        {QStringLiteral("N_COMUNI"), QStringLiteral("Numero di comuni")},
    };
    for (const Indicator &i : indicators())
        if (field == i.municipalityField() || field == i.communityField())
            return i.description;
    return aliases.value(field, field);
}

ThemeTable makeTable(const QString &name, const QString &alias, ShapeKind kind, std::vector<AtlasField> fields,
                     QStringList keys)
{
    ThemeTable t;
    t.alias = alias;
    t.layer.name = name;
    t.layer.kind = kind;
    t.layer.fields = std::move(fields);
    for (const AtlasField &f : t.layer.fields)
        t.fieldAliases << fieldAlias(f.name);
    t.keyFields = std::move(keys);
    return t;
}

QString provinceNameOf(const AtlasModel &m, const QString &code)
{
    for (const SourceArea &p : m.sources.province)
        if (p.code == code)
            return p.name;
    return QString();
}

ShapeRecord municipalityRecord(const AtlasModel &m, size_t i)
{
    const SourceMunicipality &c = m.sources.comuni[i];
    ShapeRecord r;
    r.geometry = m.comuniGeometry[i].get();
    r.values = {c.name, c.code, c.provinceCode, c.provinceName, c.regionCode, m.progMontOf[i]};
    const auto &list = indicators();
    for (size_t k = 0; k < list.size(); ++k)
        r.values.push_back(toVariant(m.comuniValues[i][k], list[k].precision));
    return r;
}

ShapeRecord communityRecord(const AtlasModel &m, size_t i)
{
    const Community &c = m.communities[i];
    ShapeRecord r;
    r.geometry = m.communityGeometry[i].get();
    r.values = {c.progMont, c.name, c.provinceCode, provinceNameOf(m, c.provinceCode), c.regionCode,
                static_cast<int>(c.members.size())};
    const auto &list = indicators();
    for (size_t k = 0; k < list.size(); ++k)
        r.values.push_back(toVariant(m.communityValues[i][k], list[k].precision));
    return r;
}

}  // namespace

bool isIndicatorField(const QString &field)
{
    for (const Indicator &i : indicators())
        if (field.compare(i.municipalityField(), Qt::CaseInsensitive) == 0 ||
            field.compare(i.communityField(), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

std::vector<AtlasField> municipalityFields()
{
    std::vector<AtlasField> f = {text("Label", 100), text("COD_ISTAT", 6), text("COD_PROV", 3),
                                text("PROVINCIA", 60), text("COD_REG", 2), text("PROG_MONT", 8)};
    for (const Indicator &i : indicators())
        f.push_back({i.municipalityField(), T::Real, i.width, i.precision});
    return f;
}

std::vector<AtlasField> communityFields()
{
    std::vector<AtlasField> f = {text("PROG_MONT", 8), text("Label", 100), text("COD_PROV", 3),
                                text("PROVINCIA", 60), text("COD_REG", 2), {QStringLiteral("N_COMUNI"), T::Integer, 4, 0}};
    for (const Indicator &i : indicators())
        f.push_back({i.communityField(), T::Real, i.width, i.precision});
    return f;
}

std::vector<ThemeTable> buildThemeTables(const AtlasModel &m)
{
    std::vector<ThemeTable> out;
    const QStringList muniKeys = {QStringLiteral("Label"), QStringLiteral("COD_ISTAT"), QStringLiteral("COD_PROV"),
                                  QStringLiteral("COD_REG"), QStringLiteral("PROG_MONT")};
    const QStringList commKeys = {QStringLiteral("PROG_MONT"), QStringLiteral("Label"), QStringLiteral("COD_PROV"),
                                  QStringLiteral("COD_REG")};

    ThemeTable regioni = makeTable(QStringLiteral("regioni"), QStringLiteral("Regioni"), ShapeKind::Polygon,
                                   {text("Label", 40), text("COD_REG", 2)}, {QStringLiteral("Label"), QStringLiteral("COD_REG")});
    for (size_t i = 0; i < m.sources.regioni.size(); ++i) {
        const SourceArea &a = m.sources.regioni[i];
        const QString label = regionLabel(a.code);
        regioni.layer.records.push_back({m.regioniGeometry[i].get(), {label.isEmpty() ? a.name : label, a.code}});
    }
    out.push_back(std::move(regioni));

    ThemeTable province = makeTable(QStringLiteral("province"), QStringLiteral("Province"), ShapeKind::Polygon,
                                    {text("Label", 60), text("COD_PROV", 3), text("SIGLA", 2), text("COD_REG", 2)},
                                    {QStringLiteral("Label"), QStringLiteral("COD_PROV"), QStringLiteral("SIGLA")});
    for (size_t i = 0; i < m.sources.province.size(); ++i) {
        const SourceArea &a = m.sources.province[i];
        province.layer.records.push_back({m.provinceGeometry[i].get(), {a.name, a.code, a.acronym, a.regionCode}});
    }
    out.push_back(std::move(province));

    ThemeTable citta = makeTable(QStringLiteral("citta"), QStringLiteral("Capoluoghi di provincia"), ShapeKind::Point,
                                 {text("Label", 100), text("COD_ISTAT", 6), text("COD_PROV", 3), text("COD_REG", 2)},
                                 {QStringLiteral("Label"), QStringLiteral("COD_ISTAT")});
    for (size_t k = 0; k < m.capitals.size(); ++k) {
        const SourceMunicipality &c = m.sources.comuni[static_cast<size_t>(m.capitals[k])];
        citta.layer.records.push_back({m.capitalPoints[k].get(), {c.name, c.code, c.provinceCode, c.regionCode}});
    }
    out.push_back(std::move(citta));

    ThemeTable comuni = makeTable(QStringLiteral("comuni"), QStringLiteral("Comuni"), ShapeKind::Polygon,
                                  municipalityFields(), muniKeys);
    for (size_t i = 0; i < m.sources.comuni.size(); ++i)
        comuni.layer.records.push_back(municipalityRecord(m, i));
    ThemeTable commont = makeTable(QStringLiteral("commont"), QStringLiteral("Comunità montane"), ShapeKind::Polygon,
                                   communityFields(), commKeys);
    for (size_t i = 0; i < m.communities.size(); ++i)
        commont.layer.records.push_back(communityRecord(m, i));

    std::vector<ThemeTable> perRegion;
    for (const SourceArea &region : m.sources.regioni) {
        const QString code = region.code;
        ThemeTable t = makeTable(QStringLiteral("comu_") + code, QStringLiteral("Comuni - ") + regionName(code),
                                 ShapeKind::Polygon, municipalityFields(), muniKeys);
        for (size_t i = 0; i < m.sources.comuni.size(); ++i)
            if (m.sources.comuni[i].regionCode == code)
                t.layer.records.push_back(comuni.layer.records[i]);
        perRegion.push_back(std::move(t));
        if (code == QLatin1String(kRegionWithoutCommunities))
            continue;
        ThemeTable c = makeTable(QStringLiteral("cmont_") + code, QStringLiteral("Comunità montane - ") + regionName(code),
                                 ShapeKind::Polygon, communityFields(), commKeys);
        for (size_t i = 0; i < m.communities.size(); ++i)
            if (m.communities[i].regionCode == code)
                c.layer.records.push_back(commont.layer.records[i]);
        perRegion.push_back(std::move(c));
    }
    out.push_back(std::move(comuni));
    out.push_back(std::move(commont));
    for (ThemeTable &t : perRegion)
        out.push_back(std::move(t));
    return out;
}

}  // namespace mervola::atlas
