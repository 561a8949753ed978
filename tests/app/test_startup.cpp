// The start-up steps that need no window, run against a tiny atlas home.
#include "app/Startup.h"
#include "platform/InstanceLock.h"
#include "platform/Messages.h"
#include "project/SettingsFixture.h"

#include <QFileInfo>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

class TestStartup : public QObject {
    Q_OBJECT
private slots:
    void firstStartPreparesHomeAndMap()
    {
        TinyHome h;
        h.makeDefaultAtlas();
        QVERIFY(QFile::remove(h.home.originali() + "/commont.ini"));
        QVERIFY(QFile::remove(h.home.originali() + "/comuni.ini"));
        // Without pristine settings the region files are written, then copied to supporto/.
        h.write("supporto/default.rlx", {"[RLX]", "DBFCOMMONT=^", "EXTENT=1^2^3^4^", "[comu_03]", "[cmont_07]"});
        h.addShape("comu_03");
        h.addShape("cmont_07");
        AppState state;
        state.regionCode = "12";
        state.indicatorField = "_X";
        FakeMap map;
        Startup s(h.home, state);
        QVERIFY(s.prepareMap(map));
        QCOMPARE(QDir(h.home.originali()).entryList({"*.ini"}, QDir::Files).size(), 39);
        QCOMPARE(QDir(h.home.supporto()).entryList({"*.ini"}, QDir::Files).size(), 39);
        QCOMPARE(map.names(), (QStringList{"cmont_07", "comu_03"}));
        QCOMPARE(map.ext, (ExtentRect{1, 2, 3, 4}));
        QCOMPARE(state.regionCode, QStringLiteral("07"));       // the last region theme loaded
        QCOMPARE(state.indicatorField, QStringLiteral("I000"));  // CAMPO=I010 is not an "_" code
        QCOMPARE(state.labelFont, QStringLiteral("Arial"));
        QVERIFY(state.busyLoading);
        QCOMPARE(state.scaleBase, 1600.0);
        QCOMPARE(state.scaleFactor, 258.34);
    }

    void supportoChangesAreGoneAtNextStart()
    {
        TinyHome h;
        h.makeDefaultAtlas();
        AppState state;
        {
            FakeMap map;
            QVERIFY(Startup(h.home, state).prepareMap(map));
        }
        h.write("supporto/comuni.ini", {"[COMUNI]", "VISIBILE=0", "LABEL=NOME"});
        writeFile(h.home.italia() + "/commont.dbf", "joined during the run");
        FakeMap map;
        QVERIFY(Startup(h.home, state).prepareMap(map));
        QVERIFY(!h.text("supporto/comuni.ini").contains("LABEL=NOME"));
        QCOMPARE(readFile(h.home.italia() + "/commont.dbf"), tinyDbf("pristine commont"));
        QVERIFY(map.find("comuni")->settings.visible);
    }

    void structureTable_data()
    {
        QTest::addColumn<QStringList>("inserts");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("messages");
        QTest::newRow("empty table") << QStringList() << 0 << 1;
        QTest::newRow("two rows")
            << QStringList{"INSERT INTO STRUTTURE VALUES ('PROG_MONT','Codice','commont',0,-1)",
                           "INSERT INTO STRUTTURE VALUES ('SUP','Superficie','commont',-1,0)"}
            << 2 << 0;
    }
    void structureTable()
    {
        QFETCH(QStringList, inserts);
        QFETCH(int, rows);
        QFETCH(int, messages);
        TinyHome h;
        for (const QString &sql : inserts)
            h.sql(sql);
        AppState state;
        MessageRecorder rec;
        QVERIFY(Startup(h.home, state).loadStructureTable());
        QVERIFY(state.structuresLoaded);
        QCOMPARE(int(state.structure.rows.size()), rows);
        QCOMPARE(rec.entries().size(), messages);
        if (messages) {
            QCOMPARE(rec.entries()[0].style, 16);
            QCOMPARE(rec.entries()[0].text, QStringLiteral("Impossibile reperire informazioni su tabella: STRUTTURE in t_rec!!!"));
        } else {
            QCOMPARE(state.structure.rows[1].alias, QStringLiteral("Superficie"));
            QCOMPARE(state.structure.rows[0].fieldjoin, QStringLiteral("-1"));
        }
    }

    void activeThemeSourceName()
    {
        TinyHome h;
        h.sql("INSERT INTO ALIASTEMI VALUES ('Comunità montane d''Italia','commont')");
        AppState state;
        Startup s(h.home, state);
        QVERIFY(s.setActiveTheme("Comunità montane d'Italia"));
        QCOMPARE(state.activeSourceName, QStringLiteral("commont"));
        QVERIFY(s.setActiveTheme("Altro"));
        QCOMPARE(state.activeTheme, QStringLiteral("Altro"));
        QCOMPARE(state.activeSourceName, QString());
    }

    void secondInstanceIsRefused()
    {
        TinyHome h;
        auto first = std::make_unique<InstanceLock>(h.home.root());
        QCOMPARE(first->acquire(), InstanceLock::State::Held);
        InstanceLock second(h.home.root());
        QCOMPARE(second.acquire(), InstanceLock::State::InUse);
        first.reset();
        QVERIFY(!QFileInfo::exists(h.home.root() + QStringLiteral("/.mervola.lock")));
        QCOMPARE(second.acquire(), InstanceLock::State::Held);
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "test_startup.moc"
