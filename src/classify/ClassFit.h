#pragma once
// How well a classification of a numeric field describes its values: the
// goodness of variance fit, GVF = 1 - (squared deviations from the class
// means) / (squared deviations from the overall mean), over the elements
// that carry a value, each counted in the class the map draws it with.

#include "classify/ClassRange.h"
#include "classify/FieldColumn.h"

#include <optional>
#include <vector>

namespace mervola::classify
{

// GVF of `classes` over `sorted` (the non-null values, ascending); nullopt
// when there is no value or no class. Values all equal fit perfectly (1).
std::optional<double> goodnessOfFit(const std::vector<double> &sorted, const std::vector<ClassRange> &classes);

// GVF of values grouped by class: classOf[i] is the class of values[i], or
// -1 for a value left out. nullopt when no value is in a class.
std::optional<double> goodnessOfFit(const std::vector<double> &values, const std::vector<int> &classOf);

// "Bontà dell'adattamento (GVF): 0,87"; the dash when there is no figure.
QString gvfText(std::optional<double> gvf);

// One row of the method comparison: the GVF of each method for one class
// count (nullopt where a method gives no classes).
struct MethodFit {
    int classes = 0;
    std::optional<double> quantile;
    std::optional<double> regular;
    std::optional<double> natural;
};

// Rows for 2 .. maxClasses classes (none when maxClasses < 2).
std::vector<MethodFit> compareMethods(const FieldColumn &column, int maxClasses);

// The natural-break classes of a numeric column as user limits (the
// classification is "PERSONALI"), coloured with ramp `rampIndex` and
// counted; empty when the column has no value.
Classification naturalBreaksClassification(const FieldColumn &column, int classCount, int rampIndex);

} // namespace mervola::classify
