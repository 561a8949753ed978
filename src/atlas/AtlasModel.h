#pragma once
// The atlas in memory, ready to be written: projected geometries,
// mountain communities with their dissolved outlines, indicator values of
// every municipality and community, and the provincial capitals as points.

#include "atlas/Geometry.h"
#include "atlas/Indicators.h"
#include "atlas/MountainCommunities.h"
#include "atlas/SourceData.h"

#include <functional>
#include <optional>

namespace mervola::atlas {

struct AtlasModel {
    AtlasSources sources;  // coordinates projected to EPSG:32632
    std::vector<GeometryPtr> comuniGeometry, regioniGeometry, provinceGeometry;
    std::vector<Community> communities;
    std::vector<GeometryPtr> communityGeometry;
    std::vector<std::vector<Value>> comuniValues, communityValues;
    std::vector<QString> progMontOf;  // per municipality, empty outside communities
    std::vector<int> capitals;        // indexes into sources.comuni
    std::vector<GeometryPtr> capitalPoints;
    QStringList notes;
    QStringList gaps;  // what the sources lack (sourceGapNotes)
};

// Projects the sources, derives (or reads from `membership`) the mountain
// communities, computes indicator values and dissolves the community outlines.
Result<AtlasModel> buildModel(AtlasSources sources, const std::optional<SourceTable> &membership,
                              const std::function<void(QString)> &progress);

// The clustering input of every municipality (projected sources).
std::vector<ClusterInput> clusterInputs(const AtlasSources &sources);

}  // namespace mervola::atlas
