#pragma once
// The bins of the classification window's histogram: an even grid along the
// value axis (linear, or logarithmic when every value is positive) cut at
// every class limit, so that no bin straddles two classes.

#include "classify/ClassRange.h"

#include <vector>

namespace mervola::classify
{

// One bar: its value range, the elements in it and the class it belongs to.
struct HistogramBin {
    double from = 0;
    double to = 0;
    int count = 0;
    int classIndex = -1;
};

// Bins over `sorted` (ascending, non-null) of about `target` equal steps of
// the axis (log10 of the values when `logarithmic`), each cut at the class
// limits. A value falls in the class the map gives it.
std::vector<HistogramBin> classAlignedBins(const std::vector<double> &sorted, const std::vector<ClassRange> &classes,
                                           bool logarithmic, int target);

// True when all values are positive and span more than two orders of magnitude.
bool logarithmicAxisUseful(const std::vector<double> &sorted);
// Position of a value on the axis: the value, or its base-10 logarithm.
double histogramAxis(double v, bool logarithmic);

} // namespace mervola::classify
