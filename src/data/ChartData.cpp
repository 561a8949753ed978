#include "data/ChartData.h"

#include "data/Statistics.h"

#include <QLocale>
#include <array>
#include <cmath>

namespace mervola
{

namespace
{

struct ChartType {
    const char *text;
    ChartKind kind;
    bool solid; // offered in three dimensions
};

constexpr std::array<ChartType, 5> kTypes{{
    {"Barre", ChartKind::Bars, true},
    {"Linee", ChartKind::Lines, true},
    {"Aree", ChartKind::Areas, true},
    {"Step", ChartKind::Step, true},
    {"Torta", ChartKind::Pie, false},
}};

const ChartType *typeAt(int index, bool threeD)
{
    if (index < 0 || index >= int(kTypes.size()))
        return nullptr;
    const ChartType &t = kTypes[size_t(index)];
    if (threeD && !t.solid)
        return nullptr;
    return &t;
}

QLocale italianPlain()
{
    QLocale l(QLocale::Italian, QLocale::Italy);
    l.setNumberOptions(QLocale::OmitGroupSeparator);
    return l;
}

} // namespace

QStringList chartTypeNames(bool threeD)
{
    QStringList out;
    for (int i = 0; i < int(kTypes.size()); ++i)
        if (typeAt(i, threeD))
            out << QString::fromUtf8(kTypes[size_t(i)].text);
    return out;
}

std::optional<ChartKind> chartKindAt(int index, bool threeD)
{
    if (const ChartType *t = typeAt(index, threeD))
        return t->kind;
    return std::nullopt;
}

Status checkChartRequest(bool indicatorChosen, int selectedCount)
{
    if (!indicatorChosen)
        return Status::fail(ChartText::kNoIndicator);
    if (selectedCount > kChartMaxRows)
        return Status::fail(ChartText::kTooManyRows);
    if (selectedCount < 1)
        return Status::fail(ChartText::kNoRows);
    return {};
}

Status checkChartKind(ChartKind kind, int selectedCount)
{
    if (kind == ChartKind::Pie && selectedCount > kPieMaxRows)
        return Status::fail(ChartText::kPieTooMany);
    return {};
}

bool ChartSeries::hasDecimals() const
{
    for (const ChartPoint &p : points)
        if (p.valueText.contains(QLatin1Char(',')))
            return true;
    return false;
}

double ChartSeries::total() const
{
    double sum = 0;
    for (const ChartPoint &p : points)
        if (p.value)
            sum += *p.value;
    return sum;
}

Result<ChartSeries> chartSeries(const DbfTable &table, const QString &field, const QList<int> &rows)
{
    const int column = table.fieldIndex(field);
    if (column < 0 || !isNumericField(table.fields[column]))
        return Result<ChartSeries>::fail(StatText::kColumnNotNumeric);
    const int label = table.fieldIndex(QStringLiteral("Label"));
    ChartSeries s;
    s.field = table.fields[column].name;
    s.caption = s.field;
    for (int r : rows) {
        if (r < 0 || size_t(r) >= table.rowCount())
            continue;
        const auto &row = table.rows[size_t(r)];
        ChartPoint p;
        if (label >= 0)
            p.label = row[size_t(label)].toString().trimmed();
        const QVariant &v = row[size_t(column)];
        bool ok = false;
        const double d = v.toDouble(&ok);
        if (v.isValid() && !v.isNull() && ok) {
            p.value = d;
            p.valueText = statisticsNumberText(d);
        }
        s.points << p;
    }
    return s;
}

QString chartValueText(double value, const ChartSeries &series, LabelFormat format)
{
    const QLocale l = italianPlain();
    if (format == LabelFormat::Percentages) {
        const double total = series.total();
        const double share = total == 0 ? 0 : value / total * 100.0;
        return l.toString(std::round(share), 'f', 0) + QLatin1Char('%');
    }
    // "#,##": thousands grouped, no decimals; "#": the plain whole number.
    if (series.hasDecimals())
        return QLocale(QLocale::Italian, QLocale::Italy).toString(std::round(value), 'f', 0);
    return l.toString(std::round(value), 'f', 0);
}

QString chartPointLabel(const ChartPoint &point, const ChartSeries &series, LabelFormat format)
{
    if (!point.value)
        return point.label;
    return point.label + QStringLiteral(": ") + chartValueText(*point.value, series, format);
}

} // namespace mervola
