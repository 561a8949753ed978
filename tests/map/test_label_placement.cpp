// Labels never overlap: the larger element keeps its label on the anchor,
// the smaller one moves around its anchor or is left out. On generated
// squares and on the real mountain communities of Piemonte.
#include "map/LabelPlacement.h"
#include "map/MapRenderer.h"
#include "support/TestSupport.h"
#include "test_map_fixtures.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::map;

namespace
{

// Labelled squares: half side and centre (x, y) in map units 0..100.
struct Square {
    double half, x, y;
    QString text;
};

MapModel squares(const QList<Square> &list)
{
    auto d = std::make_shared<LayerData>();
    d->kind = GeometryKind::Polygon;
    Column label;
    label.name = QStringLiteral("Label");
    for (const Square &q : list) {
        d->beginFeature();
        const std::vector<double> r = test::squareRing(q.x - q.half, q.y - q.half, q.x + q.half, q.y + q.half);
        d->addRing(r.data(), r.size() / 2);
        d->endFeature();
        label.texts.push_back(q.text);
        label.isNull.push_back(0);
    }
    d->finish();
    d->columns = {label};
    MapModel m;
    MapLayer &l = m.addLayer(test::makeLayer(QStringLiteral("t"), d));
    l.labels.field = QStringLiteral("Label");
    l.labels.height = 10;
    m.setExtent(MapRect::fromCorners(0, 0, 100, 100));
    return m;
}

void checkNoOverlap(const std::vector<PlacedLabel> &labels)
{
    for (size_t i = 0; i < labels.size(); ++i)
        for (size_t j = i + 1; j < labels.size(); ++j)
            QVERIFY2(!labels[i].box.intersects(labels[j].box),
                     qPrintable(labels[i].text + QStringLiteral(" / ") + labels[j].text));
}

} // namespace

class TestLabelPlacement : public QObject
{
    Q_OBJECT
private slots:
    void smallerElementMovesOrIsLeftOut()
    {
        // 4 pixels a unit. The small square's anchor is 12 pixels under the
        // large one's: centred, its label would cover the large label; the
        // smallest sits on the large one's anchor and finds no room.
        // Listed small first: the order of the file does not decide.
        const MapModel m = squares({{2, 50, 47, QStringLiteral("piccolo")},
                                    {45, 50, 50, QStringLiteral("ELEMENTO GRANDE")},
                                    {1, 50, 50, QStringLiteral("minimo")}});
        const MapTransform t(m.extent(), QSize(400, 400));
        QImage device(400, 400, QImage::Format_ARGB32);
        const std::vector<PlacedLabel> labels = placeLabels(m, t, &device);
        QCOMPARE(int(labels.size()), 2);
        checkNoOverlap(labels);
        QCOMPARE(labels[0].text, QStringLiteral("ELEMENTO GRANDE"));
        QCOMPARE(labels[0].centre, labels[0].anchor); // the larger keeps its place
        QCOMPARE(labels[1].text, QStringLiteral("piccolo"));
        // Right, left and above still touch the large label: it goes below.
        QCOMPARE(labels[1].centre.x(), labels[1].anchor.x());
        QCOMPARE(labels[1].centre.y(), labels[1].anchor.y() + labels[1].box.height() / 2 + 2);

        // Far enough apart, both stay centred.
        const MapModel apart =
            squares({{45, 50, 50, QStringLiteral("ELEMENTO GRANDE")}, {2, 50, 20, QStringLiteral("piccolo")}});
        const std::vector<PlacedLabel> both = placeLabels(apart, t, &device);
        QCOMPARE(int(both.size()), 2);
        for (const PlacedLabel &l : both)
            QCOMPARE(l.centre, l.anchor);
    }

    void rotatedLabelIsLeftOutRatherThanMoved()
    {
        MapModel m = squares({{45, 50, 50, QStringLiteral("GRANDE")}, {2, 50, 47, QStringLiteral("piccolo")}});
        m.layer(0).labels.rotation = 30;
        QImage device(400, 400, QImage::Format_ARGB32);
        const std::vector<PlacedLabel> labels = placeLabels(m, MapTransform(m.extent(), QSize(400, 400)), &device);
        QCOMPARE(int(labels.size()), 1);
        QCOMPARE(labels[0].text, QStringLiteral("GRANDE"));
    }

    // The mountain communities of Piemonte, labelled at a small size where
    // many labels compete for room.
    void realCommunitiesNeverOverlap()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("home"));
        QVERIFY(test::copyRealAtlas(home));
        auto data = LayerData::loadShapefile(home + QStringLiteral("/italia/commont.shp"));
        QVERIFY(data.ok());
        MapModel m;
        MapLayer &l = m.addLayer(test::makeLayer(QStringLiteral("commont"), *data));
        l.labels.field = QStringLiteral("Label");
        l.labels.height = 8;
        // The view around the communities of Verbano-Cusio-Ossola and Torino.
        const auto found = findFeatures(**data, QStringLiteral("Label LIKE '*Ossola*'"));
        QVERIFY(found && !found->empty());
        MapRect view = (*data)->featureExtent(found->front());
        for (int f : *found)
            view = view.united((*data)->featureExtent(f));
        view.scale(3);
        m.setExtent(view);
        QImage device(900, 700, QImage::Format_ARGB32);
        const MapTransform t(view, device.size());
        const std::vector<PlacedLabel> labels = placeLabels(m, t, &device);
        QVERIFY(labels.size() >= 5);
        checkNoOverlap(labels);
        // The picture draws exactly these labels: rendering twice gives the
        // same pixels (screen, export and page share the placement).
        const QImage a = MapRenderer::renderImage(m, view, device.size());
        const QImage b = MapRenderer::renderImage(m, view, device.size());
        QCOMPARE(a, b);
        if (const QString shots = qEnvironmentVariable("MERVOLA_SCREENSHOT_DIR"); !shots.isEmpty())
            a.save(shots + QStringLiteral("/etichette-ossola.png"));
    }
};

QTEST_MAIN(TestLabelPlacement)
#include "test_label_placement.moc"
