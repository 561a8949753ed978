#pragma once
// `mervola-cli render`: draws a map of an atlas home into a picture file.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "map/MapModel.h"

#include <QImage>

namespace mervola::cli {

// The atlas home's italia/comuni, commont and regioni shapefiles (bottom to
// top) with the default symbols, at the full extent.
Status loadDefaultAtlas(const AtlasHome &home, map::MapModel &model);

// Writes the picture in the format named by the file's extension, through
// a temporary file renamed into place.
Status writePicture(const QImage &image, const QString &path);

}  // namespace mervola::cli
