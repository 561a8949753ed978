// Speed of a join: a text table of 7,899 rows and 20 columns (the ISTAT
// code, the name and 18 numbers with decimal commas) joined onto the
// municipalities of the real atlas, from staging to the rewritten settings
// file, as the wizard's last button runs it. Each run starts from the
// pristine table. Also timed: reading the text table alone, the removal, and
// the sweep of interrupted writes that every start runs.
//
//   ./bench_join                      (builds the atlas from data/sources once)
//   MERVOLA_BENCH_HOME=/path/to/atlas-home ./bench_join
#include "atlas/AtlasBuilder.h"
#include "platform/WriteJournal.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinScript.h"
#include "project/JoinSource.h"
#include "project/JoinTheme.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>

using namespace mervola;

namespace
{

struct Bench {
    QTemporaryDir dir;
    AtlasHome home;
    QString source;
    QByteArray pristineDbf, pristineIni, pristineDb;

    Bench()
    {
        const QByteArray given = qgetenv("MERVOLA_BENCH_HOME");
        const QString root = dir.filePath(QStringLiteral("home"));
        if (!given.isEmpty()) {
            copyTree(QString::fromLocal8Bit(given), root);
        } else if (!atlas::buildAtlas({QStringLiteral(MERVOLA_SOURCE_DIR "/data/sources"), root, QString()})) {
            std::fprintf(stderr, "atlante non costruito\n");
            std::exit(1);
        }
        home = AtlasHome(root);
        source = dir.filePath(QStringLiteral("tabella.txt"));
        writeSource();
        pristineDbf = read(home.italia() + QStringLiteral("/comuni.dbf"));
        pristineIni = read(home.supporto() + QStringLiteral("/comuni.ini"));
        pristineDb = read(home.referenceDb());
    }

    static QByteArray read(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile f(path);
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            f.write(bytes);
    }
    static void copyTree(const QString &from, const QString &to)
    {
        QDir().mkpath(to);
        for (const QFileInfo &fi : QDir(from).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot)) {
            if (fi.isDir())
                copyTree(fi.filePath(), to + QLatin1Char('/') + fi.fileName());
            else
                QFile::copy(fi.filePath(), to + QLatin1Char('/') + fi.fileName());
        }
    }

    void writeSource() const
    {
        auto t = readDbf(home.italia() + QStringLiteral("/comuni.dbf"));
        const int code = t->fieldIndex(QStringLiteral("COD_ISTAT")), name = t->fieldIndex(QStringLiteral("Label"));
        QByteArray out = "CODICE;NOME";
        for (int c = 1; c <= 18; ++c)
            out += ";V" + QByteArray::number(c);
        out += "\r\n";
        int n = 0;
        for (const auto &r : t->rows) {
            out += r[size_t(code)].toString().toUtf8() + ';' + r[size_t(name)].toString().toUtf8();
            for (int c = 1; c <= 18; ++c)
                out += ';' + QByteArray::number((++n % 100000) / 7.0, 'f', 3).replace('.', ',');
            out += "\r\n";
        }
        write(source, out);
    }

    void restore() const
    {
        write(home.italia() + QStringLiteral("/comuni.dbf"), pristineDbf);
        write(home.supporto() + QStringLiteral("/comuni.ini"), pristineIni);
        write(home.referenceDb(), pristineDb);
        QFile::remove(home.italia() + QStringLiteral("/comuni.bak"));
        QFile::remove(home.italia() + QStringLiteral("/comuni.bak.cpg"));
    }

    ScriptedJoin join() const
    {
        return {QStringLiteral("comuni"), source, QString(), QStringLiteral("COD_ISTAT"), QStringLiteral("CODICE"), {}};
    }
};

Bench &bench()
{
    static Bench b;
    return b;
}

void BM_ReadTextTable(benchmark::State &state)
{
    for (auto _ : state) {
        auto t = readTextSource(bench().source);
        benchmark::DoNotOptimize(t);
    }
}
BENCHMARK(BM_ReadTextTable)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_JoinTextTableOntoComuni(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().restore();
        state.ResumeTiming();
        auto outcome = runScriptedJoin(bench().home, bench().join());
        if (!outcome || outcome->addedFields.size() != 20)
            state.SkipWithError("join fallito");
    }
}
BENCHMARK(BM_JoinTextTableOntoComuni)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_RemoveJoin(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().restore();
        (void)runScriptedJoin(bench().home, bench().join());
        state.ResumeTiming();
        if (!runScriptedUnjoin(bench().home, QStringLiteral("comuni")))
            state.SkipWithError("rimozione fallita");
    }
}
BENCHMARK(BM_RemoveJoin)->Unit(benchmark::kMillisecond);

// The sweep every start runs before the window opens: the journal, then
// the leftovers of interrupted writes in the home's five folders.
void BM_RecoverySweepAtStart(benchmark::State &state)
{
    bench().restore();
    for (auto _ : state) {
        auto r = recoverInterruptedWrites(bench().home);
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_RecoverySweepAtStart)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    bench(); // builds the atlas and the text table before any timing starts
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
