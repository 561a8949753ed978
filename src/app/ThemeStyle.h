#pragma once
// Turns a theme's settings (symbol, outline, visibility, classes, labels)
// into the map layer's renderers, and back into the symbol fields that the
// settings writers store.

#include "map/MapModel.h"
#include "project/ThemeSettings.h"

namespace mervola {

// The label settings kept in LABEL=: either a field name, or the five values
// font^rotation^height^colour^field^ of the label window.
struct LabelSettings {
    QString font = QStringLiteral("Arial");
    int rotation = 0;
    double height = 8;
    std::int32_t color = 0;
    QString field;  // empty or "dummy": no labels
    bool on() const { return !field.isEmpty() && field.compare(QLatin1String("dummy"), Qt::CaseInsensitive) != 0; }
    static LabelSettings parse(const QString &value);  // "*" gives labels off
    QString format() const;                            // font^rotation^height^colour^field^
};

map::Symbol symbolFromSettings(const SymbolFields &fields, bool outline);
SymbolFields symbolFieldsOf(const map::Symbol &symbol);

// The renderer a theme's settings describe: the class items when a
// classification is stored, else the simple symbol.
map::Renderer rendererFromSettings(const ThemeSettings &settings);
map::LabelRenderer labelsFromSettings(const ThemeSettings &settings);

// Applies visibility, renderer and labels to a layer.
void applyThemeSettings(map::MapLayer &layer, const ThemeSettings &settings);

// Number of features in each class of a classified layer, counted the way
// the map draws them (empty for an unclassified layer).
std::vector<int> classCounts(const map::MapLayer &layer);

// Parses a class item's "lower - upper" value; false when it is not a range.
bool parseClassRange(const QString &value, double *lower, double *upper);

}  // namespace mervola
