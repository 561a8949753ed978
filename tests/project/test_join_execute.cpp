// Joining an external table to a theme table: columns added in record
// order, the bookkeeping rows, refusal of a non-unique key, the ten-character
// field-name limit and the byte-for-byte restore after a late failure.
#include "test_join_fixture.h"

#include "platform/Messages.h"

#include <QFile>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

DbfTable externalTable(const QString &keyName, bool duplicateKey = false)
{
    DbfTable t;
    t.fields = {textField(keyName, 10), numberField(QStringLiteral("POP")), textField(QStringLiteral("Label"), 30)};
    t.rows = {{QStringLiteral("003"), 300LL, QStringLiteral("terzo")},
              {QStringLiteral("001"), 100LL, QStringLiteral("primo")},
              {duplicateKey ? QStringLiteral("003") : QStringLiteral("009"), 900LL, QStringLiteral("altro")}};
    return t;
}

QStringList fieldNames(const DbfTable &t)
{
    QStringList names;
    for (const DbfField &f : t.fields)
        names << f.name;
    return names;
}

int count(const ReferenceDb &db, const QString &table)
{
    auto rs = db.query(QStringLiteral("SELECT COUNT(*) AS N FROM ") + table);
    return rs ? rs->value(0, QStringLiteral("N")).toInt() : -1;
}

}  // namespace

class TestJoinExecute : public QObject {
    Q_OBJECT

private slots:
    void joinAddsColumnsInRecordOrder_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("file");
        QTest::newRow("dbase") << JoinSourceType::DbaseIV << QStringLiteral("ext.dbf");
        QTest::newRow("text") << JoinSourceType::Text << QStringLiteral("ext.txt");
    }
    void joinAddsColumnsInRecordOrder()
    {
        QFETCH(QString, type);
        QFETCH(QString, file);
        JoinFixture fx;
        if (type == JoinSourceType::Text)
            QVERIFY(writeFile(fx.extFolder() + QStringLiteral("/ext.txt"),
                              "PROG_MONT;POP;Label\r\n\"003\";300;terzo\r\n\"001\";100;primo\r\n\"009\";900;altro\r\n"));
        else
            fx.writeExternal(file, externalTable(QStringLiteral("PROG_MONT")));
        const QByteArray sourceBefore = readFile(fx.extFolder() + QLatin1Char('/') + file);
        QVERIFY(fx.stage(type, file).ok());

        auto outcome = Execute_Join(fx.db, fx.request(type, file, QStringLiteral("PROG_MONT")));
        QVERIFY2(outcome.ok(), qPrintable(outcome.errorMessage()));
        QCOMPARE(outcome->addedFields, QStringList({"zPROG_MONT", "POP", "zLabel"}));

        auto joined = readDbf(fx.themeDbf());
        QVERIFY(joined.ok());
        QCOMPARE(fieldNames(joined.value()),
                 QStringList({"Label", "PROG_MONT", "I010", "zPROG_MONT", "POP", "zLabel"}));
        QCOMPARE(joined->rowCount(), size_t(3));
        QCOMPARE(joined->rows[0][0].toString(), QStringLiteral("Aosta"));
        QCOMPARE(joined->rows[0][4].toLongLong(), 100LL);
        QVERIFY(joined->rows[1][4].isNull());  // no partner for 002
        QCOMPARE(joined->rows[2][5].toString(), QStringLiteral("terzo"));

        // Bookkeeping, working files, backup, the untouched source.
        QCOMPARE(count(fx.db, QStringLiteral("CAMPIJOIN")), 3);
        auto listed = fx.db.query(QStringLiteral("Select * from ListaJoin where shpCollegato = 'comu_01.shp'"));
        QVERIFY(listed.ok() && listed->size() == 1);
        QCOMPARE(listed->value(0, QStringLiteral("NOMETABELLA")).toString(), file);
        QCOMPARE(listed->value(0, QStringLiteral("CAMPOJOINEXT")).toString(), QStringLiteral("PROG_MONT"));
        auto layerIndex = fx.db.query(QStringLiteral("Select distinct INDICELAYER from CAMPIJOIN WHERE DBF='comu_01'"));
        QCOMPARE(layerIndex->value(0, QStringLiteral("INDICELAYER")).toInt(), 2);
        for (const char *gone : {"italia/temp.dbf", "italia/joinmdb.dbf", "ext/Copia.dbf", "ext/Copia.txt"})
            QVERIFY2(!QFile::exists(fx.dir.filePath(QString::fromLatin1(gone))), gone);
        QVERIFY(QFile::exists(fx.home.italia() + QStringLiteral("/comu_01.bak")));
        QVERIFY(QFile::exists(fx.home.italia() + QStringLiteral("/comu_01.cpg")));
        QCOMPARE(readFile(fx.extFolder() + QLatin1Char('/') + file), sourceBefore);
    }

    void duplicatedKeyLeavesTableUnchanged()
    {
        JoinFixture fx;
        fx.writeExternal(QStringLiteral("dup.dbf"), externalTable(QStringLiteral("PROG_MONT"), true));
        QVERIFY(fx.stage(JoinSourceType::DbaseIV, QStringLiteral("dup.dbf")).ok());
        const QByteArray before = readFile(fx.themeDbf());

        auto outcome = Execute_Join(fx.db, fx.request(JoinSourceType::DbaseIV, QStringLiteral("dup.dbf"),
                                                      QStringLiteral("PROG_MONT")));
        QVERIFY(!outcome.ok());
        QCOMPARE(outcome.error().message, QStringLiteral("Impossibile collegare le tabelle.\r\n"
                                                         "Valori non unici nel campo da collegare."));
        QCOMPARE(joinErrorStyle(outcome.error()), MsgStyle::Critical);
        QCOMPARE(readFile(fx.themeDbf()), before);
        QVERIFY(!QFile::exists(fx.home.italia() + QStringLiteral("/temp.dbf")));
        QVERIFY(!QFile::exists(fx.home.italia() + QStringLiteral("/comu_01.bak")));
        QCOMPARE(count(fx.db, QStringLiteral("CAMPIJOIN")), 0);
        QCOMPARE(count(fx.db, QStringLiteral("LISTAJOIN")), 0);
    }

    void longExternalJoinFieldMatchedByFirstTen()
    {
        JoinFixture fx;
        fx.writeExternal(QStringLiteral("lungo.dbf"), externalTable(QStringLiteral("CODICECOMU")));
        QVERIFY(fx.stage(JoinSourceType::DbaseIV, QStringLiteral("lungo.dbf")).ok());
        auto outcome = Execute_Join(fx.db, fx.request(JoinSourceType::DbaseIV, QStringLiteral("lungo.dbf"),
                                                      QStringLiteral("CODICECOMUNE")));
        QVERIFY2(outcome.ok(), qPrintable(outcome.errorMessage()));
        auto joined = readDbf(fx.themeDbf());
        QCOMPARE(joined->rows[2][3].toString(), QStringLiteral("003"));
        QCOMPARE(joined->rows[2][4].toLongLong(), 300LL);
    }

    void errorAfterBackupRestoresTable()
    {
        JoinFixture fx;
        fx.writeExternal(QStringLiteral("ext.dbf"), externalTable(QStringLiteral("PROG_MONT")));
        QVERIFY(fx.stage(JoinSourceType::DbaseIV, QStringLiteral("ext.dbf")).ok());
        // The bookkeeping insert after the backup fails: no CAMPIJOIN table.
        QVERIFY(fx.db.execute(QStringLiteral("DROP TABLE CAMPIJOIN")).ok());
        const QByteArray dbf = readFile(fx.themeDbf());
        const QByteArray cpg = readFile(fx.home.italia() + QStringLiteral("/comu_01.cpg"));

        auto outcome = Execute_Join(fx.db, fx.request(JoinSourceType::DbaseIV, QStringLiteral("ext.dbf"),
                                                      QStringLiteral("PROG_MONT")));
        QVERIFY(!outcome.ok());
        QVERIFY(outcome.error().message.endsWith(QStringLiteral("  Imposibile eseguire collegamento.")));
        QCOMPARE(joinErrorStyle(outcome.error()), MsgStyle::Critical);
        QCOMPARE(readFile(fx.themeDbf()), dbf);
        QCOMPARE(readFile(fx.home.italia() + QStringLiteral("/comu_01.cpg")), cpg);
        QVERIFY(!QFile::exists(fx.home.italia() + QStringLiteral("/comu_01.bak")));
        QVERIFY(!QFile::exists(fx.home.italia() + QStringLiteral("/temp.dbf")));
    }

    void unreadableSourceIsReportedAsFailedLink()
    {
        JoinFixture fx;
        QVERIFY(writeFile(fx.extFolder() + QStringLiteral("/rotto.dbf"), "not a dbase file"));
        const QByteArray before = readFile(fx.themeDbf());
        auto outcome = Execute_Join(fx.db, fx.request(JoinSourceType::DbaseIV, QStringLiteral("rotto.dbf"),
                                                      QStringLiteral("PROG_MONT")));
        QVERIFY(!outcome.ok());
        QCOMPARE(outcome.error().message, QStringLiteral("Collegamento con tabella esterna fallito."));
        QCOMPARE(joinErrorStyle(outcome.error()), MsgStyle::Information);
        QCOMPARE(readFile(fx.themeDbf()), before);
        QVERIFY(!QFile::exists(fx.extFolder() + QStringLiteral("/Copia.dbf")));
    }

    void accessTableJoins()
    {
        const QString mdb = fixturePath(QStringLiteral("indexTestV2000.mdb"));
        JoinFixture fx;
        QVERIFY(QFile::copy(mdb, fx.extFolder() + QStringLiteral("/index.mdb")));
        auto tables = accessTableNames(fx.extFolder() + QStringLiteral("/index.mdb"));
        QVERIFY(tables.ok());
        QCOMPARE(tables.value(), QStringList({"Table1", "Table2", "Table3"}));
        // Theme keys "foo0".."foo2" in a text column named like the Access one.
        DbfTable theme;
        theme.fields = {textField(QStringLiteral("Label")), textField(QStringLiteral("PROG_MONT"))};
        theme.rows = {{QStringLiteral("a"), QStringLiteral("FOO2")}, {QStringLiteral("b"), QStringLiteral("foo0")}};
        QVERIFY(writeDbf(fx.themeDbf(), theme).ok());
        QVERIFY(fx.stage(JoinSourceType::Access, QStringLiteral("index.mdb"), QStringLiteral("Table2")).ok());
        auto outcome = Execute_Join(fx.db, fx.request(JoinSourceType::Access, QStringLiteral("index.mdb"),
                                                      QStringLiteral("data"), QStringLiteral("Table2")));
        QVERIFY2(outcome.ok(), qPrintable(outcome.errorMessage()));
        auto joined = readDbf(fx.themeDbf());
        QCOMPARE(fieldNames(joined.value()), QStringList({"Label", "PROG_MONT", "id", "data"}));
        QCOMPARE(joined->rows[0][2].toLongLong(), 2LL);  // keys compare without regard to case
        QCOMPARE(joined->rows[1][3].toString(), QStringLiteral("foo0"));
        auto listed = fx.db.query(QStringLiteral("Select NOMETABELLA from LISTAJOIN"));
        QCOMPARE(listed->value(0, QStringLiteral("NOMETABELLA")).toString(), QStringLiteral("Table2"));

        // Text of a Jet 4 file comes back as Unicode.
        auto unicode = readAccessTable(fixturePath(QStringLiteral("testUnicodeCompV2003.mdb")),
                                       QStringLiteral("Table"));
        QVERIFY(unicode.ok());
        QCOMPARE(unicode->table.rows[1][1].toString(), QStringLiteral("ääkkösiä"));
        QCOMPARE(unicode->table.rows[2][1].toString(), QStringLiteral("Мир"));
    }
};

QTEST_GUILESS_MAIN(TestJoinExecute)
#include "test_join_execute.moc"
