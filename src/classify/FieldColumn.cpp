#include "classify/FieldColumn.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace mervola::classify {

namespace {

// Orders doubles through their bits: flipping the sign bit of positives and
// every bit of negatives makes unsigned order equal numeric order.
inline std::uint64_t sortKey(double v)
{
    std::uint64_t u;
    std::memcpy(&u, &v, sizeof u);
    return (u & 0x8000000000000000ull) ? ~u : (u | 0x8000000000000000ull);
}

inline double fromSortKey(std::uint64_t k)
{
    const std::uint64_t u = (k & 0x8000000000000000ull) ? (k & ~0x8000000000000000ull) : ~k;
    double v;
    std::memcpy(&v, &u, sizeof v);
    return v;
}

// Least-significant-digit radix sort, 11 bits per pass; passes whose digit
// is the same for every key are skipped (whole numbers share most low bits).
void radixSort(std::vector<double> &values)
{
    constexpr int kBits = 11;
    constexpr std::size_t kBuckets = std::size_t(1) << kBits;
    const std::size_t n = values.size();
    std::vector<std::uint64_t> a(n), b(n);
    for (std::size_t i = 0; i < n; ++i)
        a[i] = sortKey(values[i]);
    std::vector<std::size_t> count(kBuckets);
    for (int shift = 0; shift < 64; shift += kBits) {
        std::fill(count.begin(), count.end(), 0);
        for (std::uint64_t k : a)
            ++count[(k >> shift) & (kBuckets - 1)];
        if (count[(a[0] >> shift) & (kBuckets - 1)] == n)
            continue;
        std::size_t sum = 0;
        for (std::size_t &c : count) {
            const std::size_t t = c;
            c = sum;
            sum += t;
        }
        for (std::uint64_t k : a)
            b[count[(k >> shift) & (kBuckets - 1)]++] = k;
        a.swap(b);
    }
    for (std::size_t i = 0; i < n; ++i)
        values[i] = fromSortKey(a[i]);
}

}  // namespace

std::vector<double> FieldColumn::sortedNumbers() const
{
    std::vector<double> out;
    if (!numeric)
        return out;
    out.reserve(numbers.size());
    for (double v : numbers)
        if (!isNull(v))
            out.push_back(v);
    if (out.size() > 512)
        radixSort(out);
    else
        std::sort(out.begin(), out.end());
    return out;
}

int FieldColumn::nullCount() const
{
    if (numeric)
        return int(std::count_if(numbers.begin(), numbers.end(), [](double v) { return isNull(v); }));
    return int(std::count_if(texts.begin(), texts.end(), [](const QString &s) { return s.isNull(); }));
}

}  // namespace mervola::classify
