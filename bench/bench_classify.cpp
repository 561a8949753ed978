// Classification speed over the municipalities' resident population
// (7,899 values of the real source table when it is there, else a
// synthetic column of the same size and spread).
#include "classify/ClassFit.h"
#include "classify/ClassificationMethod.h"
#include "classify/Methods.h"
#include "classify/NaturalBreaks.h"

#include <QFile>
#include <QString>
#include <benchmark/benchmark.h>
#include <random>

using namespace mervola::classify;

namespace {

FieldColumn population()
{
    FieldColumn c;
    c.name = QStringLiteral("POP2022");
    QFile f(QStringLiteral(MERVOLA_SOURCE_DIR "/data/sources/comuni_attributi.csv"));
    if (f.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> header = f.readLine().trimmed().split(',');
        const int col = header.indexOf("pop_residente_2022");
        while (col >= 0 && !f.atEnd()) {
            const QList<QByteArray> cells = f.readLine().trimmed().split(',');
            bool ok = false;
            const double v = cells.value(col).toDouble(&ok);
            c.numbers.push_back(ok ? v : FieldColumn::null());
        }
    }
    if (c.numbers.empty()) {
        std::mt19937 gen(7899);
        std::lognormal_distribution<double> d(7.5, 1.2);
        for (int i = 0; i < 7899; ++i)
            c.numbers.push_back(std::floor(d(gen)));
    }
    return c;
}

const FieldColumn &column()
{
    static const FieldColumn c = population();
    return c;
}

void BM_Quantile32(benchmark::State &state)
{
    const ClassificationMethod *m = methodById(kQuantile);
    for (auto _ : state) {
        ClassifyOutcome o = m->classes(column(), 32, 0, Questions::Silent);
        benchmark::DoNotOptimize(o);
    }
    state.counters["valori"] = double(column().numbers.size());
}
BENCHMARK(BM_Quantile32)->Unit(benchmark::kMicrosecond);

void BM_ClassiQuantileSorted32(benchmark::State &state)
{
    const std::vector<double> sorted = column().sortedNumbers();
    const int nulls = column().nullCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(ClassiQuantile(sorted, nulls, 32));
}
BENCHMARK(BM_ClassiQuantileSorted32)->Unit(benchmark::kMicrosecond);

void BM_RegularIntervals32(benchmark::State &state)
{
    const ClassificationMethod *m = methodById(kRegolari);
    for (auto _ : state) {
        ClassifyOutcome o = m->classes(column(), 32, 0, Questions::Silent);
        benchmark::DoNotOptimize(o);
    }
}
BENCHMARK(BM_RegularIntervals32)->Unit(benchmark::kMicrosecond);

// Exact natural breaks of the whole column in 32 classes (limit: 50 ms).
void BM_NaturalBreaks32(benchmark::State &state)
{
    const std::vector<double> sorted = column().sortedNumbers();
    for (auto _ : state)
        benchmark::DoNotOptimize(naturalBreaks(sorted, 32));
    state.counters["valori"] = double(sorted.size());
}
BENCHMARK(BM_NaturalBreaks32)->Unit(benchmark::kMillisecond);

// The "Confronta metodi" table for 2 to 32 classes.
void BM_CompareMethods32(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(compareMethods(column(), 32));
}
BENCHMARK(BM_CompareMethods32)->Unit(benchmark::kMillisecond);

void BM_SortColumn(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(column().sortedNumbers());
}
BENCHMARK(BM_SortColumn)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
