#pragma once
// The theme settings record: one INI-style file per map theme with a single
// section and the keys JOIN, STRUCTJOIN, WORKSPACE, BASE, SIMBOLO, LABEL,
// TIPOCLASSIFICAZIONE, CAMPO, CLASSIFICAZIONE, OUTLINE, VISIBILE, always
// written in that order. Values are read with profile semantics (keys compare
// without case, blanks around key names ignored, a missing key counts 0).

#include "platform/Profile.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>

namespace mervola {

enum class ThemeKey {
    Join,
    StructJoin,
    Workspace,
    Base,
    Simbolo,
    Label,
    TipoClassificazione,
    Campo,
    Classificazione,
    Outline,
    Visibile,
};
constexpr int kThemeKeyCount = 11;

// "JOIN", "STRUCTJOIN", ... as written in the files.
QString themeKeyName(ThemeKey key);
// All keys in file order.
const std::array<ThemeKey, kThemeKeyCount> &themeKeys();

// One class of a classification, seven fields each followed by "^".
struct ClassItem {
    std::int16_t symbolStyle = 0;
    QString value;                    // "lower - upper" or the unique value
    QString outline = QStringLiteral("1");
    std::int32_t fillColor = 0;
    QString label;
    std::int32_t outlineColor = 0;
    QString drawn = QStringLiteral("1");

    static ClassItem parse(const QString &item);  // one item, without the "|"
    QString format() const;                        // seven fields each followed by "^"
    bool operator==(const ClassItem &) const = default;
};

// The external table joined to a theme (a LISTAJOIN row).
struct JoinFields {
    QString pathDb = QStringLiteral("-1");
    QString nomeDb = QStringLiteral("-1");
    QString nomeTabella = QStringLiteral("-1");
    QString campoJoinInt = QStringLiteral("-1");
    QString campoJoinExt = QStringLiteral("-1");
    QString shpCollegato = QStringLiteral("-1");

    // A stored join is re-run when its first field is not "-1".
    bool isSet() const { return pathDb != QLatin1String("-1"); }
    static JoinFields parse(const QString &value);
    QString format() const;  // "a^b^c^d^e^f^"
    bool operator==(const JoinFields &) const = default;
};

// SIMBOLO: SymbolType^Size^Style^Color^OutlineColor^.
struct SymbolFields {
    int symbolType = 2;
    int size = 0;
    int style = 0;
    std::int32_t color = 0;
    std::int32_t outlineColor = 0;

    static SymbolFields parse(const QString &value);
    // The outline colour is stored only for polygon fills (type 2), else "0".
    QString format() const;
    bool operator==(const SymbolFields &) const = default;
};

// CAMPO: field^classes^method^ramp^.
struct CampoFields {
    QString field = QStringLiteral("0");
    std::int16_t classes = 0;
    std::int16_t method = 0;
    std::int16_t ramp = 0;

    static CampoFields parse(const QString &value);
    QString format() const;
    bool operator==(const CampoFields &) const = default;
};

struct ThemeSettings {
    QString section;  // the section name as found (or asked for)

    JoinFields join;
    QStringList structJoin;  // joined fields; empty when the list is "*"
    QString workspace;
    QString shapefile;  // BASE field 1, with ".shp"
    QString layerName;  // BASE field 2
    SymbolFields symbol;
    QString labelField;  // empty when labels are off ("*")
    QString classificationType = QStringLiteral("0");
    CampoFields campo;
    QList<ClassItem> classes;
    bool outline = true;
    bool visible = false;

    // The raw values as read; nullopt when the key is absent (count 0).
    std::array<std::optional<QString>, kThemeKeyCount> raw;

    bool has(ThemeKey key) const { return raw[size_t(key)].has_value(); }
    QString rawValue(ThemeKey key) const { return raw[size_t(key)].value_or(QString()); }
    bool labelsOn() const { return !labelField.isEmpty(); }
    bool isClassified() const { return classificationType != QLatin1String("0"); }

    // Fills the parsed fields from the raw values.
    void parseRaw();
};

// Reads `section` of a profile into the record (section name as given).
ThemeSettings readThemeSettings(const ProfileFile &profile, const QString &section);
// Reads a settings file; a missing file gives a record with every key absent.
ThemeSettings readThemeSettingsFile(const QString &path, const QString &section);

// Splits a CLASSIFICAZIONE value: "0" or empty gives no classes.
QList<ClassItem> parseClassItems(const QString &value);
QString formatClassItems(const QList<ClassItem> &items);

// Theme-name prefixes that decide defaults (first four characters, upper-cased).
bool isMountainCommunityTheme(const QString &themeName);  // "CMON" or "COMM"
bool isMunicipalityTheme(const QString &themeName);       // "COMU"

}  // namespace mervola
