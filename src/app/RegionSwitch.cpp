#include "app/RegionSwitch.h"

#include "app/TemaLabel.h"
#include "app/ThemeStyle.h"
#include "project/PristineSettings.h"
#include "project/SettingsWriters.h"
#include "platform/dbf/TableCheck.h"

#include <QFileInfo>

namespace mervola {

namespace {

const QString kAllItaly = QStringLiteral("00");

QString iniOf(const AtlasHome &home, const QString &theme)
{
    return resolveCaseInsensitive(home.supporto(), theme + QStringLiteral(".ini"));
}

// Where the new themes go in the layer order: where the old ones were, so
// that provinces and capitals stay drawn over them.
int insertionIndex(const map::MapModel &model)
{
    int bottom = -1;
    for (int i = 0; i < model.layerCount(); ++i)
        if (isRegionLayer(model.layer(i).name))
            bottom = i;
    if (bottom < 0)
        return 0;
    int above = 0;
    for (int i = 0; i < bottom; ++i)
        if (!isRegionLayer(model.layer(i).name))
            ++above;
    return above;
}

// The region box's way: the pristine table back into italia/, so the region
// always opens with its own data, and the working settings file of supporto/
// (its WORKSPACE set to the home's own italia/ folder).
Result<RegionTheme> fromHome(const AtlasHome &home, const QString &theme)
{
    if (Status st = restoreThemeTable(home, theme); !st)
        return st.error();
    RegionTheme t;
    t.shapefile = resolveCaseInsensitive(home.italia(), theme + QStringLiteral(".shp"));
    const QString ini = iniOf(home, theme);
    if (QFileInfo(ini).isFile()) {
        auto loaded = loadThemeFile(ini, theme, ThemeLoadOptions{home.root(), true});
        if (!loaded)
            return loaded.error();
        t.settings = loaded->settings;
    }
    return t;
}

// Reads one theme with its settings, ready to go on the map and shown.
Result<map::MapLayer> readTheme(const AtlasHome &home, const QString &theme, const RegionThemeSource &source)
{
    auto found = source ? source(theme) : fromHome(home, theme);
    if (!found)
        return found.error();
    map::MapModel scratch;
    auto layer = scratch.addShapefile(found->shapefile, theme);
    if (!layer && !source && layer.error().code == kDamagedFile && repairThemeTable(home, theme))
        layer = scratch.addShapefile(found->shapefile, theme);
    if (!layer)
        return layer.error();
    if (found->settings)
        applyThemeSettings(**layer, *found->settings);
    (*layer)->visible = true;
    return std::move(**layer);
}

// Steps 1 to 4 of a switch. The new themes are read completely before the
// map is touched, so most failures leave it as it was.
Result<RegionSwitchResult> switchSteps(map::MapModel &model, const AtlasHome &home, const RegionEntry &region,
                                       AppState &state, const RegionThemeSource &source)
{
    RegionSwitchResult result;
    std::vector<map::MapLayer> fresh;
    for (const QString &theme : regionThemes(region.code)) {
        auto layer = readTheme(home, theme, source);
        if (!layer)
            return layer.error();
        fresh.push_back(std::move(*layer));
    }

    // 1. Labels of the mountain-community themes off, then every
    // region-dependent theme off the map.
    for (int i = 0; i < model.layerCount(); ++i) {
        const QString name = model.layer(i).name;
        const QString upper = name.toUpper();
        if (upper.startsWith(QLatin1String("COMM")) || upper.startsWith(QLatin1String("CMON"))) {
            // With a caller's own source nothing is recorded in supporto/.
            if (Status st = RemoveLabels(model, name, source ? QString() : iniOf(home, name)); !st)
                return st.error();
        }
    }
    const int position = insertionIndex(model);
    for (int i = model.layerCount() - 1; i >= 0; --i) {
        if (isRegionLayer(model.layer(i).name)) {
            result.removed.prepend(model.layer(i).name);
            model.removeLayer(i);
        }
    }

    // 2. The themes of the chosen region.
    state.regionCode = region.code;
    if (region.code == kAllItaly)
        state.indicatorField = QStringLiteral("I000");

    // 3. Municipalities go in first, so the communities lie over them.
    for (map::MapLayer &layer : fresh) {
        result.added << layer.name;
        model.addLayer(std::move(layer));
        model.moveLayer(0, std::min(position, model.layerCount() - 1));
    }

    // 4. Where to look.
    result.extent = regionExtent(model, region);
    return result;
}

}  // namespace

QStringList regionThemes(const QString &code)
{
    QStringList themes{municipalityTheme(code)};
    const QString mountain = mountainTheme(code);
    if (!mountain.isEmpty())
        themes << mountain;
    return themes;
}

bool isRegionLayer(const QString &layerName)
{
    for (const char *part : {"cmon", "comm", "comu"})
        if (layerName.contains(QLatin1String(part), Qt::CaseInsensitive))
            return true;
    return false;
}

QString regionSearchExpression(const QString &regionName)
{
    QString quoted = regionName;
    quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QStringLiteral("Label = '") + quoted + QLatin1Char('\'');
}

std::optional<map::MapRect> regionExtent(const map::MapModel &model, const RegionEntry &region)
{
    const int regions = model.indexOf(QStringLiteral("regioni"));
    if (region.code == kAllItaly) {
        if (regions >= 0 && !model.layer(regions).extent().isEmpty())
            return model.layer(regions).extent();
        const map::MapRect full = model.fullExtent();
        return full.isEmpty() ? std::nullopt : std::optional(full);
    }
    if (regions < 0 || !model.layer(regions).data)
        return std::nullopt;
    const map::LayerData &data = *model.layer(regions).data;
    auto found = map::findFeatures(data, regionSearchExpression(region.text));
    if (!found || found->empty())
        return std::nullopt;
    map::MapRect box = data.featureExtent(found->front());
    for (int f : *found)
        box = box.united(data.featureExtent(f));
    box.scale(1.2);
    return box;
}

Result<RegionSwitchResult> switchRegion(map::MapModel &model, const AtlasHome &home, const RegionEntry &region,
                                        AppState &state, const RegionThemeSource &source)
{
    // A switch happens whole or not at all: on failure the map, the region
    // code and the indicator are put back as they were.
    const map::MapModel before = model;
    const QString regionBefore = state.regionCode, indicatorBefore = state.indicatorField;
    auto result = switchSteps(model, home, region, state, source);
    if (!result) {
        model = before;
        state.regionCode = regionBefore;
        state.indicatorField = indicatorBefore;
    }
    return result;
}

}  // namespace mervola
