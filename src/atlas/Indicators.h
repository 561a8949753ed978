#pragma once
// The indicator catalogue: every statistic of the municipality attribute
// table plus a few derived ones, grouped in categories. A municipality table
// carries an indicator as field "_" + cod_ind, a mountain-community table as
// "I" + its three-digit number; cod_ind = category code + number, and the
// numbers are unique across categories.

#include <QHash>
#include <QString>
#include <optional>
#include <vector>

namespace mervola::atlas {

using Attributes = QHash<QString, QString>;
using Value = std::optional<double>;

struct Category {
    QString code;  // "01", "02" ...
    QString name;
};

enum class Source { Column, MountainClass, Ratio, Change };
// How a community value comes from its members' values.
enum class Aggregation { Sum, WeightedMean, Mode, CountOfOnes, Derived };

struct Indicator {
    QString number;    // three digits, unique
    QString category;  // category code
    QString description;
    QString unit;
    QString source;
    Source kind = Source::Column;
    QString column;  // attribute column (Ratio/Change: numerator or later value)
    QString other;   // Ratio/Change: denominator or earlier value
    double factor = 1;
    Aggregation aggregation = Aggregation::Sum;
    QString weight;  // WeightedMean: the column weighting the members
    int width = 12;
    int precision = 0;

    QString codInd() const { return category + number; }
    QString municipalityField() const { return QLatin1Char('_') + codInd(); }
    QString communityField() const { return QLatin1Char('I') + number; }
};

const std::vector<Category> &categories();
const std::vector<Indicator> &indicators();
// Indicators of one category, in catalogue order.
std::vector<const Indicator *> indicatorsOf(const QString &categoryCode);

// A number from an attribute cell; nullopt when empty or not a number.
Value number(const Attributes &row, const QString &column);
// The value rounded to the indicator's decimals, as the tables store it.
Value rounded(const Value &v, int precision);
// The value of every indicator (catalogue order) for one municipality.
std::vector<Value> municipalityValues(const Attributes &row);
// The value of every indicator for a community from its members' rows:
// sums, area-weighted means, the most frequent class, counts of flags, and
// derived ratios recomputed from the members' totals.
std::vector<Value> communityValues(const std::vector<const Attributes *> &members);

}  // namespace mervola::atlas
