// Screen/map conversion, expression search, hit tests and shapefile loading.
#include "map/MapModel.h"
#include "test_map_fixtures.h"

#include <QTemporaryDir>
#include <QtTest>
#include <ogrsf_frmts.h>

using namespace mervola;
using namespace mervola::map;

Q_DECLARE_METATYPE(std::vector<int>)

class TestMapQuery : public QObject {
    Q_OBJECT
private slots:
    void screenMapRoundTrip_data()
    {
        QTest::addColumn<MapRect>("requested");
        QTest::addColumn<QSize>("device");
        QTest::newRow("same shape") << MapRect(0, 100, 200, 0) << QSize(400, 200);
        QTest::newRow("taller window") << MapRect(0, 100, 200, 0) << QSize(400, 400);
        QTest::newRow("wider window") << MapRect(313000, 5220000, 1312000, 3933000) << QSize(1600, 600);
    }
    void screenMapRoundTrip()
    {
        QFETCH(MapRect, requested);
        QFETCH(QSize, device);
        const MapTransform t(requested, device);
        QVERIFY(t.isValid());
        // The shown extent contains the requested one, keeps its centre and
        // the device's shape.
        const MapRect e = t.extent();
        QVERIFY(e.left() <= requested.left() + 1e-6 && e.right() >= requested.right() - 1e-6);
        QVERIFY(e.bottom() <= requested.bottom() + 1e-6 && e.top() >= requested.top() - 1e-6);
        QCOMPARE(e.center(), requested.center());
        QVERIFY(qFuzzyCompare(e.width() / e.height(), double(device.width()) / device.height()));
        // Corners map to the device's corners; y grows upwards on the map.
        QCOMPARE(t.toMap(QPointF(0, 0)), QPointF(e.left(), e.top()));
        QCOMPARE(t.toMap(QPointF(device.width(), device.height())), QPointF(e.right(), e.bottom()));
        for (const QPointF p : {QPointF(3, 7), QPointF(device.width() - 1.5, 0.25)}) {
            const QPointF back = t.toDevice(t.toMap(p));
            QVERIFY(std::abs(back.x() - p.x()) < 1e-6 && std::abs(back.y() - p.y()) < 1e-6);
        }
    }

    void invalidTransform()
    {
        QVERIFY(!MapTransform(MapRect(0, 10, 10, 0), QSize(0, 10)).isValid());
        QVERIFY(!MapTransform(MapRect(0, 0, 0, 0), QSize(10, 10)).isValid());
    }

    void findByExpression_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<std::vector<int>>("expected");
        QTest::newRow("label equal") << "Label = 'LOMBARDIA'" << std::vector<int>{2};
        QTest::newRow("field and text ignore case") << "LABEL = 'piemonte'" << std::vector<int>{1};
        QTest::newRow("doubled apostrophe") << "Label = 'VALLE D''AOSTA'" << std::vector<int>{0};
        QTest::newRow("bracketed field") << "[label]='Lombardia'" << std::vector<int>{2};
        QTest::newRow("no match") << "Label = 'SICILIA'" << std::vector<int>{};
        QTest::newRow("number equal") << "VAL = 15" << std::vector<int>{1};
        QTest::newRow("number greater skips missing") << "val > 4" << std::vector<int>{0, 1, 2};
        QTest::newRow("number as text") << "VAL = '25'" << std::vector<int>{2};
        QTest::newRow("not equal") << "VAL <> 15" << std::vector<int>{0, 2};
        QTest::newRow("like") << "Label LIKE 'valle*'" << std::vector<int>{0};
    }
    void findByExpression()
    {
        QFETCH(QString, expression);
        QFETCH(std::vector<int>, expected);
        const auto d = test::fixturePolygons();
        const auto found = findFeatures(*d, expression);
        QVERIFY2(found.ok(), qPrintable(found.errorMessage()));
        QCOMPARE(*found, expected);
    }

    void badExpressionsAreErrors_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::newRow("unknown field") << "Nome = 'X'";
        QTest::newRow("lone apostrophe") << "Label = 'VALLE D'AOSTA'";
        QTest::newRow("no operator") << "Label 'X'";
        QTest::newRow("bare word") << "Label = X";
    }
    void badExpressionsAreErrors()
    {
        QFETCH(QString, expression);
        const auto d = test::fixturePolygons();
        const auto found = findFeatures(*d, expression);
        QVERIFY(!found.ok());
        QVERIFY(!found.errorMessage().isEmpty());
    }

    void hitTestPolygons_data()
    {
        QTest::addColumn<QPointF>("point");
        QTest::addColumn<std::vector<int>>("expected");
        QTest::newRow("shell") << QPointF(5, 5) << std::vector<int>{0};
        QTest::newRow("in the hole") << QPointF(20, 20) << std::vector<int>{};
        QTest::newRow("first part") << QPointF(80, 20) << std::vector<int>{1};
        QTest::newRow("second part") << QPointF(80, 80) << std::vector<int>{1};
        QTest::newRow("between parts, inside box") << QPointF(80, 50) << std::vector<int>{};
        QTest::newRow("small square") << QPointF(50, 50) << std::vector<int>{3};
        QTest::newRow("outside") << QPointF(500, 500) << std::vector<int>{};
    }
    void hitTestPolygons()
    {
        QFETCH(QPointF, point);
        QFETCH(std::vector<int>, expected);
        const auto d = test::fixturePolygons();
        QCOMPARE(hitTest(*d, point, 0.5), expected);
    }

    void hitTestLinesAndPointsUseTolerance()
    {
        LayerData d;
        d.kind = GeometryKind::Line;
        const double line[] = {0, 0, 100, 0};
        d.beginFeature();
        d.addRing(line, 2);
        d.endFeature();
        d.finish();
        QCOMPARE(hitTest(d, QPointF(50, 2), 3), std::vector<int>{0});
        QCOMPARE(hitTest(d, QPointF(50, 5), 3), std::vector<int>{});
        QCOMPARE(hitTest(d, QPointF(103, 0), 4), std::vector<int>{0});
    }

    void labelPointIsInsideConcavePolygon()
    {
        // A U shape whose centroid falls in the gap.
        LayerData d;
        const double u[] = {0, 0, 30, 0, 30, 30, 20, 30, 20, 10, 10, 10, 10, 30, 0, 30, 0, 0};
        d.beginFeature();
        d.addRing(u, 9);
        d.endFeature();
        d.finish();
        const QPointF p = labelPoint(d, 0);
        QVERIFY(polygonContains(d, 0, p));
        const auto fix = test::fixturePolygons();
        QVERIFY(polygonContains(*fix, 2, labelPoint(*fix, 2)));
    }

    void modelOrderAndExtent()
    {
        MapModel m;
        auto d = test::fixturePolygons();
        m.addLayer(test::makeLayer(QStringLiteral("comuni"), d));
        QCOMPARE(m.extent(), MapRect(0, 100, 100, 0));
        m.addLayer(test::makeLayer(QStringLiteral("regioni"), d));
        // The last added layer is on top: index 0.
        QCOMPARE(m.layer(0).name, QStringLiteral("regioni"));
        QCOMPARE(m.indexOf(QStringLiteral("COMUNI")), 1);
        m.moveLayer(1, 0);
        QCOMPARE(m.layer(0).name, QStringLiteral("comuni"));
        m.removeLayer(0);
        QCOMPARE(m.layerCount(), 1);
        QCOMPARE(m.fullExtent(), MapRect(0, 100, 100, 0));
    }

    void loadsShapefileWithHolesAndNulls()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("prova.shp"));
        writeFixtureShapefile(path);
        auto loaded = LayerData::loadShapefile(path);
        QVERIFY2(loaded.ok(), qPrintable(loaded.errorMessage()));
        const LayerData &d = **loaded;
        QCOMPARE(d.kind, GeometryKind::Polygon);
        QCOMPARE(d.featureCount(), 4);
        QCOMPARE(d.featureRing[1] - d.featureRing[0], 2u);  // shell + hole
        QCOMPARE(d.featureRing[2] - d.featureRing[1], 2u);  // two parts
        QCOMPARE(d.extent, MapRect(0, 100, 100, 0));
        const Column *label = d.column(QStringLiteral("label"));
        QVERIFY(label);
        QCOMPARE(label->text(0), QStringLiteral("VALLE D'AOSTA"));
        QCOMPARE(label->text(1), QStringLiteral("Città"));
        const Column *val = d.column(QStringLiteral("VAL"));
        QVERIFY(val && val->isNumeric());
        QCOMPARE(val->number(2), 25.0);
        QVERIFY(std::isnan(val->number(3)));
        QVERIFY(!val->value(3).isValid());
        // Hit tests on the loaded data honour the hole.
        QCOMPARE(hitTest(d, QPointF(20, 20), 0.1), std::vector<int>{});
        QCOMPARE(hitTest(d, QPointF(5, 20), 0.1), std::vector<int>{0});
    }

    void missingShapefileIsAnError()
    {
        auto loaded = LayerData::loadShapefile(QStringLiteral("/nonexistent/nulla.shp"));
        QVERIFY(!loaded.ok());
        QVERIFY(loaded.errorMessage().contains(QStringLiteral("nulla.shp")));
    }

private:
    static void writeFixtureShapefile(const QString &path)
    {
        GDALAllRegister();
        GDALDriver *drv = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
        QVERIFY(drv);
        GDALDataset *ds = drv->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr);
        QVERIFY(ds);
        const char *opts[] = {"ENCODING=UTF-8", nullptr};
        OGRLayer *layer = ds->CreateLayer("prova", nullptr, wkbMultiPolygon, const_cast<char **>(opts));
        OGRFieldDefn label("Label", OFTString);
        label.SetWidth(40);
        layer->CreateField(&label);
        OGRFieldDefn val("VAL", OFTReal);
        layer->CreateField(&val);
        const char *wkts[] = {
            "MULTIPOLYGON (((0 0,0 40,40 40,40 0,0 0),(10 10,30 10,30 30,10 30,10 10)))",
            "MULTIPOLYGON (((60 0,60 40,100 40,100 0,60 0)),((60 60,60 100,100 100,100 60,60 60)))",
            "MULTIPOLYGON (((0 60,0 100,40 100,40 60,0 60)))",
            "MULTIPOLYGON (((45 45,45 55,55 55,55 45,45 45)))",
        };
        const char *labels[] = {"VALLE D'AOSTA", "Città", "LOMBARDIA", ""};
        const double vals[] = {5, 15, 25, 0};
        for (int i = 0; i < 4; ++i) {
            OGRFeature f(layer->GetLayerDefn());
            OGRGeometry *g = nullptr;
            OGRGeometryFactory::createFromWkt(wkts[i], nullptr, &g);
            f.SetGeometryDirectly(g);
            f.SetField(0, labels[i]);
            if (i < 3)
                f.SetField(1, vals[i]);
            QCOMPARE(layer->CreateFeature(&f), OGRERR_NONE);
        }
        GDALClose(ds);
    }
};

QTEST_GUILESS_MAIN(TestMapQuery)
#include "test_map_query.moc"
