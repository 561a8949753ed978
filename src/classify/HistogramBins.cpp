#include "classify/HistogramBins.h"

#include "classify/ClassificationMethod.h"

#include <algorithm>
#include <cmath>

namespace mervola::classify
{

double histogramAxis(double v, bool logarithmic)
{
    return logarithmic ? std::log10(v) : v;
}

namespace
{
const auto axisOf = histogramAxis;
} // namespace

bool logarithmicAxisUseful(const std::vector<double> &sorted)
{
    return !sorted.empty() && sorted.front() > 0 && sorted.back() / sorted.front() > 100;
}

std::vector<HistogramBin> classAlignedBins(const std::vector<double> &sorted, const std::vector<ClassRange> &classes,
                                           bool logarithmic, int target)
{
    std::vector<HistogramBin> bins;
    if (sorted.empty())
        return bins;
    logarithmic = logarithmic && sorted.front() > 0;
    const double lo = axisOf(sorted.front(), logarithmic);
    const double hi = axisOf(sorted.back(), logarithmic);
    // Edges: an even grid along the axis plus every class limit inside the
    // data, each kept with its exact value (a limit is never rounded through
    // the logarithm).
    struct Edge {
        double axis;
        double value;
        bool limit;
    };
    std::vector<Edge> edges{{lo, sorted.front(), false}, {hi, sorted.back(), false}};
    const int steps = std::max(1, target);
    if (hi > lo) {
        for (int i = 1; i < steps; ++i) {
            const double a = lo + (hi - lo) * i / steps;
            edges.push_back({a, logarithmic ? std::pow(10.0, a) : a, false});
        }
        for (size_t c = 0; c + 1 < classes.size(); ++c) {
            const double v = classes[c].upper;
            if (v > sorted.front() && v < sorted.back())
                edges.push_back({axisOf(v, logarithmic), v, true});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge &a, const Edge &b) { return a.value < b.value; });
    // A grid edge very close to a limit would leave a sliver: drop it.
    const double minWidth = (hi - lo) / steps / 20;
    std::vector<Edge> kept;
    for (size_t i = 0; i < edges.size(); ++i) {
        const bool end = i == 0 || i + 1 == edges.size();
        const auto near = [&](size_t j) {
            return edges[j].limit && std::abs(edges[j].axis - edges[i].axis) < minWidth;
        };
        if (!end && !edges[i].limit && ((i > 0 && near(i - 1)) || near(i + 1)))
            continue;
        if (!kept.empty() && kept.back().value == edges[i].value)
            continue;
        kept.push_back(edges[i]);
    }
    if (kept.size() == 1)
        kept.push_back(kept.front());
    for (size_t i = 0; i + 1 < kept.size(); ++i)
        bins.push_back({kept[i].value, kept[i + 1].value, 0, -1});
    // A value on an edge belongs to the bin on its left, as a value equal to
    // a class limit belongs to that class.
    size_t b = 0;
    for (double v : sorted) {
        while (b + 1 < bins.size() && v > bins[b].to)
            ++b;
        ++bins[b].count;
    }
    for (HistogramBin &bin : bins) {
        const double mid = (axisOf(bin.from, logarithmic) + axisOf(bin.to, logarithmic)) / 2;
        bin.classIndex = classes.empty() ? -1 : classOfValue(classes, logarithmic ? std::pow(10.0, mid) : mid);
    }
    return bins;
}

} // namespace mervola::classify
