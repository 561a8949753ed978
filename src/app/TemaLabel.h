#pragma once
// Theme labels: the label settings of a theme (TemaLabel), their serialised
// form "font^rotation^height^colour^field^" kept as the theme's LABEL= value,
// the field list of the label window, and the two operations of the label
// commands: SetLabelProperties (labels on) and RemoveLabels (labels off).

#include "platform/Result.h"
#include "map/MapModel.h"
#include "project/StructureTable.h"

#include <QList>
#include <QString>
#include <functional>

namespace mervola {

namespace LabelText {
inline const QString kInvalidValue = QStringLiteral("Bisogna inserire un valore valido");
inline const QString kNoFonts = QStringLiteral("Non è installato alcun font nel sistema");
inline const QString kDefaultFont = QStringLiteral("Arial");
// The label field that draws nothing.
inline const QString kNoLabelField = QStringLiteral("dummy");
}  // namespace LabelText

// Error code of SetLabelProperties when the input was refused: the message
// has already been shown to the user.
constexpr int kLabelInputRefused = 64;

// The label settings of a theme, as the layer's label renderer names them.
struct TemaLabel {
    QString LabelFont = LabelText::kDefaultFont;
    int LabelRotation = 0;
    double LabelHeight = 8;
    std::int32_t LabelColor = 0;  // red + 256 * green + 65536 * blue
    QString LabelField;           // empty or "dummy": no labels

    bool on() const;
    // "font^rotation^height^colour^field^"
    QString serialise() const;
    // A LABEL= value: "*" (labels off), a plain field name or the five values.
    static TemaLabel parse(const QString &labelValue);
    static TemaLabel fromRenderer(const map::LabelRenderer &renderer);
    void applyTo(map::LabelRenderer &renderer) const;
    bool operator==(const TemaLabel &) const = default;
};

// What the label window hands over: the texts of its controls.
struct LabelForm {
    QString font = LabelText::kDefaultFont;
    QString rotation;  // digits only, may be empty
    QString height;    // digits only, may be empty
    std::int32_t color = 0;
    QString fieldEntry;  // the chosen entry of the field list (alias or field)
    bool operator==(const LabelForm &) const = default;
};

// One entry of the label window's field list.
struct LabelFieldEntry {
    QString text;   // what the list shows
    QString field;  // the attribute field
    bool operator==(const LabelFieldEntry &) const = default;
};

// Gives the description of an indicator field (empty when unknown).
using FieldDescriber = std::function<QString(const QString &field)>;
// Gives the indicator field of a description (empty when unknown).
using DescriptionResolver = std::function<QString(const QString &description)>;

// True for the mountain-community ("COMMONT", "CMONT_*") and municipality
// ("COMUNI", "COMU_*") themes, whose list shows the name and the indicators.
bool isAtlasTheme(const QString &themeName);
// True for an indicator field: "I" + three digits or "_" + five characters.
bool isIndicatorField(const QString &field);

// The field list of a theme. Atlas themes list Label first, then their
// indicator fields by description (a field with no description under its own
// name); other themes list every field under its alias where one is known.
// Placeholder columns named DUMMY are never listed.
QList<LabelFieldEntry> labelFieldEntries(const QString &themeName, const QStringList &fields,
                                         const StructureTable &structure, const FieldDescriber &describe = {});
QStringList fieldNamesOf(const map::LayerData &data);

// The attribute field of a list entry: the alias of the theme's table in the
// structure rows, else any structure alias, else an indicator description,
// else the entry itself (it was a plain field name).
QString labelFieldOfEntry(const QString &entry, const QString &themeName, const StructureTable &structure,
                          const DescriptionResolver &resolve = {});

// Where SetLabelProperties puts its result.
struct LabelTarget {
    QString themeName;  // the active theme (section and file name)
    QString iniPath;    // supporto/<theme>.ini
    const StructureTable *structure = nullptr;
    DescriptionResolver resolve;
};

// Applies the window's values to the renderer step by step: the font first;
// an empty rotation or height shows "Bisogna inserire un valore valido" and
// stops (the font stays); then colour and field; finally the LABEL= value is
// written to the theme's settings file. Returns the settings applied.
Result<TemaLabel> SetLabelProperties(const LabelForm &form, map::LabelRenderer &renderer, const LabelTarget &target);

// Switches the labels of the theme's layer off (field "dummy") and writes
// LABEL=* into its settings file. A theme without a layer only has its file
// rewritten.
Status RemoveLabels(map::MapModel &model, const QString &themeName, const QString &iniPath);

// Rewrites a theme's settings file with a new LABEL= value, every other key
// kept in the standard order (new file, then rename).
Status writeLabelSetting(const QString &iniPath, const QString &themeName, const QString &labelValue);

// The window's starting values for a layer's current labels; a theme
// without labels gets Arial, 0, 8, black.
LabelForm labelFormFor(const map::LabelRenderer &renderer, const QList<LabelFieldEntry> &entries);

}  // namespace mervola
