#pragma once
// Reads a shapefile (.shp geometry through its .shx index, .dbf attributes)
// straight from memory maps into LayerData's flat arrays: the coordinates of
// a record are copied in one block, with no geometry objects in between.
//
// Points, multipoints, polylines and polygons (with or without Z and M, of
// which only x and y are kept) are read here; each part is one ring, in file
// order. A multipatch, or a table the dBase reader leaves to GDAL, gives
// kReadUnsupported. Damaged files give an error with an Italian message,
// never a partial layer: a cut file or one whose parts disagree on the
// number of features gives kDamagedFile (platform/dbf/TableCheck), a record
// that points past the end of the file or does not parse gives
// kReadTruncated or kReadMalformed. Records marked
// deleted in the .dbf are skipped with their shapes; a missing .dbf gives a
// layer without attributes.

#include "map/DbaseReader.h"
#include "map/LayerData.h"
#include "platform/Result.h"

#include <memory>

namespace mervola::map
{

Result<std::shared_ptr<LayerData>> readShapefile(const QString &shpPath);

} // namespace mervola::map
