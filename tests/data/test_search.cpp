// Names offered by the search window and the expression that finds one.
#include "data/Search.h"
#include "platform/dbf/DbfTable.h"

#include <QtTest>

using namespace mervola;

class TestSearch : public QObject {
    Q_OBJECT
private slots:
    void distinctNamesWithoutNulls()
    {
        QTemporaryDir dir;
        DbfTable t;
        t.fields = {{QStringLiteral("LABEL"), DbfType::Text, 40, 0}};
        for (const QVariant &v : {QVariant(QStringLiteral("Valle d'Aosta")), QVariant(), QVariant(QStringLiteral("Aosta")),
                                  QVariant(QStringLiteral("Aosta"))})
            t.rows.push_back({v});
        QVERIFY(writeDbf(dir.path() + QStringLiteral("/Temi.dbf"), t).ok());
        auto names = distinctLabels(dir.path(), QStringLiteral("temi"));
        QVERIFY2(names.ok(), qPrintable(names.errorMessage()));
        QCOMPARE(names->size(), 2);
        QVERIFY(names->contains(QStringLiteral("Valle d'Aosta")));
    }
    void onlyNullNamesLeaveNothingToSearch()
    {
        QTemporaryDir dir;
        DbfTable t;
        t.fields = {{QStringLiteral("Label"), DbfType::Text, 10, 0}};
        t.rows.push_back({QVariant()});
        QVERIFY(writeDbf(dir.path() + QStringLiteral("/vuoto.dbf"), t).ok());
        auto names = distinctLabels(dir.path(), QStringLiteral("vuoto"));
        QVERIFY(names.ok());
        QVERIFY(names->isEmpty());
    }
    void expressionAndCaption()
    {
        QCOMPARE(labelExpression(QStringLiteral("Sant'Elia a Pianisi")), QStringLiteral("Label = 'Sant''Elia a Pianisi'"));
        QCOMPARE(searchCaption(QStringLiteral("comuni (collegata con dati esterni)")), QStringLiteral("Cerca in...comuni"));
    }
};

QTEST_GUILESS_MAIN(TestSearch)
#include "test_search.moc"
