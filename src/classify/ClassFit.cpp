#include "classify/ClassFit.h"

#include "classify/ClassificationMethod.h"
#include "classify/ColorRamp.h"
#include "classify/NaturalBreaks.h"

#include <QLocale>
#include <algorithm>

namespace mervola::classify
{

std::optional<double> goodnessOfFit(const std::vector<double> &values, const std::vector<int> &classOf)
{
    // Sums per class about a shift (the first value) that keeps the squares
    // small, in extended precision.
    int classes = 0;
    long double shift = 0;
    bool any = false;
    for (size_t i = 0; i < values.size(); ++i)
        if (classOf[i] >= 0) {
            classes = std::max(classes, classOf[i] + 1);
            if (!any)
                shift = values[i];
            any = true;
        }
    if (!any)
        return std::nullopt;
    std::vector<long double> n(size_t(classes), 0), s(size_t(classes), 0), q(size_t(classes), 0);
    long double tn = 0, ts = 0, tq = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        const int c = classOf[i];
        if (c < 0)
            continue;
        const long double x = values[i] - shift;
        n[size_t(c)] += 1;
        s[size_t(c)] += x;
        q[size_t(c)] += x * x;
        tn += 1;
        ts += x;
        tq += x * x;
    }
    const long double total = tq - ts * ts / tn;
    if (total <= 0)
        return 1.0; // no spread: any classes fit perfectly
    long double within = 0;
    for (size_t c = 0; c < size_t(classes); ++c)
        if (n[c] > 0)
            within += std::max<long double>(0, q[c] - s[c] * s[c] / n[c]);
    return std::clamp(double(1 - within / total), 0.0, 1.0);
}

std::optional<double> goodnessOfFit(const std::vector<double> &sorted, const std::vector<ClassRange> &classes)
{
    if (sorted.empty() || classes.empty())
        return std::nullopt;
    std::vector<int> classOf(sorted.size());
    for (size_t i = 0; i < sorted.size(); ++i)
        classOf[i] = classOfValue(classes, sorted[i]);
    return goodnessOfFit(sorted, classOf);
}

QString gvfText(std::optional<double> gvf)
{
    const QString figure = gvf ? QLocale(QLocale::Italian).toString(*gvf, 'f', 2) : QStringLiteral("-");
    return QStringLiteral("Bontà dell'adattamento (GVF): %1").arg(figure);
}

std::vector<MethodFit> compareMethods(const FieldColumn &column, int maxClasses)
{
    std::vector<MethodFit> rows;
    const std::vector<double> sorted = column.sortedNumbers();
    if (!column.numeric || sorted.empty() || maxClasses < 2)
        return rows;
    const double total = totalSquaredDeviation(sorted);
    // One run of the natural breaks gives the optimum for every count.
    const NaturalBreaksResult natural = naturalBreaks(sorted, maxClasses);
    auto fitOf = [&](const QString &method, int k) -> std::optional<double> {
        const ClassifyOutcome o = methodById(method)->classes(column, k, 0, Questions::Silent);
        return o.ok() ? goodnessOfFit(sorted, o.classification.classes) : std::nullopt;
    };
    for (int k = 2; k <= maxClasses; ++k) {
        MethodFit row;
        row.classes = k;
        row.quantile = fitOf(kQuantile, k);
        row.regular = fitOf(kRegolari, k);
        const size_t i = size_t(std::min<int>(k, int(natural.withinByClassCount.size())) - 1);
        row.natural = total > 0 ? 1.0 - natural.withinByClassCount[i] / total : 1.0;
        rows.push_back(row);
    }
    return rows;
}

Classification naturalBreaksClassification(const FieldColumn &column, int classCount, int rampIndex)
{
    Classification c;
    const std::vector<double> sorted = column.sortedNumbers();
    if (!column.numeric || sorted.empty())
        return c;
    const NaturalBreaksResult nb = naturalBreaks(sorted, classCount);
    c.method = kPersonali;
    c.field = column.name;
    c.requestedClasses = classCount;
    c.rampIndex = rampIndex;
    for (size_t i = 0; i < nb.uppers.size(); ++i) {
        ClassRange r;
        r.lower = nb.lowers[i];
        r.upper = nb.uppers[i];
        r.valueText = rangeText(r.lower, r.upper);
        r.label = r.valueText;
        c.classes.push_back(r);
    }
    applyRamp(c.classes, rampIndex);
    countSorted(sorted, c.classes);
    return c;
}

} // namespace mervola::classify
