#include "app/ThemeLegend.h"

#include "app/ThemeStyle.h"

namespace mervola {

namespace {

// One legend line per class of a class-breaks or value-map renderer.
template <class Renderer>
void addClasses(LegendEntry &e, const Renderer &r, int classes, const std::vector<int> &counts,
                const ThemeSettings &settings)
{
    for (int c = 0; c < classes; ++c) {
        LegendClass lc;
        lc.fill = map::colorFromValue(r.symbol(c).color);
        lc.outline = map::colorFromValue(r.symbol(c).outlineColor);
        if (c < settings.classes.size()) {
            const ClassItem &item = settings.classes[c];
            lc.label = item.label.isEmpty() ? item.value : item.label;
        }
        lc.count = c < int(counts.size()) ? counts[size_t(c)] : -1;
        e.classes.push_back(lc);
    }
}

}  // namespace

std::vector<LegendEntry> themeLegend(const map::MapModel &model, const AliasOf &aliasOf, const SettingsOf &settingsOf)
{
    std::vector<LegendEntry> entries;
    for (int i = 0; i < model.layerCount(); ++i) {
        const map::MapLayer &layer = model.layer(i);
        LegendEntry e;
        e.layerName = layer.name;
        e.alias = aliasOf ? aliasOf(layer.name) : layer.name;
        e.visible = layer.visible;
        e.geometryKind = layer.data ? int(layer.data->kind) : 2;
        if (const auto *simple = std::get_if<map::SimpleRenderer>(&layer.renderer)) {
            e.fill = simple->symbol.style == 1 ? QColor(Qt::transparent) : map::colorFromValue(simple->symbol.color);
            e.outline = map::colorFromValue(simple->symbol.outlineColor);
            e.outlined = simple->symbol.outline;
        } else {
            const ThemeSettings settings = settingsOf ? settingsOf(layer.name) : ThemeSettings{};
            if (const auto *cb = std::get_if<map::ClassBreaksRenderer>(&layer.renderer))
                addClasses(e, *cb, cb->breakCount(), classCounts(layer), settings);
            else if (const auto *vm = std::get_if<map::ValueMapRenderer>(&layer.renderer))
                addClasses(e, *vm, vm->valueCount(), classCounts(layer), settings);
        }
        entries.push_back(std::move(e));
    }
    return entries;
}

}  // namespace mervola
