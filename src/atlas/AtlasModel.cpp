#include "atlas/AtlasModel.h"

#include "atlas/SourceGaps.h"

#include <QHash>

namespace mervola::atlas {

std::vector<ClusterInput> clusterInputs(const AtlasSources &sources)
{
    std::vector<ClusterInput> out;
    out.reserve(sources.comuni.size());
    for (const SourceMunicipality &m : sources.comuni) {
        ClusterInput c;
        c.code = m.code;
        c.provinceCode = m.provinceCode;
        c.provinceName = m.provinceName;
        c.regionCode = m.regionCode;
        c.mountain = isMountainMunicipality(m.attributes.value(QStringLiteral("comune_montano")),
                                            m.attributes.value(QStringLiteral("zona_altimetrica")));
        c.capital = sources.capitalCodes.contains(m.code);
        // The population the atlas shows as I010 (residents 2022).
        c.population = number(m.attributes, QStringLiteral("pop_residente_2022")).value_or(0);
        c.hasShape = !m.shape.empty();
        c.x = meanX(m.shape);
        c.neighbours = m.neighbours;
        out.push_back(std::move(c));
    }
    return out;
}

namespace {

Status projectAll(AtlasSources &s)
{
    auto projector = Projector::create();
    if (!projector)
        return projector.error();
    auto fail = [](const QString &what) {
        return Status::fail(QStringLiteral("Impossibile proiettare le coordinate di %1.").arg(what));
    };
    for (SourceMunicipality &m : s.comuni)
        if (!(*projector)->project(m.shape))
            return fail(m.name);
    for (SourceArea &a : s.regioni)
        if (!(*projector)->project(a.shape))
            return fail(a.name);
    for (SourceArea &a : s.province)
        if (!(*projector)->project(a.shape))
            return fail(a.name);
    return {};
}

}  // namespace

Result<AtlasModel> buildModel(AtlasSources sources, const std::optional<SourceTable> &membership,
                              const std::function<void(QString)> &progress)
{
    AtlasModel model;
    auto report = [&](const QString &text) {
        if (progress)
            progress(text);
    };
    report(QStringLiteral("Proiezione delle geometrie (EPSG:%1)").arg(kAtlasEpsg));
    if (auto s = projectAll(sources); !s)
        return s.error();
    model.sources = std::move(sources);
    const AtlasSources &src = model.sources;
    for (const SourceMunicipality &m : src.comuni)
        model.comuniGeometry.push_back(toOgr(m.shape));
    for (const SourceArea &a : src.regioni)
        model.regioniGeometry.push_back(toOgr(a.shape));
    for (const SourceArea &a : src.province)
        model.provinceGeometry.push_back(toOgr(a.shape));

    report(QStringLiteral("Comunità montane"));
    const std::vector<ClusterInput> inputs = clusterInputs(src);
    if (membership) {
        QStringList skipped;
        auto list = communitiesFromMembership(*membership, inputs, &skipped);
        if (!list)
            return list.error();
        model.communities = std::move(*list);
        if (!skipped.isEmpty())
            model.notes << QStringLiteral("Appartenenze ignorate (comune sconosciuto o in Sicilia): %1")
                               .arg(skipped.join(QStringLiteral(", ")));
    } else {
        model.communities = deriveCommunities(inputs);
    }
    model.progMontOf.assign(src.comuni.size(), QString());
    for (const Community &c : model.communities)
        for (int m : c.members)
            model.progMontOf[static_cast<size_t>(m)] = c.progMont;

    report(QStringLiteral("Indicatori"));
    for (const SourceMunicipality &m : src.comuni)
        model.comuniValues.push_back(municipalityValues(m.attributes));
    for (const Community &c : model.communities) {
        std::vector<const Attributes *> rows;
        std::vector<const OGRGeometry *> outlines;
        for (int m : c.members) {
            rows.push_back(&src.comuni[static_cast<size_t>(m)].attributes);
            outlines.push_back(model.comuniGeometry[static_cast<size_t>(m)].get());
        }
        model.communityValues.push_back(communityValues(rows));
        model.communityGeometry.push_back(dissolve(outlines));
    }

    QHash<QString, int> byCode;
    for (size_t i = 0; i < src.comuni.size(); ++i)
        byCode.insert(src.comuni[i].code, static_cast<int>(i));
    for (const QString &code : src.capitalCodes) {
        const auto it = byCode.constFind(code);
        if (it == byCode.constEnd())
            continue;
        GeometryPtr point = pointOnSurface(model.comuniGeometry[static_cast<size_t>(*it)].get());
        if (!point)
            continue;
        model.capitals.push_back(*it);
        model.capitalPoints.push_back(std::move(point));
    }
    model.notes << src.notes;
    report(QStringLiteral("Controllo delle lacune dei dati di origine"));
    model.gaps = sourceGapNotes(model);
    return model;
}

}  // namespace mervola::atlas
