#include "app/MapModelHost.h"

#include "app/ThemeStyle.h"

#include <QDateTime>
#include <QFileInfo>

namespace mervola {

map::MapRect toMapRect(const ExtentRect &e) { return map::MapRect::fromCorners(e.xmin, e.ymin, e.xmax, e.ymax); }

ExtentRect toExtentRect(const map::MapRect &r) { return {r.left(), r.bottom(), r.right(), r.top()}; }

QString MapModelHost::layerName(int index) const
{
    return index >= 0 && index < m_model.layerCount() ? m_model.layer(index).name : QString();
}

bool MapModelHost::layerVisible(int index) const
{
    return index >= 0 && index < m_model.layerCount() && m_model.layer(index).visible;
}

Status MapModelHost::addLayer(const QString &shapefilePath, const QString &name)
{
    // Themes drawn from the same shapefile share its data: a project that
    // names one shapefile many times costs its memory and reading once.
    // The key holds the table's size and time, so a rewritten table is read again.
    const QFileInfo table(QFileInfo(shapefilePath).path() + QLatin1Char('/')
                          + QFileInfo(shapefilePath).completeBaseName() + QStringLiteral(".dbf"));
    const QString key = shapefilePath + QLatin1Char('|') + QString::number(table.size()) + QLatin1Char('|')
                        + QString::number(table.lastModified().toMSecsSinceEpoch());
    if (const map::LayerDataPtr data = m_shared.value(key)) {
        map::MapLayer layer;
        layer.name = name;
        layer.renderer = map::MapLayer::defaultRenderer(data->kind);
        layer.data = data;
        m_model.addLayer(std::move(layer));
        return {};
    }
    auto added = m_model.addShapefile(shapefilePath, name);
    if (!added)
        return added.error();
    m_shared.insert(key, (*added)->data);
    return {};
}

void MapModelHost::applySettings(const QString &name, const ThemeSettings &settings)
{
    // Usually the layer just added, on top.
    if (m_model.layerCount() > 0 && m_model.layer(0).name.compare(name, Qt::CaseInsensitive) == 0)
        applyThemeSettings(m_model.layer(0), settings);
    else if (map::MapLayer *layer = m_model.find(name))
        applyThemeSettings(*layer, settings);
}

ExtentRect MapModelHost::extent() const { return toExtentRect(m_model.extent()); }

void MapModelHost::setExtent(const ExtentRect &extent) { m_model.setExtent(toMapRect(extent)); }

void MapModelHost::refresh()
{
    if (onRefresh)
        onRefresh();
}

void MapModelHost::setCaption(const QString &caption)
{
    if (onCaption)
        onCaption(caption);
}

void MapModelHost::refreshLegend()
{
    if (onLegend)
        onLegend();
}

void MapModelHost::setLabels(const QString &name, bool on, const QString &field)
{
    map::MapLayer *layer = m_model.find(name);
    if (!layer)
        return;
    if (!on) {
        layer->labels.field = QStringLiteral("dummy");
        return;
    }
    const LabelSettings l = LabelSettings::parse(field);
    layer->labels.field = l.field;
    layer->labels.fontFamily = l.font;
    layer->labels.height = l.height;
    layer->labels.rotation = l.rotation;
    layer->labels.color = l.color;
}

}  // namespace mervola
