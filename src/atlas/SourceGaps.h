#pragma once
// What the sources lack, found in the data itself: municipalities without a
// geometry, and areas inside a region that no municipality covers: holes in
// the union of the region's municipalities that lie between several of them.
// A hole inside one municipality's own outline (a foreign state such as the
// Vatican inside Rome) is not a gap, nor is an enclave of another region,
// which that region's municipalities cover.

#include "atlas/AtlasModel.h"

#include <QStringList>

namespace mervola::atlas {

struct SourceGap {
    QString regionCode;
    QStringList provinces;  // of the municipalities around the gap, sorted
    double areaKm2 = 0;
    QStringList around;  // names of the municipalities bordering the gap, sorted
};

// Holes smaller than this are rounding of the simplified outlines.
constexpr double kMinGapKm2 = 0.5;

// Uncovered areas of every region, by region code then area (largest first).
std::vector<SourceGap> uncoveredGaps(const AtlasModel &model);

// The lines the builder prints and the help page lists: one per municipality
// without geometry, then one per uncovered area.
QStringList sourceGapNotes(const AtlasModel &model);

}  // namespace mervola::atlas
