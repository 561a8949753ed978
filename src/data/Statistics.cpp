#include "data/Statistics.h"
#include "platform/NumberText.h"
#include "platform/FieldNames.h"

#include "platform/dbf/DbfFolder.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace mervola
{

namespace
{

// A value of the aggregate row; null (an empty or all-null column) is 0.
double valueOrZero(const RowSet &rows, const QString &column)
{
    if (rows.empty())
        return 0;
    const QVariant v = rows.value(0, column);
    if (!v.isValid() || v.isNull())
        return 0;
    bool ok = false;
    const double d = v.toDouble(&ok);
    return ok ? d : 0;
}

void report(const std::function<void(int)> &progress, int done)
{
    if (progress)
        progress(done);
}

} // namespace

QStringList statisticsRowNames()
{
    return {QStringLiteral("conteggio"), QStringLiteral("somma"),          QStringLiteral("minimo"),
            QStringLiteral("massimo"),   QStringLiteral("range"),          QStringLiteral("media"),
            QStringLiteral("varianza"),  QStringLiteral("deviazione std.")};
}

bool isNumericField(const DbfField &field)
{
    return field.type == DbfType::Numeric || field.type == DbfType::Float;
}

Status checkStatisticsAllowed(int recordCount, const QList<DbfField> &fields)
{
    if (recordCount < 2)
        return Status::fail(StatText::kTooFewRecords);
    for (const DbfField &f : fields)
        if (isNumericField(f) && !isPlaceholderField(f.name))
            return {};
    return Status::fail(StatText::kNoNumericData);
}

QString statisticsCountSql(const QString &table, const QString &filter)
{
    return QStringLiteral("SELECT Count (*) AS records From ") + table + filter;
}

QString statisticsAggregateSql(const QString &field, const QString &table, const QString &filter)
{
    const QString f = field;
    return QStringLiteral("SELECT ") + QStringLiteral("sum([") + f + QStringLiteral("]) AS somma,") +
           QStringLiteral("min([") + f + QStringLiteral("]) AS minimo,") + QStringLiteral("max([") + f +
           QStringLiteral("]) AS massimo,") + QStringLiteral("avg([") + f + QStringLiteral("]) AS medio,") +
           QStringLiteral("var([") + f + QStringLiteral("]) AS varianza,") + QStringLiteral("stdev([") + f +
           QStringLiteral("]) AS deviazione From ") + table + filter;
}

Result<ColumnStatistics> computeStatistics(DbfFolder &folder, const StatisticsRequest &request,
                                           const std::function<void(int)> &progress)
{
    if (request.field.isEmpty())
        return Result<ColumnStatistics>::fail(StatText::kNoColumn, kStatErrorNoColumn);
    const QString table = request.table + QStringLiteral(".dbf");

    auto counted = folder.query(statisticsCountSql(table, request.filter));
    if (!counted)
        return counted.error();
    ColumnStatistics s;
    s.caption = request.caption;
    s.count = counted->empty() ? 0 : counted->value(0, QStringLiteral("records")).toInt();
    report(progress, 1);

    // The column's type as the table declares it.
    auto shape = folder.table(request.table);
    if (!shape)
        return shape.error();
    const int index = shape->fieldIndex(request.field);
    if (index < 0 || !isNumericField(shape->fields[index]))
        return Result<ColumnStatistics>::fail(StatText::kColumnNotNumeric, kStatErrorNotNumeric);

    s.decimals = shape->fields[index].decimals;
    auto rows = folder.query(statisticsAggregateSql(shape->fields[index].name, table, request.filter));
    if (!rows)
        return rows.error();
    s.sum = valueOrZero(*rows, QStringLiteral("somma"));
    report(progress, 2);
    s.minimum = valueOrZero(*rows, QStringLiteral("minimo"));
    report(progress, 3);
    s.maximum = valueOrZero(*rows, QStringLiteral("massimo"));
    report(progress, 4);
    s.range = s.maximum - s.minimum;
    report(progress, 5);
    s.mean = valueOrZero(*rows, QStringLiteral("medio"));
    report(progress, 6);
    s.variance = valueOrZero(*rows, QStringLiteral("varianza"));
    report(progress, 7);
    s.deviation = valueOrZero(*rows, QStringLiteral("deviazione"));
    report(progress, 8);
    return s;
}

Result<ColumnStatistics> computeStatistics(const StatisticsRequest &request, const std::function<void(int)> &progress)
{
    DbfFolder folder(request.folder);
    return computeStatistics(folder, request, progress);
}

QString statisticsNumberText(double value)
{
    // Fifteen significant digits, as a double is written as text by the
    // database, so that sums do not show binary noise (13627,4867 rather
    // than 13627,486700000003); trailing zeros dropped.
    if (value == 0 || !std::isfinite(value))
        return QStringLiteral("0"); // also no "-0"
    const int intDigits = std::max(1, int(std::floor(std::log10(std::abs(value)))) + 1);
    const int decimals = std::clamp(15 - intDigits, 0, 15);
    QLocale italian(QLocale::Italian, QLocale::Italy);
    italian.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = italian.toString(value, 'f', decimals);
    if (text.contains(QLatin1Char(','))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char(',')))
            text.chop(1);
    }
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

QString statisticsValueText(double value, int decimals)
{
    return decimalText(value, std::clamp(decimals, 0, 15));
}

QString statisticsSpreadText(double value, int decimals)
{
    return decimalText(value, std::clamp(decimals, 2, 15));
}

QStringList statisticsValueTexts(const ColumnStatistics &s)
{
    QStringList out{QString::number(s.count)};
    for (double v : {s.sum, s.minimum, s.maximum, s.range})
        out << statisticsValueText(v, s.decimals);
    for (double v : {s.mean, s.variance, s.deviation})
        out << statisticsSpreadText(v, s.decimals);
    return out;
}

QString statisticsCaption(const QString &tableWindowCaption)
{
    return StatText::kCaption + QStringLiteral(" su ") + tableWindowCaption.toUpper();
}

} // namespace mervola
