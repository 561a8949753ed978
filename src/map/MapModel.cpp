#include "map/MapModel.h"

#include <QFileInfo>

namespace mervola::map {

Renderer MapLayer::defaultRenderer(GeometryKind kind)
{
    SimpleRenderer r;
    r.symbol.symbolType = SymbolType(int(kind));
    if (kind != GeometryKind::Polygon) {
        r.symbol.color = 0;
        r.symbol.size = kind == GeometryKind::Point ? 5 : 1;
    }
    return r;
}

int MapModel::indexOf(const QString &name) const
{
    for (std::size_t i = 0; i < m_layers.size(); ++i)
        if (m_layers[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

MapLayer *MapModel::find(const QString &name)
{
    const int i = indexOf(name);
    return i < 0 ? nullptr : &m_layers[std::size_t(i)];
}

MapLayer &MapModel::addLayer(MapLayer layer)
{
    const bool first = m_layers.empty();
    m_layers.insert(m_layers.begin(), std::move(layer));
    if (first)
        m_extent = fullExtent();
    return m_layers.front();
}

Result<MapLayer *> MapModel::addShapefile(const QString &path, const QString &name)
{
    auto data = LayerData::loadShapefile(path);
    if (!data)
        return data.error();
    MapLayer layer;
    layer.name = name.isEmpty() ? QFileInfo(path).completeBaseName() : name;
    layer.renderer = MapLayer::defaultRenderer((*data)->kind);
    layer.data = std::move(*data);
    return &addLayer(std::move(layer));
}

void MapModel::removeLayer(int i)
{
    if (i >= 0 && i < layerCount())
        m_layers.erase(m_layers.begin() + i);
}

void MapModel::moveLayer(int from, int to)
{
    if (from < 0 || from >= layerCount() || to < 0 || to >= layerCount() || from == to)
        return;
    MapLayer l = std::move(m_layers[std::size_t(from)]);
    m_layers.erase(m_layers.begin() + from);
    m_layers.insert(m_layers.begin() + to, std::move(l));
}

void MapModel::clear()
{
    m_layers.clear();
}

MapRect MapModel::fullExtent() const
{
    MapRect out;
    bool any = false;
    for (const MapLayer &l : m_layers) {
        if (!l.data || l.data->extent.isEmpty())
            continue;
        out = any ? out.united(l.data->extent) : l.data->extent;
        any = true;
    }
    return out;
}

}  // namespace mervola::map
