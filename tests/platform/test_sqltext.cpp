// Quoting, display names and the Jet-to-SQLite rewriting.
#include "platform/SqlText.h"

#include <QtTest>

using namespace mervola;

class TestSqlText : public QObject {
    Q_OBJECT
private slots:
    void quotingDoublesApostrophes()
    {
        QCOMPARE(sqlQuote(QStringLiteral("VALLE D'AOSTA")), QStringLiteral("'VALLE D''AOSTA'"));
        QCOMPARE(sqlEscape(QStringLiteral("a''b")), QStringLiteral("a''''b"));
        QCOMPARE(displayNameToTableName(QStringLiteral("comuni (collegata con dati esterni)")),
                 QStringLiteral("comuni"));
        QCOMPARE(displayNameToTableName(QStringLiteral("comuni")), QStringLiteral("comuni"));
    }
    void jetTranslation_data()
    {
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("sqlite");
        QTest::newRow("delete star") << "DELETE * FROM CAMPIJOIN" << "DELETE FROM CAMPIJOIN";
        QTest::newRow("delete star lower") << "Delete * from CAMPIJOIN WHERE DBF='X'"
                                           << "DELETE FROM CAMPIJOIN WHERE DBF='X'";
        QTest::newRow("true") << "Select ALIAS from strutture where FIELDJOIN = True"
                              << "Select ALIAS from strutture where FIELDJOIN = -1";
        QTest::newRow("literal untouched") << "SELECT 'True & No' FROM T WHERE [No] = 1"
                                           << "SELECT 'True & No' FROM T WHERE [No] = 1";
        QTest::newRow("quoted apostrophe") << "SELECT * FROM R WHERE Label = 'D''True'"
                                           << "SELECT * FROM R WHERE Label = 'D''True'";
        QTest::newRow("concat") << "SELECT a & b FROM T" << "SELECT a || b FROM T";
        QTest::newRow("top") << "SELECT TOP 5 * FROM T;" << "SELECT * FROM T LIMIT 5;";
        QTest::newRow("word inside name") << "SELECT Notrue FROM T" << "SELECT Notrue FROM T";
    }
    void jetTranslation()
    {
        QFETCH(QString, jet);
        QFETCH(QString, sqlite);
        QCOMPARE(translateJetSql(jet), sqlite);
    }
};

QTEST_GUILESS_MAIN(TestSqlText)
#include "test_sqltext.moc"
