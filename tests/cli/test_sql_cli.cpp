// mervola-cli sql as a user runs it: CSV on stdout, changed-row counts and
// Italian errors on stderr, non-zero exit on failure.
#include "platform/dbf/DbfTable.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;

namespace
{

struct Run {
    int code;
    QString out;
    QString err;
};

Run sql(const QStringList &args)
{
    Run r;
    r.code =
        test::runProgram(QStringLiteral(MERVOLA_CLI), QStringList{QStringLiteral("sql")} + args, &r.out, &r.err, 60000);
    return r;
}

} // namespace

class TestSqlCli : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        DbfTable t;
        t.fields = {{QStringLiteral("LABEL"), DbfType::Text, 40, 0},
                    {QStringLiteral("POP"), DbfType::Numeric, 10, 0},
                    {QStringLiteral("DENS"), DbfType::Numeric, 12, 3}};
        t.rows = {{QStringLiteral("Aosta"), qlonglong(1234567), 1234.5},
                  {QStringLiteral("Valle d'Aosta, \"VdA\""), qlonglong(-5), 0.125},
                  {QVariant(), QVariant(), QVariant()}};
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("folder"))));
        QVERIFY(writeDbf(m_dir.filePath(QStringLiteral("folder/COMUNI.dbf")), t).ok());
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("home/dati"))));
        QVERIFY(ReferenceDb::createSchema(m_dir.filePath(QStringLiteral("home/dati/mervola.sqlite"))).ok());
    }

    void folderRowsAsCsv()
    {
        const Run r = sql({QStringLiteral("--folder"), m_dir.filePath(QStringLiteral("folder")),
                           QStringLiteral("select [label], pop, dens from comuni order by pop desc")});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QStringLiteral("LABEL,POP,DENS\n"
                                       "Aosta,1234567,1234.5\n"
                                       "\"Valle d'Aosta, \"\"VdA\"\"\",-5,0.125\n"
                                       ",,\n"));
    }

    void folderWritingStatement()
    {
        const QString folder = m_dir.filePath(QStringLiteral("folder"));
        Run r =
            sql({QStringLiteral("--folder"), folder, QStringLiteral("UPDATE comuni SET POP = 7 WHERE POP IS NULL")});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QString());
        QVERIFY2(r.err.contains(QStringLiteral("1 record modificati")), qPrintable(r.err));
        r = sql({QStringLiteral("--folder"), folder, QStringLiteral("select count(*) AS n from comuni where pop = 7")});
        QCOMPARE(r.out, QStringLiteral("n\n1\n"));
    }

    void errors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        const QString folder = m_dir.filePath(QStringLiteral("folder"));
        QTest::newRow("missing table") << QStringList{"--folder", folder, "select * from assente"}
                                       << "Tabella non trovata: assente";
        QTest::newRow("missing field") << QStringList{"--folder", folder, "select nulla from comuni"}
                                       << "Campo non trovato: nulla";
        QTest::newRow("no statement") << QStringList{"--folder", folder} << "manca l'istruzione SQL";
        QTest::newRow("both places") << QStringList{"--folder", folder, "--home", folder, "select 1"} << "non entrambi";
        QTest::newRow("no reference database")
            << QStringList{"--home", m_dir.filePath(QStringLiteral("nessuna")), "select 1"}
            << "Database di riferimento non trovato";
    }
    void errors()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const Run r = sql(args);
        QVERIFY(r.code != 0);
        QCOMPARE(r.out, QString());
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
    }

    void referenceDatabase()
    {
        const QString home = m_dir.filePath(QStringLiteral("home"));
        Run r =
            sql({QStringLiteral("--home"), home,
                 QStringLiteral("INSERT INTO CATEGORIE ([Codice Categoria], Categoria) VALUES ('01', 'Età, sesso')")});
        QCOMPARE(r.code, 0);
        QVERIFY(r.err.contains(QStringLiteral("1 record modificati")));
        r = sql({QStringLiteral("--home"), home,
                 QStringLiteral("Select Categoria from Categorie where [Codice Categoria] = '01'")});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QStringLiteral("Categoria\n\"Età, sesso\"\n"));
        r = sql({QStringLiteral("--home"), home, QStringLiteral("DELETE * FROM CATEGORIE")});
        QCOMPARE(r.code, 0);
        QVERIFY(r.err.contains(QStringLiteral("1 record modificati")));
    }
};

QTEST_GUILESS_MAIN(TestSqlCli)
#include "test_sql_cli.moc"
