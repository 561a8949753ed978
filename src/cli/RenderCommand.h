#pragma once
// `mervola-cli render`: draws a map of an atlas home into a picture file, or
// one map per region.

#include "app/RegionSwitch.h"
#include "map/MapModel.h"
#include "platform/AtlasHome.h"
#include "platform/Result.h"

#include <QImage>

namespace mervola::cli {

// The atlas home's italia/comuni, commont and regioni shapefiles (bottom to
// top) with the default symbols, at the full extent.
Status loadDefaultAtlas(const AtlasHome &home, map::MapModel &model);

// Writes the picture in the format named by the file's extension, through
// a temporary file renamed into place.
Status writePicture(const QImage &image, const QString &path);

// The region box entry named by a code ("7", "07", "00") or by its text
// (any case, "valle d'aosta"); nullopt when none matches.
std::optional<RegionEntry> regionByArgument(const QString &argument);

// The file name of a region's map: code, then the name in lower case with
// every run of other characters turned into "_" ("02_valle_d_aosta.png";
// all Italy is "00_italia.png").
QString regionFileName(const RegionEntry &region, const QString &extension);

}  // namespace mervola::cli
