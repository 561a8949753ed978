#include "classify/Methods.h"

#include <algorithm>
#include <cmath>

namespace mervola::classify {

RegularIntervalsMethod::Breaks RegularIntervalsMethod::calculateBreaks(const FieldColumn &column, int classCount,
                                                                       Questions) const
{
    Breaks out;
    double minimum = 0, maximum = 0;
    bool any = false;
    if (column.numeric) {
        for (double v : column.numbers) {
            if (FieldColumn::isNull(v))
                continue;
            minimum = any ? std::min(minimum, v) : v;
            maximum = any ? std::max(maximum, v) : v;
            any = true;
        }
    }
    if (!any || classCount <= 0) {
        out.status = ClassifyStatus::NoData;  // no number in the field: nothing happens
        return out;
    }
    const double width = (maximum - minimum) / classCount;
    out.ranges.resize(size_t(classCount));
    double lower = minimum;
    for (int k = 1; k <= classCount; ++k) {
        // Whole-number breaks, even for a decimal field; the last class ends at the maximum.
        const double upper = k < classCount ? std::floor(minimum + k * width) : maximum;
        ClassRange &r = out.ranges[size_t(k - 1)];
        r.lower = lower;
        r.upper = upper;
        r.valueText = rangeText(lower, upper);
        lower = upper;  // no increment between classes
    }
    return out;
}

}  // namespace mervola::classify
