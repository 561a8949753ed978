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
    // A condition is one expression; separators inside text are values.
    void singleCondition_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<bool>("single");
        QTest::newRow("plain") << "[_02010] > 100000 and ([Label] = 'A' or not [x] < 3)" << true;
        QTest::newRow("separators in text") << "[Label] = 'a;b -- c /* d' or [n] = \"e;f\"" << true;
        QTest::newRow("doubled apostrophe") << "[Label] = 'Sant''Elia; x'" << true;
        QTest::newRow("bracket name") << "[a;b] = 1" << true;
        QTest::newRow("negative number") << "[x] > - 1" << true;
        QTest::newRow("second statement") << "[_02010] > 100000; DROP TABLE comuni" << false;
        QTest::newRow("trailing semicolon") << "[x] = 1;" << false;
        QTest::newRow("line comment") << "[_02010] > 100000 --" << false;
        QTest::newRow("block comment") << "[x] = 1 /* y */" << false;
        QTest::newRow("closes the parenthesis") << "x); DROP TABLE comuni; --" << false;
        QTest::newRow("escapes the parentheses") << "[x] = 1) or (1 = 1" << false;
        QTest::newRow("unclosed parenthesis") << "([x] = 1" << false;
        QTest::newRow("open quote") << "[Label] = 'Roma" << false;
    }
    void singleCondition()
    {
        QFETCH(QString, condition);
        QFETCH(bool, single);
        QCOMPARE(isSingleCondition(condition), single);
    }
};

QTEST_GUILESS_MAIN(TestSqlText)
#include "test_sqltext.moc"
