#pragma once
// (Kept with the widgets because the dialogs define the value types.)
// What the classification window and the legend editor need from a theme,
// and how their results are kept in the theme's settings file.

#include "classify/ClassRange.h"
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/LegendEditor.h"
#include "map/LayerData.h"
#include "project/ReferenceDb.h"
#include "project/StructureTable.h"
#include "project/ThemeSettings.h"

#include <QList>
#include <optional>

namespace mervola {

// An indicator as INDICATORI describes it.
struct Indicator {
    QString code;
    QString description;
    QString category;
    QString source;
    QString unit;
};
QList<Indicator> readIndicators(const ReferenceDb &db);
// The indicator of a field: "_" + the five-character code, or "I" + three
// digits matched against the end of the code; nullptr for other fields.
const Indicator *indicatorOf(const QList<Indicator> &list, const QString &field);

// The fields of a theme's table offered for classification: the indicators
// with their description and category, then the other numeric fields, then
// the text fields (unique values only), under their alias (category empty).
QList<classify::CandidateField> candidateFields(const map::LayerData &data, const StructureTable &structure,
                                                const ReferenceDb &db);

// The classification a theme's settings hold; nullopt when none.
std::optional<classify::Classification> savedClassification(const ThemeSettings &settings);

// Writes TIPOCLASSIFICAZIONE, CAMPO and CLASSIFICAZIONE of a theme.
Status storeClassification(const QString &iniPath, const QString &theme, const classify::Classification &c);

// The legend editor's view of a theme and the settings it writes back
// (SIMBOLO colours, OUTLINE, VISIBILE, and the classes' colours and labels).
classify::LegendEntry legendEntryOf(const ThemeSettings &settings, const QString &alias);
Status storeLegendEntry(const QString &iniPath, const QString &theme, const ThemeSettings &old,
                        const classify::LegendEntry &entry);

}  // namespace mervola
