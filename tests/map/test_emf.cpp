// The metafile written by EmfDevice, read back record by record: header
// fields, record sizes adding up to the file, object handles used only while
// they exist, and the records a map drawing produces.
#include "map/emf/EmfDevice.h"
#include "map/emf/EmfPaintEngine.h"
#include "map/emf/EmfRecords.h"
#include "map/MapRenderer.h"
#include "test_map_fixtures.h"

#include <QPainter>
#include <QPainterPath>
#include <QtTest>
#include <functional>
#include <set>

using namespace mervola;
using namespace mervola::emf;

namespace {

struct Record {
    std::uint32_t type;
    int offset;  // in the file
    int size;
};

std::uint32_t u32(const QByteArray &b, int at)
{
    return std::uint32_t(std::uint8_t(b[at])) | std::uint32_t(std::uint8_t(b[at + 1])) << 8 |
           std::uint32_t(std::uint8_t(b[at + 2])) << 16 | std::uint32_t(std::uint8_t(b[at + 3])) << 24;
}
std::int32_t i32(const QByteArray &b, int at) { return std::int32_t(u32(b, at)); }
std::int16_t i16(const QByteArray &b, int at) { return std::int16_t(std::uint8_t(b[at]) | std::uint8_t(b[at + 1]) << 8); }

// Splits the file into records; fails the test on a malformed size.
QList<Record> parse(const QByteArray &b)
{
    QList<Record> out;
    int at = 0;
    while (at + 8 <= b.size()) {
        const int size = int(u32(b, at + 4));
        if (size < 8 || size % 4 || at + size > b.size()) {
            qWarning("bad record size %d at %d", size, at);
            return {};
        }
        out << Record{u32(b, at), at, size};
        at += size;
    }
    if (at != b.size())
        return {};
    return out;
}

QByteArray record(const QByteArray &b, const Record &r) { return b.mid(r.offset, r.size); }

QList<Record> ofType(const QList<Record> &all, std::uint32_t type)
{
    QList<Record> out;
    for (const Record &r : all)
        if (r.type == type)
            out << r;
    return out;
}

QByteArray draw(QSize size, const std::function<void(QPainter &)> &paint)
{
    EmfDevice device(size);
    QPainter p(&device);
    paint(p);
    p.end();
    return device.data();
}

QString textOf(const QByteArray &rec)
{
    const int chars = int(u32(rec, 44)), off = int(u32(rec, 48));
    QString s;
    for (int i = 0; i < chars; ++i)
        s += QChar(char16_t(std::uint8_t(rec[off + 2 * i]) | std::uint8_t(rec[off + 2 * i + 1]) << 8));
    return s;
}

}  // namespace

class TestEmf : public QObject {
    Q_OBJECT
private slots:
    void headerDescribesTheWholeFile()
    {
        const QByteArray b = draw(QSize(960, 480), [](QPainter &p) { p.fillRect(0, 0, 960, 480, Qt::white); });
        const QList<Record> recs = parse(b);
        QVERIFY(!recs.isEmpty());
        QCOMPARE(recs.first().type, std::uint32_t(EMR_HEADER));
        QCOMPARE(recs.first().offset, 0);
        QCOMPARE(u32(b, 40), kSignature);
        QCOMPARE(u32(b, 44), 0x00010000u);
        QCOMPARE(int(u32(b, 48)), b.size());              // bytes
        QCOMPARE(int(u32(b, 52)), int(recs.size()));      // records
        QCOMPARE(int(std::uint16_t(u32(b, 56))), 7);      // handles incl. index 0
        // Bounds in pixels, inclusive.
        QCOMPARE(QList<int>({i32(b, 8), i32(b, 12), i32(b, 16), i32(b, 20)}), QList<int>({0, 0, 959, 479}));
        // Frame in 0.01 mm at 96 dpi: 960 px = 10 in = 25400.
        QCOMPARE(QList<int>({i32(b, 24), i32(b, 28), i32(b, 32), i32(b, 36)}), QList<int>({0, 0, 25400, 12700}));
        QCOMPARE(QList<int>({i32(b, 72), i32(b, 76), i32(b, 80), i32(b, 84)}), QList<int>({960, 480, 254, 127}));
        // The description sits inside the header record.
        QVERIFY(int(u32(b, 64)) + 2 * int(u32(b, 60)) <= recs.first().size);
        const Record eof = recs.last();
        QCOMPARE(eof.type, std::uint32_t(EMR_EOF));
        QCOMPARE(eof.size, 20);
        QCOMPARE(u32(b, eof.offset + 16), 20u);
    }

    void shapesBecomeTheirRecords_data()
    {
        QTest::addColumn<int>("shape");
        QTest::addColumn<QList<int>>("types");  // must all be present
        QTest::newRow("fill odd-even") << 0 << QList<int>{EMR_SETPOLYFILLMODE, EMR_CREATEBRUSHINDIRECT, EMR_POLYPOLYGON16};
        QTest::newRow("stroke one line") << 1 << QList<int>{EMR_CREATEPEN, EMR_POLYLINE16};
        QTest::newRow("stroke two lines") << 2 << QList<int>{EMR_CREATEPEN, EMR_POLYPOLYLINE16};
        QTest::newRow("far coordinates") << 3 << QList<int>{EMR_POLYPOLYGON};
        QTest::newRow("text") << 4 << QList<int>{EMR_EXTCREATEFONTINDIRECTW, EMR_SETTEXTCOLOR, EMR_EXTTEXTOUTW};
        QTest::newRow("ellipse and rect") << 5 << QList<int>{EMR_CREATEPEN, EMR_CREATEBRUSHINDIRECT, EMR_POLYPOLYGON16};
        // Hatches and wide dashes are written as the lines they draw.
        QTest::newRow("hatched fill") << 6 << QList<int>{EMR_CREATEPEN, EMR_POLYPOLYLINE16};
        QTest::newRow("wide dashed line") << 7 << QList<int>{EMR_CREATEPEN, EMR_POLYPOLYLINE16};
    }
    void shapesBecomeTheirRecords()
    {
        QFETCH(int, shape);
        QFETCH(QList<int>, types);
        const QByteArray b = draw(QSize(200, 100), [shape](QPainter &p) {
            QPainterPath two;
            two.moveTo(1, 1);
            two.lineTo(50, 50);
            two.moveTo(60, 1);
            two.lineTo(90, 40);
            switch (shape) {
            case 0: p.fillRect(QRectF(10, 20, 30, 40), Qt::red); break;
            case 1: p.drawLine(QPointF(0, 0), QPointF(100, 50)); break;
            case 2: p.strokePath(two, QPen(Qt::blue)); break;
            case 3: p.fillRect(QRectF(-5000, -5000, 10000, 10000), Qt::green); break;
            case 4: p.drawText(QPointF(10, 50), QStringLiteral("Città")); break;
            case 5:
                p.setBrush(Qt::yellow);
                p.drawEllipse(QPointF(50, 50), 20, 10);
                p.drawRect(QRectF(100, 10, 20, 20));
                break;
            case 6: p.fillRect(QRectF(10, 10, 50, 50), QBrush(Qt::red, Qt::CrossPattern)); break;
            case 7:
                p.setPen(QPen(Qt::black, 3, Qt::DashLine));
                p.drawLine(QPointF(0, 0), QPointF(100, 50));
                break;
            }
        });
        const QList<Record> recs = parse(b);
        QVERIFY(!recs.isEmpty());
        for (int t : types)
            QVERIFY2(!ofType(recs, std::uint32_t(t)).isEmpty(), qPrintable(QStringLiteral("record %1").arg(t)));
        // Every brush is solid or null; pens have a width and are drawn
        // solid when wider than a pixel.
        for (const Record &r : ofType(recs, EMR_CREATEBRUSHINDIRECT))
            QCOMPARE(u32(b, r.offset + 12), std::uint32_t(BS_SOLID));
        for (const Record &r : ofType(recs, EMR_CREATEPEN)) {
            QVERIFY(i32(b, r.offset + 16) > 0);
            QVERIFY(i32(b, r.offset + 16) <= EmfPaintEngine::kUnitsPerPixel || u32(b, r.offset + 12) == PS_SOLID);
        }
    }

    void polygonPointsAreInSixteenthsOfAPixel()
    {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        path.addRect(QRectF(10, 20, 30, 40));
        path.addRect(QRectF(15, 25, 5, 5));
        const QByteArray b = draw(QSize(100, 100), [&](QPainter &p) { p.fillPath(path, Qt::red); });
        const QList<Record> recs = parse(b);
        const QList<Record> polys = ofType(recs, EMR_POLYPOLYGON16);
        QCOMPARE(polys.size(), 1);
        const QByteArray r = record(b, polys.first());
        QCOMPARE(u32(r, 24), 2u);  // polygons
        QCOMPARE(u32(r, 28), 8u);  // points: the closing point is implied
        QCOMPARE(u32(r, 32), 4u);
        QCOMPARE(u32(r, 36), 4u);
        QCOMPARE(r.size(), 40 + 8 * 4);
        // Device bounds of the record in pixels.
        QCOMPARE(QList<int>({i32(r, 8), i32(r, 12), i32(r, 16), i32(r, 20)}), QList<int>({10, 20, 39, 59}));
        QSet<QPair<int, int>> corners;
        for (int i = 0; i < 4; ++i)
            corners << qMakePair(int(i16(r, 40 + 4 * i)), int(i16(r, 42 + 4 * i)));
        QCOMPARE(corners, (QSet<QPair<int, int>>{{160, 320}, {640, 320}, {640, 960}, {160, 960}}));
        // The winding rule is announced before the polygon.
        const QList<Record> modes = ofType(recs, EMR_SETPOLYFILLMODE);
        QCOMPARE(modes.size(), 1);
        QCOMPARE(u32(b, modes.first().offset + 8), std::uint32_t(WINDING));
        QVERIFY(modes.first().offset < polys.first().offset);
    }

    void objectsAreSelectedOnlyWhileTheyExist()
    {
        const QByteArray b = draw(QSize(100, 100), [](QPainter &p) {
            for (int i = 0; i < 5; ++i) {
                p.setPen(QColor(i * 40, 0, 0));
                p.setBrush(QColor(0, i * 40, 0));
                p.drawRect(i * 10, 0, 8, 8);
                p.setFont(QFont(QStringLiteral("DejaVu Sans"), 8 + i));
                p.drawText(QPointF(i * 10, 50), QStringLiteral("x"));
            }
            p.setBrush(Qt::NoBrush);
            p.drawLine(0, 0, 10, 10);
        });
        const QList<Record> recs = parse(b);
        QVERIFY(!recs.isEmpty());
        const std::uint32_t handles = u32(b, 56) & 0xffff;
        std::set<std::uint32_t> live;
        for (const Record &r : recs) {
            const std::uint32_t h = u32(b, r.offset + 8);
            switch (r.type) {
            case EMR_CREATEPEN:
            case EMR_CREATEBRUSHINDIRECT:
            case EMR_EXTCREATEFONTINDIRECTW:
                QVERIFY(h > 0 && h < handles);
                QVERIFY2(!live.count(h), "handle reused while alive");
                live.insert(h);
                break;
            case EMR_SELECTOBJECT:
                QVERIFY((h & 0x80000000u) || live.count(h));
                break;
            case EMR_DELETEOBJECT:
                QVERIFY(live.erase(h) == 1);
                break;
            default: break;
            }
        }
        QVERIFY2(live.empty(), "objects left undeleted");
        // Unchanged pens and brushes are not created twice in a row.
        QVERIFY(ofType(recs, EMR_CREATEPEN).size() <= 6);
    }

    void textCarriesItsStringAngleAndAdvances_data()
    {
        QTest::addColumn<double>("rotation");
        QTest::addColumn<int>("escapement");
        QTest::newRow("level") << 0.0 << 0;
        QTest::newRow("counter-clockwise 30") << -30.0 << 300;
        QTest::newRow("clockwise 90") << 90.0 << 2700;
    }
    void textCarriesItsStringAngleAndAdvances()
    {
        QFETCH(double, rotation);
        QFETCH(int, escapement);
        const QString text = QStringLiteral("Città d'Aosta");
        const QByteArray b = draw(QSize(300, 200), [&](QPainter &p) {
            p.setPen(QColor(0, 0, 255));
            p.setFont(QFont(QStringLiteral("DejaVu Sans"), 12));
            p.translate(100, 50);
            p.rotate(rotation);
            p.drawText(QPointF(0, 0), text);
        });
        const QList<Record> recs = parse(b);
        const QList<Record> fonts = ofType(recs, EMR_EXTCREATEFONTINDIRECTW);
        QCOMPARE(fonts.size(), 1);
        const QByteArray f = record(b, fonts.first());
        QCOMPARE(f.size(), 12 + 320);
        QCOMPARE(i32(f, 12), -16 * 16);  // 12 pt at 96 dpi = 16 px, in 1/16 px
        QCOMPARE(i32(f, 20), escapement);
        QString texts;
        int advanceSum = 0;
        for (const Record &r : ofType(recs, EMR_EXTTEXTOUTW)) {
            const QByteArray t = record(b, r);
            const int chars = int(u32(t, 44)), offDx = int(u32(t, 72));
            QVERIFY(offDx + 4 * chars <= t.size());
            texts += textOf(t);
            for (int i = 0; i < chars; ++i)
                advanceSum += i32(t, offDx + 4 * i);
            if (r.offset == ofType(recs, EMR_EXTTEXTOUTW).first().offset)
                QCOMPARE(QPoint(i32(t, 36), i32(t, 40)), QPoint(1600, 800));  // reference point
        }
        QCOMPARE(texts, text);
        QVERIFY(advanceSum > 16 * 16 * 4 && advanceSum < 16 * 16 * 13);
        const QList<Record> colours = ofType(recs, EMR_SETTEXTCOLOR);
        QCOMPARE(u32(b, colours.last().offset + 8), 0x00ff0000u);
    }

    void aMapDrawsItsPolygonsAndLabels()
    {
        map::MapModel model;
        map::MapLayer layer = test::makeLayer(QStringLiteral("regioni"), test::fixturePolygons());
        layer.labels.field = QStringLiteral("Label");
        model.addLayer(std::move(layer));
        const QSize size(200, 200);
        const QByteArray b = draw(size, [&](QPainter &p) {
            map::MapRenderer::paint(p, model, map::MapTransform(model.extent(), size));
        });
        const QList<Record> recs = parse(b);
        QVERIFY(!recs.isEmpty());
        // One fill for the symbol and one outline stroke, even-odd so the
        // hole of the first square stays empty.
        const QList<Record> fills = ofType(recs, EMR_POLYPOLYGON16);
        QCOMPARE(fills.size(), 1);
        QCOMPARE(u32(b, fills.first().offset + 24), 6u);  // rings of the four features
        QCOMPARE(u32(b, ofType(recs, EMR_SETPOLYFILLMODE).first().offset + 8), std::uint32_t(ALTERNATE));
        const QList<Record> outlines = ofType(recs, EMR_POLYPOLYLINE16);
        QCOMPARE(outlines.size(), 1);
        // Every vertex lies on the picture (logical units, 16 per pixel).
        const QByteArray r = record(b, fills.first());
        const int points = int(u32(r, 28)), first = 32 + 4 * int(u32(r, 24));
        for (int i = 0; i < points; ++i) {
            const int x = i16(r, first + 4 * i), y = i16(r, first + 4 * i + 2);
            QVERIFY(x >= 0 && x <= 16 * 200 && y >= 0 && y <= 16 * 200);
        }
        QStringList labels;
        for (const Record &t : ofType(recs, EMR_EXTTEXTOUTW))
            labels << textOf(record(b, t));
        labels.sort();
        QCOMPARE(labels, QStringList({QStringLiteral("LOMBARDIA"), QStringLiteral("Piemonte"),
                                      QStringLiteral("VALLE D'AOSTA")}));
    }
};

QTEST_MAIN(TestEmf)
#include "test_emf.moc"
