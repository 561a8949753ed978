#pragma once
// Writes a layer as an ESRI shapefile (or a lone .dbf) through GDAL/OGR:
// UTF-8 attribute encoding (.cpg), EPSG:32632 (.prj), field names of at most
// ten characters, and a fixed dBase header date so that a rebuild gives
// byte-identical tables.

#include "platform/Result.h"

#include <QString>
#include <QVariant>
#include <vector>

class OGRGeometry;

namespace mervola::atlas {

struct AtlasField {
    enum class Type { Text, Integer, Real };
    QString name;  // <= 10 characters
    Type type = Type::Text;
    int width = 0;
    int precision = 0;
};

struct ShapeRecord {
    const OGRGeometry *geometry = nullptr;  // not owned; nullptr = null shape
    std::vector<QVariant> values;           // one per field; a null QVariant is a null value
};

enum class ShapeKind { Polygon, Point, None };

struct ShapeLayer {
    QString name;
    ShapeKind kind = ShapeKind::Polygon;
    std::vector<AtlasField> fields;
    std::vector<ShapeRecord> records;
};

// Writes folder/<name>.shp/.shx/.dbf/.prj/.cpg (ShapeKind::None: .dbf and .cpg only).
Status writeShapefile(const QString &folder, const ShapeLayer &layer);

}  // namespace mervola::atlas
