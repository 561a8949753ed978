// Reading theme settings files and the routines that write them.
#include "project/SettingsFixture.h"
#include "project/SettingsWriters.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

QString joined(const QStringList &lines) { return lines.join(QLatin1Char('\n')) + QLatin1Char('\n'); }

LayerState communityLayer()
{
    LayerState l;
    l.name = QStringLiteral("cmont_05");
    l.folder = QStringLiteral("/atlas/italia/");
    l.baseName = QStringLiteral("cmont_05");
    l.symbol = SymbolFields{2, 0, 0, 56320, 33554432};
    l.visible = true;
    return l;
}

}  // namespace

class TestThemeSettings : public QObject {
    Q_OBJECT
private slots:
    void structJoinReadsWithOrWithoutBlank_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("fields");
        const QStringList two{QStringLiteral("POP"), QStringLiteral("ALT")};
        QTest::newRow("blank before =") << "STRUCTJOIN =POP^ALT^" << two;
        QTest::newRow("no blank") << "STRUCTJOIN=POP^ALT^" << two;
        QTest::newRow("lower case, blanks") << "  structjoin = POP^ALT^" << two;
        QTest::newRow("none") << "STRUCTJOIN =*^" << QStringList();
    }
    void structJoinReadsWithOrWithoutBlank()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, fields);
        const auto p = ProfileFile::fromText(QStringLiteral("[CMONT_05]\n") + line + QLatin1Char('\n'));
        const ThemeSettings s = readThemeSettings(p, QStringLiteral("cmont_05"));
        QVERIFY(s.has(ThemeKey::StructJoin));
        QCOMPARE(s.structJoin, fields);
    }

    void recordFieldsAreParsed()
    {
        const auto p = ProfileFile::fromText(QStringLiteral(
            "[COMU_12]\nJOIN=/d/^x.mdb^T^PROG^COD^comu_12.shp^\nBASE=comu_12.shp^comu_12^\n"
            "SIMBOLO=0^3^1^255^999^\nLABEL=NOME\nTIPOCLASSIFICAZIONE=QUANTILE\nCAMPO=_AB123^5^1^2^\n"
            "CLASSIFICAZIONE=0^0 - 10^^255^basso^0^1^|0^10 - 20^0^-16777216^alto^65535^0^|\n"
            "OUTLINE=0\nVISIBILE=1\n"));
        const ThemeSettings s = readThemeSettings(p, QStringLiteral("comu_12"));
        QVERIFY(s.join.isSet());
        QCOMPARE(s.join.campoJoinExt, QStringLiteral("COD"));
        QCOMPARE(s.shapefile, QStringLiteral("comu_12.shp"));
        QCOMPARE(s.symbol, (SymbolFields{0, 3, 1, 255, 999}));
        QCOMPARE(s.symbol.format(), QStringLiteral("0^3^1^255^0^"));  // outline colour only for fills
        QCOMPARE(s.labelField, QStringLiteral("NOME"));
        QCOMPARE(s.campo, (CampoFields{QStringLiteral("_AB123"), 5, 1, 2}));
        QCOMPARE(s.classes.size(), 2);
        QCOMPARE(s.classes[0].outline, QStringLiteral("1"));  // missing outline flag reads "1"
        QCOMPARE(s.classes[1].fillColor, -16777216);
        QCOMPARE(s.classes[1].drawn, QStringLiteral("0"));
        QCOMPARE(formatClassItems(s.classes).section(QLatin1Char('|'), 1),
                 QStringLiteral("0^10 - 20^0^-16777216^alto^65535^0^|"));
        QVERIFY(!s.outline);
        QVERIFY(s.visible);
        QVERIFY(!s.has(ThemeKey::Workspace));
    }

    void rewriteAfterJoinBytes_data()
    {
        QTest::addColumn<bool>("listed");
        QTest::addColumn<bool>("labels");
        QTest::addColumn<QString>("expected");
        const QString body = QStringLiteral("STRUCTJOIN =POP^ALT^\nWORKSPACE=/w/\nBASE=cmont_05.shp^cmont_05^\n"
                                            "SIMBOLO=2^0^0^56320^33554432^\n");
        const QString end = QStringLiteral("TIPOCLASSIFICAZIONE=0\nCAMPO=_AB123^5^0^1^\nCLASSIFICAZIONE=0\nOUTLINE=1\nVISIBILE=1\n");
        QTest::newRow("listed, labels") << true << true
                                        << "[CMONT_05]\nJOIN=/src/^e.dbf^e^PROG^COD^cmont_05.shp^\n" + body
                                               + "LABEL=NOME\n" + end;
        QTest::newRow("not listed, no labels") << false << false
                                               << "[CMONT_05]\nJOIN=-1^-1^-1^-1^-1^-1^\n" + body + "LABEL=*\n" + end;
    }
    void rewriteAfterJoinBytes()
    {
        QFETCH(bool, listed);
        QFETCH(bool, labels);
        QFETCH(QString, expected);
        TinyHome h;
        if (listed)
            h.sql(QStringLiteral("INSERT INTO LISTAJOIN VALUES ('/src/','e.dbf','e','PROG','COD','cmont_05.shp')"));
        h.write(QStringLiteral("supporto/cmont_05.ini"),
                {"[cmont_05]", "JOIN=-1^-1^-1^-1^-1^-1^", "STRUCTJOIN=*^", "WORKSPACE=/w/", "BASE=cmont_05.shp^cmont_05^",
                 "SIMBOLO=2^0^0^56320^33554432^", "LABEL=*", "TIPOCLASSIFICAZIONE=QUANTILE", "CAMPO=_AB123^5^0^1^",
                 "CLASSIFICAZIONE=0^1 - 2^1^255^a^0^1^|", "OUTLINE=1", "VISIBILE=0"});
        LayerState l = communityLayer();
        l.labelsOn = labels;
        l.labelField = QStringLiteral("NOME");
        QVERIFY(rewriteAfterJoin(h.home.supporto() + QStringLiteral("/cmont_05.ini"), l,
                                 QStringLiteral("cmont_05.shp"), {QStringLiteral("POP"), QStringLiteral("ALT")},
                                 h.db()));
        QCOMPARE(h.text(QStringLiteral("supporto/cmont_05.ini")), expected);
    }

    void rewriteAfterJoinKeepsFileWhenDatabaseFails()
    {
        TinyHome h;
        h.write(QStringLiteral("supporto/cmont_05.ini"), {"[cmont_05]", "LABEL=*"});
        const QString before = h.text(QStringLiteral("supporto/cmont_05.ini"));
        QVERIFY(!rewriteAfterJoin(h.home.supporto() + QStringLiteral("/cmont_05.ini"), communityLayer(),
                                  QStringLiteral("cmont_05.shp"), {}, ReferenceDb(h.root() + QStringLiteral("/none.sqlite"))));
        QCOMPARE(h.text(QStringLiteral("supporto/cmont_05.ini")), before);
    }

    void loadWritesNormalisedCopy()
    {
        TinyHome h;
        h.write(QStringLiteral("supporto/cmont_05.ini"),
                {"[CMONT_05]", "VISIBILE=1", "label = *", "STRUCTJOIN =POP^", "BASE=cmont_05.shp^cmont_05^",
                 "WORKSPACE=C:/old/", "CAMPO=I010^4^0^1^", "JOIN=-1^-1^-1^-1^-1^-1^"});
        auto t = loadThemeFile(h.home.supporto() + QStringLiteral("/cmont_05.ini"), QStringLiteral("cmont_05"),
                               {h.root(), false});
        QVERIFY(t);
        QCOMPARE(h.text(QStringLiteral("supporto/cmont_05.ini")),
                 joined({"[cmont_05]", "JOIN=-1^-1^-1^-1^-1^-1^", "STRUCTJOIN=POP^", "WORKSPACE=C:/old/",
                         "BASE=cmont_05.shp^cmont_05^", "LABEL=*", "CAMPO=I010^4^0^1^", "VISIBILE=1"}));
        QCOMPARE(t->settings.structJoin, QStringList{QStringLiteral("POP")});
        QVERIFY(!t->settings.labelsOn());
        QCOMPARE(t->regionCode, std::optional<QString>(QStringLiteral("05")));
        QCOMPARE(t->indicator, std::optional<QString>(QStringLiteral("I000")));
    }

    void loadEffects_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QString>("campo");
        QTest::addColumn<QString>("region");     // "-" = untouched
        QTest::addColumn<QString>("indicator");  // "-" = untouched
        QTest::newRow("community keeps _ field") << "cmont_07" << "_AB123^5^0^1^" << "07" << "_AB123";
        QTest::newRow("all communities") << "commont" << "I010^0^0^0^" << "-" << "I000";
        QTest::newRow("municipalities of a region") << "comu_12" << "_AB123^0^0^0^" << "12" << "-";
        QTest::newRow("all municipalities") << "comuni" << "0^0^0^0^" << "-" << "-";
    }
    void loadEffects()
    {
        QFETCH(QString, theme);
        QFETCH(QString, campo);
        QFETCH(QString, region);
        QFETCH(QString, indicator);
        TinyHome h;
        h.write("supporto/" + theme + ".ini",
                {"[" + theme + "]", "WORKSPACE=/stored/", "BASE=" + theme + ".shp^" + theme + "^", "CAMPO=" + campo});
        // The default project reads its shapefiles from the atlas home whatever the file says.
        auto t = loadThemeFile(h.home.supporto() + "/" + theme + ".ini", theme, {h.root(), true});
        QVERIFY(t);
        QCOMPARE(t->regionCode.value_or("-"), region);
        QCOMPARE(t->indicator.value_or("-"), indicator);
        QCOMPARE(t->settings.workspace, h.root() + "/italia");
        QCOMPARE(t->shapefilePath, h.root() + "/italia/" + theme + ".shp");
        QVERIFY(h.text("supporto/" + theme + ".ini").contains("WORKSPACE=" + h.root() + "/italia\n"));
    }
};

QTEST_GUILESS_MAIN(TestThemeSettings)
#include "test_theme_settings.moc"
