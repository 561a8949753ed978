// Colour ramps, the saved class items and the rebuild of saved classifications.
#include "classify/ClassItems.h"
#include "classify/ColorRamp.h"
#include "classify/LimitsEdit.h"
#include "classify/Methods.h"
#include "platform/Messages.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::classify;

namespace {

std::vector<ClassRange> classesWithColors(const QList<int> &colors)
{
    std::vector<ClassRange> out;
    int i = 0;
    for (int c : colors) {
        ClassRange r;
        r.fillColor = c;
        r.style = i;
        r.size = 10 + i;
        r.outline = i % 2 == 0;
        r.outlineColor = 1000 + i;
        r.valueText = r.label = QString::number(i);
        out.push_back(r);
        ++i;
    }
    return out;
}

FieldColumn column(const QList<double> &v)
{
    FieldColumn c;
    c.name = QStringLiteral("_00123");
    c.numbers.assign(v.begin(), v.end());
    return c;
}

}  // namespace

class TestSymbols : public QObject {
    Q_OBJECT
private slots:
    void predefinedRampsInOrder_data();
    void predefinedRampsInOrder();
    void rampStepsIncludeBothEnds();
    void oneClassTakesTheEndColour();
    void rampOnNoClassDoesNothing();
    void unknownRampKeepsEnds();
    void invertTwiceRestores();
    void classItemsRoundTrip_data();
    void classItemsRoundTrip();
    void shortClassItemsDefaultToDrawnAndOutlined();
    void limitKeyFilter_data();
    void limitKeyFilter();
    void leavingLowerBox_data();
    void leavingLowerBox();
    void leavingUpperBox_data();
    void leavingUpperBox();
};

void TestSymbols::predefinedRampsInOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QList<int>>("startRgb");
    QTest::addColumn<QList<int>>("endRgb");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::newRow("0") << 0 << "Rosso monocromatico" << QList<int>{255, 223, 223} << QList<int>{255, 0, 0} << 14671871 << 255;
    QTest::newRow("1") << 1 << "Giallo monocromatico" << QList<int>{254, 250, 225} << QList<int>{134, 113, 0} << 14809854 << 29062;
    QTest::newRow("2") << 2 << "Blu monocromatico" << QList<int>{223, 223, 255} << QList<int>{0, 0, 255} << 16768991 << 16711680;
    QTest::newRow("3") << 3 << "Verde monocromatico" << QList<int>{223, 243, 223} << QList<int>{0, 156, 0} << 14676959 << 39936;
    QTest::newRow("4") << 4 << "Marrone monocromatico" << QList<int>{254, 238, 225} << QList<int>{134, 60, 0} << 14806782 << 15494;
    QTest::newRow("5") << 5 << "Ciano monocromatico" << QList<int>{225, 254, 254} << QList<int>{0, 154, 154} << 16711393 << 10131968;
    QTest::newRow("6") << 6 << "Viola monocromatico" << QList<int>{250, 215, 254} << QList<int>{92, 0, 99} << 16701434 << 6488156;
    QTest::newRow("7") << 7 << "Da giallo a blu" << QList<int>{255, 255, 0} << QList<int>{13, 0, 130} << 65535 << 8519693;
}

void TestSymbols::predefinedRampsInOrder()
{
    QFETCH(int, index);
    QFETCH(QString, name);
    QFETCH(QList<int>, startRgb);
    QFETCH(QList<int>, endRgb);
    QFETCH(int, start);
    QFETCH(int, end);
    QCOMPARE(int(predefinedRamps().size()), 8);
    const RampDef &r = predefinedRamps()[size_t(index)];
    QCOMPARE(r.name, name);
    QCOMPARE(r.start, start);
    QCOMPARE(r.end, end);
    QCOMPARE(r.start, rgbValue(startRgb[0], startRgb[1], startRgb[2]));
    QCOMPARE(r.end, rgbValue(endRgb[0], endRgb[1], endRgb[2]));
    QCOMPARE(rampIndexOf(name), index);
}

void TestSymbols::rampStepsIncludeBothEnds()
{
    const auto c = rampColors(rgbValue(0, 100, 200), rgbValue(100, 0, 200), 5);
    QCOMPARE(int(c.size()), 5);
    QCOMPARE(c.front(), rgbValue(0, 100, 200));
    QCOMPARE(c.back(), rgbValue(100, 0, 200));
    QCOMPARE(c[2], rgbValue(50, 50, 200));
    QCOMPARE(c[1], rgbValue(25, 75, 200));

    auto classes = classesWithColors({0, 0, 0});
    applyRamp(classes, 0);
    QCOMPARE(classes[0].fillColor, 14671871);
    QCOMPARE(classes[2].fillColor, 255);
    QCOMPARE(classes[1].fillColor, rgbValue(255, 112, 112));
    for (const ClassRange &r : classes) {
        QCOMPARE(r.style, 0);
        QVERIFY(r.outline);
    }
}

void TestSymbols::oneClassTakesTheEndColour()
{
    auto classes = classesWithColors({123});
    applyRamp(classes, 7);
    QCOMPARE(classes[0].fillColor, 8519693);
    QCOMPARE(rampColors(1, 2, 1), std::vector<ColorValue>{2});
}

void TestSymbols::rampOnNoClassDoesNothing()
{
    std::vector<ClassRange> none;
    applyRamp(none, 3);
    cmdRamp(none);
    cmdInvertiColori(none);
    QVERIFY(none.empty());
}

void TestSymbols::unknownRampKeepsEnds()
{
    auto classes = classesWithColors({rgbValue(0, 0, 0), 5, rgbValue(200, 100, 50)});
    applyRamp(classes, -1);
    QCOMPARE(classes[0].fillColor, rgbValue(0, 0, 0));
    QCOMPARE(classes[1].fillColor, rgbValue(100, 50, 25));
    QCOMPARE(classes[2].fillColor, rgbValue(200, 100, 50));
}

void TestSymbols::invertTwiceRestores()
{
    const auto original = classesWithColors({1, 2, 3, 4, 5});
    auto classes = original;
    cmdInvertiColori(classes);
    QCOMPARE(classes[0].fillColor, 5);
    QCOMPARE(classes[0].style, 4);
    QCOMPARE(classes[0].size, 14);
    QCOMPARE(classes[0].outlineColor, 1004);
    QCOMPARE(classes[1].outline, original[3].outline);
    QCOMPARE(classes[0].valueText, original[0].valueText);  // limits stay with their class
    cmdInvertiColori(classes);
    QCOMPARE(classes, original);
}

void TestSymbols::classItemsRoundTrip_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<int>("classes");
    QTest::newRow("quantile decimals") << kQuantile << QList<double>{0.5, 1.25, 2, 3.75, 9, 12.5} << 3;
    QTest::newRow("regular negative") << kRegolari << QList<double>{-12.5, -3, 0, 7} << 4;
    QTest::newRow("unique") << kUnico << QList<double>{3, 1, 3, 2.5} << 0;
}

void TestSymbols::classItemsRoundTrip()
{
    QFETCH(QString, method);
    QFETCH(QList<double>, values);
    QFETCH(int, classes);
    ClassifyOutcome o = methodById(method)->classes(column(values), classes, 4);
    QVERIFY(o.ok());
    Classification c = o.classification;
    c.classes[0].label = QStringLiteral("Bassa (sotto la media)");
    c.classes[0].outline = false;
    c.classes.back().drawn = false;
    c.classes.back().outlineColor = 33554432;
    c.classes.back().style = 3;

    const QString tipo = tipoValue(c);
    const QString campo = campoValue(c);
    const QString items = classificazioneValue(c.classes);
    QVERIFY(items.endsWith(QLatin1String("^|")));
    const int stored = classes > 0 ? classes : int(c.classes.size());
    QCOMPARE(campo, QStringLiteral("_00123^%1^%2^4^").arg(stored).arg(c.methodIndex));
    auto back = classificationFromSettings(tipo, campo, items);
    QVERIFY(back.has_value());
    for (ClassRange &r : c.classes)
        r.count = 0;  // counts are not stored
    QCOMPARE(back->classes, c.classes);
    QCOMPARE(back->method, c.method);
    QCOMPARE(back->field, c.field);
    QCOMPARE(back->rampIndex, 4);
    QCOMPARE(back->uniqueValues, method == kUnico);
}

void TestSymbols::shortClassItemsDefaultToDrawnAndOutlined()
{
    const auto classes = parseClassificazione(QStringLiteral("0^1 - 5^^255^uno^0^|2^6 - 9^"));
    QCOMPARE(int(classes.size()), 2);
    QVERIFY(classes[1].outline);
    QVERIFY(classes[1].drawn);
    QCOMPARE(classes[0].fillColor, 255);
    QCOMPARE(classes[1].style, 2);
    QCOMPARE(classes[1].lower, 6.0);
    QVERIFY(parseClassificazione(QStringLiteral("0")).empty());
    QVERIFY(!classificationFromSettings(QStringLiteral("0"), QStringLiteral("0^0^0^0^"), QStringLiteral("0")));
    QCOMPARE(classificazioneValue({}), QStringLiteral("0"));
    QCOMPARE(campoValue(Classification{}), QStringLiteral("0^0^0^0^"));
}

void TestSymbols::limitKeyFilter_data()
{
    QTest::addColumn<QString>("chars");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("digits and marks") << "0123456789,." << true;
    QTest::newRow("backspace") << QString(QChar(8)) << true;
    QTest::newRow("letters and signs") << "aAeE-+ xé" << false;
}

void TestSymbols::limitKeyFilter()
{
    QFETCH(QString, chars);
    QFETCH(bool, allowed);
    for (QChar c : chars)
        QCOMPARE(limitKeyAllowed(c), allowed);
}

void TestSymbols::leavingLowerBox_data()
{
    QTest::addColumn<QString>("lower");
    QTest::addColumn<QString>("initialLower");
    QTest::addColumn<QString>("upper");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("upperAfter");
    QTest::newRow("whole class: 10 -> 15 sets 16") << "15" << "10" << "20" << true << "16";
    QTest::newRow("whole class, decimal typed") << "15,7" << "10" << "20" << true << "16";
    QTest::newRow("decimal class keeps upper") << "12,5" << "10,5" << "20" << true << "20";
    QTest::newRow("dot counts as decimal") << "12.5" << "10.5" << "20" << true << "20";
    QTest::newRow("empty refused") << "" << "10" << "20" << false << "";
    QTest::newRow("lone comma refused") << "," << "10" << "20" << false << "";
}

void TestSymbols::leavingLowerBox()
{
    QFETCH(QString, lower);
    QFETCH(QString, initialLower);
    QFETCH(QString, upper);
    QFETCH(bool, ok);
    QFETCH(QString, upperAfter);
    const LimitCheck r = checkLowerLimit(lower, initialLower, upper);
    QCOMPARE(r.ok, ok);
    if (ok)
        QCOMPARE(r.upperText, upperAfter);
    else
        QCOMPARE(r.message, QStringLiteral("Occorre inserire un valore valido"));
}

void TestSymbols::leavingUpperBox_data()
{
    QTest::addColumn<QString>("upper");
    QTest::addColumn<QString>("lower");
    QTest::addColumn<QString>("message");
    QTest::newRow("equal accepted") << "12" << "12" << "";
    QTest::newRow("greater accepted") << "12,6" << "12,5" << "";
    QTest::newRow("smaller refused") << "11" << "12,5" << "ATTENZIONE! Inserire un valore superiore a 12,5";
    QTest::newRow("decimal smaller refused") << "12,4" << "12.5" << "ATTENZIONE! Inserire un valore superiore a 12.5";
    QTest::newRow("empty refused") << "" << "12" << "Occorre inserire un valore valido";
}

void TestSymbols::leavingUpperBox()
{
    QFETCH(QString, upper);
    QFETCH(QString, lower);
    QFETCH(QString, message);
    const LimitCheck r = checkUpperLimit(upper, lower);
    QCOMPARE(r.ok, message.isEmpty());
    QCOMPARE(r.message, message);
}

QTEST_GUILESS_MAIN(TestSymbols)
#include "test_symbols.moc"
