#pragma once
// One shapefile read once into flat arrays: coordinates, ring offsets, a
// bounding box per feature, and the attribute table stored column by column.
// Drawing and hit testing walk these arrays; there is no per-feature object.

#include "platform/Result.h"
#include "map/MapTypes.h"

#include <QString>
#include <QVariant>
#include <memory>
#include <mutex>
#include <vector>

namespace mervola::map {

enum class GeometryKind { Point = 0, Line = 1, Polygon = 2 };

enum class ColumnType { Text, Integer, Real };

// One attribute column. Numeric columns keep their values as doubles with
// NaN for a missing value; text columns keep strings and a null flag.
struct Column {
    QString name;
    ColumnType type = ColumnType::Text;
    int width = 0;
    int precision = 0;
    std::vector<double> numbers;  // numeric columns, one per feature
    std::vector<QString> texts;   // text columns, one per feature
    std::vector<std::uint8_t> isNull;

    bool isNumeric() const { return type != ColumnType::Text; }
    // The value as text: numbers in their shortest form, empty when null.
    QString text(int feature) const;
    double number(int feature) const;  // NaN for null or non-numeric text
    QVariant value(int feature) const;
};

struct Box {
    double minX, minY, maxX, maxY;
    bool intersects(const MapRect &r) const
    {
        return minX <= r.right() && maxX >= r.left() && minY <= r.top() && maxY >= r.bottom();
    }
};

class GridIndex;

class LayerData {
public:
    LayerData();
    ~LayerData();
    LayerData(const LayerData &) = delete;
    LayerData &operator=(const LayerData &) = delete;

    // Reads a shapefile with the direct reader (ShapefileReader.h); one it
    // leaves aside (a multipatch, another code page, other field types) goes
    // to the foreign layer reader when one is set.
    static Result<std::shared_ptr<const LayerData>> loadShapefile(const QString &path);

    GeometryKind kind = GeometryKind::Polygon;
    QString sourcePath;
    // Vertices as x, y pairs. Ring r runs over vertices ringStart[r] ..
    // ringStart[r + 1] - 1; feature f owns rings featureRing[f] ..
    // featureRing[f + 1] - 1. A polygon's rings are its shells and holes
    // (drawn and tested with the even-odd rule); a line's rings are its parts;
    // a point feature has one ring per point.
    std::vector<double> xy;
    std::vector<std::uint32_t> ringStart{0};
    std::vector<std::uint32_t> featureRing{0};
    std::vector<Box> boxes;
    std::vector<Column> columns;
    MapRect extent;

    int featureCount() const { return int(boxes.size()); }
    int columnIndex(const QString &name) const;  // case-insensitive; -1 when absent
    const Column *column(const QString &name) const;
    MapRect featureExtent(int feature) const;

    // Builders used by the loader and by tests that make layers in memory.
    void beginFeature();
    void addRing(const double *xyPairs, std::size_t pointCount);
    void endFeature();  // computes the feature's box
    void finish();      // computes the layer extent

    // Features whose box contains p (coarse candidates for hit tests). The
    // grid is built on first use.
    std::vector<int> candidatesAt(QPointF p, double tolerance) const;

private:
    mutable std::once_flag m_gridOnce;
    mutable std::unique_ptr<GridIndex> m_grid;
};

using LayerDataPtr = std::shared_ptr<const LayerData>;

// Reader of the shapefiles the direct reader leaves aside. Programs that
// link GDAL set GDAL's (map/gdal/GdalLayerReader.h) at start-up; the command
// line sets one that loads GDAL only when such a file comes.
using ForeignLayerReader = Result<LayerDataPtr> (*)(const QString &path);
void setForeignLayerReader(ForeignLayerReader reader);

}  // namespace mervola::map
