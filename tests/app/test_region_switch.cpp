// Switching the map between the whole country and one region on the demo
// atlas (Piemonte, Valle d'Aosta, Sicilia).
#include "app/MapModelHost.h"
#include "app/RegionSwitch.h"
#include "app/Startup.h"
#include "app/TemaLabel.h"
#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

QStringList layerNames(const map::MapModel &model)
{
    QStringList names;
    for (const auto &l : model.layers())
        names << l.name;
    return names;
}

RegionEntry entry(const QString &code)
{
    for (const RegionEntry &e : regionEntries())
        if (e.code == code)
            return e;
    return {};
}

// The box of the region's polygon in the regions layer, found without the
// search expression.
map::MapRect polygonBox(const map::MapModel &model, const QString &name)
{
    const map::LayerData &d = *model.layer(model.indexOf(QStringLiteral("regioni"))).data;
    const map::Column *label = d.column(QStringLiteral("Label"));
    for (int f = 0; f < d.featureCount(); ++f)
        if (label->text(f) == name)
            return d.featureExtent(f);
    return {};
}

}  // namespace

class TestRegionSwitch : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    AtlasHome m_home;
    AppState m_state;
    map::MapModel m_model;

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(atlas::buildDemoAtlas(m_dir->path()).ok());
        m_home = AtlasHome(m_dir->path());
        m_state = AppState();
        m_model.clear();
        MapModelHost host(m_model);
        QVERIFY(Startup(m_home, m_state).prepareMap(host).ok());
        QVERIFY(m_model.find(QStringLiteral("comuni")) && m_model.find(QStringLiteral("commont")));
    }

    void themesOfRegion_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QStringList>("themes");
        QTest::newRow("whole country") << "00" << QStringList{"comuni", "commont"};
        QTest::newRow("Piemonte") << "01" << QStringList{"comu_01", "cmont_01"};
        QTest::newRow("Sicily has no communities") << "19" << QStringList{"comu_19"};
        QTest::newRow("Valle d'Aosta") << "02" << QStringList{"comu_02", "cmont_02"};
    }
    void themesOfRegion()
    {
        QFETCH(QString, code);
        QFETCH(QStringList, themes);
        QCOMPARE(regionThemes(code), themes);

        MessageRecorder rec;
        auto r = switchRegion(m_model, m_home, entry(code), m_state);
        QVERIFY2(r.ok(), qPrintable(r.errorMessage()));
        QCOMPARE(r->added, themes);
        QCOMPARE(m_state.regionCode, code);
        QStringList regional;
        for (const QString &n : layerNames(m_model))
            if (isRegionLayer(n))
                regional << n;
        QCOMPARE(QSet<QString>(regional.begin(), regional.end()), QSet<QString>(themes.begin(), themes.end()));
        // Provinces and capitals stay drawn over the new themes.
        QVERIFY(m_model.indexOf(QStringLiteral("citta")) < m_model.indexOf(themes.front()));
        QVERIFY(m_model.indexOf(QStringLiteral("regioni")) > m_model.indexOf(themes.front()));
        QVERIFY(rec.entries().isEmpty());
    }

    void regionExtentIsPolygonEnlarged_data()
    {
        QTest::addColumn<QString>("code");
        QTest::newRow("apostrophe in the name") << "02";
        QTest::newRow("Piemonte") << "01";
        QTest::newRow("Sicilia") << "19";
    }
    void regionExtentIsPolygonEnlarged()
    {
        QFETCH(QString, code);
        const RegionEntry region = entry(code);
        auto r = switchRegion(m_model, m_home, region, m_state);
        QVERIFY(r.ok());
        QVERIFY(r->extent.has_value());
        const map::MapRect box = polygonBox(m_model, region.text);
        QVERIFY(!box.isEmpty());
        QCOMPARE(r->extent->width(), box.width() * 1.2);
        QCOMPARE(r->extent->height(), box.height() * 1.2);
        QCOMPARE(r->extent->center(), box.center());
    }

    void wholeCountryBringsBackThemesAndIndicator()
    {
        QVERIFY(switchRegion(m_model, m_home, entry(QStringLiteral("19")), m_state).ok());
        QVERIFY(!m_model.find(QStringLiteral("commont")));
        m_state.indicatorField = QStringLiteral("_02010");
        auto r = switchRegion(m_model, m_home, entry(QStringLiteral("00")), m_state);
        QVERIFY(r.ok());
        QVERIFY(m_model.find(QStringLiteral("comuni")) && m_model.find(QStringLiteral("commont")));
        QVERIFY(!m_model.find(QStringLiteral("comu_19")));
        QCOMPARE(m_state.indicatorField, QStringLiteral("I000"));
        QCOMPARE(m_state.regionCode, QStringLiteral("00"));
        QCOMPARE(*r->extent, m_model.find(QStringLiteral("regioni"))->extent());
    }

    void regionOpensWithPristineTable()
    {
        const QString working = m_home.italia() + QStringLiteral("/comu_01.dbf");
        const QByteArray pristine = readFile(m_home.originali() + QStringLiteral("/comu_01.dbf"));
        QVERIFY(writeFile(working, QByteArray("changed by a join")));
        QVERIFY(switchRegion(m_model, m_home, entry(QStringLiteral("01")), m_state).ok());
        QCOMPARE(readFile(working), pristine);
        const map::MapLayer *layer = m_model.find(QStringLiteral("comu_01"));
        QVERIFY(layer && layer->data && layer->data->featureCount() > 0);
    }

    void communityLabelsRemovedOnSwitch()
    {
        map::MapLayer *commont = m_model.find(QStringLiteral("commont"));
        LabelTarget t;
        t.themeName = QStringLiteral("commont");
        t.iniPath = m_home.supporto() + QStringLiteral("/commont.ini");
        QVERIFY(SetLabelProperties({QStringLiteral("Arial"), QStringLiteral("0"), QStringLiteral("8"), 0,
                                    QStringLiteral("Label")},
                                   commont->labels, t)
                    .ok());
        QVERIFY(readFile(t.iniPath).contains("LABEL=Arial^0^8^0^Label^"));
        QVERIFY(switchRegion(m_model, m_home, entry(QStringLiteral("02")), m_state).ok());
        QVERIFY(readFile(t.iniPath).contains("LABEL=*\n"));
    }

    void settingsOfNewThemeApplied()
    {
        const QString ini = m_home.supporto() + QStringLiteral("/cmont_01.ini");
        QVERIFY(writeLabelSetting(ini, QStringLiteral("cmont_01"), QStringLiteral("Arial^0^8^0^Label^")).ok());
        QVERIFY(switchRegion(m_model, m_home, entry(QStringLiteral("01")), m_state).ok());
        const map::MapLayer *layer = m_model.find(QStringLiteral("cmont_01"));
        QVERIFY(layer);
        QCOMPARE(layer->labels.field, QStringLiteral("Label"));
        const auto *simple = std::get_if<map::SimpleRenderer>(&layer->renderer);
        QVERIFY(simple);
        QCOMPARE(simple->symbol.color, 56320);
    }
};

QTEST_GUILESS_MAIN(TestRegionSwitch)
#include "test_region_switch.moc"
