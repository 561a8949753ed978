// The attribute table's rows, filter, order, export and map condition over a
// generated dBase table.
#include "data/AttributeTable.h"
#include "data/TableQuery.h"

#include <QtTest>

using namespace mervola;

namespace {

// Label, COD, DUMMY, I010 (number), with equal values to test the tie order.
QString makeTable(const QTemporaryDir &dir, const QString &name = QStringLiteral("cmont_01"))
{
    DbfTable t;
    t.fields = {{QStringLiteral("PROG_MONT"), DbfType::Text, 8, 0},
                {QStringLiteral("Label"), DbfType::Text, 40, 0},
                {QStringLiteral("DUMMY"), DbfType::Text, 5, 0},
                {QStringLiteral("I010"), DbfType::Numeric, 10, 2}};
    const QList<QPair<QString, double>> rows = {{QStringLiteral("Bormio"), 5},   {QStringLiteral("Alta Valle"), 5},
                                                {QStringLiteral("Cadore"), 1.5}, {QStringLiteral("Val d'Ossola"), 9},
                                                {QStringLiteral("Carnia"), 5}};
    int i = 0;
    for (const auto &[label, v] : rows)
        t.rows.push_back({QString::number(++i), label, QStringLiteral("x"), v});
    if (!writeDbf(dir.path() + QLatin1Char('/') + name + QStringLiteral(".dbf"), t))
        return QString();
    return dir.path();
}

QStringList labels(const AttributeTable &t)
{
    QStringList out;
    const int c = t.fieldIndex(QStringLiteral("label"));
    for (int r = 0; r < t.shownCount(); ++r)
        out << t.value(r, c).toString();
    return out;
}

}  // namespace

class TestAttributeTable : public QObject {
    Q_OBJECT
private slots:
    void sortFallsBackToLabelInTheSameDirection_data()
    {
        QTest::addColumn<int>("order");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("asc") << int(SortOrder::Ascending)
                             << QStringList{"Cadore", "Alta Valle", "Bormio", "Carnia", "Val d'Ossola"};
        QTest::newRow("desc") << int(SortOrder::Descending)
                              << QStringList{"Val d'Ossola", "Carnia", "Bormio", "Alta Valle", "Cadore"};
    }
    void sortFallsBackToLabelInTheSameDirection()
    {
        QFETCH(int, order);
        QFETCH(QStringList, expected);
        QTemporaryDir dir;
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("CMONT_01"));
        QVERIFY2(t.ok(), qPrintable(t.errorMessage()));
        const int c = t->fieldIndex(QStringLiteral("i010"));
        QVERIFY(t->sortBy(c, SortOrder(order)).ok());
        QCOMPARE(labels(*t), expected);
        QVERIFY(t->sortBy(c, SortOrder(order)).ok());  // twice: same order
        QCOMPARE(labels(*t), expected);
    }

    void queryOutcomes_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<int>("outcome");
        QTest::addColumn<int>("shown");
        QTest::addColumn<QString>("filter");
        QTest::newRow("decimal comma") << "[I010] < 1,6" << int(QueryOutcome::Found) << 1 << " WHERE [I010] < 1.6";
        QTest::newRow("apostrophe") << "Label = 'Val d''Ossola'" << int(QueryOutcome::Found) << 1
                                    << " WHERE Label = 'Val d''Ossola'";
        QTest::newRow("empty") << "  " << int(QueryOutcome::NoCondition) << 5 << "";
        QTest::newRow("nothing matches shows all") << "[I010] > 100" << int(QueryOutcome::NoRecord) << 5 << "";
        QTest::newRow("bare number") << "5" << int(QueryOutcome::SyntaxError) << 5 << "";
        QTest::newRow("bad syntax") << "[I010] >> and" << int(QueryOutcome::SyntaxError) << 5 << "";
    }
    void queryOutcomes()
    {
        QFETCH(QString, condition);
        QFETCH(int, outcome);
        QFETCH(int, shown);
        QFETCH(QString, filter);
        QTemporaryDir dir;
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("cmont_01"));
        QVERIFY(t.ok());
        QCOMPARE(int(runTableQuery(*t, condition)), outcome);
        QCOMPARE(t->shownCount(), shown);
        QCOMPARE(t->filter(), filter);
    }

    void syntaxErrorKeepsEarlierFilterAndSortKeepsFilter()
    {
        QTemporaryDir dir;
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("cmont_01"));
        QVERIFY(t.ok());
        QCOMPARE(runTableQuery(*t, QStringLiteral("[I010] = 5")), QueryOutcome::Found);
        QCOMPARE(runTableQuery(*t, QStringLiteral("[I010] = = 5")), QueryOutcome::SyntaxError);
        QCOMPARE(t->filter(), QStringLiteral(" WHERE [I010] = 5"));
        QVERIFY(t->sortBy(t->fieldIndex(QStringLiteral("Label")), SortOrder::Descending).ok());
        QCOMPARE(labels(*t), (QStringList{"Carnia", "Bormio", "Alta Valle"}));
        QCOMPARE(t->recordSource(),
                 QStringLiteral("select * from cmont_01 WHERE [I010] = 5 Order by [Label] DESC, label DESC"));
        QCOMPARE(t->statusText(),
                 QStringLiteral("3 record di 5 selezionati.      (5 elementi nella tabella originaria)"));
        QVERIFY(t->showAll().ok());
        QCOMPARE(t->statusText(), QStringLiteral("5 record di 5 selezionati."));
        QCOMPARE(t->recordSource(), QStringLiteral("select *  from [cmont_01]"));
    }

    void exportReplacesFileWithoutDummyAndKeepsFilter()
    {
        QTemporaryDir dir;
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("cmont_01"));
        QVERIFY(t.ok());
        QCOMPARE(runTableQuery(*t, QStringLiteral("[I010] = 5")), QueryOutcome::Found);
        QVERIFY(t->sortBy(1, SortOrder::Descending).ok());
        QTemporaryDir out;
        const QString path = out.path() + QStringLiteral("/uscita.dbf");
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));  // an existing file is replaced
        QVERIFY2(t->exportTo(path).ok(), qPrintable(t->exportTo(path).errorMessage()));
        auto back = readDbf(path);
        QVERIFY(back.ok());
        QCOMPARE(back->fieldIndex(QStringLiteral("DUMMY")), -1);
        QCOMPARE(back->columnCount(), 3);
        QCOMPARE(int(back->rowCount()), 3);
        QCOMPARE(back->rows[0][1].toString(), QStringLiteral("Bormio"));  // file order
        QCOMPARE(back->fields[2], (DbfField{QStringLiteral("I010"), DbfType::Numeric, 10, 2}));
        QVERIFY(!t->exportTo(dir.path() + QStringLiteral("/cmont_01.dbf")).ok());
    }

    void onMapConditionUsesTheUniqueCode()
    {
        QTemporaryDir dir;
        // The communities are keyed by PROG_MONT, whatever their names.
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("cmont_01"));
        QVERIFY(t.ok());
        QCOMPARE(t->onMapCondition({0, 3}), QStringLiteral("PROG_MONT = '1' and PROG_MONT = '4'"));
        QCOMPARE(t->onMapCondition({}), QString());
        QCOMPARE(t->keyValues({3}), QStringList{QStringLiteral("4")});
        // A table without a code falls back to Label, apostrophes doubled.
        auto other = AttributeTable::open(makeTable(dir, QStringLiteral("zone")), QStringLiteral("zone"));
        QVERIFY(other.ok());
        QCOMPARE(other->onMapCondition({3}), QStringLiteral("Label = 'Val d''Ossola'"));
    }

    void captionsAndCategoryColumns()
    {
        QTemporaryDir dir;
        auto t = AttributeTable::open(makeTable(dir), QStringLiteral("cmont_01"));
        QVERIFY(t.ok());
        IndicatorCatalog catalog;
        StructureTable st;
        st.rows.push_back({QStringLiteral("Label"), QStringLiteral("Denominazione"), QStringLiteral("commont"), "0", "-1"});
        catalog.setStructure(st);
        catalog.addCategory(QStringLiteral("01"), QStringLiteral("Territorio"));
        catalog.addCategory(QStringLiteral("02"), QStringLiteral("Popolazione"));
        catalog.addIndicator(QStringLiteral("02010"), QStringLiteral("Popolazione 2022"), QStringLiteral("Popolazione"));
        t->setUpColumns(catalog, QStringLiteral("00"));
        QCOMPARE(t->column(1).caption, QStringLiteral("Denominazione"));
        QCOMPARE(t->column(3).caption, QStringLiteral("POPOLAZIONE 2022"));
        QCOMPARE(t->column(0).caption, QStringLiteral("PROG_MONT"));  // NOMATCH keeps the name
        QVERIFY(!t->column(2).visible);                                 // DUMMY
        t->setUpColumns(catalog, QStringLiteral("01"));
        QVERIFY(t->column(1).visible);
        QVERIFY(!t->column(3).visible);  // an indicator of another category
        QVERIFY(t->column(0).visible);   // base information, though no structure row names it
        t->setUpColumns(catalog, QStringLiteral("02"));
        QVERIFY(t->column(3).visible);
        QVERIFY(!t->column(2).visible);
        QCOMPARE(t->state(3, {1}, QStringLiteral("Tabella x")).visibleFields, (QStringList{"PROG_MONT", "Label", "I010"}));
    }
};

QTEST_GUILESS_MAIN(TestAttributeTable)
#include "test_attribute_table.moc"
