#pragma once
// The twenty regions in one place: the text of the region box (also the
// Label of the regioni table), the name used in theme aliases, and the
// theme names that depend on a region's two-digit code.

#include <QString>
#include <QStringList>
#include <vector>

namespace mervola {

struct RegionEntry {
    QString text;  // as shown in the region box
    QString code;  // "00" for all Italy, else "01".."20"
};

// The 21 entries in box order: "<Tutta l'Italia>" first, then the regions in
// alphabetical order.
const std::vector<RegionEntry> &regionEntries();

// "01" ... "20".
QStringList regionCodes();
// Two-digit code of a region number (1 -> "01", 12 -> "12").
QString regionCode(int number);
// "VALLE D'AOSTA" for "02"; empty for an unknown code.
QString regionLabel(const QString &code);
// "Valle d'Aosta" for "02"; the code itself for an unknown one.
QString regionName(const QString &code);

// Municipality theme of a region code ("00" -> "comuni", else "comu_NN").
QString municipalityTheme(const QString &code);
// Mountain-community theme ("00" -> "commont", "19" -> empty, else "cmont_NN").
QString mountainTheme(const QString &code);

}  // namespace mervola
