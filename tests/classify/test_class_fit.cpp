// Natural breaks against exhaustive search, published examples and a plain
// dynamic programme on the real population field; the goodness of variance
// fit against a direct computation; the histogram's class-aligned bins.
#include "../support/TestSupport.h"
#include "classify/ClassFit.h"
#include "classify/ClassificationMethod.h"
#include "classify/ColumnReader.h"
#include "classify/HistogramBins.h"
#include "classify/NaturalBreaks.h"

#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <map>
#include <random>

using namespace mervola;
using namespace mervola::classify;

namespace
{

double squaredDeviation(const std::vector<double> &v)
{
    double mean = 0;
    for (double x : v)
        mean += x;
    mean /= double(v.size());
    double s = 0;
    for (double x : v)
        s += (x - mean) * (x - mean);
    return s;
}

// Within-class squared deviation of the classes [lowers[c], uppers[c]].
double withinOf(const std::vector<double> &sorted, const NaturalBreaksResult &r)
{
    double total = 0;
    for (size_t c = 0; c < r.uppers.size(); ++c) {
        std::vector<double> members;
        for (double v : sorted)
            if (v >= r.lowers[c] && v <= r.uppers[c])
                members.push_back(v);
        total += squaredDeviation(members);
    }
    return total;
}

// Every way of cutting `sorted` (ties may be cut too) into k non-empty runs.
double bruteForce(const std::vector<double> &sorted, int k, size_t from = 0)
{
    if (k == 1)
        return squaredDeviation({sorted.begin() + long(from), sorted.end()});
    double best = 1e300;
    for (size_t cut = from + 1; cut + size_t(k - 1) <= sorted.size(); ++cut)
        best = std::min(best, squaredDeviation({sorted.begin() + long(from), sorted.begin() + long(cut)}) +
                                  bruteForce(sorted, k - 1, cut));
    return best;
}

// Plain O(k m^2) programme over the distinct values, the class cost grown
// one value at a time from the right as in Jenks' own formulation.
std::vector<double> plainUppers(const std::vector<double> &sorted, int k)
{
    std::map<double, double> weight;
    for (double v : sorted)
        weight[v] += 1;
    std::vector<double> x, w;
    for (const auto &[value, count] : weight) {
        x.push_back(value);
        w.push_back(count);
    }
    const size_t m = x.size();
    const double inf = 1e300;
    std::vector<std::vector<double>> cost(size_t(k) + 1, std::vector<double>(m + 1, inf));
    std::vector<std::vector<size_t>> start(size_t(k) + 1, std::vector<size_t>(m + 1, 0));
    cost[0][0] = 0;
    for (size_t i = 1; i <= m; ++i) {
        // Class (j .. i-1], grown leftwards with Welford's update.
        double n = 0, mean = 0, ss = 0;
        for (size_t j = i; j-- > 0;) {
            const double nn = n + w[j];
            const double delta = x[j] - mean;
            mean += delta * w[j] / nn;
            ss += delta * delta * n * w[j] / nn;
            n = nn;
            for (int c = 1; c <= k; ++c)
                if (cost[size_t(c) - 1][j] < inf && cost[size_t(c) - 1][j] + ss < cost[size_t(c)][i]) {
                    cost[size_t(c)][i] = cost[size_t(c) - 1][j] + ss;
                    start[size_t(c)][i] = j;
                }
        }
    }
    std::vector<double> uppers;
    for (size_t c = size_t(k), end = m; c > 0; end = start[c][end], --c)
        uppers.insert(uppers.begin(), x[end - 1]);
    return uppers;
}

FieldColumn realPopulation(QTemporaryDir &dir)
{
    const QString home = dir.filePath(QStringLiteral("home"));
    if (!test::copyRealAtlas(home))
        return {};
    Result<FieldColumn> c = readFieldColumn(home + QStringLiteral("/italia/comuni.dbf"), QStringLiteral("_02010"));
    return c ? *c : FieldColumn{};
}

} // namespace

class TestClassFit : public QObject
{
    Q_OBJECT
private slots:
    void matchesExhaustiveSearch()
    {
        std::mt19937 gen(13);
        for (int round = 0; round < 300; ++round) {
            const int n = 1 + int(gen() % 9);
            std::vector<double> v;
            for (int i = 0; i < n; ++i)
                v.push_back(double(gen() % 12) * (round % 3 == 0 ? 0.5 : 7.0)); // ties on purpose
            std::sort(v.begin(), v.end());
            for (int k = 1; k <= 5; ++k) {
                const NaturalBreaksResult r = naturalBreaks(v, k);
                std::vector<double> d = v;
                d.erase(std::unique(d.begin(), d.end()), d.end());
                QCOMPARE(int(r.uppers.size()), std::min(k, int(d.size())));
                QCOMPARE(r.uppers.back(), v.back());
                QCOMPARE(r.lowers.front(), v.front());
                const double best = bruteForce(v, std::min(k, n));
                QVERIFY2(std::abs(withinOf(v, r) - best) <= 1e-9 * (1 + best),
                         qPrintable(QStringLiteral("n=%1 k=%2: %3 vs %4").arg(n).arg(k).arg(withinOf(v, r)).arg(best)));
                QVERIFY(std::abs(r.withinByClassCount.back() - best) <= 1e-9 * (1 + best));
            }
        }
    }

    void publishedExamples()
    {
        // The example of the Ckmeans.1d.dp documentation: three classes.
        std::vector<double> v{-1, 2, -1, 2, 4, 5, 6, -1, 2, -1};
        std::sort(v.begin(), v.end());
        NaturalBreaksResult r = naturalBreaks(v, 3);
        QCOMPARE(r.lowers, (std::vector<double>{-1, 2, 4}));
        QCOMPARE(r.uppers, (std::vector<double>{-1, 2, 6}));
        // Jenks' textbook case: three clear groups in two and three classes.
        v = {1, 2, 3, 10, 11, 12, 20, 21, 22};
        QCOMPARE(naturalBreaks(v, 3).uppers, (std::vector<double>{3, 12, 22}));
        QCOMPARE(naturalBreaks(v, 2).uppers, (std::vector<double>{12, 22})); // 127,5 against 156 for {3, 22}
        QCOMPARE(naturalBreaks({}, 3).uppers, std::vector<double>{});
    }

    // The real municipalities' population (7,899 values) at 5 and 7 classes
    // against the plain programme, and GVF against a direct computation.
    void realPopulationField()
    {
        QTemporaryDir dir;
        const FieldColumn pop = realPopulation(dir);
        QCOMPARE(pop.recordCount(), 7899);
        const std::vector<double> sorted = pop.sortedNumbers();
        const double total = squaredDeviation(sorted);
        for (int k : {5, 7}) {
            const std::vector<double> expected = plainUppers(sorted, k);
            const NaturalBreaksResult r = naturalBreaks(sorted, k);
            QCOMPARE(r.uppers, expected);
            const Classification c = naturalBreaksClassification(pop, k, 0);
            QCOMPARE(c.method, QStringLiteral("PERSONALI"));
            QCOMPARE(int(c.classes.size()), k);
            int counted = 0;
            for (size_t i = 0; i < c.classes.size(); ++i) {
                QCOMPARE(c.classes[i].upper, expected[i]);
                counted += c.classes[i].count;
            }
            QCOMPARE(counted, int(sorted.size()));
            QVERIFY(std::abs(*goodnessOfFit(sorted, c.classes) - (1 - withinOf(sorted, r) / total)) < 1e-9);
        }
        // Quantiles of the real field: GVF from the class means computed here.
        const ClassifyOutcome q = methodById(kQuantile)->classes(pop, 5, 0, Questions::Silent);
        QVERIFY(q.ok());
        double within = 0;
        for (size_t i = 0; i < q.classification.classes.size(); ++i) {
            std::vector<double> members;
            const double lowEdge = i == 0 ? -1e300 : q.classification.classes[i - 1].upper;
            for (double v : sorted)
                if (v > lowEdge && (v <= q.classification.classes[i].upper || i + 1 == q.classification.classes.size()))
                    members.push_back(v);
            within += members.empty() ? 0 : squaredDeviation(members);
        }
        QVERIFY(q.gvf.has_value());
        QVERIFY(std::abs(*q.gvf - (1 - within / total)) < 1e-9);
        // Natural breaks are never worse than quantiles or regular intervals.
        const std::vector<MethodFit> rows = compareMethods(pop, 8);
        QCOMPARE(int(rows.size()), 7);
        QCOMPARE(rows.front().classes, 2);
        for (const MethodFit &row : rows) {
            QVERIFY(*row.natural >= *row.quantile - 1e-12);
            QVERIFY(*row.natural >= *row.regular - 1e-12);
        }
        QVERIFY(std::abs(*rows[3].quantile - *q.gvf) < 1e-12); // 5 classes

        // Histogram: population spans four orders of magnitude; every bin
        // lies inside one class, linear or logarithmic.
        QVERIFY(logarithmicAxisUseful(sorted));
        for (bool log : {false, true}) {
            const std::vector<HistogramBin> bins = classAlignedBins(sorted, q.classification.classes, log, 40);
            QVERIFY(bins.size() >= 40);
            int total = 0;
            for (size_t b = 0; b < bins.size(); ++b) {
                int inside = 0;
                for (double v : sorted)
                    if ((v > bins[b].from || (b == 0 && v == bins[b].from)) && v <= bins[b].to) {
                        ++inside;
                        QCOMPARE(classOfValue(q.classification.classes, v), bins[b].classIndex);
                    }
                QCOMPARE(bins[b].count, inside);
                total += inside;
            }
            QCOMPARE(total, int(sorted.size()));
            // Every class limit inside the data is a bin edge.
            for (size_t c = 0; c + 1 < q.classification.classes.size(); ++c)
                QVERIFY(std::any_of(bins.begin(), bins.end(), [&](const HistogramBin &b) {
                    return std::abs(b.to - q.classification.classes[c].upper) <= 1e-9 * b.to;
                }));
        }
        QVERIFY(!logarithmicAxisUseful({1, 100}));
        QVERIFY(logarithmicAxisUseful({1, 100.5}));
        QVERIFY(!logarithmicAxisUseful({0, 1000}));
    }

    void gvfEdges()
    {
        ClassRange a, b;
        a.upper = 2;
        b.upper = 10;
        QCOMPARE(*goodnessOfFit({1, 2, 9, 10}, {a, b}), 1 - 1.0 / 65);
        QVERIFY(!goodnessOfFit({}, {a}).has_value());
        QCOMPARE(*goodnessOfFit({5, 5, 5}, {a}), 1.0); // no spread: perfect fit
        QCOMPARE(gvfText(0.8749), QStringLiteral("Bontà dell'adattamento (GVF): 0,87"));
        QCOMPARE(gvfText(std::nullopt), QStringLiteral("Bontà dell'adattamento (GVF): -"));
    }
};

QTEST_GUILESS_MAIN(TestClassFit)
#include "test_class_fit.moc"
