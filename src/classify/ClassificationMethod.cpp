#include "classify/ClassificationMethod.h"

#include "classify/ClassFit.h"
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
    if (!c.uniqueValues && column.numeric) {
        const std::vector<double> sorted = b.sorted.empty() ? column.sortedNumbers() : std::move(b.sorted);
        countSorted(sorted, c.classes);
        out.gvf = goodnessOfFit(sorted, c.classes);
    } else
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
        // Numbers compare as numbers ("50,7" is 50.7) and texts without
        // regard to case; the first class of equal values takes the element.
        if (column.numeric) {
            QHash<double, int> index;
            for (size_t i = classes.size(); i-- > 0;) {
                double v = 0;
                if (parseLimit(classes[i].valueText, &v))
                    index.insert(v, int(i));
            }
            for (double v : column.numbers)
                if (!FieldColumn::isNull(v))
                    if (const auto it = index.constFind(v); it != index.constEnd())
                        ++classes[size_t(*it)].count;
            return;
        }
        QHash<QString, int> index;
        for (size_t i = classes.size(); i-- > 0;)
            index.insert(classes[i].valueText.toCaseFolded(), int(i));
        for (const QString &t : column.texts)
            if (!t.isNull())
                if (const auto it = index.constFind(t.toCaseFolded()); it != index.constEnd())
                    ++classes[size_t(*it)].count;
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
    for (double v : column.numbers)
        if (!FieldColumn::isNull(v))
            ++classes[size_t(classOfValue(classes, v))].count;
}

int classOfValue(const std::vector<ClassRange> &classes, double v)
{
    const auto it = std::find_if(classes.begin(), classes.end(), [v](const ClassRange &r) { return v <= r.upper; });
    return it == classes.end() ? int(classes.size()) - 1 : int(it - classes.begin());
}

void countSorted(const std::vector<double> &sorted, std::vector<ClassRange> &classes)
{
    // Rising limits: each class ends at the last value not above its upper
    // limit, found by binary search; the last class takes the rest.
    auto from = sorted.begin();
    for (size_t i = 0; i < classes.size(); ++i) {
        const auto to = i + 1 == classes.size() ? sorted.end() : std::upper_bound(from, sorted.end(), classes[i].upper);
        classes[i].count = int(to - from);
        from = to;
    }
}

}  // namespace mervola::classify
