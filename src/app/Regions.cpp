#include "app/Regions.h"

namespace mervola {

const std::vector<RegionEntry> &regionEntries()
{
    static const std::vector<RegionEntry> entries = {
        {QStringLiteral("<Tutta l'Italia>"), QStringLiteral("00")},
        {QStringLiteral("ABRUZZO"), QStringLiteral("13")},
        {QStringLiteral("BASILICATA"), QStringLiteral("17")},
        {QStringLiteral("CALABRIA"), QStringLiteral("18")},
        {QStringLiteral("CAMPANIA"), QStringLiteral("15")},
        {QStringLiteral("EMILIA ROMAGNA"), QStringLiteral("08")},
        {QStringLiteral("FRIULI VENEZIA GIULIA"), QStringLiteral("06")},
        {QStringLiteral("LAZIO"), QStringLiteral("12")},
        {QStringLiteral("LIGURIA"), QStringLiteral("07")},
        {QStringLiteral("LOMBARDIA"), QStringLiteral("03")},
        {QStringLiteral("MARCHE"), QStringLiteral("11")},
        {QStringLiteral("MOLISE"), QStringLiteral("14")},
        {QStringLiteral("PIEMONTE"), QStringLiteral("01")},
        {QStringLiteral("PUGLIA"), QStringLiteral("16")},
        {QStringLiteral("SARDEGNA"), QStringLiteral("20")},
        {QStringLiteral("SICILIA"), QStringLiteral("19")},
        {QStringLiteral("TOSCANA"), QStringLiteral("09")},
        {QStringLiteral("TRENTINO ALTO ADIGE"), QStringLiteral("04")},
        {QStringLiteral("UMBRIA"), QStringLiteral("10")},
        {QStringLiteral("VALLE D'AOSTA"), QStringLiteral("02")},
        {QStringLiteral("VENETO"), QStringLiteral("05")},
    };
    return entries;
}

QString regionCode(int number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); }

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
