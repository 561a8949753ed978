#pragma once
// Draws a project file onto a map model without touching the atlas home:
// the headless renderer's way to show a project (stored joins are not run).

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "map/MapModel.h"

namespace mervola {

// Adds every theme of the project (first section at the bottom) with its
// settings applied, and sets the project's extent. The default project's
// themes are read from the home's own italia/ folder.
Status loadProjectView(const QString &projectPath, const AtlasHome &home, map::MapModel &model);

}  // namespace mervola
