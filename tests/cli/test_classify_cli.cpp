// mervola-cli classify on the atlas of all Italy: the natural breaks are the
// limits the classification window's button gives, and every numeric
// classification reports its goodness of variance fit.
#include "classify/ClassFit.h"
#include "classify/ColumnReader.h"
#include "support/FitSupport.h"
#include "support/TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::classify;

class TestClassifyCli : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;
    FieldColumn m_population;

    QJsonObject classify(const QString &method, int classes)
    {
        QString out, err;
        const int code = test::runProgram(
            QStringLiteral(MERVOLA_CLI),
            {QStringLiteral("classify"), QStringLiteral("--home"), m_home, QStringLiteral("--theme"),
             QStringLiteral("comuni"), QStringLiteral("--field"), QStringLiteral("_02010"), QStringLiteral("--method"),
             method, QStringLiteral("--classes"), QString::number(classes)},
            &out, &err);
        if (code != 0)
            qWarning("%s", qPrintable(err));
        return QJsonDocument::fromJson(out.toUtf8()).object();
    }

private slots:
    void initTestCase()
    {
        m_home = m_dir.filePath(QStringLiteral("home"));
        QVERIFY(test::copyRealAtlas(m_home));
        Result<FieldColumn> c =
            readFieldColumn(m_home + QStringLiteral("/italia/comuni.dbf"), QStringLiteral("_02010"));
        QVERIFY(c.ok());
        m_population = *c;
    }

    void naturalBreaksAndFit_data()
    {
        QTest::addColumn<int>("classes");
        QTest::newRow("5 classi") << 5;
        QTest::newRow("7 classi") << 7;
    }
    void naturalBreaksAndFit()
    {
        QFETCH(int, classes);
        const QJsonObject json = classify(QStringLiteral("naturali"), classes);
        QCOMPARE(json.value(QStringLiteral("status")).toString(), QStringLiteral("ok"));
        const Classification window = naturalBreaksClassification(m_population, classes, 0);
        const QJsonArray list = json.value(QStringLiteral("classes")).toArray();
        QCOMPARE(list.size(), classes);
        for (int i = 0; i < classes; ++i) {
            const QJsonObject c = list[i].toObject();
            QCOMPARE(c.value(QStringLiteral("upper")).toDouble(), window.classes[size_t(i)].upper);
            QCOMPARE(c.value(QStringLiteral("text")).toString(), window.classes[size_t(i)].valueText);
            QCOMPARE(c.value(QStringLiteral("count")).toInt(), window.classes[size_t(i)].count);
        }
        // GVF from the printed limits, computed here value by value.
        const std::vector<double> sorted = m_population.sortedNumbers();
        std::vector<double> uppers;
        for (const QJsonValue &c : list)
            uppers.push_back(c.toObject().value(QStringLiteral("upper")).toDouble());
        QVERIFY(std::abs(json.value(QStringLiteral("gvf")).toDouble() - test::gvfByUpperLimits(sorted, uppers)) < 1e-9);

        const QJsonObject quantile = classify(QStringLiteral("quantile"), classes);
        QVERIFY(quantile.value(QStringLiteral("gvf")).toDouble() > 0);
        QVERIFY(json.value(QStringLiteral("gvf")).toDouble() > quantile.value(QStringLiteral("gvf")).toDouble());
    }

    void unknownMethodIsRefused()
    {
        QString err;
        QVERIFY(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                 {QStringLiteral("classify"), QStringLiteral("--home"), m_home,
                                  QStringLiteral("--theme"), QStringLiteral("comuni"), QStringLiteral("--field"),
                                  QStringLiteral("_02010"), QStringLiteral("--method"), QStringLiteral("jenks")},
                                 nullptr, &err) != 0);
        QCOMPARE(err, QStringLiteral("mervola-cli: --method deve essere quantile, regolari, unico o naturali\n"));
    }
};

QTEST_GUILESS_MAIN(TestClassifyCli)
#include "test_classify_cli.moc"
