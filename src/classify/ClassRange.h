#pragma once
// Value types of a thematic classification: one ClassRange per class and the
// Classification that the window edits, the settings file stores and the map
// draws. No widgets and no renderer objects here.

#include <QString>
#include <cstdint>
#include <vector>

namespace mervola::classify {

// Method keywords as stored under TIPOCLASSIFICAZIONE; also the stable ids of
// the method registry.
inline const QString kQuantile = QStringLiteral("QUANTILE");
inline const QString kRegolari = QStringLiteral("REGOLARI");
inline const QString kPersonali = QStringLiteral("PERSONALI");
inline const QString kUnico = QStringLiteral("UNICO");
inline const QString kVr = QStringLiteral("VR");

// Index of the method list of the classification window (CAMPO field 3).
enum MethodIndex : int { MethodQuantile = 0, MethodRegolari = 1 };

constexpr int kMaxClasses = 32;

struct ClassRange {
    double lower = 0;        // lower limit (unique values: the value when numeric)
    double upper = 0;        // upper limit (the class break)
    QString valueText;       // "Valore" text: "lower - upper" or the unique value
    QString label;           // "Label" text, editable by the user
    std::int32_t fillColor = 0;  // red + 256 * green + 65536 * blue
    std::int32_t outlineColor = 0;
    bool outline = true;     // outline drawn
    bool drawn = true;       // class symbol drawn
    int style = 0;           // symbol style number
    int size = 0;            // symbol size
    int count = 0;           // elements of the column that fall in the class
    bool operator==(const ClassRange &) const = default;
};

struct Classification {
    QString method;          // kQuantile, kRegolari, kPersonali, kUnico, kVr
    QString field;           // attribute field classified
    std::vector<ClassRange> classes;
    int requestedClasses = 0;  // classes asked for (the class-count list)
    int methodIndex = MethodQuantile;
    int rampIndex = 0;
    bool uniqueValues = false; // legend type "Valori unici"
    bool isEmpty() const { return classes.empty(); }
    bool operator==(const Classification &) const = default;
};

// A number written the way the grid shows it: shortest general form with up
// to 15 significant digits and the decimal comma of the Italian settings.
QString formatLimit(double value);
// Reads a limit typed or stored as text; accepts "," or "." as decimal mark.
// Returns false when the text is not a number.
bool parseLimit(const QString &text, double *value);
// "lower - upper" as the grid writes a class.
QString rangeText(double lower, double upper);
// Splits "lower - upper" back into its two numbers.
bool parseRangeText(const QString &text, double *lower, double *upper);

}  // namespace mervola::classify
