#include "app/ThemeLegend.h"

#include "app/ThemeStyle.h"
#include "classify/ClassFit.h"

#include <cmath>

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

std::optional<double> themeFit(const map::MapLayer &layer)
{
    const auto *cb = std::get_if<map::ClassBreaksRenderer>(&layer.renderer);
    if (!cb || !layer.data || cb->breakCount() == 0)
        return std::nullopt;
    const map::Column *column = layer.data->column(cb->field);
    if (!column || !column->isNumeric())
        return std::nullopt;
    map::Renderer counted = layer.renderer;
    auto &all = std::get<map::ClassBreaksRenderer>(counted);
    for (int c = 0; c < all.breakCount(); ++c)
        all.symbol(c).drawn = true; // a hidden class still holds its elements
    const std::vector<int> symbols = map::resolveStyle(counted, *layer.data).featureSymbol;
    std::vector<double> values;
    std::vector<int> classOf;
    for (int f = 0; f < layer.data->featureCount(); ++f) {
        const double v = column->number(f);
        const int s = f < int(symbols.size()) ? symbols[size_t(f)] : -1;
        if (std::isnan(v) || s < 0 || s >= all.breakCount())
            continue;
        values.push_back(v);
        classOf.push_back(s);
    }
    return classify::goodnessOfFit(values, classOf);
}

void addFitTexts(std::vector<LegendEntry> &entries, const map::MapModel &model)
{
    for (LegendEntry &e : entries)
        if (const int i = model.indexOf(e.layerName); i >= 0)
            if (const std::optional<double> fit = themeFit(model.layer(i)))
                e.fitText = classify::gvfText(fit);
}

}  // namespace mervola
