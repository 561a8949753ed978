#pragma once
// Choosing an entry of the region box: the region-dependent themes (mountain
// communities and municipalities) are taken off the map and replaced by the
// chosen region's own, each from its pristine table and with its settings
// file applied, and the extent that shows the region is worked out. The
// caller pushes the extent history, sets the extent, redraws and updates
// the command states.

#include "app/AppState.h"
#include "project/Regions.h"
#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "map/MapModel.h"

#include <QStringList>
#include <optional>

namespace mervola {

// The themes a region shows, municipalities first ("00": comuni, commont;
// "19": comu_19 only; else comu_NN, cmont_NN).
QStringList regionThemes(const QString &code);

// True for a layer that depends on the region: its name holds "cmon",
// "comm" or "comu" (any case).
bool isRegionLayer(const QString &layerName);

// The search expression of a region in the regions layer, apostrophes doubled.
QString regionSearchExpression(const QString &regionName);

// The extent that shows a region: its polygon's box in the layer "regioni"
// enlarged 1.2 times about its centre; for "00" the regions layer's full
// extent (the map's full extent when there is no such layer). nullopt when
// the region is not found.
std::optional<map::MapRect> regionExtent(const map::MapModel &model, const RegionEntry &region);

struct RegionSwitchResult {
    QStringList removed;                // layers taken off the map
    QStringList added;                  // layers added, municipalities first
    std::optional<map::MapRect> extent;  // where to zoom; nullopt: keep the extent
};

// Switches the map to `region`. Updates the state's region code (and resets
// the indicator field to "I000" for the whole country). Fails when a theme's
// table cannot be restored, its settings file written or its shapefile read;
// the map, region code and indicator are then exactly as before.
Result<RegionSwitchResult> switchRegion(map::MapModel &model, const AtlasHome &home, const RegionEntry &region,
                                        AppState &state);

}  // namespace mervola
