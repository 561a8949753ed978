#include "data/ui/FrmGraficoPanel.h"

#include "data/ChartData.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace mervola
{

FrmGraficoPanel::FrmGraficoPanel(QWidget *parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("Frame1"));
    auto *layout = new QVBoxLayout(this);
    for (const QString &help : {ChartText::kHelpSelect, ChartText::kHelpCtrl, ChartText::kHelpAtMost}) {
        auto *label = new QLabel(help, this);
        label->setWordWrap(true);
        layout->addWidget(label);
    }
    auto *countRow = new QHBoxLayout;
    auto *countCaption = new QLabel(ChartText::kSelectedCount, this);
    m_count = new QLabel(QStringLiteral("0"), this);
    m_count->setObjectName(QStringLiteral("lblCountSel"));
    countRow->addWidget(countCaption);
    countRow->addWidget(m_count);
    countRow->addStretch();
    layout->addLayout(countRow);

    m_indicators = new QComboBox(this);
    m_indicators->setObjectName(QStringLiteral("cbonumeric"));
    m_indicators->setToolTip(ChartText::kHelpIndicator);
    m_indicators->setPlaceholderText(ChartText::kHelpIndicator);
    auto *indicatorCaption = new QLabel(ChartText::kHelpIndicator, this);
    indicatorCaption->setWordWrap(true);
    indicatorCaption->setBuddy(m_indicators);
    layout->addWidget(indicatorCaption);
    layout->addWidget(m_indicators);

    m_solid = new QRadioButton(ChartText::kThreeD, this);
    m_flat = new QRadioButton(ChartText::kTwoD, this);
    for (QRadioButton *b : {m_solid, m_flat}) {
        b->setObjectName(QStringLiteral("optDimen"));
        layout->addWidget(b);
    }
    m_flat->setChecked(true);
    connect(m_solid, &QRadioButton::toggled, this, [this](bool) { fillTypes(); });

    m_types = new QComboBox(this);
    m_types->setObjectName(QStringLiteral("cboTipo"));
    layout->addWidget(m_types);
    fillTypes();

    auto *show = new QPushButton(ChartText::kShowChart, this);
    show->setObjectName(QStringLiteral("cmdGrafico"));
    connect(show, &QPushButton::clicked, this, &FrmGraficoPanel::chartRequested);
    layout->addWidget(show);
    layout->addStretch();
}

void FrmGraficoPanel::fillTypes()
{
    // Keeps the chosen type when the other list has it too.
    const int previous = m_types->currentIndex();
    m_types->clear();
    m_types->addItems(chartTypeNames(isThreeD()));
    m_types->setCurrentIndex(previous >= 0 && previous < m_types->count() ? previous : 0);
}

void FrmGraficoPanel::setIndicators(const QStringList &fields, const QStringList &captions)
{
    m_indicators->clear();
    for (int i = 0; i < fields.size(); ++i) {
        const QString caption = captions.value(i);
        m_indicators->addItem(caption.isEmpty() ? fields[i] : caption, fields[i]);
    }
    m_indicators->setCurrentIndex(-1);
}

void FrmGraficoPanel::setSelectedCount(int count)
{
    m_count->setText(QString::number(count));
}

QString FrmGraficoPanel::indicatorField() const
{
    return m_indicators->currentData().toString();
}

QString FrmGraficoPanel::indicatorCaption() const
{
    return m_indicators->currentIndex() < 0 ? QString() : m_indicators->currentText();
}

int FrmGraficoPanel::typeIndex() const
{
    return m_types->currentIndex();
}

bool FrmGraficoPanel::isThreeD() const
{
    return m_solid->isChecked();
}

void FrmGraficoPanel::setThreeD(bool threeD)
{
    (threeD ? m_solid : m_flat)->setChecked(true);
}

} // namespace mervola
