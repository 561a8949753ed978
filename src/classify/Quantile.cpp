// Quantile classes by ranks. The sorted column stands for the ranked
// recordset ("order by field Asc", Nulls first): record r is Null when
// r < nullCount, else sorted[r - nullCount].

#include "classify/ClassifyTexts.h"
#include "classify/Methods.h"
#include "platform/Messages.h"

#include <algorithm>

namespace mervola::classify {

std::vector<double> ClassiQuantile(const std::vector<double> &sorted, int nullCount, int classes)
{
    std::vector<double> breaks;
    if (sorted.empty() || classes <= 0)
        return breaks;
    breaks.reserve(size_t(classes));
    const int total = classes;
    const int records = nullCount + int(sorted.size());
    auto value = [&](int r) { return sorted[size_t(r - nullCount)]; };
    const double maximum = sorted.back();

    int start = 0;  // rank where this pass starts (the recursive call of a tie)
    for (;;) {
        const int counter = int(breaks.size()) + 1;  // next break to fill
        const int toPlace = total - counter + 1;
        const int pos = std::max(start, nullCount);  // Nulls sort first and are passed over
        if (toPlace == 1) {
            breaks.push_back(maximum);
            return breaks;
        }
        const int step = (records - pos) / toPlace;
        // The full record count, Nulls included, decides the shorter first move.
        const int firstMove = records % toPlace == 0 ? step - 1 : step;
        int cur = pos;
        bool tie = false;
        for (int c = counter; c <= total; ++c) {
            cur = std::max(pos, cur + (c == counter ? firstMove : step));
            if (c == total) {
                // The last class ends at the maximum; it is dropped when it
                // would hold nothing beyond the previous break.
                if (breaks.empty() || maximum > breaks.back())
                    breaks.push_back(maximum);
                return breaks;
            }
            if (cur >= records)
                return breaks;  // the moves ran out: fewer classes
            const double v = value(cur);
            if (c == 1 || v > breaks.back()) {
                breaks.push_back(v);
                continue;
            }
            // Tie: the run equal to the previous break stays in that class;
            // the records after it are shared among the classes left.
            const double previous = breaks.back();
            while (cur < records && value(cur) <= previous)
                ++cur;
            if (cur >= records)
                return breaks;  // the run reaches the last record
            start = cur;
            tie = true;
            break;
        }
        if (!tie)
            return breaks;
    }
}

double quantileNextLower(double previousBreak)
{
    return previousBreak + (formatLimit(previousBreak).contains(QLatin1Char(',')) ? 0.1 : 1.0);
}

std::vector<ClassRange> QuantileMethod::rangesFromBreaks(double minimum, const std::vector<double> &breaks)
{
    std::vector<ClassRange> ranges(breaks.size());
    for (size_t k = 0; k < breaks.size(); ++k) {
        ClassRange &r = ranges[k];
        r.lower = k == 0 ? minimum : quantileNextLower(breaks[k - 1]);
        r.upper = breaks[k];
        r.valueText = rangeText(r.lower, r.upper);
    }
    return ranges;
}

QuantileMethod::Breaks QuantileMethod::calculateBreaks(const FieldColumn &column, int classCount,
                                                       Questions questions) const
{
    Breaks out;
    std::vector<double> sorted = column.sortedNumbers();
    const int records = column.recordCount();
    if (sorted.empty() || classCount <= 0) {
        out.status = ClassifyStatus::NoData;
        return out;
    }
    const int classes = std::min(classCount, records);
    const std::vector<double> breaks = ClassiQuantile(sorted, records - int(sorted.size()), classes);
    if (questions == Questions::Ask) {
        if (breaks.size() >= 500) {
            showMessage(MsgStyle::Critical, texts::kTooManyValues);
            out.status = ClassifyStatus::Refused;
            return out;
        }
        if (breaks.size() > 50
            && showMessage(MsgStyle::YesNo | MsgStyle::Exclamation, texts::kManyValuesQuantile) == MsgAnswer::No) {
            out.status = ClassifyStatus::Declined;
            return out;
        }
    }
    out.ranges = rangesFromBreaks(sorted.front(), breaks);
    out.sorted = std::move(sorted);
    return out;
}

}  // namespace mervola::classify
