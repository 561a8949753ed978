// Every statement the program runs against the reference database, as
// written in the Jet dialect, runs on the SQLite schema: lookups compare
// text without regard to case and booleans are -1 / 0.
#include "project/ReferenceDb.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;

class TestReferenceDb : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_path;

private slots:
    void initTestCase()
    {
        m_path = m_dir.filePath(QStringLiteral("mervola.sqlite"));
        QVERIFY(ReferenceDb::createSchema(m_path).ok());
        const ReferenceDb ref(m_path);
        const Status seeded = ref.executeAll({
            "INSERT INTO STRUTTURE (Label,Alias,Tabella,Tematizza,Fieldjoin) VALUES "
            "('PROG_MONT','Codice comunità','commont',False,True)",
            "INSERT INTO STRUTTURE (Label,Alias,Tabella,Tematizza,Fieldjoin) VALUES ('POP','Popolazione','commont',"
            "True,False)",
            "INSERT INTO ALIASTEMI (ALIAS,NOMETEMAORIGINALE) VALUES ('Comunità montane','commont')",
            "INSERT INTO CATEGORIE ([Codice Categoria],Categoria) VALUES ('01','Popolazione')",
            "INSERT INTO INDICATORI (ind,cod_ind,Cat,Fonte,Unita) VALUES ('Popolazione residente','01010',"
            "'Popolazione','ISTAT','ab.')",
            "CREATE TABLE [01] (PROG_MONT TEXT COLLATE NOCASE, I010 REAL)",
            "INSERT INTO [01] VALUES ('001', 12.5)",
        });
        QVERIFY2(seeded.ok(), qPrintable(seeded.errorMessage()));
    }

    // Run in order: the join statements build on each other.
    void statementsRun_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("rows"); // rows returned, or -1 for a statement without rows
        const QString structjoin = QStringLiteral(
            "INSERT INTO STRUCTJOIN (INCLUSO,NOMECAMPO,ALIASCAMPO,TIPOCAMPO,STRTIPOCAMPO,CONFLITTO,NOMECONFLITTO,PATH,"
            "FILE,TIPOFONTE,COLLEGATOAPATH,COLLEGATOAFILE) VALUES ");
        QTest::newRow("structures") << "Select Label,Alias,Tabella,Tematizza,Fieldjoin from STRUTTURE" << 2;
        QTest::newRow("join fields") << "Select ALIAS, FIELDJOIN from strutture where TABELLA = 'COMMONT' And "
                                        "FIELDJOIN = True"
                                     << 1;
        QTest::newRow("theme alias") << "Select alias from aliastemi where nometemaoriginale ='COMMONT'" << 1;
        QTest::newRow("theme of alias") << "SELECT NOMETEMAORIGINALE FROM ALIASTEMI WHERE ALIAS = 'COMUNITà MONTANE'"
                                        << 1;
        QTest::newRow("indicator") << "Select ind from INDICATORI where cod_ind ='01010'" << 1;
        QTest::newRow("category name") << "Select Categoria from Categorie where [Codice Categoria] = '01'" << 1;
        QTest::newRow("indicator code") << "Select cod_ind from INDICATORI where ind ='popolazione residente' and "
                                           "Cat = 'Popolazione'"
                                        << 1;
        QTest::newRow("categories") << "SELECT * FROM CATEGORIE" << 1;
        QTest::newRow("stored categories") << "SELECT * FROM qryTutteCategorie" << 1;
        QTest::newRow("stored indicators") << "SELECT COD_IND FROM qrySelezioneIndicatoriFonti" << 1;
        QTest::newRow("category table") << "SELECT * FROM 01 WHERE PROG_MONT = '001'" << 1;
        QTest::newRow("clear staging") << "DELETE * FROM STRUCTJOIN" << -1;
        QTest::newRow("stage field")
            << structjoin + "(-1,'NOME','NOME',10,'Alfanumerico',0,'','/dati/ext','ext.dbf','Dbase IV;',"
                            "'/home/italia','commont' );"
            << -1;
        QTest::newRow("stage conflict")
            << structjoin + "(True,'POP','POP',7,'Numerico',True,'zPOP','/dati/ext','ext.dbf','Dbase IV;',"
                            "'/home/italia','commont' );"
            << -1;
        QTest::newRow("staged") << "Select * from STRUCTJOIN " << 2;
        QTest::newRow("included") << "Select * from structjoin where INCLUSO=-1" << 2;
        QTest::newRow("conflicts") << "Select * from structjoin where CONFLITTO=-1" << 1;
        QTest::newRow("included of theme") << "Select * from structjoin where (INCLUSO=-1 and collegatoAFile = "
                                              "'COMMONT')"
                                           << 2;
        QTest::newRow("of theme") << "Select * from structjoin where collegatoAFile = 'commont'" << 2;
        QTest::newRow("conflict window") << "select NOMECAMPO,ALIASCAMPO,NOMECONFLITTO from STRUCTJOIN WHERE "
                                            "CONFLITTO=-1"
                                         << 1;
        QTest::newRow("wizard grid") << "select INCLUSO as Includere,NOMECAMPO as Campo,ALIASCAMPO as Alias,"
                                        "strtipocampo as Formato, tipocampo from STRUCTJOIN"
                                     << 2;
        QTest::newRow("added field") << "INSERT INTO CAMPIJOIN (DBF,CAMPOAGGIUNTO,INDICELAYER,PATH) VALUES "
                                        "('commont', 'NOME',2, '/home/italia' );"
                                     << -1;
        QTest::newRow("joined tables") << "Select distinct DBF from CAMPIJOIN WHERE DBF='COMMONT'" << 1;
        QTest::newRow("join record") << "INSERT INTO LISTAJOIN (PATHDB,NOMEDB,NOMETABELLA,CAMPOJOININT,CAMPOJOINEXT,"
                                        "SHPCOLLEGATO) VALUES ('/dati/ext', 'ext.dbf', 'ext.dbf', 'PROG_MONT', "
                                        "'CODICE', 'commont.shp');"
                                     << -1;
        QTest::newRow("join of theme") << "Select * from ListaJoin where shpCollegato = 'COMMONT.SHP'" << 1;
        QTest::newRow("all added fields") << "Select * from CAMPIJOIN " << 1;
        QTest::newRow("remove theme join") << "Delete * from CAMPIJOIN WHERE DBF='COMMONT'" << -1;
        QTest::newRow("clear added") << "DELETE * FROM CAMPIJOIN " << -1;
        QTest::newRow("clear joins") << "DELETE * FROM LISTAJOIN" << -1;
        QTest::newRow("clear staged") << "DELETE * FROM STRUCTJOIN" << -1;
        QTest::newRow("report table dropped") << "DROP TABLE TempRpt" << -1;
        QTest::newRow("report table") << "CREATE TABLE TempRpt ([LABEL] TEXT(255), [POP] TEXT(255))" << -1;
        QTest::newRow("report row") << "Insert into TempRpt (LABEL,POP) Values ('Aosta','-');" << -1;
        QTest::newRow("scratch row") << "Insert into JoinMdb (DUMMY) Values ('x');" << -1;
    }
    void statementsRun()
    {
        QFETCH(QString, sql);
        QFETCH(int, rows);
        const ReferenceDb ref(m_path);
        if (rows < 0) {
            const Status s = ref.execute(sql);
            QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
            return;
        }
        auto rs = ref.query(sql);
        QVERIFY2(rs.ok(), qPrintable(rs.errorMessage()));
        QCOMPARE(int(rs->size()), rows);
    }

    void booleansAreMinusOneAndZero()
    {
        auto rs = ReferenceDb(m_path).query(
            QStringLiteral("Select Label,Alias,Tabella,Tematizza,Fieldjoin from STRUTTURE order by Label"));
        QVERIFY(rs.ok());
        QCOMPARE(rs->value(0, QStringLiteral("fieldjoin")).toInt(), 0);  // POP
        QCOMPARE(rs->value(1, QStringLiteral("FIELDJOIN")).toInt(), -1); // PROG_MONT
        QCOMPARE(rs->value(0, QStringLiteral("Tematizza")).toInt(), -1);
    }

    void changedRowsAndMissingFile()
    {
        const ReferenceDb ref(m_path);
        QVERIFY(ref.execute(QStringLiteral("INSERT INTO CAMPIJOIN (DBF) VALUES ('a')")).ok());
        QVERIFY(ref.execute(QStringLiteral("INSERT INTO CAMPIJOIN (DBF) VALUES ('A')")).ok());
        auto n = ref.run(QStringLiteral("DELETE * FROM CAMPIJOIN WHERE DBF = 'a'"));
        QVERIFY(n.ok());
        QCOMPARE(*n, 2);
        auto missing = ReferenceDb(m_dir.filePath(QStringLiteral("assente.sqlite"))).query(QStringLiteral("SELECT 1"));
        QVERIFY(!missing.ok());
        QVERIFY(missing.errorMessage().startsWith(QStringLiteral("Database di riferimento non trovato")));
    }
};

QTEST_GUILESS_MAIN(TestReferenceDb)
#include "test_reference_db.moc"
