// Saving and opening projects, the default project and the recovery from a
// project that cannot be opened.
#include "platform/Messages.h"
#include "project/PristineSettings.h"
#include "project/ProjectFile.h"
#include "project/SettingsFixture.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

// A home whose default project is on the map, plus a region theme.
struct Loaded {
    TinyHome h;
    FakeMap map;
    Loaded()
    {
        h.makeDefaultAtlas();
        h.addShape(QStringLiteral("cmont_05"), tinyDbf("pristine 05"));
        writeFile(h.home.originali() + QStringLiteral("/cmont_05.dbf"), tinyDbf("pristine 05"));
        (void)copyPristineSettings(h.home);
        ProjectFiles p(h.home, map);
        (void)p.restoreDefault();
    }
    QString projectPath(const QString &name) const { return h.root() + QLatin1Char('/') + name; }
};

}  // namespace

class TestProjectFile : public QObject {
    Q_OBJECT
private slots:
    void defaultProjectIsLoaded()
    {
        Loaded l;
        QCOMPARE(l.map.names(), (QStringList{QStringLiteral("commont"), QStringLiteral("comuni")}));
        QCOMPARE(l.map.ext, (ExtentRect{100, 200, 300, 400}));
        // WORKSPACE of the default project is the home's italia/, not the stored folder.
        QCOMPARE(l.map.layers[0].path, l.h.root() + QStringLiteral("/italia/commont.shp"));
        QVERIFY(l.map.layers[0].settings.visible);
    }

    void saveThenOpenGivesSameMap()
    {
        Loaded l;
        l.h.write(QStringLiteral("supporto/comuni.ini"),
                  {"[COMUNI]", "WORKSPACE=" + l.h.root() + "/italia/", "BASE=comuni.shp^comuni^",
                   "SIMBOLO=2^0^1^255^33554432^", "LABEL=NOME", "TIPOCLASSIFICAZIONE=UNICO", "CAMPO=NOME^2^3^1^",
                   "CLASSIFICAZIONE=0^A^1^255^A^0^1^|0^B^0^65280^B^0^1^|", "OUTLINE=0", "VISIBILE=1"});
        l.map.layers[1].name = QStringLiteral("comuni (collegata con dati esterni)");
        const ExtentRect awkward{0.1 + 0.2, -1234567.891, 1e6, 5123456.000000001};
        l.map.ext = awkward;
        ProjectFiles p(l.h.home, l.map);
        const QString path = l.projectPath(QStringLiteral("mio progetto.rlx"));
        QVERIFY(p.save(path, QStringLiteral("commont")));
        const QStringList saved = l.h.lines(QStringLiteral("mio progetto.rlx"));
        QCOMPARE(saved.mid(0, 2), (QStringList{"[RLX]", "DBFCOMMONT=commont^"}));
        QCOMPARE(saved.at(3), QStringLiteral("[COMUNI]"));  // last layer first

        FakeMap other;
        ProjectFiles q(l.h.home, other);
        QVERIFY(q.open(path));
        QCOMPARE(other.ext, awkward);
        QCOMPARE(other.names(), (QStringList{QStringLiteral("commont"), QStringLiteral("comuni")}));
        QCOMPARE(other.caption, QStringLiteral("Mervola - mio progetto"));
        const ThemeSettings &s = other.find(QStringLiteral("comuni"))->settings;
        QCOMPARE(s.classificationType, QStringLiteral("UNICO"));
        QCOMPARE(s.classes.size(), 2);
        QCOMPARE(s.symbol.color, 255);
        QVERIFY(!s.outline);
        QVERIFY(other.find(QStringLiteral("comuni"))->labels);
        // Saving again yields the same file.
        QVERIFY(q.save(l.projectPath(QStringLiteral("again.rlx")), QStringLiteral("commont")));
        QCOMPARE(l.h.text(QStringLiteral("again.rlx")), l.h.text(QStringLiteral("mio progetto.rlx")));
    }

    void wrongExtensionChangesNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("txt") << "p.txt";
        QTest::newRow("none") << "p";
        QTest::newRow("rlx inside") << "p.rlx.bak";
    }
    void wrongExtensionChangesNothing()
    {
        QFETCH(QString, name);
        Loaded l;
        MessageRecorder rec;
        ProjectFiles p(l.h.home, l.map);
        QVERIFY(!p.save(l.projectPath(name), QString()));
        QVERIFY(!QFileInfo::exists(l.projectPath(name)));
        l.h.write(name, {"[RLX]", "EXTENT=1^2^3^4^"});
        QVERIFY(!p.open(l.projectPath(name)));
        QCOMPARE(rec.entries().size(), 2);
        QCOMPARE(rec.entries()[1].text, ProjectText::kBadExtension);
        QCOMPARE(l.map.layerCount(), 2);
        QCOMPARE(l.map.ext, (ExtentRect{100, 200, 300, 400}));
    }

    void badProjectRestoresDefault_data()
    {
        QTest::addColumn<QStringList>("content");
        QTest::newRow("no RLX") << QStringList{"DBFCOMMONT=commont^", "EXTENT=1^2^3^4^", "[comuni]", "BASE=comuni.shp^comuni^"};
        QTest::newRow("extent text") << QStringList{"[RLX]", "EXTENT=1^due^3^4^", "[comuni]"};
        QTest::newRow("extent short") << QStringList{"[RLX]", "EXTENT=1^2^3^"};
        QTest::newRow("missing shapefile")
            << QStringList{"[RLX]", "EXTENT=1^2^3^4^", "[ghost]", "WORKSPACE=/w/", "BASE=ghost.shp^ghost^"};
        QTest::newRow("section escaping supporto") << QStringList{"[RLX]", "EXTENT=1^2^3^4^", "[../dati/x]", "A=1"};
        QTest::newRow("binary garbage") << QStringList{QString::fromLatin1("\x01\x02[\xff")};
    }
    void badProjectRestoresDefault()
    {
        QFETCH(QStringList, content);
        Loaded l;
        l.map.ext = {7, 7, 8, 8};
        l.h.write(QStringLiteral("bad.rlx"), content);
        const QByteArray before = readFile(l.projectPath(QStringLiteral("bad.rlx")));
        MessageRecorder rec;
        ProjectFiles p(l.h.home, l.map);
        QVERIFY(!p.open(l.projectPath(QStringLiteral("bad.rlx"))));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].style, 16);
        QCOMPARE(rec.entries()[0].text,
                 QStringLiteral("Il progetto non può essere aperto.\nSarà ripristinato il progetto iniziale."));
        QCOMPARE(l.map.names(), (QStringList{QStringLiteral("commont"), QStringLiteral("comuni")}));
        QCOMPARE(l.map.ext, (ExtentRect{100, 200, 300, 400}));
        QCOMPARE(readFile(l.projectPath(QStringLiteral("bad.rlx"))), before);
        QVERIFY(!QFileInfo::exists(l.h.root() + QStringLiteral("/dati/x.ini")));
        QVERIFY(QFileInfo::exists(l.h.home.referenceDb()));
    }

    void openClearsJoinsRestoresTablesAndRejoins()
    {
        Loaded l;
        l.h.sql(QStringLiteral("INSERT INTO CAMPIJOIN VALUES ('cmont_05','POP',0,'/w')"));
        l.h.sql(QStringLiteral("INSERT INTO LISTAJOIN VALUES ('/s/','e.dbf','e','A','B','cmont_05.shp')"));
        writeFile(l.h.home.italia() + QStringLiteral("/cmont_05.dbf"), "joined");
        l.h.write(QStringLiteral("p.rlx"),
                  {"[RLX]", "DBFCOMMONT=cmont_05^", "EXTENT=1^2^3^4^", "[CMONT_05]",
                   "JOIN=/s/^e.dbf^e^A^B^cmont_05.shp^", "WORKSPACE=" + l.h.root() + "/italia/",
                   "BASE=cmont_05.shp^cmont_05^", "CAMPO=_AB123^0^0^0^"});
        QStringList rejoined;
        ProjectFiles p(l.h.home, l.map);
        p.hooks().rejoin = [&](const LoadedTheme &t) {
            rejoined << t.settings.join.nomeDb;
            return Status();
        };
        QVERIFY(p.open(l.projectPath(QStringLiteral("p.rlx"))));
        QCOMPARE(rejoined, QStringList{QStringLiteral("e.dbf")});
        QCOMPARE(readFile(l.h.home.italia() + QStringLiteral("/cmont_05.dbf")), tinyDbf("pristine 05"));
        for (const char *table : {"CAMPIJOIN", "LISTAJOIN", "STRUCTJOIN"})
            QVERIFY(l.h.db().query(QStringLiteral("SELECT * FROM ") + QLatin1String(table))->empty());
        QCOMPARE(p.session().regionCode, QStringLiteral("05"));
        QCOMPARE(p.session().indicator, std::optional<QString>(QStringLiteral("_AB123")));
        QCOMPARE(l.map.names(), QStringList{QStringLiteral("cmont_05")});
    }

    void communityTableFailureGoesOn()
    {
        Loaded l;
        l.h.write(QStringLiteral("p.rlx"), {"[RLX]", "DBFCOMMONT=cmont_11^", "EXTENT=1^2^3^4^"});
        MessageRecorder rec;
        ProjectFiles p(l.h.home, l.map);
        QVERIFY(p.open(l.projectPath(QStringLiteral("p.rlx"))));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].text, ProjectText::kCommunityRestoreFailed);
        QCOMPARE(l.map.ext, (ExtentRect{1, 2, 3, 4}));
    }

    void helpers_data()
    {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("settings");
        QTest::newRow("plain") << "comuni" << "comuni";
        QTest::newRow("display suffix") << "comuni (collegata con dati esterni)" << "comuni";
        QTest::newRow("no blank before") << "comuni(x)" << "comun";
        QTest::newRow("paren first") << "(x)" << "";
    }
    void helpers()
    {
        QFETCH(QString, layer);
        QFETCH(QString, settings);
        QCOMPARE(settingsNameOfLayer(layer), settings);
    }

    void extentNumbersRoundTrip()
    {
        for (double v : {0.0, -0.5, 0.1 + 0.2, 1e6, 4.9e-7, 12345678.123456789, -2.5e9}) {
            const QString text = formatExtentNumber(v);
            QVERIFY2(!text.contains(QLatin1Char('e')) && !text.contains(QLatin1Char(',')), qPrintable(text));
            QCOMPARE(text.toDouble(), v);
        }
        QCOMPARE(formatExtentLine({1.5, 2, 3, 4}), QStringLiteral("EXTENT=1.5^2^3^4^"));
    }
};

QTEST_GUILESS_MAIN(TestProjectFile)
#include "test_project_file.moc"
