#include "atlas/Regions.h"

namespace mervola::atlas {

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

const RegionText *find(const QString &code)
{
    bool ok = false;
    const int n = code.toInt(&ok);
    return ok && n >= 1 && n <= 20 ? &kRegions[n - 1] : nullptr;
}

}  // namespace

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

QStringList regionCodes()
{
    QStringList out;
    for (int i = 1; i <= 20; ++i)
        out << QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0'));
    return out;
}

}  // namespace mervola::atlas
