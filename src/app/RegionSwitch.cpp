#include "app/RegionSwitch.h"

#include "app/TemaLabel.h"
#include "app/ThemeStyle.h"
#include "project/PristineSettings.h"
#include "project/SettingsWriters.h"

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

// The region box's way: the pristine table back into italia/, the working
// settings file of supporto/ (its WORKSPACE set to the home's italia/).
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

// Adds one theme with its settings, shown.
Status addTheme(map::MapModel &model, const RegionTheme &theme, const QString &name, int position)
{
    auto layer = model.addShapefile(theme.shapefile, name);
    if (!layer)
        return layer.error();
    if (theme.settings)
        applyThemeSettings(**layer, *theme.settings);
    (*layer)->visible = true;
    model.moveLayer(0, std::min(position, model.layerCount() - 1));
    return {};
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
    RegionSwitchResult result;

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

    // 3. Each from its pristine table, with its settings. Municipalities go
    // in first, so the communities lie over them.
    for (const QString &theme : regionThemes(region.code)) {
        auto found = source ? source(theme) : fromHome(home, theme);
        if (!found)
            return found.error();
        if (Status st = addTheme(model, *found, theme, position); !st)
            return st.error();
        result.added << theme;
    }

    // 4. Where to look.
    result.extent = regionExtent(model, region);
    return result;
}

}  // namespace mervola
