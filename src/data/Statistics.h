#pragma once
// Descriptive statistics of one numeric column of an attribute table, over
// the records the attribute window shows (its table and its current filter).
// Computed by the dBase folder's SQL engine, whose Var and StDev are the
// sample forms (divisor n - 1).

#include "platform/Result.h"
#include "platform/dbf/DbfTable.h"

#include <QStringList>
#include <functional>

namespace mervola
{

class DbfFolder;

namespace StatText
{
inline const QString kCaption = QStringLiteral("Statistiche");
inline const QString kWaitCaption = QStringLiteral("Calcolo statistiche...");
inline const QString kClose = QStringLiteral("&Chiudi");
inline const QString kTooFewRecords = QStringLiteral("Numero di elementi insufficienti.");
inline const QString kNoNumericData =
    QStringLiteral("Impossibile eseguire statistiche.\n"
                   "La corrente collezione di dati non presenta informazioni di tipo numerico.");
inline const QString kColumnNotNumeric = QStringLiteral("Impossibile calcolare le statistiche.\n"
                                                        "La colonna selezionata non contiene numeri.");
inline const QString kNoColumn = QStringLiteral("Nessuna colonna selezionata.");
inline const QString kColumn = QStringLiteral("Colonna: ");
} // namespace StatText

// Error code of a result refused because the column holds no numbers (shown
// with the exclamation icon; other failures are database errors, whose
// codes are the engine's, never negative).
inline constexpr int kStatErrorNotNumeric = -1;
inline constexpr int kStatErrorNoColumn = -2;

// What the attribute window hands over.
struct StatisticsRequest {
    QString folder;  // folder of the theme's .dbf
    QString table;   // theme file name without extension ("commont", "comu_05")
    QString filter;  // text appended after the table name (" where ..."), empty when none
    QString field;   // DataField of the current column
    QString caption; // header caption of the current column
};

// One analysed column, in the order the grid shows it. A statistic the
// database returns as null is 0.
struct ColumnStatistics {
    QString caption;
    int decimals = 0; // the column's declared decimals
    int count = 0;
    double sum = 0;
    double minimum = 0;
    double maximum = 0;
    double range = 0;
    double mean = 0;
    double variance = 0;
    double deviation = 0;
};

// Row names of the grid, in order.
QStringList statisticsRowNames();

// Only numeric dBase fields (N and F) are analysed; text, logical and date are not.
bool isNumericField(const DbfField &field);

// Refusals of the attribute window's "statistiche" command: fewer than two
// records, or no numeric column among `fields`.
Status checkStatisticsAllowed(int recordCount, const QList<DbfField> &fields);

// "SELECT Count (*) AS records From " + table + filter
QString statisticsCountSql(const QString &table, const QString &filter);
// The six aggregates of field F in one statement.
QString statisticsAggregateSql(const QString &field, const QString &table, const QString &filter);

// Counts and aggregates. `progress` is called after each statistic with the
// number done so far (1 .. kStatisticsSteps).
inline constexpr int kStatisticsSteps = 8;
Result<ColumnStatistics> computeStatistics(DbfFolder &folder, const StatisticsRequest &request,
                                           const std::function<void(int)> &progress = {});
Result<ColumnStatistics> computeStatistics(const StatisticsRequest &request,
                                           const std::function<void(int)> &progress = {});

// The values as the grid shows them, in the order of statisticsRowNames().
QStringList statisticsValueTexts(const ColumnStatistics &stats);
// A number as the grid writes it: Italian decimal comma, no grouping,
// at most fifteen significant digits.
QString statisticsNumberText(double value);
// Sum, minimum, maximum and range keep the column's decimals; mean,
// variance and deviation two more than a whole-number column has, at
// least two and at most the column's, so "87,1456" rather than
// "87,1456256625".
QString statisticsValueText(double value, int decimals);
QString statisticsSpreadText(double value, int decimals);

// Window caption: "Statistiche su " + the attribute window's caption in upper case.
QString statisticsCaption(const QString &tableWindowCaption);

} // namespace mervola
