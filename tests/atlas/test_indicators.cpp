// Indicator catalogue, municipality values and community aggregation.
#include "atlas/Indicators.h"
#include "atlas/ThemeTables.h"

#include <QtTest>
#include <set>

using namespace mervola::atlas;

namespace {

const Indicator &byNumber(const QString &number)
{
    for (const Indicator &i : indicators())
        if (i.number == number)
            return i;
    qFatal("indicator %s missing", qPrintable(number));
}

size_t indexOf(const QString &number) { return static_cast<size_t>(&byNumber(number) - indicators().data()); }

Attributes row(double area, const QString &pop2001, double pop2011, double pop2022, double females, double altitude,
               const QString &montano, const QString &zona, const QString &coastal)
{
    return {{QStringLiteral("superficie_kmq_2020"), QString::number(area)},
            {QStringLiteral("pop_legale_2001"), pop2001},
            {QStringLiteral("pop_legale_2011"), QString::number(pop2011)},
            {QStringLiteral("pop_residente_2022"), QString::number(pop2022)},
            {QStringLiteral("pop_femmine_2022"), QString::number(females)},
            {QStringLiteral("pop_maschi_2022"), QString::number(pop2022 - females)},
            {QStringLiteral("altitudine_centro_m"), QString::number(altitude)},
            {QStringLiteral("comune_montano"), montano},
            {QStringLiteral("zona_altimetrica"), zona},
            {QStringLiteral("comune_litoraneo"), coastal}};
}

}  // namespace

class TestIndicators : public QObject {
    Q_OBJECT
private slots:
    void catalogueFieldsAreUniqueAndShort()
    {
        std::set<QString> numbers, codes;
        std::set<QString> categoryCodes;
        for (const Category &c : categories())
            categoryCodes.insert(c.code);
        for (const Indicator &i : indicators()) {
            QVERIFY2(numbers.insert(i.number).second, qPrintable(i.number));
            QVERIFY(codes.insert(i.codInd()).second);
            QCOMPARE(i.codInd().size(), 5);
            QVERIFY(i.municipalityField().size() <= 10);
            QVERIFY(categoryCodes.count(i.category));
            QVERIFY(i.number != QLatin1String("000"));
            QVERIFY(isIndicatorField(i.communityField()) && isIndicatorField(i.municipalityField()));
        }
        QVERIFY(!isIndicatorField(QStringLiteral("I000")));
        // The default community theme is classified on I010.
        QCOMPARE(byNumber(QStringLiteral("010")).column, QStringLiteral("pop_residente_2022"));
        // Numbers continue across categories in catalogue order.
        QString last;
        for (const Indicator &i : indicators()) {
            QVERIFY(i.number > last);
            last = i.number;
        }
    }

    void municipalityValues_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("pop2001");
        QTest::addColumn<QString>("montano");
        QTest::addColumn<double>("expected");  // NaN = missing
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("density") << "016" << "900" << "T" << 1100.0 / 50.0;
        QTest::newRow("change 2001-2011") << "017" << "800" << "T" << 25.0;
        QTest::newRow("change without 2001") << "017" << "" << "T" << nan;
        QTest::newRow("change 2011-2022") << "018" << "800" << "T" << 10.0;
        QTest::newRow("share of women") << "019" << "800" << "T" << 50.0;
        QTest::newRow("totally mountain") << "004" << "800" << "T" << 2.0;
        QTest::newRow("partially mountain") << "004" << "800" << "P" << 1.0;
        QTest::newRow("not mountain") << "004" << "800" << "NM" << 0.0;
        QTest::newRow("unclassified") << "004" << "800" << "" << nan;
    }
    void municipalityValues()
    {
        QFETCH(QString, number);
        QFETCH(QString, pop2001);
        QFETCH(QString, montano);
        QFETCH(double, expected);
        const auto values =
            mervola::atlas::municipalityValues(row(50, pop2001, 1000, 1100, 550, 700, montano, "1", "0"));
        const Value v = values[indexOf(number)];
        if (std::isnan(expected)) {
            QVERIFY(!v.has_value());
        } else {
            QVERIFY(v.has_value());
            QVERIFY(qFuzzyCompare(*v, expected));
        }
    }

    void communityAggregation_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<double>("expected");
        // Members: (area 10, 2011: 1000, 2022: 900, women 450, alt 1000, T, zone 1, coastal)
        //          (area 30, 2011: 3000, 2022: 3300, women 1700, alt 200, P, zone 1)
        //          (area 60, 2011: 2000, 2022: 1800, women 900, alt 500, NM, zone 3), 2001 missing
        QTest::newRow("sum of areas") << "001" << 100.0;
        QTest::newRow("area-weighted altitude") << "002" << (10 * 1000.0 + 30 * 200.0 + 60 * 500.0) / 100.0;
        QTest::newRow("most frequent zone") << "003" << 1.0;
        QTest::newRow("mountain class tie keeps the smallest") << "004" << 0.0;
        QTest::newRow("count of coastal members") << "005" << 1.0;
        QTest::newRow("sum of 2022 population") << "010" << 6000.0;
        QTest::newRow("sum skips missing 2001") << "011" << 3600.0;
        QTest::newRow("density from totals") << "016" << 60.0;
        QTest::newRow("change only over members with both years") << "017" << (4000.0 - 3600.0) / 3600.0 * 100.0;
        QTest::newRow("share of women from totals") << "019" << 3050.0 / 6000.0 * 100.0;
    }
    void communityAggregation()
    {
        QFETCH(QString, number);
        QFETCH(double, expected);
        const Attributes a = row(10, "900", 1000, 900, 450, 1000, "T", "1", "1");
        const Attributes b = row(30, "2700", 3000, 3300, 1700, 200, "P", "1", "0");
        const Attributes c = row(60, "", 2000, 1800, 900, 500, "NM", "3", "0");
        const auto values = communityValues({&a, &b, &c});
        const Value v = values[indexOf(number)];
        QVERIFY(v.has_value());
        QVERIFY2(qFuzzyCompare(*v, expected), qPrintable(QString::number(*v)));
    }

    void emptyCommunityHasNoValues()
    {
        const Attributes blank;
        for (const Value &v : communityValues({&blank}))
            QVERIFY(!v.has_value());
    }
};

QTEST_APPLESS_MAIN(TestIndicators)
#include "test_indicators.moc"
