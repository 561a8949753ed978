// mervola-cli join and unjoin run as a user would, on the atlas built from
// the real sources: the round trip of every municipality name, the choice
// and renaming of fields, the refusals that leave the home untouched.
#include "support/JoinSources.h"

#include <QDirIterator>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace
{

int cli(const QStringList &args, QString *out = nullptr, QString *err = nullptr)
{
    return runProgram(QStringLiteral(MERVOLA_CLI), args, out, err);
}

} // namespace

class TestJoinCli : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;
    QString m_names;

    QStringList joinArgs(const QString &source, const QString &sourceKey) const
    {
        return {QStringLiteral("join"),      QStringLiteral("--home"),       m_home,   QStringLiteral("--theme"),
                QStringLiteral("comuni"),    QStringLiteral("--source"),     source,   QStringLiteral("--theme-key"),
                QStringLiteral("COD_ISTAT"), QStringLiteral("--source-key"), sourceKey};
    }

private slots:
    void initTestCase()
    {
        m_home = m_dir.filePath(QStringLiteral("home"));
        QVERIFY(copyRealAtlas(m_home));
        m_names = m_dir.filePath(QStringLiteral("utente/nomi.txt"));
        QVERIFY(writeNamesFile(m_names, municipalities(m_home)));
        QVERIFY(writeFile(m_dir.filePath(QStringLiteral("utente/conf.txt")),
                          "COD_ISTAT;Label;Quota;Nota\n001001;Agli\xC3\xA8;250,5;x\n"));
    }

    // Join then unjoin of all 7,899 names: the table comes back byte for byte.
    void joinAndUnjoinRoundTrip()
    {
        const QString dbf = m_home + QStringLiteral("/italia/comuni.dbf");
        const QByteArray before = readFile(dbf);
        QString out, err;
        QCOMPARE(cli(joinArgs(m_names, QStringLiteral("CODICE")), &out, &err), 0);
        QCOMPARE(err, QString());
        QCOMPARE(out.trimmed(), QStringLiteral("Collegati al tema comuni i campi: CODICE, NOME"));
        auto joined = readDbf(dbf);
        QCOMPARE(int(joined->rowCount()), 7899);
        QCOMPARE(joined->fields.mid(25).size(), 2);
        const int code = joined->fieldIndex(QStringLiteral("COD_ISTAT")),
                  name = joined->fieldIndex(QStringLiteral("NOME"));
        const int label = joined->fieldIndex(QStringLiteral("Label"));
        for (const auto &r : joined->rows) {
            QCOMPARE(r[size_t(name)].toString(), r[size_t(label)].toString());
            QVERIFY(!r[size_t(code)].toString().isEmpty());
        }
        const QString ini = QString::fromUtf8(readFile(m_home + QStringLiteral("/supporto/comuni.ini")));
        QVERIFY(ini.contains(QStringLiteral("STRUCTJOIN =CODICE^NOME^")));

        QCOMPARE(cli({QStringLiteral("unjoin"), QStringLiteral("--home"), m_home, QStringLiteral("--theme"),
                      QStringLiteral("comuni")},
                     &out, &err),
                 0);
        QCOMPARE(readFile(dbf), before);
        QVERIFY(readFile(m_home + QStringLiteral("/supporto/comuni.ini")).contains("JOIN=-1^-1^-1^-1^-1^-1^\n"));
    }

    // --fields chooses and renames; a name of the theme gets "z" + name.
    void chosenFieldsWithAliasAndConflict()
    {
        QStringList args = joinArgs(m_dir.filePath(QStringLiteral("utente/conf.txt")), QStringLiteral("COD_ISTAT"));
        args << QStringLiteral("--fields") << QStringLiteral("Label,Quota=quota_m");
        QString out;
        QCOMPARE(cli(args, &out), 0);
        QCOMPARE(out.trimmed(), QStringLiteral("Collegati al tema comuni i campi: zCOD_ISTAT, zLabel, quota_m"));
        auto t = readDbf(m_home + QStringLiteral("/italia/comuni.dbf"));
        QCOMPARE(t->rows[0][size_t(t->fieldIndex(QStringLiteral("quota_m")))].toDouble(), 250.5);
        QCOMPARE(cli({QStringLiteral("unjoin"), QStringLiteral("--home"), m_home, QStringLiteral("--theme"),
                      QStringLiteral("comuni")}),
                 0);
    }

    // Every refusal: the message on stderr, exit 1, the home unchanged.
    void refusalsChangeNothing_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::newRow("key not unique")
            << QStringList{QStringLiteral("dup")}
            << QStringLiteral("Impossibile collegare le tabelle.\r\nValori non unici nel campo da collegare.");
        QTest::newRow("numeric key") << QStringList{QStringLiteral("numkey")}
                                     << QStringLiteral("Il campo di collegamento QUOTA non è di tipo alfanumerico.");
        QTest::newRow("unknown field") << QStringList{QStringLiteral("field")}
                                       << QStringLiteral("Campo non trovato nella tabella esterna: NESSUNO");
        QTest::newRow("long file name") << QStringList{QStringLiteral("longname")}
                                        << QStringLiteral(
                                               "NOMILUNGHISSIMI.TXT nome file non valido.\r\nIl nome del file non "
                                               "deve superare gli 8 caratteri (estensione esclusa):\r\nmiofile1.txt"
                                               "  -> corretto \r\nmiofile1999.txt -> errato.");
        QTest::newRow("no Access table") << QStringList{QStringLiteral("access")}
                                         << QStringLiteral("Selezionare una tabella.");
        QTest::newRow("no join to remove")
            << QStringList{QStringLiteral("unjoin")} << QStringLiteral("Il tema comuni non ha tabelle collegate.");
    }
    void refusalsChangeNothing()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const QString user = m_dir.filePath(QStringLiteral("utente"));
        QVERIFY(writeFile(user + QStringLiteral("/dup.txt"), "COD;NOME\n001001;a\n001001;b\n"));
        QVERIFY(writeFile(user + QStringLiteral("/nomilunghissimi.txt"), "COD;NOME\n001001;a\n"));
        QStringList run;
        const QString kind = args.first();
        if (kind == QLatin1String("dup"))
            run = joinArgs(user + QStringLiteral("/dup.txt"), QStringLiteral("COD"));
        else if (kind == QLatin1String("numkey"))
            run = joinArgs(user + QStringLiteral("/conf.txt"), QStringLiteral("QUOTA"));
        else if (kind == QLatin1String("field"))
            run = joinArgs(m_names, QStringLiteral("CODICE"))
                  << QStringLiteral("--fields") << QStringLiteral("NESSUNO");
        else if (kind == QLatin1String("longname"))
            run = joinArgs(user + QStringLiteral("/nomilunghissimi.txt"), QStringLiteral("COD"));
        else if (kind == QLatin1String("access"))
            run = joinArgs(fixturePath(QStringLiteral("testV1997.mdb")), QStringLiteral("b"));
        else
            run = {QStringLiteral("unjoin"), QStringLiteral("--home"), m_home, QStringLiteral("--theme"),
                   QStringLiteral("comuni")};
        const auto before = folderSnapshot(m_home);
        QString err;
        QCOMPARE(cli(run, nullptr, &err), 1);
        QCOMPARE(err.trimmed(), message);
        QCOMPARE(folderSnapshot(m_home), before);
    }

    void helpInItalian()
    {
        QString out;
        QCOMPARE(cli({QStringLiteral("join"), QStringLiteral("--help")}, &out), 0);
        QVERIFY(out.startsWith(QStringLiteral("Uso: mervola-cli join --home CARTELLA --theme TEMA --source FILE")));
        QVERIFY(out.contains(QStringLiteral("virgola decimale ammessa")));
        QCOMPARE(cli({QStringLiteral("unjoin"), QStringLiteral("--help")}, &out), 0);
        QVERIFY(out.startsWith(QStringLiteral("Uso: mervola-cli unjoin --home CARTELLA --theme TEMA")));
        QVERIFY(out.contains(QStringLiteral("\"Elimina Join\"")));
    }
};

QTEST_GUILESS_MAIN(TestJoinCli)
#include "test_join_cli.moc"
