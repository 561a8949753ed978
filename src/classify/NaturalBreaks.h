#pragma once
// Natural breaks: the partition of sorted values into contiguous classes
// that minimises the sum of squared deviations from the class means (the
// Fisher-Jenks optimum, exact). Equal values always stay in one class.

#include <vector>

namespace mervola::classify
{

struct NaturalBreaksResult {
    // Per class, the smallest and largest value it holds; fewer classes than
    // asked for when the data have fewer distinct values.
    std::vector<double> lowers;
    std::vector<double> uppers;
    // Minimal within-class sum of squared deviations for 1..classes classes
    // (entry k-1 for k classes; shorter when distinct values run out).
    std::vector<double> withinByClassCount;
};

// `sorted`: the values in ascending order (no NaN). classes >= 1.
// The dynamic programme runs over distinct values weighted by their counts;
// each layer is filled by divide and conquer on the monotone optimal split
// (valid for this cost), O(classes * m log m) for m distinct values.
NaturalBreaksResult naturalBreaks(const std::vector<double> &sorted, int classes);

// Sum of squared deviations of `sorted` from its mean.
double totalSquaredDeviation(const std::vector<double> &sorted);

} // namespace mervola::classify
