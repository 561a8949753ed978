// The table report: definition file, orientation swap, work table and the
// pages painted from them.
#include "platform/Profile.h"
#include "platform/Sqlite.h"
#include "print/ReportDocument.h"
#include "print/TableReport.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace mervola;

namespace
{

// An atlas home with the reference database and a style file; the rows of
// a municipality table as the attribute window hands them over.
struct Home {
    QTemporaryDir dir;
    AtlasHome home{dir.path()};
    Home()
    {
        QDir().mkpath(home.dati());
        QDir().mkpath(home.italia());
        QDir().mkpath(home.supporto());
        if (!ReferenceDb::createSchema(home.referenceDb()).ok())
            qFatal("schema");
        test::writeFile(home.supporto() + QStringLiteral("/stili.ini"),
                        "[Style Detail]\nFont = Arial\nSize = 9\n[Style Header]\nBold = True\nBackColor = 14474460\n");
    }
    QStringList vrdLines() const { return splitLines(QString::fromUtf8(test::readFile(reportDefinitionPath(home)))); }
};

const std::vector<QStringList> kRows{{QStringLiteral("Sant'Elia a Pianisi"), QString(), QStringLiteral("7,25")},
                                     {QStringLiteral("Aosta"), QStringLiteral("AO"), QStringLiteral("3,5")}};

QList<ReportColumn> columns(int n)
{
    const QList<ReportColumn> all{{QStringLiteral("LABEL"), QStringLiteral("Nome")},
                                  {QStringLiteral("PROV"), QStringLiteral("Provincia")},
                                  {QStringLiteral("I001"), QStringLiteral("Indicatore")}};
    return all.mid(0, n);
}

} // namespace

class TestTableReport : public QObject
{
    Q_OBJECT
private slots:
    void definitionIsWrittenLineByLine()
    {
        const QStringList l = reportDefinitionLines(QStringLiteral("/h/dati/mervola.sqlite"), columns(1),
                                                    {QStringLiteral("[Style Title]"), QStringLiteral("Size = 14")});
        const QStringList expected{"[General]",
                                   "Version = VideoSoft Data Reporter (VB5/DAO) (6.0.1)",
                                   "",
                                   "[RecordSource]",
                                   "DataBaseName = /h/dati/mervola.sqlite",
                                   "RecordSource = TempRpt",
                                   "",
                                   "[GlobalInfo]",
                                   "ReportTitle = Mervola",
                                   "Align = 0",
                                   "Header = <db>|<rs>|Page <p> of <n>",
                                   "Footer =  | |<tt>, <ddd>",
                                   "Columns = 1",
                                   "PageBorders = 0",
                                   "Top = 1440",
                                   "Bottom = 1440",
                                   "Left = 1440",
                                   "Right = 720",
                                   "SubtotalPosition = 0",
                                   "WordWrap = True",
                                   "WidowOK = False",
                                   "MaxHeight = 2880",
                                   "Orientation = 0",
                                   "[Style Title]",
                                   "Size = 14",
                                   "",
                                   "[Fields]",
                                   "Count = 1",
                                   "",
                                   "[Field 1]",
                                   "ID = LABEL",
                                   "Title = Nome",
                                   "Sort = 1",
                                   "Align = 0",
                                   "Format =",
                                   "Aggregate = 0",
                                   "Width = 0",
                                   "",
                                   "[Headers]",
                                   "Count = 0",
                                   "",
                                   "[Detail]",
                                   "Count = 1",
                                   "Field1 = LABEL",
                                   ""};
        QCOMPARE(l, expected);
    }

    void countsFollowTheColumns_data()
    {
        QTest::addColumn<int>("n");
        QTest::newRow("no visible field") << 0;
        QTest::newRow("three") << 3;
    }
    void countsFollowTheColumns()
    {
        QFETCH(int, n);
        const QStringList l = reportDefinitionLines(QStringLiteral("db"), columns(n), {});
        const QString count = QStringLiteral("Count = %1").arg(n);
        QCOMPARE(l.at(l.indexOf(QStringLiteral("[Fields]")) + 1), count);
        QCOMPARE(l.at(l.indexOf(QStringLiteral("[Detail]")) + 1), count);
        QCOMPARE(l.filter(QRegularExpression(QStringLiteral("^\\[Field \\d+\\]$"))).size(), n);
        auto parsed = parseReportDefinition(l.join(QLatin1Char('\n')));
        QVERIFY(parsed.ok());
        QCOMPARE(parsed->detail.size(), n);
        QCOMPARE(parsed->footer, QStringLiteral(" | |<tt>, <ddd>"));
        QCOMPARE(parsed->recordSource, QStringLiteral("TempRpt"));
    }

    void orientationSwapsTheFile()
    {
        Home h;
        QVERIFY(writeReportDefinition(h.home, columns(2)).ok());
        const QStringList before = h.vrdLines();
        QVERIFY(before.contains(QStringLiteral("Bold = True"))); // style lines copied as they stand
        QVERIFY(setReportOrientation(h.home, ReportOrientation::Landscape).ok());
        QStringList after = h.vrdLines();
        QCOMPARE(after.size(), before.size());
        QVERIFY(after.contains(QStringLiteral("Orientation = 1")));
        after.replace(after.indexOf(QStringLiteral("Orientation = 1")), QStringLiteral("Orientation = 0"));
        QCOMPARE(after, before);
        QVERIFY(!QFile::exists(reportDefinitionNewPath(h.home)));
        auto def = loadReportDefinition(reportDefinitionPath(h.home));
        QVERIFY(def.ok());
        QCOMPARE(def->orientation, ReportOrientation::Landscape);
        QVERIFY(def->style(QStringLiteral("header")).bold);
    }
    void orientationWithoutDefinitionFails()
    {
        Home h;
        QVERIFY(!setReportOrientation(h.home, ReportOrientation::Portrait).ok());
    }

    void workTableHoldsTextAndDashes()
    {
        Home h;
        QVERIFY(prepareTableReport(h.home, columns(3), kRows).ok());
        auto doc = ReportDocument::load(h.home);
        QVERIFY2(doc.ok(), qPrintable(doc.errorMessage()));
        QCOMPARE(doc->rows().size(), size_t(2));
        QCOMPARE(doc->rows()[0], (QStringList{"Sant'Elia a Pianisi", "-", "7,25"}));
        // Printing again with fewer columns and rows replaces everything.
        QVERIFY(prepareTableReport(h.home, columns(1), {QStringList{QStringLiteral("Aosta")}}).ok());
        auto again = ReportDocument::load(h.home);
        QVERIFY(again.ok());
        QCOMPARE(again->rows().size(), size_t(1));
        QCOMPARE(again->rows()[0], QStringList{"Aosta"});
        auto cols = ReferenceDb(h.home).query(QStringLiteral("SELECT * FROM TempRpt"));
        QVERIFY(cols.ok());
        QCOMPARE(cols->columns, QStringList{"LABEL"});
        QCOMPARE(h.vrdLines().filter(QStringLiteral("Count = 1")).size(), 2);
    }
    void lockedReferenceDatabaseIsReported()
    {
        Home h;
        auto holder = SqliteDb::open(h.home.referenceDb());
        QVERIFY(holder.ok());
        QVERIFY(holder->exec(QStringLiteral("BEGIN EXCLUSIVE")).ok());
        const Status s = fillTempRpt(ReferenceDb(h.home), {QStringLiteral("LABEL")}, {QStringList{"x"}});
        QVERIFY(!s.ok());
        QCOMPARE(s.errorMessage(), reporttext::kCloseReferenceDb);
        QVERIFY(holder->exec(QStringLiteral("ROLLBACK")).ok());
    }

    void placeholders_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("header") << QStringLiteral("<db>|<rs>|Page <p> of <n>")
                                << QStringLiteral("mervola.sqlite|TempRpt|Page 2 of 7");
        QTest::newRow("footer") << QStringLiteral(" | |<tt>, <ddd>")
                                << QStringLiteral(" | |09:05, sabato 21 novembre 2026");
        QTest::newRow("plain") << QStringLiteral("Mervola") << QStringLiteral("Mervola");
    }
    void placeholders()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const ReportContext c{QStringLiteral("mervola.sqlite"), QStringLiteral("TempRpt"), 2, 7,
                              QDateTime(QDate(2026, 11, 21), QTime(9, 5))};
        QCOMPARE(substitutePlaceholders(text, c), expected);
    }

    void pagesFollowTheOrientation()
    {
        ReportDefinition def;
        def.recordSource = QStringLiteral("TempRpt");
        def.fields = columns(2);
        def.detail = {QStringLiteral("LABEL"), QStringLiteral("PROV")};
        std::vector<QStringList> rows;
        for (int i = 0; i < 300; ++i)
            rows.push_back({QStringLiteral("Comune %1").arg(i), QStringLiteral("P%1").arg(i % 7)});
        ReportDocument portrait(def, rows);
        def.orientation = ReportOrientation::Landscape;
        ReportDocument landscape(def, rows);
        QVERIFY(portrait.pageCount() > 1);
        QVERIFY(landscape.pageCount() > portrait.pageCount());
        QVERIFY(landscape.pageSizeTwips().width() > landscape.pageSizeTwips().height());
        const QImage page = portrait.pageImage(portrait.pageCount() - 1, 50);
        QCOMPARE(page.size(), QSize(414, 585));
        int inked = 0;
        for (int y = 0; y < page.height(); ++y)
            for (int x = 0; x < page.width(); ++x)
                inked += page.pixel(x, y) != qRgb(255, 255, 255);
        QVERIFY(inked > 200);                                                           // header, titles, rows
        QCOMPARE(page.pixel(page.width() - 2, page.height() / 2), qRgb(255, 255, 255)); // right margin
        ReportDocument empty(def, {});
        QCOMPARE(empty.pageCount(), 1); // the titles still print
    }
    // Every value reaches the PDF as text: Latin letters with accents, set
    // straight from the font, and other scripts, which go through shaping.
    void pdfIsWritten()
    {
        Home h;
        std::vector<QStringList> rows = kRows;
        rows.push_back({QStringLiteral("Forlì"), QStringLiteral("FC"), QStringLiteral("228,2")});
        rows.push_back({QStringLiteral("Ελλάδα"), QStringLiteral("GR"), QStringLiteral("0,5")});
        QVERIFY(prepareTableReport(h.home, columns(3), rows).ok());
        QVERIFY(setReportOrientation(h.home, ReportOrientation::Landscape).ok());
        auto doc = ReportDocument::load(h.home);
        QVERIFY(doc.ok());
        const QString pdf = h.dir.path() + QStringLiteral("/tabella.pdf");
        QVERIFY(doc->writePdf(pdf).ok());
        QVERIFY(test::readFile(pdf).startsWith("%PDF"));
        QString text;
        QCOMPARE(
            test::runProgram(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")}, &text),
            0);
        for (const char *value : {"Sant'Elia a Pianisi", "Forlì", "228,2", "Ελλάδα", "7,25"})
            QVERIFY2(text.contains(QString::fromUtf8(value)), value);
        QVERIFY(!QFileInfo::exists(pdf + QStringLiteral(".part")));
    }

    // A long table goes in by chunks of 1,000 rows, each reported, in order;
    // a stop asked after a chunk ends the work with "Stampa annullata.", and
    // a stopped PDF leaves no file behind.
    void longReportShowsProgressAndStops()
    {
        Home h;
        std::vector<QStringList> rows;
        for (int i = 0; i < 2500; ++i)
            rows.push_back({QStringLiteral("Comune %1").arg(i), QString(), QString::number(i)});
        QList<QPair<int, int>> steps;
        QVERIFY(prepareTableReport(h.home, columns(3), rows, [&steps](int done, int total) {
                    steps.append({done, total});
                    return true;
                }).ok());
        QCOMPARE(steps, (QList<QPair<int, int>>{{1000, 2500}, {2000, 2500}, {2500, 2500}}));
        auto doc = ReportDocument::load(h.home);
        QVERIFY(doc.ok());
        QCOMPARE(doc->rows().size(), size_t(2500));
        QCOMPARE(doc->rows()[1999], (QStringList{"Comune 1999", "-", "1999"}));

        const Status stopped = prepareTableReport(h.home, columns(3), rows, [](int, int) { return false; });
        QCOMPARE(stopped.errorMessage(), QStringLiteral("Stampa annullata."));

        const QString pdf = h.dir.path() + QStringLiteral("/lungo.pdf");
        int pages = 0;
        const Status halted = doc->writePdf(pdf, [&pages](int done, int) {
            pages = done;
            return done < 2;
        });
        QCOMPARE(halted.errorMessage(), QStringLiteral("Stampa annullata."));
        QCOMPARE(pages, 2);
        QVERIFY(!QFileInfo::exists(pdf));
        QVERIFY(!QFileInfo::exists(pdf + QStringLiteral(".part")));
    }
};

QTEST_MAIN(TestTableReport)
#include "test_table_report.moc"
