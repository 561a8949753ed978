#pragma once
// The routines that write a theme settings file. Each builds the complete
// list of lines, writes "<name>.new", deletes the ".ini" and renames the new
// file into place; values a routine does not set are copied from the old file.

#include "platform/Result.h"
#include "project/ThemeSettings.h"

#include <QStringList>
#include <optional>

namespace mervola {

class ReferenceDb;

namespace SettingsText {
// "%1" the settings file.
inline const QString kUnreadable = QStringLiteral("Impossibile leggere il file delle impostazioni %1.");
// "%1" the settings file, "%2" the theme.
inline const QString kNoSection = QStringLiteral("Il file delle impostazioni %1 non contiene la sezione [%2].");
inline const QString kNoBase =
    QStringLiteral("Il file delle impostazioni %1 non indica lo shapefile del tema (chiave BASE).");
}  // namespace SettingsText

// What the writers need to know about a theme's map layer.
struct LayerState {
    QString name;      // the layer's name as the map carries it
    QString folder;    // folder of the shapefile, written as WORKSPACE ("/" separators)
    QString baseName;  // shapefile name without ".shp"
    SymbolFields symbol;  // SymbolType, Size, Style, Color, OutlineColor
    bool outline = true;
    bool visible = false;
    bool labelsOn = false;
    QString labelField;
};

// Rewrites a theme's file after a join: JOIN from the LISTAJOIN row of
// `shapefile` (every field "-1" when there is none), STRUCTJOIN from the
// fields the join added, the classification reset because the table changed.
// Nothing is written when the reference database cannot be read.
Result<QStringList> afterJoinLines(const ThemeSettings &old, const LayerState &layer, const QString &shapefile,
                                   const QStringList &addedFields, const ReferenceDb &db);
Status rewriteAfterJoin(const QString &iniPath, const LayerState &layer, const QString &shapefile,
                        const QStringList &addedFields, const ReferenceDb &db);

struct ThemeLoadOptions {
    QString home;                 // the atlas home
    bool defaultProject = false;  // WORKSPACE is then home + "/italia"
};

// A theme read for display, with what it changes in the process-wide state.
struct LoadedTheme {
    ThemeSettings settings;
    QString shapefilePath;               // WORKSPACE + "/" + shapefile, resolved without case
    std::optional<QString> regionCode;   // set by cmon*/comu_* layer names
    std::optional<QString> indicator;    // set by a mountain-community theme's CAMPO
};

// Loads a theme from its file: reads the keys in file order and writes the
// normalised copy (every key present, in the standard order) in its place.
// A file that cannot be read, lacks the theme's section or names no
// shapefile fails with a message naming it, and is left untouched.
// The caller adds the layer and applies the returned settings to it.
Result<LoadedTheme> loadThemeFile(const QString &iniPath, const QString &themeName, const ThemeLoadOptions &options);

// Replaces some keys of a theme's file (classification, symbol, labels ...)
// and writes every key present in the standard order, section upper-cased.
QStringList updatedKeyLines(const ThemeSettings &old, const QString &themeName,
                            const QList<QPair<ThemeKey, QString>> &values);
Status updateThemeKeys(const QString &iniPath, const QString &themeName, const QList<QPair<ThemeKey, QString>> &values);

}  // namespace mervola
