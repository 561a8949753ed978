// Map tips: the caption tables, which layers give tips, and the debounce of
// the mouse through the tip timer.
#include "app/MapTip.h"
#include "map/test_map_fixtures.h"

#include <QTimer>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

class FakePanel : public MapTipView {
public:
    bool visible = false;
    QString caption, text;
    QPoint at;
    int shows = 0;
    void hideTip() override { visible = false; }
    void showTip(const QString &c, const QString &t, QPoint p) override
    {
        caption = c;
        text = t;
        at = p;
        visible = true;
        ++shows;
    }
    bool tipVisible() const override { return visible; }
};

// Widget pixels equal map units, y pointing down over a 100 x 100 map.
class FakeSource : public MapTipSource {
public:
    map::MapModel model;
    QPoint cursor;
    const map::MapModel &tipModel() const override { return model; }
    QPoint cursorPosition() const override { return cursor; }
    QPointF toMapPoint(QPoint p) const override { return {double(p.x()), 100.0 - p.y()}; }
    double unitsPerPixel() const override { return 1; }
};

// Map point (20, 80) lies in f2 "LOMBARDIA"; (5, 95) likewise.
const QPoint kOverLombardia(20, 20);

}  // namespace

class TestMapTip : public QObject {
    Q_OBJECT

    QTimer m_timer;
    FakePanel m_panel;
    FakeSource m_source;
    MapTip m_tip;

    void useLayers(const QStringList &namesTopFirst)
    {
        m_source.model.clear();
        for (auto it = namesTopFirst.rbegin(); it != namesTopFirst.rend(); ++it)
            m_source.model.addLayer(makeLayer(*it, fixturePolygons()));
    }

private slots:
    void init()
    {
        m_panel = FakePanel();
        m_source.cursor = kOverLombardia;
        useLayers({QStringLiteral("regioni")});
        m_tip.bind(&m_timer, &m_panel, &m_source);
    }

    void captionByPrefix_data()
    {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("caption");
        QTest::newRow("motorway before road") << "astrade" << "AUTOSTRADA:";
        QTest::newRow("road") << "strade" << "STRADA:";
        QTest::newRow("comm community") << "commont" << "C. MONTANA:";
        QTest::newRow("cmon community") << "cmont_01" << "C. MONTANA:";
        QTest::newRow("municipality") << "comu_19" << "COMUNE:";
        QTest::newRow("region") << "regioni" << "REGIONE:";
        QTest::newRow("province") << "province" << "PROVINCIA:";
        QTest::newRow("river") << "fiumi" << "FIUME:";
        QTest::newRow("lake") << "laghi" << "LAGO:";
        QTest::newRow("railway") << "ferrovie" << "FERROVIA:";
        QTest::newRow("park") << "parchi" << "PARCO:";
        QTest::newRow("basin has no prefix") << "bacini" << "";
        QTest::newRow("sea has no prefix") << "mari" << "";
    }
    void captionByPrefix()
    {
        QFETCH(QString, layer);
        QFETCH(QString, caption);
        QCOMPARE(tipCaptionByPrefix(layer), caption);
    }

    void captionByName_data()
    {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("caption");
        QTest::newRow("motorway") << "astrade" << "AUTOSTRADA:";
        QTest::newRow("basin") << "bacini" << "BACINO:";
        QTest::newRow("sea") << "MARI" << "MARE:";
        QTest::newRow("community") << "commont" << "C. MONTANA:";
        QTest::newRow("region layer of a region") << "comu_01" << "";
    }
    void captionByName()
    {
        QFETCH(QString, layer);
        QFETCH(QString, caption);
        QCOMPARE(tipCaptionByName(layer), caption);
        // The combined lookup falls back on the prefix.
        QCOMPARE(tipCaption(layer), caption.isEmpty() ? tipCaptionByPrefix(layer) : caption);
    }

    void eligibleLayers_data()
    {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<bool>("eligible");
        QTest::newRow("region municipalities") << "comu_01" << true;
        QTest::newRow("region communities") << "CMONT_02" << true;
        QTest::newRow("motorways") << "astrade" << true;
        QTest::newRow("capitals") << "citta" << true;
        QTest::newRow("all municipalities") << "comuni" << true;
        QTest::newRow("all communities") << "commont" << true;
        QTest::newRow("basins by whole name") << "bacini" << true;
        QTest::newRow("boundaries") << "confini" << false;
    }
    void eligibleLayers()
    {
        QFETCH(QString, layer);
        QFETCH(bool, eligible);
        QCOMPARE(isTipLayer(layer), eligible);
    }

    void restingCursorShowsTip()
    {
        m_tip.MouseMove();
        QVERIFY(m_tip.armed());
        QCOMPARE(m_timer.interval(), MapTip::kIntervalMs);
        m_tip.tick();
        QVERIFY(m_panel.visible);
        QCOMPARE(m_panel.caption, QStringLiteral("REGIONE:"));
        QCOMPARE(m_panel.text, QStringLiteral("LOMBARDIA"));
        QCOMPARE(m_panel.at, kOverLombardia);
        QCOMPARE(m_tip.layerName(), QStringLiteral("regioni"));
        QVERIFY(!m_tip.armed());
        m_tip.NoLayer();
        QVERIFY(m_tip.layerName().isEmpty());
    }

    void movingCursorNeverShowsTip()
    {
        for (int step = 0; step < 6; ++step) {
            m_source.cursor += QPoint(3, 0);
            m_tip.MouseMove();
            if (step % 2 == 1)
                m_tip.tick();  // the cursor moved on since the timer was armed
        }
        QCOMPARE(m_panel.shows, 0);
    }

    void movementHidesShownTip()
    {
        m_tip.MouseMove();
        m_tip.tick();
        QVERIFY(m_panel.visible);
        m_source.cursor += QPoint(1, 1);
        m_tip.MouseMove();
        QVERIFY(!m_panel.visible);

        // Releasing the tool leaves the panel hidden and the timer disarmed.
        m_tip.tick();
        m_tip.MouseMove();
        m_tip.tick();
        QVERIFY(m_panel.visible);
        m_tip.MouseMove();
        m_tip.reset();
        QVERIFY(!m_panel.visible);
        QVERIFY(!m_tip.armed());
    }

    void onlyEligibleVisibleLayersGiveTips_data()
    {
        QTest::addColumn<QStringList>("layers");
        QTest::addColumn<bool>("hideTop");
        QTest::addColumn<QString>("caption");
        QTest::newRow("not eligible") << QStringList{"confini", "strutture"} << false << "";
        QTest::newRow("top layer first") << QStringList{"comu_01", "regioni"} << false << "COMUNE:";
        QTest::newRow("non-eligible top skipped") << QStringList{"confini", "province"} << false << "PROVINCIA:";
        QTest::newRow("hidden top skipped") << QStringList{"comu_01", "regioni"} << true << "REGIONE:";
    }
    void onlyEligibleVisibleLayersGiveTips()
    {
        QFETCH(QStringList, layers);
        QFETCH(bool, hideTop);
        QFETCH(QString, caption);
        useLayers(layers);
        m_source.model.layer(0).visible = !hideTop;
        m_tip.MouseMove();
        m_tip.tick();
        QCOMPARE(m_panel.visible, !caption.isEmpty());
        if (!caption.isEmpty())
            QCOMPARE(m_panel.caption, caption);
    }

    void noElementNoTip()
    {
        m_source.cursor = QPoint(50, 20);  // between the squares
        m_tip.MouseMove();
        m_tip.tick();
        QVERIFY(!m_panel.visible);
    }

    void timerFiresAfterInterval()
    {
        m_tip.MouseMove();
        QVERIFY(!m_panel.visible);
        QTRY_VERIFY_WITH_TIMEOUT(m_panel.visible, 2000);
        QVERIFY(!m_tip.armed());
    }
};

QTEST_GUILESS_MAIN(TestMapTip)
#include "test_maptip.moc"
