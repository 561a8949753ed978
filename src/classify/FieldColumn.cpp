#include "classify/FieldColumn.h"

#include <algorithm>

namespace mervola::classify {

std::vector<double> FieldColumn::sortedNumbers() const
{
    std::vector<double> out;
    if (!numeric)
        return out;
    out.reserve(numbers.size());
    for (double v : numbers)
        if (!isNull(v))
            out.push_back(v);
    std::sort(out.begin(), out.end());
    return out;
}

int FieldColumn::nullCount() const
{
    if (numeric)
        return int(std::count_if(numbers.begin(), numbers.end(), [](double v) { return isNull(v); }));
    return int(std::count_if(texts.begin(), texts.end(), [](const QString &s) { return s.isNull(); }));
}

}  // namespace mervola::classify
