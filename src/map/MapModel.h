#pragma once
// The map's content: an ordered list of layers over shared, read-only layer
// data, the current and full extent, and the searches that the map commands
// need (features matching an expression, features under a point).
//
// Layer order as in a legend: index 0 is the top layer, drawn last; the last
// index is the bottom layer, drawn first. addLayer() puts a new layer on top
// (it becomes index 0).

#include "platform/Result.h"
#include "map/LayerData.h"
#include "map/MapTransform.h"
#include "map/Renderers.h"

#include <QString>
#include <vector>

namespace mervola::map {

struct MapLayer {
    QString name;
    LayerDataPtr data;
    bool visible = true;
    Renderer renderer = defaultRenderer(GeometryKind::Polygon);
    LabelRenderer labels;
    std::vector<int> selection;  // selected feature numbers, ascending

    MapRect extent() const { return data ? data->extent : MapRect(); }
    static Renderer defaultRenderer(GeometryKind kind);
};

class MapModel {
public:
    int layerCount() const { return int(m_layers.size()); }
    MapLayer &layer(int i) { return m_layers.at(std::size_t(i)); }
    const MapLayer &layer(int i) const { return m_layers.at(std::size_t(i)); }
    const std::vector<MapLayer> &layers() const { return m_layers; }
    int indexOf(const QString &name) const;  // case-insensitive; -1 when absent
    MapLayer *find(const QString &name);

    // Adds on top (index 0); the first layer added also sets the extent to the
    // full extent.
    MapLayer &addLayer(MapLayer layer);
    Result<MapLayer *> addShapefile(const QString &path, const QString &name);
    void removeLayer(int i);
    void moveLayer(int from, int to);
    void clear();

    // Union of the extents of all layers (visible or not).
    MapRect fullExtent() const;
    const MapRect &extent() const { return m_extent; }
    void setExtent(const MapRect &r) { m_extent = r; }

private:
    std::vector<MapLayer> m_layers;
    MapRect m_extent;
};

// Feature numbers of `data` matching an expression "Field op literal" with op
// one of = <> < > <= >= (or LIKE with * or % wildcards); the field name
// compares without regard to case, a text literal is in apostrophes with
// inner apostrophes doubled, and text compares without regard to case.
Result<std::vector<int>> findFeatures(const LayerData &data, const QString &expression);

// Feature numbers under a map point: inside a polygon (holes excluded),
// within `tolerance` map units of a line or point. Ascending.
std::vector<int> hitTest(const LayerData &data, QPointF mapPoint, double tolerance);
bool polygonContains(const LayerData &data, int feature, QPointF p);

// A point to hang a label on: the centre of the feature's largest ring,
// moved inside the polygon along a horizontal line when it falls outside.
QPointF labelPoint(const LayerData &data, int feature);

}  // namespace mervola::map
