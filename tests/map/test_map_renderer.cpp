// Rendering of tiny generated layers, checked pixel by pixel with a colour
// tolerance. The fixture spans 0..100 map units drawn on 100 x 100 pixels,
// so map (x, y) is pixel (x, 100 - y).
#include "map/MapRenderer.h"
#include "test_map_fixtures.h"

#include <QPainter>
#include <QtTest>

using namespace mervola;
using namespace mervola::map;

namespace {

const QColor kRed(255, 0, 0), kGreen(0, 220, 0), kBlue(0, 0, 255), kWhite(255, 255, 255), kYellow(255, 255, 0);

bool near(QColor a, QColor b, int tolerance = 10)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

QColor at(const QImage &img, double mapX, double mapY)
{
    return img.pixelColor(int(mapX), int(100 - mapY));
}

Symbol fill(std::int32_t color)
{
    Symbol s;
    s.color = color;
    return s;
}

MapModel oneLayer(Renderer r)
{
    MapModel m;
    MapLayer l = test::makeLayer(QStringLiteral("comuni"), test::fixturePolygons());
    l.renderer = std::move(r);
    m.addLayer(std::move(l));
    return m;
}

QImage render(const MapModel &m, int bands = 0, QSize size = QSize(100, 100))
{
    RenderOptions o;
    o.bands = bands;
    return MapRenderer::renderImage(m, m.extent(), size, o);
}

}  // namespace

class TestMapRenderer : public QObject {
    Q_OBJECT
private slots:
    void classBreaksColourTheRightFeatures_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<QColor>("expected");
        // Classes: up to 10 red, up to 20 green, up to 30 blue.
        QTest::newRow("f0 VAL 5") << 5.0 << 5.0 << kRed;
        QTest::newRow("f0 hole") << 20.0 << 20.0 << kWhite;
        QTest::newRow("f1 VAL 15 first part") << 80.0 << 20.0 << kGreen;
        QTest::newRow("f1 second part") << 80.0 << 80.0 << kGreen;
        QTest::newRow("f2 VAL 25") << 20.0 << 80.0 << kBlue;
        QTest::newRow("f3 missing value: transparent") << 50.0 << 50.0 << kWhite;
        QTest::newRow("between features") << 50.0 << 20.0 << kWhite;
    }
    void classBreaksColourTheRightFeatures()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(QColor, expected);
        const auto r = ClassBreaksRenderer::fromClasses(
            QStringLiteral("val"),
            {{0, 10, QString(), 255}, {10, 20, QString(), 56320}, {20, 30, QString(), 16711680}});
        const QImage img = render(oneLayer(r));
        QVERIFY2(near(at(img, x, y), expected), qPrintable(at(img, x, y).name()));
    }

    void outlinesAreDrawnOnTheEdges()
    {
        // Pixel column 9 touches the hole's edge at x = 10 from the filled side.
        const QImage img = render(oneLayer(SimpleRenderer{fill(56320)}));
        QVERIFY(at(img, 9, 20).lightness() < kGreen.lightness() - 30);
        QVERIFY(near(at(img, 5, 20), kGreen));
        Symbol noOutline = fill(56320);
        noOutline.outline = false;
        QVERIFY(near(at(render(oneLayer(SimpleRenderer{noOutline})), 9, 20), kGreen));
    }

    void valueMapMatchesTextIgnoringCase()
    {
        ValueMapRenderer r;
        r.field = QStringLiteral("LABEL");
        r.setValueCount(2);
        r.setValue(0, QStringLiteral("piemonte"));
        r.symbol(0).color = 255;
        r.setValue(1, QStringLiteral("Lombardia"));
        r.symbol(1).color = 16711680;
        const QImage img = render(oneLayer(r));
        QVERIFY(near(at(img, 80, 80), kRed));
        QVERIFY(near(at(img, 20, 80), kBlue));
        QVERIFY(near(at(img, 5, 5), kWhite));  // no value: default transparent
    }

    void valueMapMatchesNumbersFirstValueWinning()
    {
        ValueMapRenderer r;
        r.field = QStringLiteral("VAL");
        r.setValueCount(3);
        r.setValue(0, QStringLiteral("25,0"));
        r.symbol(0).color = 255;
        r.setValue(1, QStringLiteral("15"));
        r.symbol(1).color = 16711680;
        r.setValue(2, QStringLiteral("25"));
        r.symbol(2).color = 16711680;
        const QImage img = render(oneLayer(r));
        QVERIFY(near(at(img, 20, 80), kRed));   // 25: the first of the two equal values
        QVERIFY(near(at(img, 80, 80), kBlue));  // 15
        QVERIFY(near(at(img, 5, 5), kWhite));   // 5 has no value
    }

    void classNotDrawnLeavesBackground()
    {
        auto r = ClassBreaksRenderer::fromClasses(QStringLiteral("VAL"),
                                                  {{0, 10, QString(), 255}, {10, 30, QString(), 16711680}});
        r.symbol(0).drawn = false;
        const QImage img = render(oneLayer(r));
        QVERIFY(near(at(img, 5, 5), kWhite));
        QVERIFY(near(at(img, 20, 80), kBlue));
    }

    void topLayerIsDrawnLastAndHiddenLayersNot()
    {
        MapModel m;
        MapLayer bottom = test::makeLayer(QStringLiteral("sotto"), test::fixturePolygons());
        bottom.renderer = SimpleRenderer{fill(56320)};
        MapLayer top = test::makeLayer(QStringLiteral("sopra"), test::fixturePolygons());
        top.renderer = SimpleRenderer{fill(255)};
        m.addLayer(bottom);
        m.addLayer(top);
        QVERIFY(near(at(render(m), 5, 5), kRed));
        m.layer(0).visible = false;
        QVERIFY(near(at(render(m), 5, 5), kGreen));
    }

    void selectionIsHighlighted()
    {
        MapModel m = oneLayer(SimpleRenderer{fill(56320)});
        m.layer(0).selection = {2};
        const QImage img = render(m);
        QVERIFY(near(at(img, 20, 80), kYellow));
        QVERIFY(near(at(img, 5, 5), kGreen));
    }

    void bandsComposeToTheSinglePicture_data()
    {
        QTest::addColumn<int>("bands");
        QTest::newRow("2") << 2;
        QTest::newRow("3 uneven") << 3;
        QTest::newRow("7") << 7;
    }
    void bandsComposeToTheSinglePicture()
    {
        QFETCH(int, bands);
        const auto r = ClassBreaksRenderer::fromClasses(
            QStringLiteral("VAL"), {{0, 10, QString(), 255}, {10, 20, QString(), 56320}, {20, 30, QString(), 65535}});
        const MapModel m = oneLayer(r);
        const QImage one = render(m, 1, QSize(230, 301));
        const QImage many = render(m, bands, QSize(230, 301));
        int differing = 0;
        for (int y = 0; y < one.height(); ++y)
            for (int x = 0; x < one.width(); ++x)
                if (!near(one.pixelColor(x, y), many.pixelColor(x, y), 40))
                    ++differing;
        // Anti-aliased edges may differ by a shade along band seams only.
        QVERIFY2(differing <= one.width() * (bands - 1) * 2, qPrintable(QString::number(differing)));
    }

    void zoomedExtentShowsOnlyItsPart()
    {
        MapModel m = oneLayer(SimpleRenderer{fill(56320)});
        m.setExtent(MapRect(60, 40, 100, 0));  // f1's first part fills the picture
        const QImage img = render(m, 2, QSize(40, 40));
        QVERIFY(near(img.pixelColor(20, 20), kGreen));
        QVERIFY(near(img.pixelColor(5, 35), kGreen));
    }

    void labelsDrawTextUnlessDummy_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("drawn");
        QTest::newRow("Label") << "Label" << true;
        QTest::newRow("dummy") << "dummy" << false;
    }
    void labelsDrawTextUnlessDummy()
    {
        QFETCH(QString, field);
        QFETCH(bool, drawn);
        MapModel m = oneLayer(SimpleRenderer{ClassBreaksRenderer::transparentSymbol()});
        m.layer(0).labels.field = field;
        m.layer(0).labels.height = 12;
        m.layer(0).labels.color = 255;
        const QImage img = render(m, 0, QSize(400, 400));
        // Red text pixels around f2's label point (20, 80) -> (80, 80) pixels.
        int red = 0;
        for (int y = 60; y < 100; ++y)
            for (int x = 20; x < 140; ++x)
                if (near(img.pixelColor(x, y), kRed, 80))
                    ++red;
        QCOMPARE(red > 5, drawn);
    }

    void overlappingLabelsAreDropped()
    {
        // Two identical layers with labels: the second set collides with the
        // first and is not drawn, so the picture equals a single set.
        Symbol invisible = ClassBreaksRenderer::transparentSymbol();
        invisible.outline = false;
        MapModel one = oneLayer(SimpleRenderer{invisible});
        one.layer(0).labels.field = QStringLiteral("Label");
        MapModel two = one;
        two.addLayer(two.layer(0));
        RenderOptions o;
        QCOMPARE(MapRenderer::renderImage(two, two.extent(), QSize(300, 300), o),
                 MapRenderer::renderImage(one, one.extent(), QSize(300, 300), o));
    }

    void paintsOnAnyPainter()
    {
        // The same picture through paint() on a caller's painter (printing,
        // export) as through renderImage().
        const MapModel m = oneLayer(SimpleRenderer{fill(255)});
        QImage img(100, 100, QImage::Format_ARGB32_Premultiplied);
        img.fill(Qt::white);
        QPainter p(&img);
        MapRenderer::paint(p, m, MapTransform(m.extent(), img.size()));
        p.end();
        QVERIFY(near(at(img, 5, 5), kRed));
        QVERIFY(near(at(img, 20, 20), kWhite));
    }
};

QTEST_MAIN(TestMapRenderer)
#include "test_map_renderer.moc"
