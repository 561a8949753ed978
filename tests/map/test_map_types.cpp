// Map rectangle arithmetic, colour values and class-breaks classification.
#include "map/Renderers.h"

#include <QtTest>
#include <cmath>

using namespace mervola::map;

class TestMapTypes : public QObject {
    Q_OBJECT
private slots:
    void propertiesByNumber_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<double>("expected");
        // Rectangle left 10, top 40, right 30, bottom 20.
        QTest::newRow("1 right") << 1 << 30.0;
        QTest::newRow("2 left") << 2 << 10.0;
        QTest::newRow("3 bottom") << 3 << 20.0;
        QTest::newRow("4 top") << 4 << 40.0;
        QTest::newRow("unknown") << 5 << 0.0;
    }
    void propertiesByNumber()
    {
        QFETCH(int, number);
        QFETCH(double, expected);
        MapRect r(10, 40, 30, 20);
        QCOMPARE(r.property(number), expected);
        // Writing a property by its number changes that side only.
        if (number >= 1 && number <= 4) {
            r.setProperty(number, 1000);
            QCOMPARE(r.property(number), 1000.0);
            for (int other = 1; other <= 4; ++other)
                if (other != number)
                    QCOMPARE(r.property(other), MapRect(10, 40, 30, 20).property(other));
        }
    }

    void extentLineOrderReadsMinMax()
    {
        // "EXTENT=" is written in the order 2, 3, 1, 4: xmin, ymin, xmax, ymax.
        MapRect r;
        const double values[4] = {100, 200, 300, 400};
        const int order[4] = {2, 3, 1, 4};
        for (int i = 0; i < 4; ++i)
            r.setProperty(order[i], values[i]);
        QCOMPARE(r.left(), 100.0);
        QCOMPARE(r.bottom(), 200.0);
        QCOMPARE(r.right(), 300.0);
        QCOMPARE(r.top(), 400.0);
        QCOMPARE(r.width(), 200.0);
        QCOMPARE(r.height(), 200.0);
    }

    void scaleKeepsCentre_data()
    {
        QTest::addColumn<double>("factor");
        QTest::newRow("zoom in fixed") << 0.5;
        QTest::newRow("zoom in tool click") << 0.7;
        QTest::newRow("zoom out fixed") << 1.5;
        QTest::newRow("region margin") << 1.2;
        QTest::newRow("zoom out tool") << 3.0;
    }
    void scaleKeepsCentre()
    {
        QFETCH(double, factor);
        const MapRect r(1000, 5000, 3000, 4000);  // 2000 x 1000, centre (2000, 4500)
        const MapRect s = r.scaled(factor);
        QCOMPARE(s.center(), QPointF(2000, 4500));
        QVERIFY(qFuzzyCompare(s.width(), 2000 * factor));
        QVERIFY(qFuzzyCompare(s.height(), 1000 * factor));
        QVERIFY(s.top() > s.bottom());
    }

    void fromCornersNormalises()
    {
        const MapRect r = MapRect::fromCorners(30, 20, 10, 40);
        QCOMPARE(r, MapRect(10, 40, 30, 20));
    }

    void colourValues_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<QColor>("color");
        QTest::newRow("green 56320") << 56320 << QColor(0, 220, 0);
        QTest::newRow("cyan 16776960") << 16776960 << QColor(0, 255, 255);
        QTest::newRow("red 255") << 255 << QColor(255, 0, 0);
        QTest::newRow("blue") << 16711680 << QColor(0, 0, 255);
        QTest::newRow("high byte is black") << 33554432 << QColor(0, 0, 0);
        QTest::newRow("negative is black") << int(0x80000005) << QColor(0, 0, 0);
    }
    void colourValues()
    {
        QFETCH(int, value);
        QFETCH(QColor, color);
        QCOMPARE(colorFromValue(value), color);
        if (value >= 0 && value < 0x01000000)
            QCOMPARE(colorToValue(color), value);
    }

    void classBreaksAssignUpperLimits_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("klass");
        // Breaks 10, 20, 30.
        QTest::newRow("below first") << -5.0 << 0;
        QTest::newRow("on first limit") << 10.0 << 0;
        QTest::newRow("just above") << 10.5 << 1;
        QTest::newRow("on last limit") << 30.0 << 2;
        QTest::newRow("above last") << 99.0 << 2;
        QTest::newRow("missing") << std::nan("") << -1;
    }
    void classBreaksAssignUpperLimits()
    {
        QFETCH(double, value);
        QFETCH(int, klass);
        const auto r = ClassBreaksRenderer::fromClasses(
            QStringLiteral("X"), {{0, 10, QString(), 255}, {10, 20, QString(), 255}, {20, 30, QString(), 255}});
        QCOMPARE(r.breakCount(), 3);
        QCOMPARE(r.classOf(value), klass);
    }

    void breakCountKeepsSymbols()
    {
        ClassBreaksRenderer r;
        r.setBreakCount(2);
        r.setBreak(0, 5);
        r.symbol(0).outline = false;
        r.setBreakCount(4);
        QCOMPARE(r.breakValue(0), 5.0);
        QCOMPARE(r.symbol(0).outline, false);
    }

    void labelFieldDummyDrawsNothing_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("dummy") << "dummy" << false;
        QTest::newRow("DUMMY") << "DUMMY" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("Label") << "Label" << true;
    }
    void labelFieldDummyDrawsNothing()
    {
        QFETCH(QString, field);
        QFETCH(bool, enabled);
        LabelRenderer l;
        l.field = field;
        QCOMPARE(l.enabled(), enabled);
    }
};

QTEST_GUILESS_MAIN(TestMapTypes)
#include "test_map_types.moc"
