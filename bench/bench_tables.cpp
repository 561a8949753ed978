// Speed of the attribute table of all Italian municipalities (7,899 rows,
// every indicator): opening the window, a table query with a sort, and the
// table report of every row written as PDF.
//
//   MERVOLA_BENCH_HOME=/path/to/atlas-home ./bench_tables
//
// MERVOLA_BENCH_PDF=file.pdf keeps the first report to look at;
// MERVOLA_BENCH_PLAIN_MALLOC=1 leaves the allocator as the system sets it.
#include "data/TableQuery.h"
#include "data/ui/FrmDbf.h"
#include "platform/Allocator.h"
#include "print/ReportDocument.h"
#include "print/TableReport.h"
#include "project/ReferenceDb.h"
#include "project/StructureTable.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QTableView>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace mervola;

namespace
{

struct QuietHost : AttributeTableHost {
    void showOnMap(const QString &, const QString &, const QString &, const QStringList &) override {}
    void attributeWindowClosed() override {}
    TablePrintout printout;
    void printTable(QWidget *, const TablePrintout &out) override { printout = out; }
};

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void report(const char *what, const std::vector<double> &ms, double goal)
{
    std::printf("%-46s %9.1f ms   (goal < %.0f ms)\n", what, median(ms), goal);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("MERVOLA_BENCH_PLAIN_MALLOC"))
        keepFreedMemoryForReuse(); // as the program does
    QApplication app(argc, argv);
    const QString homePath = qEnvironmentVariable("MERVOLA_BENCH_HOME");
    const AtlasHome home(homePath);
    auto structure = readStructureTable(ReferenceDb(home));
    if (homePath.isEmpty() || !structure) {
        std::fprintf(stderr, "MERVOLA_BENCH_HOME must name an atlas home\n");
        return 1;
    }
    // The report writes into the home: work on a copy of its database.
    QTemporaryDir work;
    const AtlasHome scratch(work.path());
    QDir().mkpath(scratch.dati());
    QDir().mkpath(scratch.supporto());
    QFile::copy(home.referenceDb(), scratch.referenceDb());
    QFile::copy(home.supporto() + QStringLiteral("/stili.ini"), scratch.supporto() + QStringLiteral("/stili.ini"));

    DbfWindowSource source;
    source.themeName = QStringLiteral("Comuni");
    source.layerName = QStringLiteral("comuni");
    source.shapefilePath = home.italia() + QStringLiteral("/comuni.shp");
    source.home = home;
    source.structure = *structure;

    std::vector<double> open, query, pdf;
    QuietHost host;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer t;
        t.start();
        FrmDbf window(host, source);
        window.show();
        QApplication::processEvents(); // laid out and painted
        open.push_back(t.nsecsElapsed() / 1e6);

        // A query and a sort, as the user runs them, grid refreshed.
        const int population = window.table()->fieldIndex(QStringLiteral("_02010"));
        emit window.grid()->horizontalHeader()->sectionClicked(population);
        t.restart();
        runTableQuery(*window.table(), QStringLiteral("[_01002] > 500"));
        window.queryApplied(true);
        window.runCommand(QStringLiteral("sortDec"));
        QApplication::processEvents();
        query.push_back(t.nsecsElapsed() / 1e6);

        if (run < 2) {
            (void)window.table()->showAll();
            window.setUpColumns();
            window.runCommand(QStringLiteral("stampa")); // the printout the window hands over
            t.restart();
            QList<ReportColumn> columns;
            for (int i = 0; i < host.printout.fields.size(); ++i)
                columns.append({host.printout.fields[i], host.printout.captions[i]});
            const QString file = work.path() + QStringLiteral("/comuni.pdf");
            QElapsedTimer phase;
            phase.start();
            if (!prepareTableReport(scratch, columns, host.printout.rows))
                return 1;
            const double fill = phase.nsecsElapsed() / 1e6;
            phase.restart();
            if (!turnWideReport(scratch))
                return 1;
            const double turn = phase.nsecsElapsed() / 1e6;
            phase.restart();
            auto doc = ReportDocument::load(scratch);
            if (!doc)
                return 1;
            const double load = phase.nsecsElapsed() / 1e6;
            phase.restart();
            (void)doc->pageCount();
            const double layout = phase.nsecsElapsed() / 1e6;
            phase.restart();
            if (!doc->writePdf(file))
                return 1;
            const double write = phase.nsecsElapsed() / 1e6;
            pdf.push_back(t.nsecsElapsed() / 1e6);
            if (run == 0 && !qEnvironmentVariableIsEmpty("MERVOLA_BENCH_PDF"))
                QFile::copy(file, qEnvironmentVariable("MERVOLA_BENCH_PDF"));
            std::printf("report phases: TempRpt %.0f ms, orientation %.0f ms, load %.0f ms, layout %.0f ms, "
                        "PDF %.0f ms\n",
                        fill, turn, load, layout, write);
            if (run == 0)
                std::printf("report: %zu rows, %d pages, %d band(s), text at %.0f%%, %lld KiB\n", doc->rows().size(),
                            doc->pageCount(), doc->bandCount(), doc->fontScale() * 100, QFileInfo(file).size() / 1024);
        }
    }
    report("open the table window of comuni (7,899 rows)", open, 150);
    report("table query with sort", query, 20);
    report("table report of 7,899 rows to PDF", pdf, 3000);
    return 0;
}
