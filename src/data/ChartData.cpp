#include "data/ChartData.h"
#include "platform/FieldNames.h"

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
    int flatCode;
    int solidCode; // -1: not offered in three dimensions
};

constexpr std::array<ChartType, 5> kTypes{{
    {"Barre", ChartKind::Bars, 1, 0},
    {"Linee", ChartKind::Lines, 3, 2},
    {"Aree", ChartKind::Areas, 5, 4},
    {"Step", ChartKind::Step, 7, 6},
    {"Torta", ChartKind::Pie, 14, -1},
}};

const ChartType *typeAt(int index, bool threeD)
{
    if (index < 0 || index >= int(kTypes.size()))
        return nullptr;
    const ChartType &t = kTypes[size_t(index)];
    if (threeD && t.solidCode < 0)
        return nullptr;
    return &t;
}

bool isDummy(const QString &name)
{
    return isPlaceholderField(name);
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

int chartTypeCode(int index, bool threeD)
{
    const ChartType *t = typeAt(index, threeD);
    if (!t)
        return -1;
    return threeD ? t->solidCode : t->flatCode;
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

Result<ChartSeries> chartSeriesByKeys(const DbfTable &table, const QString &field, const QString &keyField,
                                      const QStringList &keys)
{
    const int key = table.fieldIndex(keyField);
    if (key < 0)
        return Result<ChartSeries>::fail(QStringLiteral("Campo non trovato: %1").arg(keyField));
    QList<int> rows;
    for (const QString &k : keys) {
        for (size_t r = 0; r < table.rowCount(); ++r) {
            if (table.rows[r][size_t(key)].toString().trimmed() == k.trimmed()) {
                rows << int(r);
                break;
            }
        }
    }
    return chartSeries(table, field, rows);
}

QStringList chartableFields(const DbfTable &table)
{
    QStringList out;
    for (const DbfField &f : table.fields)
        if (isNumericField(f) && !isDummy(f.name))
            out << f.name;
    return out;
}

QString chartValueText(double value, const ChartSeries &series, LabelFormat format)
{
    const QLocale l = italianPlain();
    if (format == LabelFormat::Percentages) {
        const double total = series.total();
        const double share = total == 0 ? 0 : value / total * 100.0;
        return l.toString(std::round(share), 'f', 0) + QLatin1Char('%');
    }
    if (series.hasDecimals()) {
        QLocale grouped(QLocale::Italian, QLocale::Italy);
        return grouped.toString(value, 'f', 2);
    }
    return l.toString(std::round(value), 'f', 0);
}

QString chartPointLabel(const ChartPoint &point, const ChartSeries &series, LabelFormat format)
{
    if (!point.value)
        return point.label;
    return point.label + QStringLiteral(": ") + chartValueText(*point.value, series, format);
}

} // namespace mervola
