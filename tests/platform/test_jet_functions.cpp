// The Jet functions registered on SQLite: sample and population variance,
// nulls, numerical stability, and the scalar helpers' Jet semantics.
#include "platform/JetFunctions.h"
#include "platform/Sqlite.h"

#include <QtTest>
#include <cmath>

using namespace mervola;

class TestJetFunctions : public QObject
{
    Q_OBJECT

    SqliteDb m_db;

    QVariant scalar(const QString &sql)
    {
        auto rs = m_db.query(sql);
        if (!rs || rs->empty())
            return QStringLiteral("<%1>").arg(rs.errorMessage());
        return rs->rows[0][0];
    }

private slots:
    void initTestCase()
    {
        auto db = SqliteDb::open(QStringLiteral(":memory:"), SqliteDb::Mode::Create);
        QVERIFY(db.ok());
        m_db = std::move(*db);
        registerJetFunctions(m_db.handle());
    }

    void aggregates_data()
    {
        QTest::addColumn<QString>("values"); // comma-separated, "null" for NULL
        QTest::addColumn<QString>("function");
        QTest::addColumn<QVariant>("expected"); // invalid = NULL
        // 2, 4, 4, 4, 5, 5, 7, 9: mean 5, squares 32
        const QString eight = QStringLiteral("2,4,4,4,5,5,7,9");
        QTest::newRow("var sample") << eight << "Var" << QVariant(32.0 / 7);
        QTest::newRow("stdev sample") << eight << "StDev" << QVariant(std::sqrt(32.0 / 7));
        QTest::newRow("var population") << eight << "VarP" << QVariant(4.0);
        QTest::newRow("stdev population") << eight << "StDevP" << QVariant(2.0);
        QTest::newRow("lower-case name") << eight << "var" << QVariant(32.0 / 7);
        QTest::newRow("two records, divisor 1") << "10,20"
                                                << "Var" << QVariant(50.0);
        QTest::newRow("nulls are skipped") << "null,10,null,20"
                                           << "Var" << QVariant(50.0);
        QTest::newRow("one value is null") << "7"
                                           << "Var" << QVariant();
        QTest::newRow("one value stdev null") << "7,null"
                                              << "StDev" << QVariant();
        QTest::newRow("population of one is 0") << "7"
                                                << "VarP" << QVariant(0.0);
        QTest::newRow("all null") << "null,null"
                                  << "StDev" << QVariant();
        QTest::newRow("same value") << "3,3,3"
                                    << "Var" << QVariant(0.0);
        QTest::newRow("large offset") << "1000000001,1000000002,1000000003"
                                      << "Var" << QVariant(1.0);
        QTest::newRow("text numbers") << "'1','2','3'"
                                      << "Var" << QVariant(1.0);
    }
    void aggregates()
    {
        QFETCH(QString, values);
        QFETCH(QString, function);
        QFETCH(QVariant, expected);
        QStringList rows;
        for (const QString &v : values.split(QLatin1Char(',')))
            rows << QStringLiteral("SELECT %1 AS x").arg(v);
        const QVariant got =
            scalar(QStringLiteral("SELECT %1(x) FROM (%2)").arg(function, rows.join(QStringLiteral(" UNION ALL "))));
        if (!expected.isValid()) {
            QVERIFY2(got.isNull(), qPrintable(got.toString()));
            return;
        }
        QVERIFY2(got.typeId() == QMetaType::Double, qPrintable(got.toString()));
        QVERIFY2(std::fabs(got.toDouble() - expected.toDouble()) < 1e-9,
                 qPrintable(QStringLiteral("%1 != %2").arg(got.toDouble(), 0, 'g', 17).arg(expected.toDouble())));
    }

    void scalars_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("ucase") << "UCase('città')" << QVariant(QStringLiteral("CITTÀ"));
        QTest::newRow("len counts letters") << "Len('città')" << QVariant(qlonglong(5));
        QTest::newRow("mid 1-based") << "Mid('PROG_MONT', 6)" << QVariant(QStringLiteral("MONT"));
        QTest::newRow("iif null is false") << "IIf(NULL, 'sì', 'no')" << QVariant(QStringLiteral("no"));
        QTest::newRow("nz default") << "Nz(NULL, 'x')" << QVariant(QStringLiteral("x"));
        QTest::newRow("val leading number") << "Val('12abc')" << QVariant(12.0);
        QTest::newRow("val blanks ignored") << "Val(' 1 615 rue')" << QVariant(1615.0);
        QTest::newRow("val second point stops") << "Val('1.2.3')" << QVariant(1.2);
        QTest::newRow("val exponent") << "Val('2e3x')" << QVariant(2000.0);
        QTest::newRow("clng rounds half to even") << "CLng(2.5)" << QVariant(qlonglong(2));
        QTest::newRow("int floors negatives") << "Int(-2.5)" << QVariant(-3.0);
        QTest::newRow("fix truncates") << "Fix(-2.5)" << QVariant(-2.0);
        QTest::newRow("null in, null out") << "UCase(NULL) IS NULL" << QVariant(qlonglong(1));
    }
    void scalars()
    {
        QFETCH(QString, expression);
        QFETCH(QVariant, expected);
        const QVariant got = scalar(QStringLiteral("SELECT ") + expression);
        QCOMPARE(got.typeId(), expected.typeId());
        QCOMPARE(got, expected);
    }
};

QTEST_GUILESS_MAIN(TestJetFunctions)
#include "test_jet_functions.moc"
