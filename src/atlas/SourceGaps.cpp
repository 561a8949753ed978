#include "atlas/SourceGaps.h"

#include "project/Regions.h"

#include <QLocale>
#include <algorithm>
#include <iterator>
#include <map>
#include <ogr_api.h>

namespace mervola::atlas {

namespace {

bool envelopesMeet(const OGREnvelope &a, const OGREnvelope &b)
{
    return a.MinX <= b.MaxX && b.MinX <= a.MaxX && a.MinY <= b.MaxY && b.MinY <= a.MaxY;
}

// The interior rings of a (multi)polygon, each as a polygon of its own.
std::vector<std::unique_ptr<OGRPolygon>> holesOf(const OGRGeometry *g)
{
    std::vector<std::unique_ptr<OGRPolygon>> out;
    if (!g)
        return out;
    const OGRwkbGeometryType t = wkbFlatten(g->getGeometryType());
    if (t == wkbPolygon) {
        const OGRPolygon *p = g->toPolygon();
        for (int r = 0; r < p->getNumInteriorRings(); ++r) {
            auto hole = std::make_unique<OGRPolygon>();
            hole->addRingDirectly(p->getInteriorRing(r)->clone());
            out.push_back(std::move(hole));
        }
    } else if (t == wkbMultiPolygon || t == wkbGeometryCollection) {
        for (const OGRGeometry *part : *g->toGeometryCollection()) {
            auto inner = holesOf(part);
            std::move(inner.begin(), inner.end(), std::back_inserter(out));
        }
    }
    return out;
}

}  // namespace

std::vector<SourceGap> uncoveredGaps(const AtlasModel &model)
{
    const AtlasSources &src = model.sources;
    std::vector<OGREnvelope> envelopes(src.comuni.size());
    std::map<QString, std::vector<int>> byRegion;
    for (size_t i = 0; i < src.comuni.size(); ++i)
        if (const OGRGeometry *g = model.comuniGeometry[i].get()) {
            g->getEnvelope(&envelopes[i]);
            byRegion[src.comuni[i].regionCode].push_back(static_cast<int>(i));
        }
    std::vector<SourceGap> gaps;
    for (const auto &[region, members] : byRegion) {
        std::vector<const OGRGeometry *> outlines;
        for (int m : members)
            outlines.push_back(model.comuniGeometry[static_cast<size_t>(m)].get());
        const GeometryPtr merged = dissolve(outlines);
        std::vector<SourceGap> found;
        for (const auto &hole : holesOf(merged.get())) {
            const double area = hole->get_Area();
            if (area < kMinGapKm2 * 1e6)
                continue;
            OGREnvelope box;
            hole->getEnvelope(&box);
            // An enclave of another region is covered by its municipalities.
            double covered = 0;
            for (size_t i = 0; i < src.comuni.size(); ++i) {
                const OGRGeometry *g = model.comuniGeometry[i].get();
                if (!g || src.comuni[i].regionCode == region || !envelopesMeet(box, envelopes[i]))
                    continue;
                if (GeometryPtr part{hole->Intersection(g)})
                    covered += OGR_G_Area(OGRGeometry::ToHandle(part.get()));
            }
            if (covered > area / 2)
                continue;
            SourceGap gap;
            gap.regionCode = region;
            gap.areaKm2 = area / 1e6;
            for (int m : members) {
                const OGRGeometry *g = model.comuniGeometry[static_cast<size_t>(m)].get();
                if (envelopesMeet(box, envelopes[static_cast<size_t>(m)]) && g->Intersects(hole.get())) {
                    gap.around << src.comuni[static_cast<size_t>(m)].name;
                    gap.provinces << src.comuni[static_cast<size_t>(m)].provinceName;
                }
            }
            // A hole of a single municipality's outline is not a gap between municipalities.
            if (gap.around.size() < 2)
                continue;
            gap.around.sort(Qt::CaseInsensitive);
            gap.provinces.removeDuplicates();
            gap.provinces.sort(Qt::CaseInsensitive);
            found.push_back(std::move(gap));
        }
        std::sort(found.begin(), found.end(),
                  [](const SourceGap &a, const SourceGap &b) { return a.areaKm2 > b.areaKm2; });
        std::move(found.begin(), found.end(), std::back_inserter(gaps));
    }
    return gaps;
}

QStringList sourceGapNotes(const AtlasModel &model)
{
    QStringList notes;
    const AtlasSources &src = model.sources;
    std::map<QString, QString> regionName;
    for (const SourceArea &r : src.regioni)
        regionName[r.code] = regionLabel(r.code).isEmpty() ? r.name : regionLabel(r.code);
    for (const SourceMunicipality &m : src.comuni)
        if (m.shape.empty())
            notes << QStringLiteral("Comune senza geometria (il record resta, fuori da ogni comunità montana): "
                                    "%1 (%2), provincia di %3")
                         .arg(m.name, m.code, m.provinceName);
    const QLocale italian(QLocale::Italian, QLocale::Italy);
    for (const SourceGap &g : uncoveredGaps(model)) {
        // "provincia di Varese", "province di Asti e Torino"
        QString provinces = g.provinces.mid(0, g.provinces.size() - 1).join(QStringLiteral(", "));
        provinces +=
            (provinces.isEmpty() ? QString() : QStringLiteral(" e ")) + g.provinces.value(g.provinces.size() - 1);
        notes << QStringLiteral("Area non coperta da alcun comune in %1 (%2 di %3): %4 km² fra %5")
                     .arg(regionName[g.regionCode],
                          g.provinces.size() > 1 ? QStringLiteral("province") : QStringLiteral("provincia"), provinces,
                          italian.toString(g.areaKm2, 'f', 1), g.around.join(QStringLiteral(", ")));
    }
    return notes;
}

}  // namespace mervola::atlas
