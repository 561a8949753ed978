#include "classify/Ripristina.h"

#include "classify/ClassificationMethod.h"

namespace mervola::classify {

namespace {

// Recomputes with the method of `id` silently and lays the saved symbols
// and labels over the new classes, class by class.
Classification recompute(const QString &id, const FieldColumn &column, const Classification &saved)
{
    const ClassificationMethod *m = methodById(id);
    const int n = saved.requestedClasses > 0 ? saved.requestedClasses : int(saved.classes.size());
    ClassifyOutcome o = m->classes(column, n, saved.rampIndex, Questions::Silent);
    if (!o.ok()) {
        Classification c = saved;
        c.classes.clear();
        return c;
    }
    Classification c = std::move(o.classification);
    c.methodIndex = saved.methodIndex;
    c.requestedClasses = saved.requestedClasses;
    for (size_t i = 0; i < c.classes.size() && i < saved.classes.size(); ++i) {
        ClassRange &r = c.classes[i];
        const ClassRange &s = saved.classes[i];
        r.label = s.label;
        r.fillColor = s.fillColor;
        r.outlineColor = s.outlineColor;
        r.outline = s.outline;
        r.drawn = s.drawn;
        r.style = s.style;
        r.size = s.size;
    }
    return c;
}

}  // namespace

Classification RipristinaQuantile(const FieldColumn &column, const Classification &saved)
{
    return recompute(kQuantile, column, saved);
}

Classification RipristinaIntervalliRegolari(const FieldColumn &column, const Classification &saved)
{
    return recompute(kRegolari, column, saved);
}

Classification RipristinaUnique_value(const FieldColumn &column, const Classification &saved)
{
    return recompute(kUnico, column, saved);
}

Classification RipristinaPersonali(const FieldColumn &column, const Classification &saved)
{
    Classification c = saved;
    c.method = kPersonali;
    for (ClassRange &r : c.classes) {
        double lo = 0, hi = 0;
        if (parseRangeText(r.valueText, &lo, &hi)) {
            r.lower = lo;
            r.upper = hi;
        }
    }
    countElements(column, c.classes, false);
    return c;
}

Classification restoreClassification(const FieldColumn &column, const Classification &saved)
{
    const QString id = saved.method.trimmed().toUpper();
    if (id == kQuantile)
        return RipristinaQuantile(column, saved);
    if (id == kRegolari)
        return RipristinaIntervalliRegolari(column, saved);
    if (id == kUnico)
        return RipristinaUnique_value(column, saved);
    if (id == kPersonali)
        return RipristinaPersonali(column, saved);
    Classification c = saved;
    countElements(column, c.classes, c.uniqueValues);
    return c;
}

}  // namespace mervola::classify
