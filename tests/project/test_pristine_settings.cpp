// The default settings files of the region themes and the restore of the
// pristine tables and settings.
#include "project/PristineSettings.h"
#include "project/SettingsFixture.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

class TestPristineSettings : public QObject {
    Q_OBJECT
private slots:
    void writesThirtyNineFiles()
    {
        TinyHome h;
        auto n = writePristineSettingsIfMissing(h.home);
        QVERIFY(n);
        QCOMPARE(*n, 39);
        const QStringList files = QDir(h.home.originali()).entryList({QStringLiteral("*.ini")}, QDir::Files);
        QCOMPARE(files.size(), 39);
        QCOMPARE(files.filter(QStringLiteral("cmont_")).size(), 19);
        QVERIFY(!files.contains(QStringLiteral("cmont_19.ini")));
        QVERIFY(files.contains(QStringLiteral("comu_19.ini")));
        QVERIFY(QDir(h.home.originali()).entryList({QStringLiteral("*.new")}, QDir::Files).isEmpty());
    }

    void exactLines_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("expected");
        auto lines = [](const QString &section, const QString &base, const QString &color, const QString &campo) {
            return QStringList{section, "JOIN=-1^-1^-1^-1^-1^-1^", "STRUCTJOIN=*^", "WORKSPACE=@/italia/",
                               "BASE=" + base + ".shp^" + base + "^", "SIMBOLO=2^0^0^" + color + "^33554432^",
                               "LABEL=*", "TIPOCLASSIFICAZIONE=0", "CAMPO=" + campo, "CLASSIFICAZIONE=0",
                               "OUTLINE=1", "VISIBILE=0"};
        };
        QTest::newRow("community 01") << "cmont_01.ini" << lines("[CMONT_01]", "cmont_01", "56320", "I010^0^0^0^");
        QTest::newRow("community 10") << "cmont_10.ini" << lines("[CMONT_10]", "cmont_10", "56320", "I010^0^0^0^");
        QTest::newRow("municipality 09") << "comu_09.ini" << lines("[COMU_09]", "comu_09", "16776960", "0^0^0^0^");
        QTest::newRow("municipality 20") << "comu_20.ini" << lines("[COMU_20]", "comu_20", "16776960", "0^0^0^0^");
    }
    void exactLines()
    {
        QFETCH(QString, file);
        QFETCH(QStringList, expected);
        TinyHome h;
        QVERIFY(writePristineSettingsIfMissing(h.home));
        expected.replaceInStrings(QStringLiteral("@"), h.root());
        QCOMPARE(h.text("originali/" + file), expected.join('\n') + '\n');
    }

    void existingSettingsAreLeftAlone()
    {
        TinyHome h;
        h.write(QStringLiteral("originali/mine.ini"), {"[mine]"});
        auto n = writePristineSettingsIfMissing(h.home);
        QVERIFY(n);
        QCOMPARE(*n, 0);
        QCOMPARE(QDir(h.home.originali()).entryList(QDir::Files), QStringList{QStringLiteral("mine.ini")});
    }

    void missingOriginaliFails()
    {
        TinyHome h;
        QVERIFY(QDir(h.home.originali()).removeRecursively());
        QVERIFY(!writePristineSettingsIfMissing(h.home));
        QVERIFY(!restoreAllThemeTables(h.home));
        QVERIFY(!QFileInfo::exists(h.home.originali()));
    }

    void restoreBringsBackPristineTablesAndSettings()
    {
        TinyHome h;
        writeFile(h.home.originali() + "/cmont_01.dbf", tinyDbf("pristine table"));
        writeFile(h.home.originali() + "/combase.dbf", tinyDbf("pristine base"));
        h.write("originali/cmont_01.ini", {"[CMONT_01]", "VISIBILE=0"});
        h.write("originali/comu_01.ini", {"[COMU_01]", "VISIBILE=0"});
        writeFile(h.home.italia() + "/CMONT_01.DBF", "joined table");
        h.write("supporto/CMONT_01.INI", {"[CMONT_01]", "VISIBILE=1"});  // changed during the last run
        h.write("supporto/stili.ini", {"[x]"});

        QVERIFY(restoreAllThemeTables(h.home));
        QVERIFY(copyPristineSettings(h.home));

        QCOMPARE(readFile(h.home.italia() + "/CMONT_01.DBF"), tinyDbf("pristine table"));
        QCOMPARE(readFile(h.home.italia() + "/combase.dbf"), tinyDbf("pristine base"));
        QCOMPARE(h.text("supporto/CMONT_01.INI"), QStringLiteral("[CMONT_01]\nVISIBILE=0\n"));
        QVERIFY(!QFileInfo::exists(h.home.supporto() + "/cmont_01.ini"));  // no second copy in other case
        QCOMPARE(h.text("supporto/comu_01.ini"), QStringLiteral("[COMU_01]\nVISIBILE=0\n"));
        QVERIFY(QFileInfo::exists(h.home.supporto() + "/stili.ini"));
    }

    void communityTableRestore_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QByteArray>("result");
        QTest::newRow("from originali") << "cmont_05" << true << QByteArray("pristine 05");
        QTest::newRow("from italia") << "region05" << true << QByteArray("saved 05");
        QTest::newRow("missing") << "nothere" << false << QByteArray("current");
    }
    void communityTableRestore()
    {
        QFETCH(QString, stored);
        QFETCH(bool, ok);
        QFETCH(QByteArray, result);
        TinyHome h;
        writeFile(h.home.originali() + "/cmont_05.dbf", "pristine 05");
        writeFile(h.home.italia() + "/region05.dbf", "saved 05");
        writeFile(h.home.italia() + "/commont.dbf", "current");
        QCOMPARE(bool(restoreCommunityTable(h.home, stored, QStringLiteral("COMMONT"))), ok);
        QCOMPARE(readFile(h.home.italia() + "/commont.dbf"), result);
    }
};

QTEST_GUILESS_MAIN(TestPristineSettings)
#include "test_pristine_settings.moc"
