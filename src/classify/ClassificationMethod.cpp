#include "classify/ClassificationMethod.h"

#include "classify/ColorRamp.h"
#include "classify/Methods.h"

#include <QHash>
#include <algorithm>

namespace mervola::classify {

ClassifyOutcome ClassificationMethod::classes(const FieldColumn &column, int classCount, int rampIndex,
                                              Questions questions) const
{
    ClassifyOutcome out;
    Breaks b = calculateBreaks(column, classCount, questions);
    out.status = b.status;
    if (b.status != ClassifyStatus::Done)
        return out;
    if (b.ranges.empty()) {
        out.status = ClassifyStatus::NoData;
        return out;
    }
    Classification &c = out.classification;
    c.method = id();
    c.field = column.name;
    c.requestedClasses = classCount;
    c.uniqueValues = id() == kUnico;
    c.methodIndex = id() == kRegolari ? MethodRegolari : MethodQuantile;
    c.rampIndex = rampIndex;
    c.classes = std::move(b.ranges);
    for (ClassRange &r : c.classes) {
        r.label = r.valueText;
        r.outline = true;
        r.drawn = true;
    }
    applyRamp(c.classes, rampIndex);
    if (!c.uniqueValues && column.numeric)
        countSorted(b.sorted.empty() ? column.sortedNumbers() : b.sorted, c.classes);
    else
        countElements(column, c.classes, c.uniqueValues);
    return out;
}

const ClassificationMethod *methodById(const QString &id)
{
    static const QuantileMethod quantile;
    static const RegularIntervalsMethod regular;
    static const UniqueValueMethod unique;
    const QString key = id.trimmed().toUpper();
    if (key == kQuantile)
        return &quantile;
    if (key == kRegolari)
        return &regular;
    if (key == kUnico)
        return &unique;
    return nullptr;
}

void countElements(const FieldColumn &column, std::vector<ClassRange> &classes, bool uniqueValues)
{
    for (ClassRange &r : classes)
        r.count = 0;
    if (classes.empty())
        return;
    if (uniqueValues) {
        QHash<QString, int> index;
        for (size_t i = 0; i < classes.size(); ++i)
            index.insert(classes[i].valueText, int(i));
        const int n = column.recordCount();
        for (int i = 0; i < n; ++i) {
            QString key;
            if (column.numeric) {
                if (FieldColumn::isNull(column.numbers[size_t(i)]))
                    continue;
                key = formatLimit(column.numbers[size_t(i)]);
            } else {
                if (column.texts[i].isNull())
                    continue;
                key = column.texts[i];
            }
            const auto it = index.constFind(key);
            if (it != index.constEnd())
                ++classes[size_t(*it)].count;
        }
        return;
    }
    if (!column.numeric)
        return;
    const bool rising = std::is_sorted(classes.begin(), classes.end(),
                                       [](const ClassRange &a, const ClassRange &b) { return a.upper < b.upper; });
    if (rising) {
        countSorted(column.sortedNumbers(), classes);
        return;
    }
    // Limits typed by the user may not rise: each value takes the first
    // class whose upper limit is not below it.
    for (double v : column.numbers) {
        if (FieldColumn::isNull(v) || v < classes.front().lower)
            continue;
        const auto it = std::find_if(classes.begin(), classes.end(), [v](const ClassRange &r) { return v <= r.upper; });
        if (it != classes.end())
            ++it->count;
    }
}

void countSorted(const std::vector<double> &sorted, std::vector<ClassRange> &classes)
{
    // Rising limits: the class of a value is found by binary search over the
    // sorted numbers, one search per class.
    if (classes.empty())
        return;
    auto from = std::lower_bound(sorted.begin(), sorted.end(), classes.front().lower);
    for (ClassRange &r : classes) {
        const auto to = std::upper_bound(from, sorted.end(), r.upper);
        r.count = int(to - from);
        from = to;
    }
}

}  // namespace mervola::classify
