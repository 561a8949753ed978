#pragma once
// What opening and saving a project need from the map and the main window.
// The main window implements it over the map widget and the legend; tests
// implement it with a plain list of layers.

#include "platform/Result.h"

#include <QString>

namespace mervola {

struct ThemeSettings;

// The visible map rectangle in map units. In project files it is written in
// the order of the map rectangle's properties 2, 3, 1, 4: xmin, ymin, xmax, ymax.
struct ExtentRect {
    double xmin = 0;
    double ymin = 0;
    double xmax = 0;
    double ymax = 0;
    bool operator==(const ExtentRect &) const = default;
};

class MapHost {
public:
    virtual ~MapHost() = default;

    // Layers are indexed from 0 = the top layer (drawn last) to count - 1 = the bottom one.
    virtual int layerCount() const = 0;
    virtual QString layerName(int index) const = 0;
    virtual bool layerVisible(int index) const = 0;
    virtual void removeAllLayers() = 0;
    // Adds a shapefile as a layer named `name` on top of the others (it
    // becomes index 0). Fails when the shapefile cannot be read.
    virtual Status addLayer(const QString &shapefilePath, const QString &name) = 0;
    // Applies symbol, outline, visibility and (when classified) the classes
    // of `settings` to the layer named `name`.
    virtual void applySettings(const QString &name, const ThemeSettings &settings) = 0;

    virtual ExtentRect extent() const = 0;
    virtual void setExtent(const ExtentRect &extent) = 0;
    virtual void refresh() = 0;

    virtual void setCaption(const QString &caption) = 0;
    virtual void refreshLegend() = 0;
    // Labels of a theme on ("label") or off ("nolabel"), with the label field.
    virtual void setLabels(const QString &name, bool on, const QString &field) = 0;
};

}  // namespace mervola
