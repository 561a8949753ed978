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
    // Computed limits rise, so a binary search finds the class; limits typed
    // by the user may not, and are searched in order.
    const bool rising = std::is_sorted(classes.begin(), classes.end(),
                                       [](const ClassRange &a, const ClassRange &b) { return a.upper < b.upper; });
    for (double v : column.numbers) {
        if (FieldColumn::isNull(v) || v < classes.front().lower)
            continue;
        const auto it = rising ? std::partition_point(classes.begin(), classes.end(),
                                                      [v](const ClassRange &r) { return r.upper < v; })
                               : std::find_if(classes.begin(), classes.end(),
                                              [v](const ClassRange &r) { return v <= r.upper; });
        if (it != classes.end())
            ++it->count;
    }
}

}  // namespace mervola::classify
