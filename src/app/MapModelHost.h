#pragma once
// The map as projects and start-up see it: a MapHost over a map model. The
// window (or the command line) supplies what happens on refresh, caption
// and legend changes.

#include "map/MapModel.h"
#include "project/MapHost.h"

#include <QHash>
#include <functional>

namespace mervola {

class MapModelHost : public MapHost {
public:
    explicit MapModelHost(map::MapModel &model) : m_model(model) {}

    std::function<void()> onRefresh;
    std::function<void(const QString &)> onCaption;
    std::function<void()> onLegend;

    int layerCount() const override { return m_model.layerCount(); }
    QString layerName(int index) const override;
    bool layerVisible(int index) const override;
    void removeAllLayers() override
    {
        m_model.clear();
        m_shared.clear();
    }
    Status addLayer(const QString &shapefilePath, const QString &name) override;
    void applySettings(const QString &name, const ThemeSettings &settings) override;
    ExtentRect extent() const override;
    void setExtent(const ExtentRect &extent) override;
    void refresh() override;
    void setCaption(const QString &caption) override;
    void refreshLegend() override;
    void setLabels(const QString &name, bool on, const QString &field) override;

    map::MapModel &model() { return m_model; }

private:
    map::MapModel &m_model;
    QHash<QString, map::LayerDataPtr> m_shared;  // by shapefile path, since the last removeAllLayers()
};

map::MapRect toMapRect(const ExtentRect &e);
ExtentRect toExtentRect(const map::MapRect &r);

}  // namespace mervola
