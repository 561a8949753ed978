// Chart types, refusals and the series of the selected rows.
#include "data/ChartData.h"

#include <QtTest>

using namespace mervola;

namespace
{

DbfTable fixture()
{
    DbfTable t;
    t.fields = {{QStringLiteral("PROG_MONT"), DbfType::Text, 8, 0}, {QStringLiteral("Label"), DbfType::Text, 40, 0},
                {QStringLiteral("I001"), DbfType::Numeric, 12, 2},  {QStringLiteral("I002"), DbfType::Numeric, 8, 0},
                {QStringLiteral("DUMMY"), DbfType::Numeric, 4, 0},  {QStringLiteral("DATA"), DbfType::Date, 8, 0}};
    t.rows.push_back({QStringLiteral("01001"), QStringLiteral("Alta Valle"), 12.5, 1200LL, 0LL, QDate(2020, 1, 1)});
    t.rows.push_back({QStringLiteral("01002"), QStringLiteral("Bassa Valle "), QVariant(), 300LL, 0LL, QDate()});
    t.rows.push_back({QStringLiteral("01003"), QStringLiteral("Val d'Ossola"), 2.0, 500LL, 0LL, QDate()});
    return t;
}

} // namespace

class TestChart : public QObject
{
    Q_OBJECT
private slots:
    void typeLists()
    {
        QCOMPARE(chartTypeNames(false), (QStringList{"Barre", "Linee", "Aree", "Step", "Torta"}));
        QCOMPARE(chartTypeNames(true), (QStringList{"Barre", "Linee", "Aree", "Step"}));
    }

    void typeCodes_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("threeD");
        QTest::addColumn<int>("code");
        const int flat[] = {1, 3, 5, 7, 14};
        const int solid[] = {0, 2, 4, 6};
        for (int i = 0; i < 5; ++i)
            QTest::addRow("flat %d", i) << i << false << flat[i];
        for (int i = 0; i < 4; ++i)
            QTest::addRow("solid %d", i) << i << true << solid[i];
        QTest::newRow("solid pie is not offered") << 4 << true << -1;
        QTest::newRow("beyond the list") << 5 << false << -1;
        QTest::newRow("no choice") << -1 << false << -1;
    }
    void typeCodes()
    {
        QFETCH(int, index);
        QFETCH(bool, threeD);
        QFETCH(int, code);
        QCOMPARE(chartKindAt(index, threeD).has_value(), code >= 0);
    }

    void refusals_data()
    {
        QTest::addColumn<bool>("indicator");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("message");
        QTest::newRow("no indicator first") << false << 11 << ChartText::kNoIndicator;
        QTest::newRow("eleven rows") << true << 11 << ChartText::kTooManyRows;
        QTest::newRow("ten rows") << true << 10 << QString();
        QTest::newRow("one row") << true << 1 << QString();
        QTest::newRow("no row") << true << 0 << ChartText::kNoRows;
    }
    void refusals()
    {
        QFETCH(bool, indicator);
        QFETCH(int, rows);
        QFETCH(QString, message);
        QCOMPARE(checkChartRequest(indicator, rows).errorMessage(), message);
    }

    void pieHoldsAtMostFive_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("ok");
        QTest::newRow("pie of six") << int(ChartKind::Pie) << 6 << false;
        QTest::newRow("pie of five") << int(ChartKind::Pie) << 5 << true;
        QTest::newRow("bars of ten") << int(ChartKind::Bars) << 10 << true;
    }
    void pieHoldsAtMostFive()
    {
        QFETCH(int, kind);
        QFETCH(int, rows);
        QFETCH(bool, ok);
        const Status s = checkChartKind(ChartKind(kind), rows);
        QCOMPARE(s.ok(), ok);
        if (!ok)
            QCOMPARE(s.errorMessage(),
                     QStringLiteral("E' possibile visualizzare al massimo 5 valori contemporaneamente"));
    }

    void seriesFollowsTheSelectionOrder()
    {
        auto s = chartSeries(fixture(), QStringLiteral("i001"), {2, 0, 1});
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QCOMPARE(s->field, QStringLiteral("I001"));
        QCOMPARE(s->points.size(), 3);
        QCOMPARE(s->points[0].label, QStringLiteral("Val d'Ossola"));
        QCOMPARE(*s->points[1].value, 12.5);
        QCOMPARE(s->points[1].valueText, QStringLiteral("12,5"));
        QVERIFY(!s->points[2].value.has_value()); // null stays empty
        QCOMPARE(s->points[2].label, QStringLiteral("Bassa Valle"));
        QCOMPARE(s->total(), 14.5);
        QVERIFY(s->hasDecimals());
    }

    void seriesRefusesFieldsWithoutNumbers()
    {
        QVERIFY(!chartSeries(fixture(), QStringLiteral("DATA"), {0}).ok());
        QVERIFY(!chartSeries(fixture(), QStringLiteral("Label"), {0}).ok());
        QVERIFY(!chartSeries(fixture(), QStringLiteral("NESSUNO"), {0}).ok());
    }

    void labels_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("format");
        QTest::addColumn<QStringList>("labels");
        QTest::newRow("whole values") << QStringLiteral("I002") << int(LabelFormat::Values)
                                      << QStringList{"Alta Valle: 1200", "Bassa Valle: 300", "Val d'Ossola: 500"};
        QTest::newRow("decimal values, null alone")
            << QStringLiteral("I001") << int(LabelFormat::Values)
            << QStringList{"Alta Valle: 13", "Bassa Valle", "Val d'Ossola: 2"};
        QTest::newRow("percentages of the total")
            << QStringLiteral("I002") << int(LabelFormat::Percentages)
            << QStringList{"Alta Valle: 60%", "Bassa Valle: 15%", "Val d'Ossola: 25%"};
    }
    void labels()
    {
        QFETCH(QString, field);
        QFETCH(int, format);
        QFETCH(QStringList, labels);
        auto s = chartSeries(fixture(), field, {0, 1, 2});
        QVERIFY(s.ok());
        QStringList got;
        for (const ChartPoint &p : s->points)
            got << chartPointLabel(p, *s, LabelFormat(format));
        QCOMPARE(got, labels);
    }

    void labelFormats()
    {
        // "#,##" (the series has decimals): thousands grouped, no decimals.
        ChartSeries decimals;
        decimals.points << ChartPoint{QStringLiteral("A"), 1234567.5, QStringLiteral("1234567,5")};
        QCOMPARE(chartValueText(1234567.4, decimals, LabelFormat::Values), QStringLiteral("1.234.567"));
        // "#": the plain whole number.
        ChartSeries whole;
        whole.points << ChartPoint{QStringLiteral("A"), 1234567, QStringLiteral("1234567")};
        QCOMPARE(chartValueText(1234567, whole, LabelFormat::Values), QStringLiteral("1234567"));
    }
};

QTEST_GUILESS_MAIN(TestChart)
#include "test_chart.moc"
