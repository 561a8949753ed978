#pragma once
// `mervola-cli render`: draws a map of an atlas home into a picture file.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "platform/map/MapModel.h"

#include <QImage>
#include <functional>

namespace mervola::cli {

// Fills `model` (layers, symbols, extent) from a project file. The project
// reader plugs itself in here; without one, --project is refused.
using ProjectLoader = std::function<Status(const QString &projectFile, const AtlasHome &home, map::MapModel &model)>;
void setProjectLoader(ProjectLoader loader);

// The atlas home's italia/comuni, commont and regioni shapefiles (bottom to
// top) with the default symbols, at the full extent.
Status loadDefaultAtlas(const AtlasHome &home, map::MapModel &model);

// Writes the picture in the format named by the file's extension, through
// a temporary file renamed into place.
Status writePicture(const QImage &image, const QString &path);

}  // namespace mervola::cli
