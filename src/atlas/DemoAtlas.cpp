#include "atlas/DemoAtlas.h"

#include "project/Regions.h"

namespace mervola::atlas {

namespace {

struct DemoProvince {
    const char *code;
    const char *name;
    const char *acronym;
    const char *region;
    double lon, lat;  // south-west corner
    int cols, rows;
    int mountainCols;  // the western columns are mountain municipalities
};

// Grid cells of 0.1 degrees; Piemonte holds two provinces side by side.
const DemoProvince kProvinces[] = {
    {"001", "Torino", "TO", "01", 7.0, 44.6, 7, 6, 5},
    {"004", "Cuneo", "CN", "01", 7.7, 44.6, 4, 6, 2},
    {"007", "Aosta", "AO", "02", 7.0, 45.2, 4, 3, 4},
    {"082", "Palermo", "PA", "19", 13.0, 37.6, 4, 4, 2},
};

Ring rectangle(double x0, double y0, double x1, double y1)
{
    return {{x0, y0}, {x0, y1}, {x1, y1}, {x1, y0}, {x0, y0}};
}

QHash<QString, QString> attributes(const DemoProvince &p, const QString &code, const QString &name, int col, int row,
                                   bool mountain)
{
    const int n = col * 7 + row * 3;
    const int pop2011 = 800 + 137 * ((n * 5) % 23);
    const int males = pop2011 / 2 - 40 + (n % 7) * 9;
    const int females = pop2011 / 2 + 20 - (n % 5) * 11;
    const QString region = QLatin1String(p.region);
    QHash<QString, QString> a = {
        {QStringLiteral("istat_code"), code},
        {QStringLiteral("nome"), name},
        {QStringLiteral("codice_catastale"), QStringLiteral("Z%1").arg(code.right(3))},
        {QStringLiteral("cod_regione"), region},
        {QStringLiteral("regione"), regionName(region)},
        {QStringLiteral("cod_ripartizione"), region == QLatin1String("19") ? QStringLiteral("5") : QStringLiteral("1")},
        {QStringLiteral("cod_provincia"), QLatin1String(p.code)},
        {QStringLiteral("provincia"), QLatin1String(p.name)},
        {QStringLiteral("sigla_provincia"), QLatin1String(p.acronym)},
        {QStringLiteral("superficie_kmq_2020"), QString::number(20.5 + (n % 11) * 3.25, 'f', 4)},
        {QStringLiteral("pop_legale_2001"), QString::number(pop2011 + 50 - (n % 9) * 10)},
        {QStringLiteral("pop_legale_2011"), QString::number(pop2011)},
        {QStringLiteral("pop_residente_2019_12_31"), QString::number(pop2011 - 20)},
        {QStringLiteral("pop_residente_2022"), QString::number(males + females)},
        {QStringLiteral("pop_maschi_2022"), QString::number(males)},
        {QStringLiteral("pop_femmine_2022"), QString::number(females)},
        {QStringLiteral("zona_altimetrica"), mountain ? QStringLiteral("1") : QString::number(3 + n % 3)},
        {QStringLiteral("altitudine_centro_m"), QString::number(mountain ? 900 + 40 * row : 150 + 10 * col)},
        {QStringLiteral("comune_litoraneo"), region == QLatin1String("19") && row == 3 ? QStringLiteral("1") : QStringLiteral("0")},
        {QStringLiteral("comune_isolano"), QStringLiteral("0")},
        {QStringLiteral("zone_costiere"), region == QLatin1String("19") && row >= 2 ? QStringLiteral("1") : QStringLiteral("0")},
        {QStringLiteral("grado_urbanizzazione"), QString::number(mountain ? 3 : 2)},
        {QStringLiteral("comune_montano"), mountain ? (row == 0 ? QStringLiteral("P") : QStringLiteral("T")) : QStringLiteral("NM")},
    };
    return a;
}

}  // namespace

AtlasSources demoSources()
{
    AtlasSources s;
    for (const DemoProvince &p : kProvinces) {
        const int first = static_cast<int>(s.comuni.size());
        int serial = 0;
        for (int col = 0; col < p.cols; ++col)
            for (int row = 0; row < p.rows; ++row) {
                SourceMunicipality m;
                m.code = QLatin1String(p.code) + QStringLiteral("%1").arg(++serial, 3, 10, QLatin1Char('0'));
                m.name = serial == 2 ? QStringLiteral("Sant'Agata %1").arg(p.name)
                                     : QStringLiteral("%1 %2").arg(QLatin1String(p.name)).arg(serial);
                m.provinceCode = QLatin1String(p.code);
                m.provinceName = QLatin1String(p.name);
                m.regionCode = QLatin1String(p.region);
                m.attributes = attributes(p, m.code, m.name, col, row, col < p.mountainCols);
                const double x = p.lon + 0.1 * col, y = p.lat + 0.1 * row;
                m.shape = {{rectangle(x, y, x + 0.1, y + 0.1)}};
                const int self = first + col * p.rows + row;
                if (row > 0)
                    m.neighbours.push_back(self - 1);
                if (row + 1 < p.rows)
                    m.neighbours.push_back(self + 1);
                if (col > 0)
                    m.neighbours.push_back(self - p.rows);
                if (col + 1 < p.cols)
                    m.neighbours.push_back(self + p.rows);
                std::sort(m.neighbours.begin(), m.neighbours.end());
                s.comuni.push_back(std::move(m));
            }
        s.comuni[static_cast<size_t>(first)].attributes[QStringLiteral("pop_legale_2001")].clear();
        s.capitalCodes << s.comuni[static_cast<size_t>(first + p.rows + 1)].code;
        s.province.push_back({QLatin1String(p.code), QLatin1String(p.name), QLatin1String(p.region),
                              QLatin1String(p.acronym),
                              {{rectangle(p.lon, p.lat, p.lon + 0.1 * p.cols, p.lat + 0.1 * p.rows)}}});
    }
    const auto &pr = s.province;
    s.regioni.push_back({QStringLiteral("01"), regionName(QStringLiteral("01")), {}, {},
                         {{rectangle(7.0, 44.6, 8.1, 45.2)}}});
    s.regioni.push_back({QStringLiteral("02"), regionName(QStringLiteral("02")), {}, {}, pr[2].shape});
    s.regioni.push_back({QStringLiteral("19"), regionName(QStringLiteral("19")), {}, {}, pr[3].shape});
    return s;
}

}  // namespace mervola::atlas
