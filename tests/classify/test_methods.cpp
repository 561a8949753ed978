// Quantile, regular-interval and unique-value classes over in-memory columns.
#include "classify/ClassItems.h"
#include "classify/ClassifyTexts.h"
#include "classify/Methods.h"
#include "platform/Messages.h"

#include <QtTest>
#include <cmath>

using namespace mervola;
using namespace mervola::classify;

namespace {

const double N = std::nan("");

FieldColumn numbers(const QList<double> &values)
{
    FieldColumn c;
    c.name = QStringLiteral("I010");
    c.numbers.assign(values.begin(), values.end());
    return c;
}

FieldColumn range(int from, int to)
{
    QList<double> v;
    for (int i = from; i <= to; ++i)
        v << i;
    return numbers(v);
}

QList<double> uppers(const Classification &c)
{
    QList<double> out;
    for (const ClassRange &r : c.classes)
        out << r.upper;
    return out;
}

QList<int> counts(const Classification &c)
{
    QList<int> out;
    for (const ClassRange &r : c.classes)
        out << r.count;
    return out;
}

QStringList valueTexts(const Classification &c)
{
    QStringList out;
    for (const ClassRange &r : c.classes)
        out << r.valueText;
    return out;
}

}  // namespace

class TestMethods : public QObject {
    Q_OBJECT
private slots:
    void quantileBreaks_data();
    void quantileBreaks();
    void quantileLowerLimits_data();
    void quantileLowerLimits();
    void regularIntervals_data();
    void regularIntervals();
    void regularIntervalsWithoutNumbersDoNothing();
    void sizeGates_data();
    void sizeGates();
    void uniqueTextValuesSortWithoutCase();
    void countsFollowTheMapsColouring_data();
    void countsFollowTheMapsColouring();
};

void TestMethods::quantileBreaks_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<int>("classes");
    QTest::addColumn<QList<double>>("breaks");
    QTest::addColumn<QList<int>>("counts");

    QList<double> ten, eleven, twelveWithNulls;
    for (int i = 1; i <= 10; ++i)
        ten << i;
    eleven = ten;
    eleven << 11;
    twelveWithNulls << N << N << ten;

    // 10 records in 5 classes: first move 1, then 2 -> two per class.
    QTest::newRow("10 values, 5 classes") << ten << 5 << QList<double>{2, 4, 6, 8, 10} << QList<int>{2, 2, 2, 2, 2};
    // 11 records: every move 2 -> the first class takes three.
    QTest::newRow("11 values, 5 classes") << eleven << 5 << QList<double>{3, 5, 7, 9, 11} << QList<int>{3, 2, 2, 2, 2};
    // 12 records, 2 Null: n = 10, step 2, 12 multiple of 4 -> first move 1.
    QTest::newRow("12 records, 2 null, 4 classes")
        << twelveWithNulls << 4 << QList<double>{2, 4, 6, 10} << QList<int>{2, 2, 2, 4};
    QTest::newRow("more classes than records") << QList<double>{7, 3, 5} << 6 << QList<double>{3, 5, 7}
                                               << QList<int>{1, 1, 1};
    QTest::newRow("more classes than records, with nulls")
        << QList<double>{N, 3, N, 1, 2} << 9 << QList<double>{1, 2, 3} << QList<int>{1, 1, 1};
    // The run of 3s stays in the class whose break it equals; 4, 5, 6 are
    // shared again among the classes left; no empty class at the end.
    QTest::newRow("run of equal values across a break")
        << QList<double>{1, 2, 3, 3, 3, 3, 3, 4, 5, 6} << 5 << QList<double>{2, 3, 5, 6} << QList<int>{2, 5, 2, 1};
    QTest::newRow("many equal values give fewer classes")
        << QList<double>{1, 1, 1, 1, 1, 1, 1, 1, 2, 3} << 4 << QList<double>{1, 2, 3} << QList<int>{8, 1, 1};
    QTest::newRow("run reaching the last record ends the classes")
        << QList<double>{1, 5, 5, 5, 5, 5} << 3 << QList<double>{5} << QList<int>{6};
    QTest::newRow("one class") << ten << 1 << QList<double>{10} << QList<int>{10};
    QTest::newRow("all equal") << QList<double>{4, 4, 4, 4} << 3 << QList<double>{4} << QList<int>{4};
}

void TestMethods::quantileBreaks()
{
    QFETCH(QList<double>, values);
    QFETCH(int, classes);
    QFETCH(QList<double>, breaks);
    QFETCH(QList<int>, counts);
    MessageRecorder rec;
    const ClassifyOutcome o = methodById(kQuantile)->classes(numbers(values), classes, 0);
    QVERIFY(o.ok());
    QCOMPARE(uppers(o.classification), breaks);
    QCOMPARE(::counts(o.classification), counts);
    QVERIFY(rec.entries().isEmpty());
    QCOMPARE(o.classification.method, kQuantile);
}

void TestMethods::quantileLowerLimits_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("whole break + 1") << QList<double>{10, 12, 14, 16} << QStringList{"10 - 12", "13 - 16"};
    QTest::newRow("decimal break + 0,1") << QList<double>{10, 12.5, 14, 16} << QStringList{"10 - 12,5", "12,6 - 16"};
    QTest::newRow("negative decimal") << QList<double>{-3.25, -1.5, 0, 2} << QStringList{"-3,25 - -1,5", "-1,4 - 2"};
}

void TestMethods::quantileLowerLimits()
{
    QFETCH(QList<double>, values);
    QFETCH(QStringList, texts);
    const ClassifyOutcome o = methodById(kQuantile)->classes(numbers(values), 2, 0);
    QVERIFY(o.ok());
    QCOMPARE(valueTexts(o.classification), texts);
    for (const ClassRange &r : o.classification.classes)
        QCOMPARE(r.label, r.valueText);
}

void TestMethods::regularIntervals_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<int>("classes");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QList<int>>("counts");
    QTest::newRow("0.5 .. 3.7 in 3: whole breaks, no increment")
        << QList<double>{0.5, 1.2, 2.0, 2.5, 3.7, N} << 3 << QStringList{"0,5 - 1", "1 - 2", "2 - 3,7"}
        << QList<int>{1, 2, 2};
    QTest::newRow("one class spans min to max") << QList<double>{4, 9, 7} << 1 << QStringList{"4 - 9"}
                                                << QList<int>{3};
    QTest::newRow("negative range floors down") << QList<double>{-10, 0} << 4
                                                << QStringList{"-10 - -8", "-8 - -5", "-5 - -3", "-3 - 0"}
                                                << QList<int>{1, 0, 0, 1};
}

void TestMethods::regularIntervals()
{
    QFETCH(QList<double>, values);
    QFETCH(int, classes);
    QFETCH(QStringList, texts);
    QFETCH(QList<int>, counts);
    const ClassifyOutcome o = methodById(kRegolari)->classes(numbers(values), classes, 2);
    QVERIFY(o.ok());
    QCOMPARE(valueTexts(o.classification), texts);
    QCOMPARE(::counts(o.classification), counts);
    QCOMPARE(o.classification.methodIndex, int(MethodRegolari));
}

void TestMethods::regularIntervalsWithoutNumbersDoNothing()
{
    MessageRecorder rec;
    const ClassifyOutcome o = methodById(kRegolari)->classes(numbers({N, N}), 4, 0);
    QCOMPARE(o.status, ClassifyStatus::NoData);
    QVERIFY(o.classification.isEmpty());
    QVERIFY(rec.entries().isEmpty());
}

void TestMethods::sizeGates_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("distinct");
    QTest::addColumn<int>("classes");
    QTest::addColumn<QList<int>>("answers");  // scripted answers, empty = default button
    QTest::addColumn<int>("style");           // style of the box shown, -1 none
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("resultClasses");

    const int question = MsgStyle::YesNo | MsgStyle::Exclamation;
    const int ok = int(ClassifyStatus::Done);
    QTest::newRow("unique: 50 pass silently") << kUnico << 50 << 0 << QList<int>{} << -1 << QString() << ok << 50;
    QTest::newRow("unique: 51 ask, No by default")
        << kUnico << 51 << 0 << QList<int>{} << (question | MsgStyle::DefaultButton2) << texts::kManyValuesUnique
        << int(ClassifyStatus::Declined) << 0;
    QTest::newRow("unique: 51 ask, Yes goes on")
        << kUnico << 51 << 0 << QList<int>{int(MsgAnswer::Yes)} << (question | MsgStyle::DefaultButton2)
        << texts::kManyValuesUnique << ok << 51;
    QTest::newRow("unique: 499 ask") << kUnico << 499 << 0 << QList<int>{int(MsgAnswer::Yes)}
                                     << (question | MsgStyle::DefaultButton2) << texts::kManyValuesUnique << ok << 499;
    QTest::newRow("unique: 500 refused") << kUnico << 500 << 0 << QList<int>{} << int(MsgStyle::Critical)
                                         << texts::kTooManyValues << int(ClassifyStatus::Refused) << 0;
    QTest::newRow("quantile: 50 classes pass") << kQuantile << 60 << 50 << QList<int>{} << -1 << QString() << ok
                                               << 50;
    QTest::newRow("quantile: 51 ask, Yes by default")
        << kQuantile << 60 << 51 << QList<int>{} << question << texts::kManyValuesQuantile << ok << 51;
    QTest::newRow("quantile: 51 ask, No stops") << kQuantile << 60 << 51 << QList<int>{int(MsgAnswer::No)}
                                                << question << texts::kManyValuesQuantile
                                                << int(ClassifyStatus::Declined) << 0;
    QTest::newRow("quantile: 500 refused") << kQuantile << 600 << 500 << QList<int>{} << int(MsgStyle::Critical)
                                           << texts::kTooManyValues << int(ClassifyStatus::Refused) << 0;
}

void TestMethods::sizeGates()
{
    QFETCH(QString, method);
    QFETCH(int, distinct);
    QFETCH(int, classes);
    QFETCH(QList<int>, answers);
    QFETCH(int, style);
    QFETCH(QString, text);
    QFETCH(int, status);
    QFETCH(int, resultClasses);
    MessageRecorder rec;
    for (int a : answers)
        rec.script(MsgAnswer(a));
    const ClassifyOutcome o = methodById(method)->classes(range(1, distinct), classes, 0);
    QCOMPARE(int(o.status), status);
    QCOMPARE(int(o.classification.classes.size()), resultClasses);
    if (style < 0) {
        QVERIFY(rec.entries().isEmpty());
    } else {
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].style, style);
        QCOMPARE(rec.entries()[0].text, text);
        QCOMPARE(rec.entries()[0].title, QStringLiteral("Mervola"));
    }
    // Restoring a saved classification never asks.
    rec.clear();
    const ClassifyOutcome silent = methodById(method)->classes(range(1, distinct), classes, 0, Questions::Silent);
    QVERIFY(silent.ok());
    QVERIFY(rec.entries().isEmpty());
}

void TestMethods::uniqueTextValuesSortWithoutCase()
{
    FieldColumn c;
    c.name = QStringLiteral("Label");
    c.numeric = false;
    c.texts = QStringList{QStringLiteral("bosco"), QStringLiteral("Alpe"), QString(), QStringLiteral("bosco"),
                          QStringLiteral("Valle")};
    const ClassifyOutcome o = methodById(kUnico)->classes(c, 0, 0);
    QVERIFY(o.ok());
    QCOMPARE(valueTexts(o.classification), (QStringList{"Alpe", "bosco", "Valle"}));
    QCOMPARE(counts(o.classification), (QList<int>{1, 2, 1}));
    QVERIFY(o.classification.uniqueValues);
    QCOMPARE(tipoValue(o.classification), kUnico);
}

// Each value is counted in the class the map colours it with: the first
// class whose upper limit is not below it, the last class above every limit.
void TestMethods::countsFollowTheMapsColouring_data()
{
    QTest::addColumn<QString>("classes");  // CLASSIFICAZIONE value texts, "|"-separated
    QTest::addColumn<bool>("unique");
    QTest::addColumn<QList<int>>("counts");
    // Values: 1, 4, 5, 9, 10, 50.7, 120 and a Null.
    QTest::newRow("limits typed inside the data") << "5 - 9|9,5 - 50" << false << QList<int>{4, 3};
    QTest::newRow("limits that do not rise") << "0 - 50|0 - 4" << false << QList<int>{5, 2};
    QTest::newRow("one class takes everything") << "20 - 30" << false << QList<int>{7};
    QTest::newRow("unique decimal value") << "50,7|4|3" << true << QList<int>{1, 1, 0};
}

void TestMethods::countsFollowTheMapsColouring()
{
    QFETCH(QString, classes);
    QFETCH(bool, unique);
    QFETCH(QList<int>, counts);
    std::vector<ClassRange> ranges;
    for (const QString &text : classes.split(QLatin1Char('|'))) {
        ClassRange r;
        r.valueText = text;
        if (!unique)
            QVERIFY(parseRangeText(text, &r.lower, &r.upper));
        ranges.push_back(r);
    }
    countElements(numbers({1, 4, 5, 9, 10, 50.7, 120, N}), ranges, unique);
    QList<int> got;
    for (const ClassRange &r : ranges)
        got << r.count;
    QCOMPARE(got, counts);
}

QTEST_GUILESS_MAIN(TestMethods)
#include "test_methods.moc"
