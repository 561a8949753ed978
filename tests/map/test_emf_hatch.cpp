// Hatch lines cut to a shape and dashes cut from a line, which the metafile
// writes instead of hatched brushes and wide dashed pens.
#include "map/emf/Dashes.h"
#include "map/emf/Hatch.h"

#include <QPainterPath>
#include <QtTest>

using namespace mervola::emf;

namespace {

QPolygonF square(double x0, double y0, double x1, double y1, bool clockwise = true)
{
    QPolygonF p;
    if (clockwise)
        p << QPointF(x0, y0) << QPointF(x1, y0) << QPointF(x1, y1) << QPointF(x0, y1);
    else
        p << QPointF(x0, y0) << QPointF(x0, y1) << QPointF(x1, y1) << QPointF(x1, y0);
    return p;
}

double totalLength(const std::vector<QLineF> &lines)
{
    double sum = 0;
    for (const QLineF &l : lines)
        sum += l.length();
    return sum;
}

}  // namespace

class TestEmfHatch : public QObject {
    Q_OBJECT
private slots:
    void hatchLinesStayInsideTheShape_data()
    {
        QTest::addColumn<int>("family");
        QTest::addColumn<int>("rule");
        QTest::addColumn<bool>("holeClockwise");
        QTest::addColumn<int>("segments");
        QTest::addColumn<double>("length");
        // Square 0..32 with a hole 8..24; lines every 8 pixels. Horizontal
        // lines at y = 0.5, 8.5, 16.5, 24.5: two cross the hole.
        QTest::newRow("horizontal even-odd") << int(HatchLines::Horizontal) << int(Qt::OddEvenFill) << true << 6
                                             << 4 * 32.0 - 2 * 16.0;
        QTest::newRow("vertical even-odd") << int(HatchLines::Vertical) << int(Qt::OddEvenFill) << true << 6
                                           << 4 * 32.0 - 2 * 16.0;
        // Winding: a hole turning the same way as the shell is filled.
        QTest::newRow("winding, same turn") << int(HatchLines::Horizontal) << int(Qt::WindingFill) << true << 4
                                            << 4 * 32.0;
        QTest::newRow("winding, opposite turn") << int(HatchLines::Horizontal) << int(Qt::WindingFill) << false << 6
                                                << 4 * 32.0 - 2 * 16.0;
    }
    void hatchLinesStayInsideTheShape()
    {
        QFETCH(int, family);
        QFETCH(int, rule);
        QFETCH(bool, holeClockwise);
        QFETCH(int, segments);
        QFETCH(double, length);
        const QList<QPolygonF> rings{square(0, 0, 32, 32), square(8, 8, 24, 24, holeClockwise)};
        const auto lines = hatchSegments(rings, Qt::FillRule(rule), HatchLines(family));
        QCOMPARE(int(lines.size()), segments);
        QCOMPARE(totalLength(lines), length);
    }

    void diagonalHatchesRunTheRightWay_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("sign");  // of dy/dx on screen
        QTest::newRow("forward \\") << int(Qt::FDiagPattern) << 1;
        QTest::newRow("backward /") << int(Qt::BDiagPattern) << -1;
    }
    void diagonalHatchesRunTheRightWay()
    {
        QFETCH(int, style);
        QFETCH(int, sign);
        const auto families = hatchFamilies(Qt::BrushStyle(style));
        QCOMPARE(int(families.size()), 1);
        QPainterPath shape;
        shape.addPolygon(square(0, 0, 40, 40));
        const auto lines = hatchSegments({square(0, 0, 40, 40)}, Qt::OddEvenFill, families.front());
        QVERIFY(lines.size() >= 8);
        for (const QLineF &l : lines) {
            QVERIFY(l.dx() != 0);
            QVERIFY(qAbs(l.dy() / l.dx() - sign) < 1e-9);
            QVERIFY(shape.contains(l.center()));
        }
    }

    void onlyHatchPatternsAreHatched()
    {
        QCOMPARE(int(hatchFamilies(Qt::CrossPattern).size()), 2);
        QCOMPARE(int(hatchFamilies(Qt::DiagCrossPattern).size()), 2);
        QVERIFY(hatchFamilies(Qt::SolidPattern).empty());
        QVERIFY(hatchFamilies(Qt::Dense4Pattern).empty());
        QVERIFY(hatchSegments({}, Qt::OddEvenFill, HatchLines::Horizontal).empty());
    }

    void dashesFollowThePattern_data()
    {
        QTest::addColumn<QVector<double>>("pattern");
        QTest::addColumn<int>("dashes");
        QTest::addColumn<int>("pointsInSecond");
        // Polyline (0,0) -> (100,0) -> (100,50): 150 units long.
        QTest::newRow("even dashes") << QVector<double>{10, 10} << 8 << 2;
        QTest::newRow("dash across the corner") << QVector<double>{60, 30} << 2 << 3;
        QTest::newRow("no pattern") << QVector<double>{} << 1 << 0;
        QTest::newRow("zero gaps") << QVector<double>{50, 0} << 3 << 2;
    }
    void dashesFollowThePattern()
    {
        QFETCH(QVector<double>, pattern);
        QFETCH(int, dashes);
        QFETCH(int, pointsInSecond);
        const std::vector<std::vector<QPoint>> line{{QPoint(0, 0), QPoint(100, 0), QPoint(100, 50)}};
        const auto out = dashPolylines(line, pattern);
        QCOMPARE(int(out.size()), dashes);
        if (pointsInSecond)
            QCOMPARE(int(out[1].size()), pointsInSecond);
        for (const auto &d : out)
            QVERIFY(d.size() >= 2);
    }
};

QTEST_GUILESS_MAIN(TestEmfHatch)
#include "test_emf_hatch.moc"
