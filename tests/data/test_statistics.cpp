// Statistics of a column over the records the attribute window shows.
#include "data/Statistics.h"
#include "platform/dbf/DbfFolder.h"

#include <QtTest>
#include <cmath>

using namespace mervola;

Q_DECLARE_METATYPE(QList<DbfField>)

namespace
{

// A table "temi" with Label, a numeric column VAL and non-numeric columns.
QString writeFixture(const QTemporaryDir &dir, const QVariantList &values)
{
    DbfTable t;
    t.fields = {{QStringLiteral("Label"), DbfType::Text, 30, 0}, {QStringLiteral("VAL"), DbfType::Numeric, 12, 3},
                {QStringLiteral("NOME"), DbfType::Text, 10, 0},  {QStringLiteral("FLAG"), DbfType::Logical, 1, 0},
                {QStringLiteral("GIORNO"), DbfType::Date, 8, 0}, {QStringLiteral("RAPPORTO"), DbfType::Float, 14, 4}};
    for (int i = 0; i < values.size(); ++i)
        t.rows.push_back(
            {QStringLiteral("E%1").arg(i), values[i], QStringLiteral("x"), true, QDate(2020, 1, 1 + i), 0.5 * i});
    const QString path = dir.path() + QStringLiteral("/temi.dbf");
    return writeDbf(path, t).ok() ? path : QString();
}

StatisticsRequest request(const QTemporaryDir &dir, const QString &field, const QString &filter = {})
{
    return {dir.path(), QStringLiteral("temi"), filter, field, QStringLiteral("Valore")};
}

} // namespace

class TestStatistics : public QObject
{
    Q_OBJECT
private slots:
    void statementsAreBuiltAsTheEngineExpects()
    {
        QCOMPARE(statisticsCountSql(QStringLiteral("commont.dbf"), QStringLiteral(" where I001 > 2")),
                 QStringLiteral("SELECT Count (*) AS records From commont.dbf where I001 > 2"));
        QCOMPARE(statisticsAggregateSql(QStringLiteral("I001"), QStringLiteral("t.dbf"), QString()),
                 QStringLiteral("SELECT sum([I001]) AS somma,min([I001]) AS minimo,max([I001]) AS massimo,"
                                "avg([I001]) AS medio,var([I001]) AS varianza,stdev([I001]) AS deviazione From t.dbf"));
    }

    void computes_data()
    {
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<int>("count");
        QTest::addColumn<QList<double>>("expected"); // sum, min, max, range, mean, variance, deviation
        const QVariant null;
        QTest::newRow("two records: divisor 1")
            << QVariantList{1.0, 3.0} << QString() << 2 << QList<double>{4, 1, 3, 2, 2, 2, std::sqrt(2.0)};
        QTest::newRow("one distinct value")
            << QVariantList{5.0, 5.0, 5.0} << QString() << 3 << QList<double>{15, 5, 5, 0, 5, 0, 0};
        QTest::newRow("all null") << QVariantList{null, null, null} << QString() << 3
                                  << QList<double>{0, 0, 0, 0, 0, 0, 0};
        QTest::newRow("nulls are not counted in aggregates")
            << QVariantList{null, 2.0, 4.0} << QString() << 3 << QList<double>{6, 2, 4, 2, 3, 2, std::sqrt(2.0)};
        QTest::newRow("sample variance n-1") << QVariantList{2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0} << QString() << 8
                                             << QList<double>{40, 2, 9, 7, 5, 32.0 / 7, std::sqrt(32.0 / 7)};
        QTest::newRow("negative values") << QVariantList{-1.5, 0.5} << QString() << 2
                                         << QList<double>{-1, -1.5, 0.5, 2, -0.5, 2, std::sqrt(2.0)};
        QTest::newRow("filter restricts count and aggregates")
            << QVariantList{1.0, 2.0, 3.0, 10.0} << QStringLiteral(" where [VAL] < 5") << 3
            << QList<double>{6, 1, 3, 2, 2, 1, 1};
        QTest::newRow("filter on the label, quoted")
            << QVariantList{7.0, 8.0, 9.0} << QStringLiteral(" WHERE Label <> 'E1'") << 2
            << QList<double>{16, 7, 9, 2, 8, 2, std::sqrt(2.0)};
        QTest::newRow("filter matching nothing") << QVariantList{1.0, 2.0} << QStringLiteral(" where [VAL] > 100") << 0
                                                 << QList<double>{0, 0, 0, 0, 0, 0, 0};
    }
    void computes()
    {
        QFETCH(QVariantList, values);
        QFETCH(QString, filter);
        QFETCH(int, count);
        QFETCH(QList<double>, expected);
        QTemporaryDir dir;
        QVERIFY(!writeFixture(dir, values).isEmpty());
        QList<int> steps;
        auto s = computeStatistics(request(dir, QStringLiteral("val"), filter), [&](int done) { steps << done; });
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QCOMPARE(s->caption, QStringLiteral("Valore"));
        QCOMPARE(s->count, count);
        const QList<double> got{s->sum, s->minimum, s->maximum, s->range, s->mean, s->variance, s->deviation};
        for (int i = 0; i < got.size(); ++i)
            QVERIFY2(std::abs(got[i] - expected[i]) < 1e-9,
                     qPrintable(
                         QStringLiteral("%1: %2 != %3").arg(statisticsRowNames()[i + 1]).arg(got[i]).arg(expected[i])));
        QCOMPARE(steps, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    }

    void refusesColumnsWithoutNumbers_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("code");
        QTest::newRow("text") << QStringLiteral("NOME") << kStatErrorNotNumeric;
        QTest::newRow("logical") << QStringLiteral("FLAG") << kStatErrorNotNumeric;
        QTest::newRow("date") << QStringLiteral("GIORNO") << kStatErrorNotNumeric;
        QTest::newRow("missing field") << QStringLiteral("NESSUNO") << kStatErrorNotNumeric;
        QTest::newRow("no column") << QString() << kStatErrorNoColumn;
    }
    void refusesColumnsWithoutNumbers()
    {
        QFETCH(QString, field);
        QFETCH(int, code);
        QTemporaryDir dir;
        QVERIFY(!writeFixture(dir, {1.0, 2.0}).isEmpty());
        auto s = computeStatistics(request(dir, field));
        QVERIFY(!s.ok());
        QCOMPARE(s.error().code, code);
        if (code == kStatErrorNotNumeric)
            QCOMPARE(
                s.errorMessage(),
                QStringLiteral("Impossibile calcolare le statistiche.\nLa colonna selezionata non contiene numeri."));
    }

    void floatColumnIsNumeric()
    {
        QTemporaryDir dir;
        QVERIFY(!writeFixture(dir, {1.0, 2.0, 3.0}).isEmpty());
        auto s = computeStatistics(request(dir, QStringLiteral("RAPPORTO")));
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QCOMPARE(s->sum, 1.5);
        QCOMPARE(s->variance, 0.25);
    }

    void missingTableIsADatabaseError()
    {
        QTemporaryDir dir;
        auto s =
            computeStatistics({dir.path(), QStringLiteral("assente"), QString(), QStringLiteral("VAL"), QString()});
        QVERIFY(!s.ok());
        QCOMPARE(s.error().code == kStatErrorNotNumeric, false);
    }

    void commandRefusals_data()
    {
        QTest::addColumn<int>("records");
        QTest::addColumn<QList<DbfField>>("fields");
        QTest::addColumn<QString>("message");
        const DbfField text{QStringLiteral("Label"), DbfType::Text, 10, 0};
        const DbfField number{QStringLiteral("I001"), DbfType::Numeric, 10, 2};
        const DbfField dummy{QStringLiteral("DUMMY"), DbfType::Numeric, 10, 0};
        QTest::newRow("one record") << 1 << QList<DbfField>{text, number} << StatText::kTooFewRecords;
        QTest::newRow("empty table") << 0 << QList<DbfField>{number} << StatText::kTooFewRecords;
        QTest::newRow("only text") << 5 << QList<DbfField>{text} << StatText::kNoNumericData;
        QTest::newRow("DUMMY is no data") << 5 << QList<DbfField>{text, dummy} << StatText::kNoNumericData;
        QTest::newRow("two records and a number") << 2 << QList<DbfField>{text, number} << QString();
    }
    void commandRefusals()
    {
        QFETCH(int, records);
        QFETCH(QList<DbfField>, fields);
        QFETCH(QString, message);
        QCOMPARE(checkStatisticsAllowed(records, fields).errorMessage(), message);
    }

    void valueTexts_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("decimal comma") << 0.5 << QStringLiteral("0,5");
        QTest::newRow("no grouping") << 1234567.0 << QStringLiteral("1234567");
        QTest::newRow("whole") << 2.0 << QStringLiteral("2");
        QTest::newRow("negative zero") << -0.0 << QStringLiteral("0");
        QTest::newRow("negative") << -12.25 << QStringLiteral("-12,25");
        QTest::newRow("binary noise of a sum") << 13627.486700000003 << QStringLiteral("13627,4867");
        QTest::newRow("fifteen digits") << 412.95414242424243 << QStringLiteral("412,954142424242");
        QTest::newRow("small") << 0.000125 << QStringLiteral("0,000125");
    }
    void valueTexts()
    {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(statisticsNumberText(value), text);
    }

    void gridTextsAndCaption()
    {
        ColumnStatistics s;
        s.count = 3;
        s.mean = 1.5;
        const QStringList values = statisticsValueTexts(s);
        QCOMPARE(values.size(), statisticsRowNames().size());
        QCOMPARE(values[0], QStringLiteral("3"));
        QCOMPARE(values[5], QStringLiteral("1,5"));
        QCOMPARE(statisticsRowNames().last(), QStringLiteral("deviazione std."));
        QCOMPARE(statisticsCaption(QStringLiteral("Tabella commont")),
                 QStringLiteral("Statistiche su TABELLA COMMONT"));
    }
};

QTEST_GUILESS_MAIN(TestStatistics)
#include "test_statistics.moc"
