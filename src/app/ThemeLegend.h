#pragma once
// The legend of the map's themes: one entry per layer under its alias, and
// under a classified theme one line per class with the label the user left
// in the theme's settings and the number of elements the map draws in that
// class. The legend panel shows it and the printed page copies it.

#include "map/MapModel.h"
#include "platform/Legend.h"
#include "project/ThemeSettings.h"

#include <functional>
#include <optional>

namespace mervola {

using AliasOf = std::function<QString(const QString &layerName)>;
using SettingsOf = std::function<ThemeSettings(const QString &layerName)>;

std::vector<LegendEntry> themeLegend(const map::MapModel &model, const AliasOf &aliasOf, const SettingsOf &settingsOf);

// The goodness of variance fit of a theme drawn by class limits, over the
// elements with a value, each in the class the map draws it with; nullopt
// for other themes.
std::optional<double> themeFit(const map::MapLayer &layer);
// Fills the fit line of every entry whose theme is drawn by class limits.
void addFitTexts(std::vector<LegendEntry> &entries, const map::MapModel &model);

}  // namespace mervola
