// A damaged Access database cannot take the program down: libmdb reads it in
// the helper process mervola-access, and whatever happens there (a crash, a
// read that never ends, an answer cut short) reaches the user of
// `mervola-cli join` as the message of an unreadable source, with the atlas
// home left as it was.
#include "support/JoinSources.h"

#include "platform/access/AccessFile.h"

#include <QProcess>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace
{

const QString kUnreadable = QStringLiteral("Impossibile leggere il file di origine.\r\n"
                                           "Verificare che il formato di tutti i campi della tabella di origine "
                                           "sia supportato.");

QString regression(const char *name)
{
    return QStringLiteral(MERVOLA_SOURCE_DIR "/fuzz/regressions/access/") + QLatin1String(name);
}

} // namespace

class TestAccessContainment : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

    QString userFile(const QString &name, const QByteArray &bytes) const
    {
        const QString path = m_dir.filePath(QStringLiteral("utente/") + name);
        return writeFile(path, bytes) ? path : QString();
    }

private slots:
    void initTestCase()
    {
        m_home = m_dir.filePath(QStringLiteral("home"));
        QVERIFY(copyRealAtlas(m_home));
    }

    // The file that makes libmdb crash does crash the helper: the proof that
    // the program survives below is not a file libmdb would refuse anyway.
    void libmdbCrashesInTheHelper()
    {
        QProcess p;
        // In the sanitizer build the sanitizer would catch the fault and exit
        // in order; here the fault must show as the crash it is.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ASAN_OPTIONS"),
                   env.value(QStringLiteral("ASAN_OPTIONS")) + QStringLiteral(":handle_segv=0"));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(MERVOLA_BINARY_DIR "/mervola-access"),
                {QStringLiteral("tables"), regression("libmdb-crash.mdb")});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitStatus(), QProcess::CrashExit);
    }

    void damagedDatabaseGivesTheMessage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray fixture = readFile(fixturePath(QStringLiteral("testV1997.mdb")));
        QTest::newRow("libmdb crashes") << readFile(regression("libmdb-crash.mdb"));
        QTest::newRow("cut in the header") << fixture.left(100);
        QTest::newRow("not a database") << QByteArray("COD;NOME\n001001;Agli\xC3\xA8\n");
        // libmdb loops for ever on this one: the helper is stopped after 30 s.
        QTest::newRow("libmdb never ends") << readFile(fixturePath(QStringLiteral("libmdb-hang.mdb")));
    }
    void damagedDatabaseGivesTheMessage()
    {
        QFETCH(QByteArray, bytes);
        const QString mdb = userFile(QStringLiteral("dati.mdb"), bytes);
        const auto before = folderSnapshot(m_home);
        QString out, err;
        const int code =
            runProgram(QStringLiteral(MERVOLA_CLI),
                       {QStringLiteral("join"), QStringLiteral("--home"), m_home, QStringLiteral("--theme"),
                        QStringLiteral("comuni"), QStringLiteral("--source"), mdb, QStringLiteral("--table"),
                        QStringLiteral("Table1"), QStringLiteral("--theme-key"), QStringLiteral("COD_ISTAT"),
                        QStringLiteral("--source-key"), QStringLiteral("a")},
                       &out, &err);
        QCOMPARE(code, 1);
        QCOMPARE(err.trimmed(), kUnreadable);
        QCOMPARE(folderSnapshot(m_home), before);
        QCOMPARE(readFile(mdb), bytes);
    }

    // A sound database still reads whole through the helper.
    void soundDatabaseReadsThroughTheHelper()
    {
        auto names = readAccessTableNames(fixturePath(QStringLiteral("testV1997.mdb")));
        QVERIFY(names);
        QCOMPARE(names.value(), QStringList({QStringLiteral("Table1"), QStringLiteral("Table2"),
                                             QStringLiteral("Table3"), QStringLiteral("Table4")}));
        auto here = readAccessRowsHere(fixturePath(QStringLiteral("testV1997.mdb")), QStringLiteral("Table1"));
        auto there = readAccessRows(fixturePath(QStringLiteral("testV1997.mdb")), QStringLiteral("Table1"));
        QVERIFY(here && there);
        QCOMPARE(there->rows.size(), std::size_t(2));
        QCOMPARE(there->rows, here->rows);
        QCOMPARE(there->columns.size(), here->columns.size());
        for (int i = 0; i < here->columns.size(); ++i) {
            QCOMPARE(there->columns[i].name, here->columns[i].name);
            QCOMPARE(there->columns[i].type, here->columns[i].type);
            QCOMPARE(there->columns[i].size, here->columns[i].size);
        }
    }

    // An answer cut anywhere (the helper died while writing) is refused.
    void cutAnswerIsRefused()
    {
        AccessRows rows;
        rows.columns = {{QStringLiteral("NOME"), 10, 50}, {QStringLiteral("POP"), 4, 4}};
        rows.rows = {{QByteArray("Aosta"), QByteArray("34000")}, {QByteArray(), QByteArray("1")}};
        const QByteArray stream = encodeAccessRows(rows);
        auto back = decodeAccessRows(stream);
        QVERIFY(back);
        QCOMPARE(back->rows, rows.rows);
        QVERIFY(back->rows[1][0].isNull());
        for (qsizetype cut = 0; cut < stream.size(); ++cut)
            QVERIFY2(!decodeAccessRows(stream.left(cut)), qPrintable(QString::number(cut)));
        QVERIFY(!decodeAccessRows(stream + "x"));
    }
};

QTEST_GUILESS_MAIN(TestAccessContainment)
#include "test_access_containment.moc"
