#pragma once
// The chart panel of the attribute window (frame Frame1): the indicator
// (cbonumeric), the chart type (cboTipo), the dimension (optDimen_0 solid,
// optDimen_1 flat), the selection count (txtCountSel beside lblCountSel) and
// cmdGrafico. The table window embeds it, fills the indicators, keeps the
// count up to date and answers chartRequested().

#include <QGroupBox>

class QComboBox;
class QLabel;
class QRadioButton;

namespace mervola
{

class FrmGraficoPanel : public QGroupBox
{
    Q_OBJECT
public:
    explicit FrmGraficoPanel(QWidget *parent = nullptr);

    // Numeric fields and their captions (same length; caption empty = field name).
    void setIndicators(const QStringList &fields, const QStringList &captions = {});
    void setSelectedCount(int count);

    QString indicatorField() const; // empty when none is chosen
    int typeIndex() const;          // cboTipo's index, -1 when none
    bool isThreeD() const;

signals:
    void chartRequested();

private:
    void fillTypes();

    QComboBox *m_indicators = nullptr;
    QComboBox *m_types = nullptr;
    QRadioButton *m_solid = nullptr;
    QRadioButton *m_flat = nullptr;
    QLabel *m_count = nullptr;
};

} // namespace mervola
