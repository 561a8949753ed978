// Start-up and projects on a complete demo atlas home made by the atlas builder.
#include "app/Startup.h"
#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"
#include "project/Indicators.h"
#include "project/SettingsFixture.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

class TestStartupDemo : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        const Status st = atlas::buildDemoAtlas(m_dir.path());
        QVERIFY2(st.ok(), qPrintable(st.errorMessage()));
        m_home = AtlasHome(m_dir.path());
    }

    void startsWithDefaultProjectAndStructure()
    {
        AppState state;
        FakeMap map;
        MessageRecorder rec;
        Startup s(m_home, state);
        const Status st = s.prepareMap(map);
        QVERIFY2(st.ok(), qPrintable(st.errorMessage()));
        QVERIFY(map.layerCount() > 0);
        QVERIFY(map.ext.xmax > map.ext.xmin && map.ext.ymax > map.ext.ymin);
        QCOMPARE(state.regionCode, QStringLiteral("00"));
        QVERIFY(s.loadStructureTable());
        QVERIFY(state.structuresLoaded);
        QVERIFY(!state.structure.rows.empty());
        QVERIFY(rec.entries().isEmpty());

        // Every structure row converts to its alias and back without the database.
        const Indicators ind(state.structure, ReferenceDb(QStringLiteral("/nonexistent.sqlite")));
        const StructureRow &row = state.structure.rows.front();
        QCOMPARE(ind.fieldToDescription(row.label, QStringLiteral("00")), row.alias);
    }

    void projectRoundTripOnRealThemes()
    {
        AppState state;
        FakeMap map;
        QVERIFY(Startup(m_home, state).prepareMap(map));
        map.ext = {1000.25, 2000.5, 3000.75, 4000.125};
        ProjectFiles p(m_home, map);
        const QString path = m_dir.path() + QStringLiteral("/prova.rlx");
        QVERIFY(p.save(path, QStringLiteral("commont")));

        FakeMap other;
        ProjectFiles q(m_home, other);
        const Status st = q.open(path);
        QVERIFY2(st.ok(), qPrintable(st.errorMessage()));
        QCOMPARE(other.names(), map.names());
        QCOMPARE(other.ext, map.ext);
        for (int i = 0; i < map.layerCount(); ++i)
            QCOMPARE(other.layerVisible(i), map.layerVisible(i));
    }
};

QTEST_GUILESS_MAIN(TestStartupDemo)
#include "test_startup_demo.moc"
