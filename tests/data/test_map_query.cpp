// The map query builder's condition pieces and the meaning of a query's result.
#include "data/MapQuery.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/dbf/DbfTable.h"

#include <QtTest>

using namespace mervola;

namespace
{

// A small municipality table: names (one with an apostrophe, one null) and a decimal indicator.
void writeComuni(const QString &dir)
{
    DbfTable t;
    t.fields = {{QStringLiteral("LABEL"), DbfType::Text, 40, 0}, {QStringLiteral("I001"), DbfType::Numeric, 10, 2}};
    t.rows.push_back({QStringLiteral("Aosta"), 3.5});
    t.rows.push_back({QStringLiteral("Sant'Elia a Pianisi"), 7.25});
    t.rows.push_back({QStringLiteral("Bard"), 1.0});
    t.rows.push_back({QVariant(), 9.0});
    QVERIFY(writeDbf(dir + QStringLiteral("/comuni.dbf"), t).ok());
}

} // namespace

class TestMapQuery : public QObject
{
    Q_OBJECT
private slots:
    void results_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("labels");
        using K = MapQueryResult::Kind;
        QTest::newRow("decimal comma") << QStringLiteral("[I001] = 3,5") << int(K::One) << 1 << QStringList{"Aosta"};
        QTest::newRow("many") << QStringLiteral("[I001] > 2") << int(K::Many) << 3
                              << QStringList{"Aosta", "Sant'Elia a Pianisi"};
        QTest::newRow("none") << QStringLiteral("[I001] > 100") << int(K::None) << 0 << QStringList{};
        QTest::newRow("apostrophe literal") << QStringLiteral("[LABEL] = 'Sant''Elia a Pianisi'") << int(K::One) << 1
                                            << QStringList{"Sant'Elia a Pianisi"};
        QTest::newRow("operators") << QStringLiteral("not ( [I001] < 2 ) and [LABEL] <> 'Aosta'") << int(K::One) << 1
                                   << QStringList{"Sant'Elia a Pianisi"};
    }
    void results()
    {
        QFETCH(QString, condition);
        QFETCH(int, kind);
        QFETCH(int, count);
        QFETCH(QStringList, labels);
        QTemporaryDir dir;
        writeComuni(dir.path());
        DbfFolder folder(dir.path());
        auto r = runMapQuery(folder, QStringLiteral("comuni"), condition);
        QVERIFY2(r.ok(), qPrintable(r.errorMessage()));
        QCOMPARE(int(r->kind), kind);
        QCOMPARE(r->count, count);
        QCOMPARE(r->labels, labels); // the null name is counted, never listed
    }

    void syntaxErrors_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::newRow("bare number") << QStringLiteral("5");
        QTest::newRow("bare decimal comma") << QStringLiteral("3,5");
        QTest::newRow("unknown field") << QStringLiteral("[NONE] = 1");
        QTest::newRow("broken") << QStringLiteral("[I001] = = 1");
        QTest::newRow("empty") << QStringLiteral("  ");
    }
    void syntaxErrors()
    {
        QFETCH(QString, condition);
        QTemporaryDir dir;
        writeComuni(dir.path());
        DbfFolder folder(dir.path());
        auto r = runMapQuery(folder, QStringLiteral("comuni"), condition);
        QVERIFY(!r.ok());
        QCOMPARE(r.errorMessage(), querytext::kSyntaxError);
    }

    void statementsAndPieces()
    {
        QCOMPARE(mapQueryStatement(QStringLiteral("comuni"), QStringLiteral("[I001] > 2")),
                 QStringLiteral("Select LABEL  from comuni Where ([I001] > 2)"));
        QCOMPARE(operatorInsertion(2), QStringLiteral(" and "));
        QCOMPARE(operatorInsertion(10), QStringLiteral(" ) "));
        QCOMPARE(operatorInsertion(11), QString());
        QCOMPARE(valueInsertion(QStringLiteral("Sant'Elia"), true), QStringLiteral("'Sant''Elia'"));
        QCOMPARE(valueInsertion(QStringLiteral("3.5"), false), QStringLiteral("3.5"));
        QCOMPARE(fieldInsertion(QStringLiteral("I001")), QStringLiteral("[I001]"));
    }

    void mapExpressions_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("apostrophe") << QStringLiteral("Sant'Elia a Pianisi")
                                    << QStringLiteral("Label = 'Sant''Elia a Pianisi'");
        QTest::newRow("suffix cut") << QStringLiteral("Bard (AO)") << QStringLiteral("Label = 'Bard'");
        QTest::newRow("numeric") << QStringLiteral("12") << QStringLiteral("Label = 12");
    }
    void mapExpressions()
    {
        QFETCH(QString, value);
        QFETCH(QString, chosen);
        QCOMPARE(chosenResultExpression(value), chosen);
        QCOMPARE(singleResultExpression(QStringLiteral("D'Arco")), QStringLiteral("LABEL = 'D''Arco'"));
    }

    void fieldsAndValues()
    {
        QTemporaryDir dir;
        writeComuni(dir.path());
        DbfFolder folder(dir.path());
        auto fields = mapQueryFields(folder, QStringLiteral("COMUNI"));
        QVERIFY2(fields.ok(), qPrintable(fields.errorMessage()));
        QCOMPARE(fields->size(), 2);
        QVERIFY(fields->at(0).isText);
        QVERIFY(!fields->at(1).isText);
        auto values = mapQueryValues(folder, QStringLiteral("comuni"), QStringLiteral("LABEL"));
        QVERIFY(values.ok());
        QCOMPARE(*values, (QStringList{"Aosta", "Bard", "Sant'Elia a Pianisi"}));
    }
};

QTEST_GUILESS_MAIN(TestMapQuery)
#include "test_map_query.moc"
