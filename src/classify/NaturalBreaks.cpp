#include "classify/NaturalBreaks.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace mervola::classify
{

namespace
{

// Prefix sums over the distinct values, shifted by their mean to keep the
// squares small; summed in extended precision, then kept as doubles for the
// speed of the inner loop.
class SegmentCost
{
public:
    SegmentCost(const std::vector<double> &values, const std::vector<double> &weights)
    {
        long double total = 0, weight = 0;
        for (size_t i = 0; i < values.size(); ++i) {
            total += (long double)values[i] * weights[i];
            weight += weights[i];
        }
        const long double shift = weight > 0 ? total / weight : 0;
        m_w.assign(values.size() + 1, 0);
        m_s.assign(values.size() + 1, 0);
        m_q.assign(values.size() + 1, 0);
        long double w = 0, s = 0, q = 0;
        for (size_t i = 0; i < values.size(); ++i) {
            const long double x = values[i] - shift;
            w += weights[i];
            s += weights[i] * x;
            q += weights[i] * x * x;
            m_w[i + 1] = double(w);
            m_s[i + 1] = double(s);
            m_q[i + 1] = double(q);
        }
    }
    // Squared deviations of distinct values [from, to) from their mean.
    double operator()(size_t from, size_t to) const
    {
        const double w = m_w[to] - m_w[from];
        if (w <= 0)
            return 0;
        const double s = m_s[to] - m_s[from];
        const double c = (m_q[to] - m_q[from]) - s * s / w;
        return c > 0 ? c : 0;
    }

private:
    std::vector<double> m_w, m_s, m_q;
};

struct Layer {
    const SegmentCost &cost;
    const std::vector<double> &previous; // best cost of the first j values in k-1 classes
    std::vector<double> &current;
    std::vector<size_t> &split; // start of the last class

    // Fills current[i] for i in [lo, hi], knowing the best split lies in
    // [optLo, optHi].
    void solve(size_t lo, size_t hi, size_t optLo, size_t optHi)
    {
        if (lo > hi)
            return;
        const size_t mid = lo + (hi - lo) / 2;
        double best = std::numeric_limits<double>::infinity();
        size_t bestJ = optLo;
        const size_t last = std::min(optHi, mid - 1);
        for (size_t j = optLo; j <= last; ++j) {
            const double v = previous[j] + cost(j, mid);
            if (v < best) {
                best = v;
                bestJ = j;
            }
        }
        current[mid] = best;
        split[mid] = bestJ;
        if (mid > lo)
            solve(lo, mid - 1, optLo, bestJ);
        solve(mid + 1, hi, bestJ, optHi);
    }
};

} // namespace

double totalSquaredDeviation(const std::vector<double> &sorted)
{
    if (sorted.empty())
        return 0;
    long double mean = 0;
    for (double v : sorted)
        mean += v;
    mean /= sorted.size();
    long double sum = 0;
    for (double v : sorted)
        sum += (v - mean) * (v - mean);
    return double(sum);
}

NaturalBreaksResult naturalBreaks(const std::vector<double> &sorted, int classes)
{
    NaturalBreaksResult out;
    if (sorted.empty() || classes < 1)
        return out;
    std::vector<double> values, weights;
    for (double v : sorted) {
        if (!values.empty() && values.back() == v)
            weights.back() += 1;
        else {
            values.push_back(v);
            weights.push_back(1);
        }
    }
    const size_t m = values.size();
    const size_t k = std::min(size_t(classes), m);
    const SegmentCost cost(values, weights);

    // best[c][i]: least cost of the first i distinct values in c+1 classes;
    // split[c][i]: where its last class starts.
    std::vector<std::vector<double>> best(k, std::vector<double>(m + 1, 0));
    std::vector<std::vector<size_t>> split(k, std::vector<size_t>(m + 1, 0));
    for (size_t i = 1; i <= m; ++i)
        best[0][i] = cost(0, i);
    out.withinByClassCount.push_back(double(best[0][m]));
    for (size_t c = 1; c < k; ++c) {
        // c+1 classes need at least c+1 values; the last layer is needed
        // for all the values only.
        Layer layer{cost, best[c - 1], best[c], split[c]};
        layer.solve(c + 1 == k ? m : c + 1, m, c, m - 1);
        out.withinByClassCount.push_back(double(best[c][m]));
    }
    // Walk the splits back from the last class.
    std::vector<size_t> starts(k, 0);
    size_t end = m;
    for (size_t c = k; c-- > 1;) {
        starts[c] = split[c][end];
        end = starts[c];
    }
    for (size_t c = 0; c < k; ++c) {
        const size_t to = c + 1 < k ? starts[c + 1] : m;
        out.lowers.push_back(values[starts[c]]);
        out.uppers.push_back(values[to - 1]);
    }
    return out;
}

} // namespace mervola::classify
