#pragma once
// frmChart ("Mervola - Grafici"): the chart of one indicator over the rows
// selected in the attribute window, with the label format switch (Option1:
// values or percentages) and the print preview (cmd_preview).
//
// The attribute window checks the indicator and the number of selected rows,
// then asks its host, which answers with openChartFor().

#include "data/ChartData.h"

#include <QDialog>

class QChartView;
class QRadioButton;
class QVBoxLayout;

namespace mervola
{

struct DbfWindowState;

class FrmGrafico : public QDialog
{
    Q_OBJECT
public:
    FrmGrafico(ChartSeries series, ChartKind kind, bool threeD, QWidget *parent = nullptr);

    ChartKind kind() const { return m_kind; }
    const ChartSeries &series() const { return m_series; }
    bool isThreeD() const { return m_threeD; }
    LabelFormat labelFormat() const { return m_format; }
    void setLabelFormat(LabelFormat format);
    // The flat chart view (nullptr when the chart is solid).
    QChartView *chartView() const { return m_view; }

    // Print preview of the chart; refused without a printer.
    void preview();
    // Draws the chart again over the rows selected in an attribute window.
    void setSeriesFor(const DbfWindowState &state, const QString &field);

private:
    void rebuild();

    ChartSeries m_series;
    ChartKind m_kind;
    bool m_threeD;
    LabelFormat m_format = LabelFormat::Values;
    QWidget *m_chartHost = nullptr;
    QVBoxLayout *m_chartLayout = nullptr;
    QWidget *m_chart = nullptr;
    QChartView *m_view = nullptr;
};

// Checks the request and opens the chart window (modeless, deleted on close).
// Refusals are shown with the information icon and return nullptr, in this
// order: no indicator, more than 10 rows, no row; a type index beyond the
// list draws nothing; a pie of more than 5 rows. Without three-dimensional
// graphics a solid chart is drawn flat after a notice.
FrmGrafico *openChart(QWidget *parent, const DbfTable &table, const QString &field, const QString &caption,
                      const QList<int> &rows, int typeIndex, bool threeD);

struct DbfWindowState;
// The same for the attribute window's state: its table and the records of
// the selected rows; the indicator's caption is its column header.
FrmGrafico *openChartFor(QWidget *parent, const DbfWindowState &state, const QString &field, int typeIndex,
                         bool threeD);

} // namespace mervola
