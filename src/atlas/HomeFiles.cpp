#include "atlas/HomeFiles.h"

#include "atlas/MountainCommunities.h"
#include "platform/Profile.h"
#include "project/PristineSettings.h"

#include <cmath>

namespace mervola::atlas {

namespace {

const QString kCommunitySymbol = QStringLiteral("2^0^0^56320^33554432^");
const QString kMunicipalitySymbol = QStringLiteral("2^0^0^16776960^33554432^");

// Whole metres, outward, written without locale.
QString coordinate(double v, bool lower)
{
    return QString::number(static_cast<qint64>(lower ? std::floor(v) : std::ceil(v)));
}

}  // namespace

QStringList settingsLines(const ThemeSettings &s, const QString &workspace)
{
    return {QLatin1Char('[') + s.section + QLatin1Char(']'),
            QStringLiteral("JOIN=-1^-1^-1^-1^-1^-1^"),
            QStringLiteral("STRUCTJOIN=*^"),
            QStringLiteral("WORKSPACE=") + workspace,
            QStringLiteral("BASE=%1.shp^%1^").arg(s.theme),
            QStringLiteral("SIMBOLO=") + s.simbolo,
            QStringLiteral("LABEL=*"),
            QStringLiteral("TIPOCLASSIFICAZIONE=0"),
            QStringLiteral("CAMPO=") + s.campo,
            QStringLiteral("CLASSIFICAZIONE=0"),
            QStringLiteral("OUTLINE=1"),
            QStringLiteral("VISIBILE=") + (s.visible ? QLatin1Char('1') : QLatin1Char('0'))};
}

std::vector<ThemeSettings> defaultProjectThemes()
{
    // Bottom to top: regions as a light grey ground, municipalities, the
    // mountain communities over them, province outlines (transparent fill,
    // style 1) and the capitals as red points.
    return {
        {QStringLiteral("regioni"), QStringLiteral("regioni"), QStringLiteral("2^0^0^14474460^8421504^"),
         QStringLiteral("0^0^0^0^"), true},
        {QStringLiteral("comuni"), QStringLiteral("comuni"), kMunicipalitySymbol, QStringLiteral("0^0^0^0^"), true},
        {QStringLiteral("commont"), QStringLiteral("commont"), kCommunitySymbol, QStringLiteral("I010^0^0^0^"), true},
        {QStringLiteral("province"), QStringLiteral("province"), QStringLiteral("2^0^1^0^8421504^"),
         QStringLiteral("0^0^0^0^"), false},
        {QStringLiteral("citta"), QStringLiteral("citta"), QStringLiteral("0^6^0^255^0^"), QStringLiteral("0^0^0^0^"),
         false},
    };
}

QStringList defaultProjectLines(const Extent &e, const QString &workspace)
{
    QStringList lines = {QStringLiteral("[RLX]"), QStringLiteral("DBFCOMMONT=^"),
                         QStringLiteral("EXTENT=%1^%2^%3^%4^")
                             .arg(coordinate(e.xmin, true), coordinate(e.ymin, true), coordinate(e.xmax, false),
                                  coordinate(e.ymax, false))};
    for (const ThemeSettings &t : defaultProjectThemes())
        lines << settingsLines(t, workspace);
    return lines;
}

QStringList reportStyleLines()
{
    return {
        QStringLiteral("[Style Title]"),
        QStringLiteral("Font = Arial"),
        QStringLiteral("Size = 14"),
        QStringLiteral("Bold = True"),
        QStringLiteral("[Style Header]"),
        QStringLiteral("Font = Arial"),
        QStringLiteral("Size = 9"),
        QStringLiteral("Bold = True"),
        QStringLiteral("BackColor = 14474460"),
        QStringLiteral("[Style Detail]"),
        QStringLiteral("Font = Arial"),
        QStringLiteral("Size = 9"),
        QStringLiteral("Bold = False"),
        QStringLiteral("[Style Footer]"),
        QStringLiteral("Font = Arial"),
        QStringLiteral("Size = 8"),
        QStringLiteral("Italic = True"),
    };
}

Status writeHomeFiles(const QString &root, const QString &finalRoot, const Extent &extent,
                      const QStringList &regionCodes)
{
    const QString workspace = finalRoot + QStringLiteral("/italia/");
    auto writeTheme = [&root](const QString &theme, const QStringList &lines) -> Status {
        for (const char *folder : {"/originali/", "/supporto/"})
            if (auto s = writeLinesReplacing(root + QLatin1String(folder) + theme + QStringLiteral(".ini"), lines); !s)
                return s;
        return {};
    };
    for (const ThemeSettings &t : defaultProjectThemes())
        if (auto s = writeTheme(t.theme, settingsLines(t, workspace)); !s)
            return s;
    // The per-region themes get the same default files start-up writes.
    for (const QString &nn : regionCodes)
        for (bool mountain : {true, false}) {
            if (mountain && nn == QLatin1String(kRegionWithoutCommunities))
                continue;
            const QString theme = (mountain ? QStringLiteral("cmont_") : QStringLiteral("comu_")) + nn;
            if (auto s = writeTheme(theme, pristineThemeLines(finalRoot, nn.toInt(), mountain)); !s)
                return s;
        }
    if (auto s = writeLinesReplacing(root + QStringLiteral("/supporto/default.rlx"),
                                     defaultProjectLines(extent, workspace));
        !s)
        return s;
    return writeLinesReplacing(root + QStringLiteral("/supporto/stili.ini"), reportStyleLines());
}

}  // namespace mervola::atlas
