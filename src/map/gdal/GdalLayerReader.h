#pragma once
// Shapefiles and other vector files read through GDAL/OGR into LayerData,
// for the files the direct reader leaves aside. Linking this library makes
// it the foreign layer reader of the program (see setForeignLayerReader).

#include "map/LayerData.h"

namespace mervola::map
{

Result<LayerDataPtr> readLayerWithGdal(const QString &path);

} // namespace mervola::map
