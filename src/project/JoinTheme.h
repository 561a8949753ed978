#pragma once
// Joins seen from a theme: removing a theme's join (the pristine table comes
// back), re-running a stored join when a theme is loaded from its settings
// file, and re-reading a layer's attributes after its table changed.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "project/JoinExecute.h"
#include "project/SettingsWriters.h"

#include <functional>

namespace mervola {

namespace map {
class MapModel;
}

// A theme of the atlas home as a join sees it without a map: its shapefile
// (WORKSPACE and BASE of its settings file, the home's italia/ when that
// folder has moved), the settings file and what the settings rewrite needs.
struct ThemeOnDisk {
    QString shapefilePath;
    QString iniPath;
    LayerState layer;
};
// Fails, with an Italian message, when the theme has no settings file or
// no table.
Result<ThemeOnDisk> themeOnDisk(const AtlasHome &home, const QString &themeName);

// The source type of a stored join, from the source file's extension.
QString sourceTypeOfFile(const QString &fileName);

// Re-runs the join stored in a theme's settings (JOIN first field not "-1"):
// stages the source's fields (only those listed in STRUCTJOIN when every
// listed name is found in the source, and always the external join field),
// then Execute_Join. The settings file is left as loaded.
Result<JoinOutcome> rejoinTheme(const AtlasHome &home, const LoadedTheme &theme, int layerIndex = 0);

// The hook for ProjectFiles::hooks().rejoin: a failed re-join shows its
// message and the theme is loaded without the joined columns.
std::function<Status(const LoadedTheme &)> makeRejoinHook(const AtlasHome &home);

// True when the theme carries a join: bookkeeping rows, a stored join in
// its settings file, or the backup a join leaves.
bool themeHasJoin(const AtlasHome &home, const QString &shapefilePath, const QString &iniPath);

// Removes the join of one theme: the CAMPIJOIN and LISTAJOIN rows go, the
// table is copied back from originali/ (with combase.dbf for the national
// mountain-community table) or, without a pristine copy, from the backup;
// the backup is deleted; the settings file gets JOIN and STRUCTJOIN emptied,
// and a classification on a column that the join had added is dropped so
// that the theme is drawn with its plain symbol. Nothing is changed when a
// step fails. `iniPath` may be empty (no settings file to touch).
Status removeJoin(const AtlasHome &home, const QString &shapefilePath, const QString &iniPath = {});

// Re-reads the shapefile of the layer `layerName` so that the map sees the
// table's new columns; renderer, labels, visibility, selection and the
// layer's position are kept.
Status reloadLayerAttributes(map::MapModel &model, const QString &layerName);

}  // namespace mervola
