#pragma once
// The values of one attribute field, read once from the theme's table. The
// classification methods work on this column in memory.

#include <QString>
#include <QStringList>
#include <cmath>
#include <limits>
#include <vector>

namespace mervola::classify {

struct FieldColumn {
    QString name;
    bool numeric = true;
    std::vector<double> numbers;  // numeric field: one per record, NaN = Null
    QStringList texts;            // text field: one per record, a null QString = Null

    static constexpr double null() { return std::numeric_limits<double>::quiet_NaN(); }
    static bool isNull(double v) { return std::isnan(v); }

    int recordCount() const { return numeric ? int(numbers.size()) : int(texts.size()); }
    // Non-null numbers in ascending order.
    std::vector<double> sortedNumbers() const;
    int nullCount() const;
};

}  // namespace mervola::classify
