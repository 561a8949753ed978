#include "atlas/SourceLoader.h"

#include "atlas/SourceTable.h"
#include "atlas/TopoJsonReader.h"

#include <QHash>
#include <algorithm>
#include <numeric>

namespace mervola::atlas {

namespace {

QString prop(const QJsonObject &o, const char *key) { return o.value(QLatin1String(key)).toVariant().toString(); }

// Municipalities sorted by code, neighbour indexes remapped.
void sortByCode(std::vector<SourceMunicipality> &list)
{
    std::vector<int> order(list.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](int a, int b) {
        return list[static_cast<size_t>(a)].code < list[static_cast<size_t>(b)].code;
    });
    std::vector<int> newIndex(list.size());
    for (size_t i = 0; i < order.size(); ++i)
        newIndex[static_cast<size_t>(order[i])] = static_cast<int>(i);
    std::vector<SourceMunicipality> sorted;
    sorted.reserve(list.size());
    for (int old : order) {
        SourceMunicipality m = std::move(list[static_cast<size_t>(old)]);
        for (int &n : m.neighbours)
            n = newIndex[static_cast<size_t>(n)];
        std::sort(m.neighbours.begin(), m.neighbours.end());
        sorted.push_back(std::move(m));
    }
    list = std::move(sorted);
}

Status loadMunicipalities(const QString &folder, const SourceTable &csv, AtlasSources &out)
{
    QHash<QString, size_t> rowOf;
    const int codeCol = csv.column(QStringLiteral("istat_code"));
    if (codeCol < 0)
        return Status::fail(QStringLiteral("Colonna istat_code mancante in comuni_attributi.csv."));
    for (size_t i = 0; i < csv.rows.size(); ++i)
        rowOf.insert(csv.rows[i].value(codeCol), i);

    for (int region = 1; region <= 20; ++region) {
        const QString path = QStringLiteral("%1/boundaries/limits_R_%2_municipalities.topo.json").arg(folder).arg(region);
        auto layer = readTopoJson(path, QStringLiteral("comuni"));
        if (!layer)
            return layer.error();
        const auto adjacency = layer->adjacency();
        const int offset = static_cast<int>(out.comuni.size());
        for (size_t f = 0; f < layer->features.size(); ++f) {
            TopoFeature &feature = layer->features[f];
            SourceMunicipality m;
            m.code = prop(feature.properties, "com_istat_code");
            const auto row = rowOf.constFind(m.code);
            if (row == rowOf.constEnd())
                return Status::fail(QStringLiteral("Comune %1 assente da comuni_attributi.csv.").arg(m.code));
            m.attributes = csv.record(*row);
            m.name = m.attributes.value(QStringLiteral("nome"));
            const QString topoName = prop(feature.properties, "name");
            if (topoName != m.name)
                out.notes << QStringLiteral("Nome corretto dalla tabella degli attributi: %1 (%2)").arg(m.name, m.code);
            m.provinceCode = m.attributes.value(QStringLiteral("cod_provincia"));
            m.provinceName = m.attributes.value(QStringLiteral("provincia"));
            m.regionCode = m.attributes.value(QStringLiteral("cod_regione"));
            m.shape = std::move(feature.shape);
            for (int n : adjacency[f])
                m.neighbours.push_back(n + offset);
            out.comuni.push_back(std::move(m));
        }
    }
    sortByCode(out.comuni);
    return {};
}

Status loadAreas(const QString &path, const QString &object, bool provinces, std::vector<SourceArea> &out)
{
    auto layer = readTopoJson(path, object);
    if (!layer)
        return layer.error();
    for (TopoFeature &f : layer->features) {
        SourceArea a;
        a.regionCode = prop(f.properties, "reg_istat_code");
        if (provinces) {
            a.code = prop(f.properties, "prov_istat_code");
            a.name = prop(f.properties, "prov_name");
            a.acronym = prop(f.properties, "prov_acr");
        } else {
            a.code = a.regionCode;
            a.name = prop(f.properties, "reg_name");
        }
        a.shape = std::move(f.shape);
        out.push_back(std::move(a));
    }
    std::sort(out.begin(), out.end(), [](const SourceArea &a, const SourceArea &b) { return a.code < b.code; });
    return {};
}

void loadCapitals(const QString &path, AtlasSources &out)
{
    auto table = readCsv(path);
    if (!table) {
        out.notes << table.errorMessage();
        return;
    }
    QHash<QString, int> byCode;
    QHash<QString, QList<int>> byName;
    for (size_t i = 0; i < out.comuni.size(); ++i) {
        byCode.insert(out.comuni[i].code, static_cast<int>(i));
        byName[out.comuni[i].name.toLower()] << static_cast<int>(i);
    }
    const int codeCol = table->column(QStringLiteral("istat_code"));
    const int nameCol = table->column(QStringLiteral("nome"));
    for (const QStringList &row : table->rows) {
        const QString code = row.value(codeCol);
        const QString name = row.value(nameCol);
        if (byCode.contains(code)) {
            out.capitalCodes << code;
            continue;
        }
        // Codes changed after 2019 (new provinces): the name still identifies the town.
        const QList<int> matches = byName.value(name.toLower());
        if (matches.size() == 1) {
            out.capitalCodes << out.comuni[static_cast<size_t>(matches.front())].code;
            out.notes << QStringLiteral("Capoluogo %1: codice %2 sostituito da %3").arg(name, code,
                                                                                         out.capitalCodes.last());
        } else {
            out.notes << QStringLiteral("Capoluogo %1 (%2) non trovato fra i comuni").arg(name, code);
        }
    }
    out.capitalCodes.removeDuplicates();
    out.capitalCodes.sort();
}

}  // namespace

Result<AtlasSources> loadSources(const QString &folder)
{
    auto csv = readCsv(folder + QStringLiteral("/comuni_attributi.csv"));
    if (!csv)
        return csv.error();
    AtlasSources out;
    if (auto s = loadMunicipalities(folder, *csv, out); !s)
        return s.error();
    if (auto s = loadAreas(folder + QStringLiteral("/boundaries/limits_IT_regions.topo.json"), QStringLiteral("regions"),
                           false, out.regioni);
        !s)
        return s.error();
    if (auto s = loadAreas(folder + QStringLiteral("/boundaries/limits_IT_provinces.topo.json"),
                           QStringLiteral("provinces"), true, out.province);
        !s)
        return s.error();
    loadCapitals(folder + QStringLiteral("/capoluoghi.csv"), out);
    return out;
}

}  // namespace mervola::atlas
