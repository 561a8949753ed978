#include "project/Regions.h"

#include <algorithm>

namespace mervola {

namespace {

struct RegionText {
    const char *label;
    const char *name;
};

// Indexed by region code - 1.
const RegionText kRegions[] = {
    {"PIEMONTE", "Piemonte"},
    {"VALLE D'AOSTA", "Valle d'Aosta"},
    {"LOMBARDIA", "Lombardia"},
    {"TRENTINO ALTO ADIGE", "Trentino-Alto Adige"},
    {"VENETO", "Veneto"},
    {"FRIULI VENEZIA GIULIA", "Friuli-Venezia Giulia"},
    {"LIGURIA", "Liguria"},
    {"EMILIA ROMAGNA", "Emilia-Romagna"},
    {"TOSCANA", "Toscana"},
    {"UMBRIA", "Umbria"},
    {"MARCHE", "Marche"},
    {"LAZIO", "Lazio"},
    {"ABRUZZO", "Abruzzo"},
    {"MOLISE", "Molise"},
    {"CAMPANIA", "Campania"},
    {"PUGLIA", "Puglia"},
    {"BASILICATA", "Basilicata"},
    {"CALABRIA", "Calabria"},
    {"SICILIA", "Sicilia"},
    {"SARDEGNA", "Sardegna"},
};
constexpr int kRegionCount = int(std::size(kRegions));

const RegionText *find(const QString &code)
{
    bool ok = false;
    const int n = code.toInt(&ok);
    return ok && n >= 1 && n <= kRegionCount ? &kRegions[n - 1] : nullptr;
}

}  // namespace

const std::vector<RegionEntry> &regionEntries()
{
    static const std::vector<RegionEntry> entries = [] {
        std::vector<RegionEntry> regions;
        for (int n = 1; n <= kRegionCount; ++n)
            regions.push_back({QString::fromUtf8(kRegions[n - 1].label), regionCode(n)});
        std::sort(regions.begin(), regions.end(), [](const RegionEntry &a, const RegionEntry &b) { return a.text < b.text; });
        regions.insert(regions.begin(), {QStringLiteral("<Tutta l'Italia>"), QStringLiteral("00")});
        return regions;
    }();
    return entries;
}

QStringList regionCodes()
{
    QStringList out;
    for (int n = 1; n <= kRegionCount; ++n)
        out << regionCode(n);
    return out;
}

QString regionCode(int number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); }

QString regionLabel(const QString &code)
{
    const RegionText *r = find(code);
    return r ? QString::fromUtf8(r->label) : QString();
}

QString regionName(const QString &code)
{
    const RegionText *r = find(code);
    return r ? QString::fromUtf8(r->name) : code;
}

QString municipalityTheme(const QString &code)
{
    return code == QLatin1String("00") ? QStringLiteral("comuni") : QStringLiteral("comu_") + code;
}

QString mountainTheme(const QString &code)
{
    if (code == QLatin1String("00"))
        return QStringLiteral("commont");
    if (code == QLatin1String("19"))
        return {};
    return QStringLiteral("cmont_") + code;
}

}  // namespace mervola
