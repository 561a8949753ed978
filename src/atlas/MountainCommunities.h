#pragma once
// Mountain communities. The sources hold no list of members, so they are
// derived: per province (Sicily has none), the municipalities classified
// totally or partially mountain are grouped into contiguous clusters of at
// most 25 members, numbered west to east. As the law on mountain communities
// (law 265/1999 art. 7, then art. 27 of the 2000 consolidated local-government
// act) wants, provincial capitals and municipalities of more than 40,000
// inhabitants are never members. A membership table, when given, replaces
// the derivation.

#include "atlas/SourceTable.h"
#include "platform/Result.h"

#include <QString>
#include <vector>

namespace mervola::atlas {

// What the clustering needs of one municipality.
struct ClusterInput {
    QString code;          // ISTAT code; inputs are expected sorted by code
    QString provinceCode;
    QString provinceName;
    QString regionCode;
    bool mountain = false;  // isMountainMunicipality()
    bool capital = false;   // provincial capital: never a member
    double population = 0;  // resident population; 0 when unknown
    bool hasShape = true;   // municipalities without geometry are left out
    double x = 0;           // centroid, projected metres
    std::vector<int> neighbours;  // indexes of municipalities sharing a boundary
};

struct Community {
    QString progMont;  // text code: province code + sequence number
    QString name;
    QString provinceCode;
    QString regionCode;
    std::vector<int> members;  // indexes into the input, ascending
};

constexpr int kMaxCommunityMembers = 25;
// Municipalities with more inhabitants than this are never members.
constexpr double kMaxMemberPopulation = 40000;
// The region without mountain communities.
inline const char *kRegionWithoutCommunities = "19";

// ISTAT mountain classification T or P; when it is missing, altimetric zone 1 or 2.
bool isMountainMunicipality(const QString &comuneMontano, const QString &zonaAltimetrica);

// Whether a municipality may belong to a derived community: mountain, with a
// geometry, outside Sicily, not a provincial capital, at most 40,000 inhabitants.
bool mayJoinCommunity(const ClusterInput &municipality);

// Deterministic clustering; communities ordered by province code, then west to east.
std::vector<Community> deriveCommunities(const std::vector<ClusterInput> &municipalities,
                                         int maxMembers = kMaxCommunityMembers);

// Communities from a membership table (ISTAT code, community code, name; a
// header row is recognised and skipped). Unknown codes and members in the
// region without communities are reported in `skipped`.
Result<std::vector<Community>> communitiesFromMembership(const SourceTable &table,
                                                         const std::vector<ClusterInput> &municipalities,
                                                         QStringList *skipped = nullptr);

}  // namespace mervola::atlas
