#pragma once
// The region box's entries and the theme names that depend on the region.

#include <QString>
#include <vector>

namespace mervola {

struct RegionEntry {
    QString text;  // as shown in the region box
    QString code;  // "00" for all Italy, else "01".."20"
};

// The 21 entries in box order: "<Tutta l'Italia>" first, then alphabetical.
const std::vector<RegionEntry> &regionEntries();

// Two-digit code of a region number (1 -> "01", 12 -> "12").
QString regionCode(int number);

// Municipality theme of a region code ("00" -> "comuni", else "comu_NN").
QString municipalityTheme(const QString &code);
// Mountain-community theme ("00" -> "commont", "19" -> empty, else "cmont_NN").
QString mountainTheme(const QString &code);

}  // namespace mervola
