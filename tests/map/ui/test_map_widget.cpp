// The map widget offscreen: rendering only when needed, panning the cached
// picture, the rubber band, clicks and coordinates.
#include "../test_map_fixtures.h"
#include "map/ui/MapWidget.h"

#include <QSignalSpy>
#include <QtTest>

using namespace mervola;
using namespace mervola::map;

Q_DECLARE_METATYPE(mervola::map::MapRect)

class TestMapWidget : public QObject {
    Q_OBJECT
private:
    // 200 x 200 pixels over map 0..100: two pixels per map unit.
    std::unique_ptr<MapWidget> makeWidget()
    {
        auto w = std::make_unique<MapWidget>();
        w->resize(200, 200);
        w->model().addLayer(test::makeLayer(QStringLiteral("comuni"), test::fixturePolygons()));
        w->setExtent(MapRect(0, 100, 100, 0));
        w->show();
        if (!QTest::qWaitForWindowExposed(w.get()))
            return nullptr;
        w->repaint();
        return w->renderCount() >= 1 ? std::move(w) : nullptr;
    }

private slots:
    void initTestCase() { qRegisterMetaType<MapRect>(); }

    void namedAsTheMapControl()
    {
        MapWidget w;
        QCOMPARE(w.objectName(), QStringLiteral("MapMain"));
    }

    void repaintWithoutChangeDoesNotRender()
    {
        auto w = makeWidget();
        QVERIFY(w);
        const int before = w->renderCount();
        w->repaint();
        w->repaint();
        QCOMPARE(w->renderCount(), before);
        w->refresh();
        w->repaint();
        QCOMPARE(w->renderCount(), before + 1);
        w->setExtent(MapRect(0, 50, 50, 0));
        w->repaint();
        QCOMPARE(w->renderCount(), before + 2);
    }

    void panMovesPictureAndRendersOnceOnRelease()
    {
        auto w = makeWidget();
        QVERIFY(w);
        w->setMode(MapWidget::Mode::Pan);
        QSignalSpy extents(w.get(), &MapWidget::extentChanged);
        QSignalSpy finished(w.get(), &MapWidget::panFinished);
        const int before = w->renderCount();
        QTest::mousePress(w.get(), Qt::LeftButton, {}, QPoint(100, 100));
        for (int x = 105; x <= 140; x += 5) {
            QTest::mouseMove(w.get(), QPoint(x, 100));
            w->repaint();
        }
        QCOMPARE(w->renderCount(), before);  // dragging only moves the picture
        QCOMPARE(extents.count(), 0);
        QTest::mouseRelease(w.get(), Qt::LeftButton, {}, QPoint(140, 120));
        w->repaint();
        QCOMPARE(w->renderCount(), before + 1);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(extents.count(), 1);
        // Dragged 40 px right and 20 px down = 20 map units right, 10 down:
        // the map follows the hand, so the extent moves left and up.
        const MapRect e = w->extent();
        QVERIFY(qAbs(e.left() - (-20)) < 1e-9);
        QVERIFY(qAbs(e.top() - 110) < 1e-9);
    }

    void rubberBandReportsTheRectangle()
    {
        auto w = makeWidget();
        QVERIFY(w);
        w->setMode(MapWidget::Mode::RubberBand);
        QSignalSpy chosen(w.get(), &MapWidget::rectangleChosen);
        QSignalSpy pressed(w.get(), &MapWidget::mousePressed);
        const int before = w->renderCount();
        const MapRect extentBefore = w->extent();
        QTest::mousePress(w.get(), Qt::LeftButton, {}, QPoint(20, 40));
        QTest::mouseMove(w.get(), QPoint(60, 80));
        w->repaint();
        QTest::mouseRelease(w.get(), Qt::LeftButton, {}, QPoint(120, 100));
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(chosen.count(), 1);
        // Pixels (20, 40)-(120, 100) are map x 10..60, y 80..50.
        QCOMPARE(chosen.at(0).at(0).value<MapRect>(), MapRect(10, 80, 60, 50));
        // The widget leaves the zoom to its caller.
        QCOMPARE(w->extent(), extentBefore);
        QCOMPARE(w->renderCount(), before);
    }

    void clickModeReportsMapPointOnlyWithoutDrag_data()
    {
        QTest::addColumn<QPoint>("releaseAt");
        QTest::addColumn<int>("clicks");
        QTest::newRow("still") << QPoint(50, 150) << 1;
        QTest::newRow("small jitter") << QPoint(52, 151) << 1;
        QTest::newRow("drag") << QPoint(90, 150) << 0;
    }
    void clickModeReportsMapPointOnlyWithoutDrag()
    {
        QFETCH(QPoint, releaseAt);
        QFETCH(int, clicks);
        auto w = makeWidget();
        QVERIFY(w);
        w->setMode(MapWidget::Mode::Click);
        QSignalSpy clicked(w.get(), &MapWidget::clicked);
        QTest::mousePress(w.get(), Qt::RightButton, {}, QPoint(50, 150));
        QTest::mouseRelease(w.get(), Qt::RightButton, {}, releaseAt);
        QCOMPARE(clicked.count(), clicks);
        if (clicks) {
            QCOMPARE(clicked.at(0).at(0).toPointF(), QPointF(25, 25));
            QCOMPARE(clicked.at(0).at(1).value<Qt::MouseButton>(), Qt::RightButton);
        }
    }

    void mouseMoveReportsMapCoordinates()
    {
        auto w = makeWidget();
        QVERIFY(w);
        QSignalSpy moved(w.get(), &MapWidget::mouseMoved);
        QTest::mouseMove(w.get(), QPoint(100, 50));
        QTRY_VERIFY(moved.count() >= 1);
        QCOMPARE(moved.last().at(0).toDouble(), 50.0);
        QCOMPARE(moved.last().at(1).toDouble(), 75.0);
        QCOMPARE(w->toMapPoint(QPoint(0, 200)), QPointF(0, 0));
        QCOMPARE(w->toWidgetPoint(QPointF(100, 100)), QPoint(200, 0));
    }

    void resizeKeepsCentreAndRenders()
    {
        auto w = makeWidget();
        QVERIFY(w);
        const int before = w->renderCount();
        w->resize(400, 200);
        w->repaint();
        QCOMPARE(w->renderCount(), before + 1);
        QCOMPARE(w->extent().center(), QPointF(50, 50));
        QCOMPARE(w->extent().height(), 100.0);
        QCOMPARE(w->extent().width(), 200.0);
    }

    void exportImageHasRequestedSize()
    {
        auto w = makeWidget();
        QVERIFY(w);
        const QImage img = w->exportImage(QSize(300, 300));
        QCOMPARE(img.size(), QSize(300, 300));
        // f2 (0..40 x 60..100) is the default municipality fill.
        QCOMPARE(img.pixelColor(60, 60), QColor(0, 255, 255));
    }
};

QTEST_MAIN(TestMapWidget)
#include "test_map_widget.moc"
