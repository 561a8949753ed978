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
#include "project/ThemeSettings.h"

#include <QStringList>
#include <functional>
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

// Where a region theme comes from: the shapefile to read (with the pristine
// table beside it) and the settings to apply (nullopt: none).
struct RegionTheme {
    QString shapefile;
    std::optional<ThemeSettings> settings;
};
// By default, as the region box does it, each theme's pristine table is first
// copied back into italia/ and its working settings file in supporto/ is
// applied. A caller that must leave the atlas home untouched (the
// command-line renderer) gives its own source; the labels switchRegion
// removes are then not recorded in supporto/ either.
using RegionThemeSource = std::function<Result<RegionTheme>(const QString &theme)>;

struct RegionSwitchResult {
    QStringList removed;                // layers taken off the map
    QStringList added;                  // layers added, municipalities first
    std::optional<map::MapRect> extent;  // where to zoom; nullopt: keep the extent
};

// Switches the map to `region`. Updates the state's region code (and resets
// the indicator field to "I000" for the whole country). The new themes are
// shown even when their settings keep them hidden: a region is chosen to be
// seen. Fails when a theme's table cannot be restored, its settings file
// written or its shapefile read; the map, region code and indicator are then
// exactly as before.
Result<RegionSwitchResult> switchRegion(map::MapModel &model, const AtlasHome &home, const RegionEntry &region,
                                        AppState &state, const RegionThemeSource &source = {});

}  // namespace mervola
