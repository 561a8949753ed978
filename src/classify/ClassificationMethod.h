#pragma once
// Classification methods. One small class per method behind a common base:
// the base's classes() does the shared work (question gates, counts per
// class, labels, colours) and a method only writes calculateBreaks(). The
// registry is keyed by the keyword saved under TIPOCLASSIFICAZIONE.

#include "classify/ClassRange.h"
#include "classify/FieldColumn.h"

#include <memory>
#include <optional>
#include <vector>

namespace mervola::classify {

enum class ClassifyStatus {
    Done,      // classes computed
    NoData,    // nothing to classify (no numeric value, no record); silent
    Refused,   // 500 or more classes or values: refusal shown
    Declined,  // the user answered "No" to the 50 question
};

struct ClassifyOutcome {
    ClassifyStatus status = ClassifyStatus::NoData;
    Classification classification;
    std::optional<double> gvf;  // goodness of variance fit of numeric classes
    bool ok() const { return status == ClassifyStatus::Done; }
};

// Whether the size gates ask the user (false when a saved classification is
// rebuilt while a theme or project loads).
enum class Questions { Ask, Silent };

class ClassificationMethod {
public:
    virtual ~ClassificationMethod() = default;
    // Stable id: the TIPOCLASSIFICAZIONE keyword.
    virtual QString id() const = 0;

    // Computes the classes of `column`, coloured with ramp `rampIndex`.
    ClassifyOutcome classes(const FieldColumn &column, int classCount, int rampIndex,
                            Questions questions = Questions::Ask) const;

protected:
    struct Breaks {
        ClassifyStatus status = ClassifyStatus::Done;
        std::vector<ClassRange> ranges;  // lower, upper and valueText filled
        std::vector<double> sorted;      // the sorted numbers, when the method made them
    };

private:
    virtual Breaks calculateBreaks(const FieldColumn &column, int classCount, Questions questions) const = 0;
};

// The method for a keyword; nullptr for PERSONALI, VR or unknown words (they
// are not computed from the data).
const ClassificationMethod *methodById(const QString &id);

// Counts the elements per class the way the map colours them: a value
// falls in the first class whose upper limit is not below it, and values
// above the last limit in the last class (so values outside limits typed by
// the user are counted in the first or last class, as they are drawn);
// unique-value classes count equal values, numbers compared as numbers.
void countElements(const FieldColumn &column, std::vector<ClassRange> &classes, bool uniqueValues);
// The class of a value by that rule; the classes must not be empty.
int classOfValue(const std::vector<ClassRange> &classes, double value);
// The same counting over the column's non-null numbers already sorted, for
// classes whose upper limits rise.
void countSorted(const std::vector<double> &sorted, std::vector<ClassRange> &classes);

}  // namespace mervola::classify
