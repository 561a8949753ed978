#pragma once
// Charts of one numeric indicator over the rows selected in the attribute
// window: the chart types and their codes, the refusals, and the series
// (one point per selected row, labelled by the element's Label).

#include "platform/Result.h"
#include "platform/dbf/DbfTable.h"

#include <QStringList>
#include <optional>

namespace mervola
{

namespace ChartText
{
inline const QString kCaption = QStringLiteral("Mervola - Grafici");
inline const QString kThreeD = QStringLiteral("Grafico tridimensionale");
inline const QString kTwoD = QStringLiteral("Grafico bidimensionale");
inline const QString kShowChart = QStringLiteral("&Mostra grafico");
inline const QString kSelectedCount = QStringLiteral("Numero di elementi selezionati");
inline const QString kHelpSelect = QStringLiteral("Selezionare gli elementi dalla griglia");
inline const QString kHelpCtrl = QStringLiteral("Tenere premuto il tasto CTRL per selezionare più righe");
inline const QString kHelpAtMost =
    QStringLiteral("Scegliere al massimo 10 elementi dalla griglia e un'indicatore per ottenere un grafico.");
inline const QString kHelpIndicator =
    QStringLiteral("Selezionare un'indicatore in base al quale si desidera avere il grafico");
inline const QString kNoIndicator = QStringLiteral("Nessun indicatore selezionato.");
inline const QString kTooManyRows = QStringLiteral("Attenzione: selezionare massimo 10 elementi");
inline const QString kNoRows = QStringLiteral("Nessun elemento selezionato.");
inline const QString kPieTooMany = QStringLiteral("E' possibile visualizzare al massimo 5 valori contemporaneamente");
inline const QString kNoPrinter =
    QStringLiteral("Non è installata alcuna stampante. Impossibile visualizzare il preview di stampa");
inline const QString kNo3d = QStringLiteral(
    "La grafica tridimensionale non è disponibile su questo sistema.\nIl grafico viene mostrato in due dimensioni.");
inline const QString kValues = QStringLiteral("Valori");
inline const QString kPercentages = QStringLiteral("Percentuali");
inline const QString kPreview = QStringLiteral("&Anteprima di stampa");
inline const QString kClose = QStringLiteral("&Chiudi");
} // namespace ChartText

inline constexpr int kChartMaxRows = 10;
inline constexpr int kPieMaxRows = 5;

enum class ChartKind { Bars, Lines, Areas, Step, Pie };

// The cboTipo entries: all five in two dimensions, the first four in three.
QStringList chartTypeNames(bool threeD);
// The chart kind of a list index; none beyond the list.
std::optional<ChartKind> chartKindAt(int index, bool threeD);

// The refusals before a chart is drawn, in this order: no indicator, more
// than 10 rows, no row.
Status checkChartRequest(bool indicatorChosen, int selectedCount);
// A pie shows at most 5 values.
Status checkChartKind(ChartKind kind, int selectedCount);

struct ChartPoint {
    QString label;               // the record's Label
    std::optional<double> value; // empty for a null value
    QString valueText;           // the value as the table shows it ("" for null)
};

struct ChartSeries {
    QString field;   // the indicator's field name
    QString caption; // its description (the column caption), or the field name
    QList<ChartPoint> points;

    // True when some value text has a decimal comma: labels then show decimals.
    bool hasDecimals() const;
    double total() const; // sum of the non-null values
};

// One point per row index of `table`, in the given order. Fails when the
// field is missing or not numeric.
Result<ChartSeries> chartSeries(const DbfTable &table, const QString &field, const QList<int> &rows);

enum class LabelFormat { Values, Percentages };

// A value as its data-point label shows it: "0%" of the series total for
// percentages; for values, when the series has decimals, the format "#,##"
// (thousands grouped with ".", no decimals: "12.346"), otherwise "#" (the
// plain whole number: "12346").
QString chartValueText(double value, const ChartSeries &series, LabelFormat format);
// "Label: value"; the label alone for a null value.
QString chartPointLabel(const ChartPoint &point, const ChartSeries &series, LabelFormat format);

} // namespace mervola
