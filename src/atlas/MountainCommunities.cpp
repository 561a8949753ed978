#include "atlas/MountainCommunities.h"

#include <QHash>
#include <QMap>
#include <algorithm>
#include <deque>
#include <map>
#include <set>

namespace mervola::atlas {

bool isMountainMunicipality(const QString &comuneMontano, const QString &zonaAltimetrica)
{
    const QString m = comuneMontano.trimmed().toUpper();
    if (!m.isEmpty())
        return m == QLatin1String("T") || m == QLatin1String("P");
    const QString z = zonaAltimetrica.trimmed();
    return z == QLatin1String("1") || z == QLatin1String("2");
}

bool mayJoinCommunity(const ClusterInput &m)
{
    return m.mountain && m.hasShape && !m.capital && m.population <= kMaxMemberPopulation &&
           m.regionCode != QLatin1String(kRegionWithoutCommunities);
}

namespace {

using Cluster = std::vector<int>;

double meanX(const Cluster &c, const std::vector<ClusterInput> &in)
{
    double s = 0;
    for (int i : c)
        s += in[static_cast<size_t>(i)].x;
    return c.empty() ? 0 : s / static_cast<double>(c.size());
}

// Splits one province's eligible municipalities into contiguous clusters of at
// most maxMembers: from the westernmost unassigned municipality, a breadth-first
// walk over the unassigned neighbours takes members until the cluster is full.
std::vector<Cluster> clusterProvince(const std::vector<int> &eligible, const std::vector<ClusterInput> &in,
                                     int maxMembers)
{
    std::set<int> remaining(eligible.begin(), eligible.end());
    std::vector<Cluster> clusters;
    auto westOf = [&](int a, int b) {
        const double xa = in[static_cast<size_t>(a)].x, xb = in[static_cast<size_t>(b)].x;
        return xa != xb ? xa < xb : a < b;
    };
    while (!remaining.empty()) {
        const int seed = *std::min_element(remaining.begin(), remaining.end(), westOf);
        Cluster cluster;
        std::deque<int> queue{seed};
        std::set<int> seen{seed};
        while (!queue.empty() && static_cast<int>(cluster.size()) < maxMembers) {
            const int cur = queue.front();
            queue.pop_front();
            cluster.push_back(cur);
            std::vector<int> next;
            for (int n : in[static_cast<size_t>(cur)].neighbours)
                if (remaining.count(n) && !seen.count(n))
                    next.push_back(n);
            std::sort(next.begin(), next.end(), westOf);
            for (int n : next) {
                seen.insert(n);
                queue.push_back(n);
            }
        }
        for (int m : cluster)
            remaining.erase(m);
        std::sort(cluster.begin(), cluster.end());
        clusters.push_back(std::move(cluster));
    }

    // Small remnants of a split join a neighbouring cluster that has room;
    // the union of two touching contiguous clusters is contiguous.
    std::vector<int> owner(in.size(), -1);
    for (size_t c = 0; c < clusters.size(); ++c)
        for (int m : clusters[c])
            owner[static_cast<size_t>(m)] = static_cast<int>(c);
    for (size_t c = 0; c < clusters.size(); ++c) {
        if (clusters[c].empty() || clusters[c].size() >= 3)
            continue;
        int best = -1;
        for (int m : clusters[c])
            for (int n : in[static_cast<size_t>(m)].neighbours) {
                const int o = owner[static_cast<size_t>(n)];
                if (o < 0 || o == static_cast<int>(c) || clusters[static_cast<size_t>(o)].empty())
                    continue;
                if (static_cast<int>(clusters[static_cast<size_t>(o)].size() + clusters[c].size()) > maxMembers)
                    continue;
                if (best < 0 || clusters[static_cast<size_t>(o)].size() < clusters[static_cast<size_t>(best)].size() ||
                    (clusters[static_cast<size_t>(o)].size() == clusters[static_cast<size_t>(best)].size() && o < best))
                    best = o;
            }
        if (best < 0)
            continue;
        Cluster &target = clusters[static_cast<size_t>(best)];
        for (int m : clusters[c]) {
            target.push_back(m);
            owner[static_cast<size_t>(m)] = best;
        }
        std::sort(target.begin(), target.end());
        clusters[c].clear();
    }
    clusters.erase(std::remove_if(clusters.begin(), clusters.end(), [](const Cluster &c) { return c.empty(); }),
                   clusters.end());
    return clusters;
}

QString sequenceCode(const QString &provinceCode, int sequence)
{
    return provinceCode + QStringLiteral("%1").arg(sequence, 2, 10, QLatin1Char('0'));
}

}  // namespace

std::vector<Community> deriveCommunities(const std::vector<ClusterInput> &in, int maxMembers)
{
    std::map<QString, std::vector<int>> byProvince;
    for (size_t i = 0; i < in.size(); ++i) {
        if (mayJoinCommunity(in[i]))
            byProvince[in[i].provinceCode].push_back(static_cast<int>(i));
    }
    std::vector<Community> out;
    for (const auto &[province, eligible] : byProvince) {
        // Neighbours are only followed inside the province's eligible set.
        std::vector<Cluster> clusters = clusterProvince(eligible, in, std::max(1, maxMembers));
        std::vector<std::pair<double, Cluster>> ordered;
        for (Cluster &c : clusters)
            ordered.emplace_back(meanX(c, in), std::move(c));
        std::sort(ordered.begin(), ordered.end(), [](const auto &a, const auto &b) {
            return a.first != b.first ? a.first < b.first : a.second.front() < b.second.front();
        });
        int seq = 0;
        for (auto &[x, members] : ordered) {
            const ClusterInput &first = in[static_cast<size_t>(members.front())];
            Community c;
            c.progMont = sequenceCode(province, ++seq);
            c.name = QStringLiteral("Comunità montana %1 %2").arg(first.provinceName).arg(seq);
            c.provinceCode = province;
            c.regionCode = first.regionCode;
            c.members = std::move(members);
            out.push_back(std::move(c));
        }
    }
    return out;
}

Result<std::vector<Community>> communitiesFromMembership(const SourceTable &table,
                                                         const std::vector<ClusterInput> &in, QStringList *skipped)
{
    QHash<QString, int> byCode;
    for (size_t i = 0; i < in.size(); ++i)
        byCode.insert(in[i].code, static_cast<int>(i));

    std::vector<QStringList> rows;
    // A header is any first row whose first field is not a municipality code.
    if (!table.header.isEmpty() && byCode.contains(table.header.value(0).trimmed()))
        rows.push_back(table.header);
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());

    QMap<QString, Community> communities;
    for (const QStringList &row : rows) {
        const QString code = row.value(0).trimmed();
        const QString prog = row.value(1).trimmed();
        if (code.isEmpty() && prog.isEmpty())
            continue;
        if (prog.isEmpty())
            return Result<std::vector<Community>>::fail(
                QStringLiteral("Tabella delle appartenenze: codice della comunità mancante per il comune %1.").arg(code));
        const auto it = byCode.constFind(code);
        if (it == byCode.constEnd() || in[static_cast<size_t>(*it)].regionCode == QLatin1String(kRegionWithoutCommunities)) {
            if (skipped)
                *skipped << code;
            continue;
        }
        Community &c = communities[prog];
        c.progMont = prog;
        if (c.name.isEmpty())
            c.name = row.value(2).trimmed();
        c.members.push_back(*it);
    }
    std::vector<Community> out;
    for (Community &c : communities) {
        std::sort(c.members.begin(), c.members.end());
        c.members.erase(std::unique(c.members.begin(), c.members.end()), c.members.end());
        const ClusterInput &first = in[static_cast<size_t>(c.members.front())];
        c.provinceCode = first.provinceCode;
        c.regionCode = first.regionCode;
        if (c.name.isEmpty())
            c.name = QStringLiteral("Comunità montana %1").arg(c.progMont);
        out.push_back(std::move(c));
    }
    if (out.empty())
        return Result<std::vector<Community>>::fail(
            QStringLiteral("La tabella delle appartenenze non contiene comunità montane."));
    return out;
}

}  // namespace mervola::atlas
