// Clustering of mountain municipalities into communities, and the
// membership table that replaces it.
#include "atlas/MountainCommunities.h"

#include <QtTest>
#include <set>

using namespace mervola::atlas;

namespace {

// A cols x rows grid of square municipalities of one province; cells in
// the first `mountainCols` columns are mountain. Index = col * rows + row.
std::vector<ClusterInput> grid(const QString &province, const QString &region, int cols, int rows, int mountainCols,
                               int indexBase = 0)
{
    std::vector<ClusterInput> out;
    for (int c = 0; c < cols; ++c)
        for (int r = 0; r < rows; ++r) {
            ClusterInput m;
            const int self = indexBase + c * rows + r;
            m.code = province + QStringLiteral("%1").arg(c * rows + r + 1, 3, 10, QLatin1Char('0'));
            m.provinceCode = province;
            m.provinceName = QStringLiteral("Prov%1").arg(province);
            m.regionCode = region;
            m.mountain = c < mountainCols;
            m.x = 1000.0 * c + 10.0 * r;
            if (r > 0) m.neighbours.push_back(self - 1);
            if (r + 1 < rows) m.neighbours.push_back(self + 1);
            if (c > 0) m.neighbours.push_back(self - rows);
            if (c + 1 < cols) m.neighbours.push_back(self + rows);
            out.push_back(m);
        }
    return out;
}

bool contiguous(const Community &c, const std::vector<ClusterInput> &in)
{
    const std::set<int> members(c.members.begin(), c.members.end());
    std::set<int> seen{c.members.front()};
    std::vector<int> stack{c.members.front()};
    while (!stack.empty()) {
        const int cur = stack.back();
        stack.pop_back();
        for (int n : in[static_cast<size_t>(cur)].neighbours)
            if (members.count(n) && seen.insert(n).second)
                stack.push_back(n);
    }
    return seen.size() == members.size();
}

double meanX(const Community &c, const std::vector<ClusterInput> &in)
{
    double s = 0;
    for (int m : c.members)
        s += in[static_cast<size_t>(m)].x;
    return s / static_cast<double>(c.members.size());
}

}  // namespace

class TestMountainCommunities : public QObject {
    Q_OBJECT
private slots:
    void mountainClassification_data()
    {
        QTest::addColumn<QString>("montano");
        QTest::addColumn<QString>("zona");
        QTest::addColumn<bool>("expected");
        QTest::newRow("totally") << "T" << "5" << true;
        QTest::newRow("partially") << "P" << "3" << true;
        QTest::newRow("not mountain beats zone") << "NM" << "1" << false;
        QTest::newRow("missing, inner mountain zone") << "" << "1" << true;
        QTest::newRow("missing, coastal mountain zone") << "" << "2" << true;
        QTest::newRow("missing, hills") << "" << "3" << false;
        QTest::newRow("both missing") << "" << "" << false;
    }
    void mountainClassification()
    {
        QFETCH(QString, montano);
        QFETCH(QString, zona);
        QFETCH(bool, expected);
        QCOMPARE(isMountainMunicipality(montano, zona), expected);
    }

    void clustersRespectTheRules_data()
    {
        QTest::addColumn<int>("cols");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("mountainCols");
        QTest::addColumn<int>("minCommunities");
        QTest::newRow("single municipality") << 1 << 1 << 1 << 1;
        QTest::newRow("exactly 25") << 5 << 5 << 5 << 1;
        QTest::newRow("26 must split") << 2 << 13 << 2 << 2;
        QTest::newRow("large block") << 12 << 10 << 12 << 5;
        QTest::newRow("long strip") << 60 << 1 << 60 << 3;
        QTest::newRow("half mountain") << 8 << 8 << 4 << 2;
    }
    void clustersRespectTheRules()
    {
        QFETCH(int, cols);
        QFETCH(int, rows);
        QFETCH(int, mountainCols);
        QFETCH(int, minCommunities);
        const auto in = grid(QStringLiteral("001"), QStringLiteral("01"), cols, rows, mountainCols);
        const auto communities = deriveCommunities(in);
        QVERIFY(static_cast<int>(communities.size()) >= minCommunities);
        std::set<int> assigned;
        for (const Community &c : communities) {
            QVERIFY(!c.members.empty());
            QVERIFY2(c.members.size() <= 25, qPrintable(c.progMont));
            QVERIFY2(contiguous(c, in), qPrintable(c.progMont));
            for (int m : c.members) {
                QVERIFY(in[static_cast<size_t>(m)].mountain);
                QVERIFY2(assigned.insert(m).second, "member of two communities");
            }
        }
        QCOMPARE(static_cast<int>(assigned.size()), mountainCols * rows);
    }

    void numberedWestToEastPerProvince()
    {
        auto in = grid(QStringLiteral("004"), QStringLiteral("01"), 12, 10, 12);
        const auto second = grid(QStringLiteral("001"), QStringLiteral("01"), 3, 3, 3, static_cast<int>(in.size()));
        in.insert(in.end(), second.begin(), second.end());
        const auto communities = deriveCommunities(in);
        QCOMPARE(communities.front().provinceCode, QStringLiteral("001"));
        QCOMPARE(communities.front().progMont, QStringLiteral("00101"));
        QCOMPARE(communities.front().name, QStringLiteral("Comunità montana Prov001 1"));
        double lastX = -1;
        int seq = 0;
        for (const Community &c : communities) {
            for (int m : c.members)
                QCOMPARE(in[static_cast<size_t>(m)].provinceCode, c.provinceCode);
            if (c.provinceCode != QLatin1String("004"))
                continue;
            ++seq;
            QCOMPARE(c.progMont, QStringLiteral("004%1").arg(seq, 2, 10, QLatin1Char('0')));
            QVERIFY(c.name.endsWith(QStringLiteral(" %1").arg(seq)));
            QVERIFY(meanX(c, in) >= lastX);
            lastX = meanX(c, in);
        }
    }

    void deterministicAndIndependentOfNeighbourOrder()
    {
        auto in = grid(QStringLiteral("001"), QStringLiteral("01"), 9, 9, 9);
        const auto first = deriveCommunities(in);
        for (ClusterInput &m : in)
            std::reverse(m.neighbours.begin(), m.neighbours.end());
        const auto second = deriveCommunities(in);
        QCOMPARE(second.size(), first.size());
        for (size_t i = 0; i < first.size(); ++i) {
            QCOMPARE(second[i].progMont, first[i].progMont);
            QCOMPARE(second[i].members, first[i].members);
        }
    }

    void sicilyAndShapelessMunicipalitiesExcluded()
    {
        auto in = grid(QStringLiteral("082"), QStringLiteral("19"), 3, 3, 3);
        const auto other = grid(QStringLiteral("007"), QStringLiteral("02"), 1, 2, 1, static_cast<int>(in.size()));
        in.insert(in.end(), other.begin(), other.end());
        in.back().hasShape = false;
        const auto communities = deriveCommunities(in);
        QCOMPARE(communities.size(), size_t(1));
        QCOMPARE(communities.front().regionCode, QStringLiteral("02"));
        QCOMPARE(communities.front().members, std::vector<int>{9});
    }

    void capitalsAndLargeTownsAreNeverMembers_data()
    {
        QTest::addColumn<bool>("capital");
        QTest::addColumn<double>("population");
        QTest::addColumn<bool>("member");
        QTest::newRow("40,000 inhabitants") << false << 40000.0 << true;
        QTest::newRow("40,001 inhabitants") << false << 40001.0 << false;
        QTest::newRow("unknown population") << false << 0.0 << true;
        QTest::newRow("small provincial capital") << true << 2000.0 << false;
    }
    void capitalsAndLargeTownsAreNeverMembers()
    {
        QFETCH(bool, capital);
        QFETCH(double, population);
        QFETCH(bool, member);
        // A 1 x 3 strip: the middle municipality is the one tested; without
        // it the two ends are not neighbours and form two communities.
        auto in = grid(QStringLiteral("001"), QStringLiteral("01"), 3, 1, 3);
        for (ClusterInput &m : in)
            m.population = 1500;
        in[1].capital = capital;
        in[1].population = population;
        QCOMPARE(mayJoinCommunity(in[1]), member);
        const auto communities = deriveCommunities(in);
        QCOMPARE(communities.size(), size_t(member ? 1 : 2));
        for (const Community &c : communities)
            QCOMPARE(std::count(c.members.begin(), c.members.end(), 1), long(member));
    }

    void disconnectedMountainAreasAreSeparate()
    {
        // Mountain columns 0 and 2, plain column 1 in between.
        auto in = grid(QStringLiteral("001"), QStringLiteral("01"), 3, 4, 3);
        for (int r = 0; r < 4; ++r)
            in[static_cast<size_t>(4 + r)].mountain = false;
        const auto communities = deriveCommunities(in);
        QCOMPARE(communities.size(), size_t(2));
        QCOMPARE(communities[0].members, (std::vector<int>{0, 1, 2, 3}));
        QCOMPARE(communities[1].members, (std::vector<int>{8, 9, 10, 11}));
    }

    void membershipTableReplacesDerivation()
    {
        auto in = grid(QStringLiteral("001"), QStringLiteral("01"), 2, 2, 0);
        const auto sicily = grid(QStringLiteral("082"), QStringLiteral("19"), 1, 1, 1, 4);
        in.insert(in.end(), sicily.begin(), sicily.end());
        const SourceTable table = parseCsv(QStringLiteral("istat,comunita,nome\n001001,CM1,Alta Valle\n001004,CM1,\n"
                                                          "001002,CM2,Bassa Valle\n999999,CM3,Ignota\n082001,CM4,Sicula\n"));
        QStringList skipped;
        auto result = communitiesFromMembership(table, in, &skipped);
        QVERIFY(result.ok());
        QCOMPARE(result->size(), size_t(2));
        QCOMPARE(result->at(0).progMont, QStringLiteral("CM1"));
        QCOMPARE(result->at(0).name, QStringLiteral("Alta Valle"));
        QCOMPARE(result->at(0).members, (std::vector<int>{0, 3}));
        QCOMPARE(result->at(1).members, std::vector<int>{1});
        QCOMPARE(skipped, (QStringList{QStringLiteral("999999"), QStringLiteral("082001")}));

        const SourceTable headerless = parseCsv(QStringLiteral("001003,X,Y\n"));
        auto one = communitiesFromMembership(headerless, in);
        QVERIFY(one.ok());
        QCOMPARE(one->front().members, std::vector<int>{2});
        QVERIFY(!communitiesFromMembership(parseCsv(QStringLiteral("a,b,c\n")), in).ok());
    }
};

QTEST_APPLESS_MAIN(TestMountainCommunities)
#include "test_mountaincommunities.moc"
