#pragma once
// Text files of a new atlas home: the theme settings files (pristine in
// originali/, working copies in supporto/), the default project
// supporto/default.rlx, the report styles supporto/stili.ini.

#include "atlas/Geometry.h"
#include "platform/Result.h"

#include <QStringList>

namespace mervola::atlas {

struct ThemeSettings {
    QString section;  // as written between the brackets
    QString theme;    // file and layer name
    QString simbolo;  // "2^0^0^56320^33554432^"
    QString campo = QStringLiteral("0^0^0^0^");
    bool visible = false;
};

// The lines of a settings file, keys in their fixed order.
QStringList settingsLines(const ThemeSettings &s, const QString &workspace);

// Settings of the all-Italy themes of the default project, bottom layer first.
std::vector<ThemeSettings> defaultProjectThemes();

// "[RLX]", "DBFCOMMONT=^", "EXTENT=xmin^ymin^xmax^ymax^", then every theme's lines.
QStringList defaultProjectLines(const Extent &extent, const QString &workspace);

QStringList reportStyleLines();

// Writes the settings files into originali/ and supporto/ (the per-region
// cmont_NN and comu_NN ones as pristineThemeLines), default.rlx and stili.ini
// under `root`; paths inside the files use `finalRoot`.
Status writeHomeFiles(const QString &root, const QString &finalRoot, const Extent &extent,
                      const QStringList &regionCodes);

}  // namespace mervola::atlas
