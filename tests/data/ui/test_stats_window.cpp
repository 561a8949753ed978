// The statistics window, the chart panel and the chart window, offscreen.
#include "data/AttributeTable.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmStatistiche.h"
#include "platform/Messages.h"

#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QLabel>
#include <QPieSeries>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QtTest>

using namespace mervola;

namespace
{

DbfTable communities(int rows)
{
    DbfTable t;
    t.fields = {{QStringLiteral("PROG_MONT"), DbfType::Text, 8, 0},
                {QStringLiteral("Label"), DbfType::Text, 40, 0},
                {QStringLiteral("I001"), DbfType::Numeric, 12, 2},
                {QStringLiteral("COD_REG"), DbfType::Text, 2, 0}};
    for (int i = 0; i < rows; ++i)
        t.rows.push_back({QStringLiteral("%1").arg(i, 5, 10, QLatin1Char('0')), QStringLiteral("Comunità %1").arg(i),
                          double(i + 1), QStringLiteral("01")});
    return t;
}

QList<int> firstRows(int n)
{
    QList<int> out;
    for (int i = 0; i < n; ++i)
        out << i;
    return out;
}

} // namespace

class TestStatsWindow : public QObject
{
    Q_OBJECT
private slots:
    void statisticsWindowShowsTheColumn()
    {
        QTemporaryDir dir;
        QVERIFY(writeDbf(dir.path() + QStringLiteral("/commont.dbf"), communities(4)).ok());
        MessageRecorder messages;
        QPointer<FrmStatistiche> w =
            openStatistics(nullptr,
                           {dir.path(), QStringLiteral("commont"), QStringLiteral(" where [I001] > 1"),
                            QStringLiteral("I001"), QStringLiteral("Superficie")},
                           QStringLiteral("Tabella commont"));
        QVERIFY(w);
        QVERIFY(messages.entries().isEmpty());
        QCOMPARE(w->windowTitle(), QStringLiteral("Statistiche su TABELLA COMMONT"));
        auto *grid = w->findChild<QTableWidget *>(QStringLiteral("flxgrdStat"));
        QVERIFY(grid);
        QCOMPARE(grid->columnCount(), 2);
        QCOMPARE(grid->columnWidth(0), 1500 * w->logicalDpiX() / 1440);
        QStringList names, values;
        for (int r = 0; r < grid->rowCount(); ++r) {
            names << grid->item(r, 0)->text();
            values << grid->item(r, 1)->text();
        }
        QCOMPARE(names, statisticsRowNames());
        // Values 2, 3, 4 (the filter drops 1): sample variance 1.
        QCOMPARE(values, (QStringList{"3", "9", "2", "4", "2", "3", "1", "1"}));
        QCOMPARE(grid->item(0, 0)->background().color(), QColor(0xC0, 0xDC, 0xC0));
        QTest::mouseClick(w->findChild<QPushButton *>(QStringLiteral("cmdOk")), Qt::LeftButton);
        QTRY_VERIFY(!w); // deleted on close
    }

    void attributeWindowStateOpensBothWindows()
    {
        QTemporaryDir dir;
        QVERIFY(writeDbf(dir.path() + QStringLiteral("/commont.dbf"), communities(6)).ok());
        DbfWindowState state;
        state.folder = dir.path();
        state.table = QStringLiteral("commont");
        state.filter = QStringLiteral(" WHERE [I001] <= 3");
        state.column = 2; // I001
        state.caption = QStringLiteral("Tabella Comunità montane");
        state.visibleFields = QStringList{"PROG_MONT", "Label", "I001"};
        state.visibleCaptions = QStringList{"PROG_MONT", "Label", "Superficie"};
        state.selectedRecords = {5, 1};
        MessageRecorder messages;
        std::unique_ptr<FrmStatistiche> stats(openStatisticsFor(nullptr, state));
        QVERIFY(stats);
        QCOMPARE(stats->windowTitle(), QStringLiteral("Statistiche su TABELLA COMUNITÀ MONTANE"));
        QCOMPARE(stats->grid()->item(0, 1)->text(), QStringLiteral("3")); // the filter holds
        QCOMPARE(stats->findChild<QLabel *>(QStringLiteral("lblColonna"))->text(), QStringLiteral("Colonna: Superficie"));

        std::unique_ptr<FrmGrafico> chart(openChartFor(nullptr, state, QStringLiteral("I001"), 0, false));
        QVERIFY(chart);
        QCOMPARE(chart->chartView()->chart()->title(), QStringLiteral("Superficie"));
        QCOMPARE(chart->chartView()->chart()->series().size(), 1);
        QVERIFY(messages.entries().isEmpty());

        state.column = -1;
        QVERIFY(!openStatisticsFor(nullptr, state));
        QCOMPARE(messages.entries().size(), 1);
    }

    void textColumnIsRefusedWithTheExclamationBox()
    {
        QTemporaryDir dir;
        QVERIFY(writeDbf(dir.path() + QStringLiteral("/commont.dbf"), communities(3)).ok());
        MessageRecorder messages;
        FrmStatistiche *w = openStatistics(
            nullptr,
            {dir.path(), QStringLiteral("commont"), QString(), QStringLiteral("COD_REG"), QStringLiteral("COD_REG")},
            QStringLiteral("Tabella commont"));
        QVERIFY(!w);
        QCOMPARE(messages.entries().size(), 1);
        QCOMPARE(messages.entries()[0].style, MsgStyle::Exclamation);
        QCOMPARE(messages.entries()[0].text, StatText::kColumnNotNumeric);
    }

    void chartRefusals_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("message");
        QTest::newRow("no indicator") << QString() << 3 << 0 << ChartText::kNoIndicator;
        QTest::newRow("eleven rows before the type") << QStringLiteral("I001") << 11 << 4 << ChartText::kTooManyRows;
        QTest::newRow("no row") << QStringLiteral("I001") << 0 << 0 << ChartText::kNoRows;
        QTest::newRow("six in a pie") << QStringLiteral("I001") << 6 << 4 << ChartText::kPieTooMany;
        QTest::newRow("type beyond the list draws nothing") << QStringLiteral("I001") << 3 << 7 << QString();
    }
    void chartRefusals()
    {
        QFETCH(QString, field);
        QFETCH(int, rows);
        QFETCH(int, type);
        QFETCH(QString, message);
        MessageRecorder messages;
        QVERIFY(!openChart(nullptr, communities(12), field, QString(), firstRows(rows), type, false));
        if (message.isEmpty()) {
            QVERIFY(messages.entries().isEmpty());
        } else {
            QCOMPARE(messages.entries().size(), 1);
            QCOMPARE(messages.entries()[0].style, MsgStyle::Information);
            QCOMPARE(messages.entries()[0].text, message);
        }
    }

    void pieOfFiveSwitchesToPercentages()
    {
        MessageRecorder messages;
        QPointer<FrmGrafico> w = openChart(nullptr, communities(12), QStringLiteral("I001"),
                                           QStringLiteral("Superficie"), {4, 0, 1, 2, 3}, 4, false);
        QVERIFY(w);
        QVERIFY(w->windowTitle().startsWith(QStringLiteral("Mervola - ")));
        auto pieLabels = [&w] {
            QStringList out;
            auto *pie = qobject_cast<QPieSeries *>(w->chartView()->chart()->series().value(0));
            for (QPieSlice *s : pie ? pie->slices() : QList<QPieSlice *>{})
                out << s->label();
            return out;
        };
        QCOMPARE(pieLabels().size(), 5);
        QCOMPARE(pieLabels().first(), QStringLiteral("Comunità 4: 5"));
        w->findChildren<QRadioButton *>(QStringLiteral("Option1")).at(1)->click();
        QCOMPARE(w->labelFormat(), LabelFormat::Percentages);
        QCOMPARE(pieLabels().first(), QStringLiteral("Comunità 4: 33%")); // 5 of 15
        w->setLabelFormat(LabelFormat::Values);                           // the option buttons follow
        QVERIFY(w->findChildren<QRadioButton *>(QStringLiteral("Option1")).at(0)->isChecked());
        QCOMPARE(pieLabels().first(), QStringLiteral("Comunità 4: 5"));
        w->close();
        QTRY_VERIFY(!w);
    }

    void flatTypesBuildTheirSeries_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("seriesType");
        QTest::addColumn<int>("seriesCount");
        QTest::newRow("Barre") << 0 << int(QAbstractSeries::SeriesTypeBar) << 1;
        QTest::newRow("Linee") << 1 << int(QAbstractSeries::SeriesTypeLine) << 1;
        QTest::newRow("Aree") << 2 << int(QAbstractSeries::SeriesTypeArea) << 1;
        QTest::newRow("Step") << 3 << int(QAbstractSeries::SeriesTypeLine) << 1;
    }
    void flatTypesBuildTheirSeries()
    {
        QFETCH(int, type);
        QFETCH(int, seriesType);
        QFETCH(int, seriesCount);
        MessageRecorder messages;
        std::unique_ptr<FrmGrafico> w(
            openChart(nullptr, communities(12), QStringLiteral("I001"), QString(), firstRows(10), type, false));
        QVERIFY(w);
        const auto series = w->chartView()->chart()->series();
        QCOMPARE(series.size(), seriesCount);
        QCOMPARE(int(series[0]->type()), seriesType);
    }

    void solidChartWithoutThreeDimensionsIsDrawnFlat()
    {
        MessageRecorder messages;
        std::unique_ptr<FrmGrafico> w(
            openChart(nullptr, communities(3), QStringLiteral("I001"), QString(), firstRows(3), 0, true));
        QVERIFY(w);
        QCOMPARE(messages.entries().size(), 1); // offscreen: no OpenGL
        QCOMPARE(messages.entries()[0].text, ChartText::kNo3d);
        QVERIFY(!w->isThreeD());
        QVERIFY(w->chartView());
    }

    void previewWithoutPrinterIsRefused()
    {
        if (!QPrinterInfo::availablePrinters().isEmpty())
            QSKIP("a printer is installed here");
        MessageRecorder messages;
        std::unique_ptr<FrmGrafico> w(
            openChart(nullptr, communities(3), QStringLiteral("I001"), QString(), firstRows(3), 0, false));
        QTest::mouseClick(w->findChild<QPushButton *>(QStringLiteral("cmd_preview")), Qt::LeftButton);
        QVERIFY(messages.contains(ChartText::kNoPrinter));
    }
};

QTEST_MAIN(TestStatsWindow)
#include "test_stats_window.moc"
