#pragma once
// The goodness of variance fit written out value by value, to check the
// figures the program shows against a computation of their own.

#include <vector>

namespace mervola::test {

// Each value in the first class whose upper limit is not below it, else in
// the last class; GVF = 1 - within-class / total squared deviations.
inline double gvfByUpperLimits(const std::vector<double> &values, const std::vector<double> &uppers)
{
    auto ssd = [](const std::vector<double> &g) {
        double mean = 0, s = 0;
        for (double v : g)
            mean += v / double(g.size());
        for (double v : g)
            s += (v - mean) * (v - mean);
        return s;
    };
    std::vector<std::vector<double>> groups(uppers.size());
    for (double v : values) {
        size_t c = 0;
        while (c + 1 < uppers.size() && v > uppers[c])
            ++c;
        groups[c].push_back(v);
    }
    double within = 0;
    for (const auto &g : groups)
        within += g.empty() ? 0 : ssd(g);
    return 1 - within / ssd(values);
}

}  // namespace mervola::test
