// Theme labels: the serialised settings, SetLabelProperties step by step,
// removing labels, the settings file, the field list and a project round trip.
#include "app/MapModelHost.h"
#include "app/Startup.h"
#include "app/TemaLabel.h"
#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"
#include "platform/Profile.h"
#include "map/test_map_fixtures.h"
#include "project/ProjectFile.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

const QString kThemeFile = QStringLiteral("[COMU_01]\n"
                                          "JOIN=-1^-1^-1^-1^-1^-1^\n"
                                          "STRUCTJOIN =*^\n"
                                          "WORKSPACE=/atlas/italia/\n"
                                          "BASE=comu_01.shp^comu_01^\n"
                                          "SIMBOLO=2^0^0^16776960^33554432^\n"
                                          "LABEL=*\n"
                                          "TIPOCLASSIFICAZIONE=0\n"
                                          "CAMPO=0^0^0^0^\n"
                                          "CLASSIFICAZIONE=0\n"
                                          "OUTLINE=1\n"
                                          "VISIBILE=1\n");

StructureTable structure()
{
    StructureTable s;
    s.rows = {{"Label", "Denominazione", "comu_01", "0", "-1"},
              {"COD_REG", "Codice regione", "comu_01", "0", "-1"},
              {"_02010", "Popolazione residente 2022", "comu_01", "-1", "0"},
              {"VAL", "Valore", "regioni", "-1", "0"},
              {"Label", "Nome della regione", "regioni", "0", "-1"}};
    return s;
}

QStringList fileLines(const QString &path) { return splitLines(QString::fromUtf8(readFile(path))); }

}  // namespace

class TestTemaLabel : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_ini;
    StructureTable m_structure = structure();

    LabelTarget target()
    {
        LabelTarget t;
        t.themeName = QStringLiteral("comu_01");
        t.iniPath = m_ini;
        t.structure = &m_structure;
        return t;
    }

private slots:
    void init()
    {
        m_ini = m_dir.filePath(QStringLiteral("comu_01.ini"));
        QVERIFY(writeFile(m_ini, kThemeFile.toUtf8()));
    }

    void emptyValueStopsBeforeLaterSteps_data()
    {
        QTest::addColumn<QString>("rotation");
        QTest::addColumn<QString>("height");
        QTest::addColumn<bool>("rotationPut");
        QTest::newRow("no rotation") << "" << "10" << false;
        QTest::newRow("no height") << "30" << "" << true;
    }
    void emptyValueStopsBeforeLaterSteps()
    {
        QFETCH(QString, rotation);
        QFETCH(QString, height);
        QFETCH(bool, rotationPut);
        MessageRecorder rec;
        map::LabelRenderer r;
        r.field = QStringLiteral("dummy");
        const QByteArray before = readFile(m_ini);
        const LabelForm form{QStringLiteral("Courier"), rotation, height, 255, QStringLiteral("Denominazione")};
        const auto result = SetLabelProperties(form, r, target());
        QVERIFY(!result.ok());
        QCOMPARE(result.error().code, kLabelInputRefused);
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().front().style, 64);
        QCOMPARE(rec.entries().front().text, QStringLiteral("Bisogna inserire un valore valido"));
        QCOMPARE(rec.entries().front().title, QStringLiteral("Mervola"));
        QCOMPARE(r.fontFamily, QStringLiteral("Courier"));  // step 1 stays
        QCOMPARE(r.rotation, rotationPut ? 30.0 : 0.0);
        QCOMPARE(r.height, 8.0);
        QCOMPARE(r.color, 0);
        QCOMPARE(r.field, QStringLiteral("dummy"));
        QCOMPARE(readFile(m_ini), before);
    }

    void appliesAndWritesEveryValue()
    {
        MessageRecorder rec;
        map::LabelRenderer r;
        const LabelForm form{QStringLiteral("Courier"), QStringLiteral("15"), QStringLiteral("11"), 65280,
                             QStringLiteral("Popolazione residente 2022")};
        const auto result = SetLabelProperties(form, r, target());
        QVERIFY2(result.ok(), qPrintable(result.errorMessage()));
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(r, (map::LabelRenderer{QStringLiteral("_02010"), QStringLiteral("Courier"), 11, 15, 65280}));
        const QStringList lines = fileLines(m_ini);
        QCOMPARE(lines.size(), 12);
        QCOMPARE(lines[0], QStringLiteral("[COMU_01]"));
        QCOMPARE(lines[6], QStringLiteral("LABEL=Courier^15^11^65280^_02010^"));
        // Every other key kept, in the standard order.
        QCOMPARE(lines[2], QStringLiteral("STRUCTJOIN=*^"));
        QCOMPARE(lines[5], QStringLiteral("SIMBOLO=2^0^0^16776960^33554432^"));
        QCOMPARE(lines[11], QStringLiteral("VISIBILE=1"));
        QVERIFY(!QFileInfo::exists(m_dir.filePath(QStringLiteral("comu_01.new"))));
    }

    void removeAndAddAgainRestoresLabels()
    {
        map::MapModel model;
        model.addLayer(makeLayer(QStringLiteral("comu_01"), fixturePolygons()));
        map::LabelRenderer &labels = model.layer(0).labels;
        const LabelForm form{QStringLiteral("Arial"), QStringLiteral("0"), QStringLiteral("9"), 0,
                             QStringLiteral("Denominazione")};
        QVERIFY(SetLabelProperties(form, labels, target()).ok());
        QVERIFY(labels.enabled());

        QVERIFY(RemoveLabels(model, QStringLiteral("COMU_01"), m_ini).ok());
        QCOMPARE(model.layer(0).labels.field, QStringLiteral("dummy"));
        QVERIFY(fileLines(m_ini).contains(QStringLiteral("LABEL=*")));

        QVERIFY(SetLabelProperties(form, model.layer(0).labels, target()).ok());
        QCOMPARE(model.layer(0).labels.field, QStringLiteral("Label"));
        QVERIFY(fileLines(m_ini).contains(QStringLiteral("LABEL=Arial^0^9^0^Label^")));
    }

    void fieldList_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QStringList>("listed");
        const QStringList comu{"COD_REG", "_02010", "Label", "DUMMY", "_09999"};
        QTest::newRow("municipalities: name first, indicators by description")
            << "comu_01" << comu << QStringList{"Denominazione", "Popolazione residente 2022", "_09999"}
            << QStringList{"Label", "_02010", "_09999"};
        QTest::newRow("other theme: every field by alias")
            << "regioni" << QStringList{"VAL", "DUMMY", "Label", "OTHER"}
            << QStringList{"Valore", "Nome della regione", "OTHER"} << QStringList{"VAL", "Label", "OTHER"};
    }
    void fieldList()
    {
        QFETCH(QString, theme);
        QFETCH(QStringList, fields);
        QFETCH(QStringList, texts);
        QFETCH(QStringList, listed);
        const auto entries = labelFieldEntries(theme, fields, m_structure);
        QStringList gotTexts, gotFields;
        for (const auto &e : entries) {
            gotTexts << e.text;
            gotFields << e.field;
            QCOMPARE(labelFieldOfEntry(e.text, theme, m_structure), e.field);
        }
        QCOMPARE(gotTexts, texts);
        QCOMPARE(gotFields, listed);
    }

    void labelsSurviveProjectSaveAndOpen()
    {
        QTemporaryDir dir;
        QVERIFY(atlas::buildDemoAtlas(dir.path()).ok());
        const AtlasHome home(dir.path());
        AppState state;
        map::MapModel model;
        MapModelHost host(model);
        QVERIFY(Startup(home, state).prepareMap(host).ok());
        map::MapLayer *comuni = model.find(QStringLiteral("comuni"));
        QVERIFY(comuni);
        LabelTarget t;
        t.themeName = QStringLiteral("comuni");
        t.iniPath = home.supporto() + QStringLiteral("/comuni.ini");
        const LabelForm form{QStringLiteral("Courier"), QStringLiteral("20"), QStringLiteral("10"), 255,
                             QStringLiteral("Label")};
        QVERIFY(SetLabelProperties(form, comuni->labels, t).ok());

        ProjectFiles projects(home, host);
        const QString path = dir.filePath(QStringLiteral("etichette.rlx"));
        QVERIFY(projects.save(path, QStringLiteral("commont")).ok());

        map::MapModel other;
        MapModelHost otherHost(other);
        ProjectFiles reopen(home, otherHost);
        const Status st = reopen.open(path);
        QVERIFY2(st.ok(), qPrintable(st.errorMessage()));
        const map::MapLayer *back = other.find(QStringLiteral("comuni"));
        QVERIFY(back);
        QCOMPARE(back->labels, (map::LabelRenderer{QStringLiteral("Label"), QStringLiteral("Courier"), 10, 20, 255}));
    }
};

QTEST_GUILESS_MAIN(TestTemaLabel)
#include "test_tema_label.moc"
