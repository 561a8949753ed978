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
    countCaption->setObjectName(QStringLiteral("lblCountSel"));
    m_count = new QLabel(QStringLiteral("0"), this);
    m_count->setObjectName(QStringLiteral("txtCountSel"));
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
    m_solid->setObjectName(QStringLiteral("optDimen_0"));
    m_flat->setObjectName(QStringLiteral("optDimen_1"));
    for (QRadioButton *b : {m_solid, m_flat})
        layout->addWidget(b);
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
    // The chosen indicator stays chosen while it is still offered.
    const QString current = indicatorField();
    m_indicators->clear();
    for (int i = 0; i < fields.size(); ++i) {
        const QString caption = captions.value(i);
        m_indicators->addItem(caption.isEmpty() ? fields[i] : caption, fields[i]);
    }
    m_indicators->setCurrentIndex(current.isEmpty() ? -1 : m_indicators->findData(current));
}

void FrmGraficoPanel::setSelectedCount(int count)
{
    m_count->setText(QString::number(count));
}

QString FrmGraficoPanel::indicatorField() const
{
    return m_indicators->currentData().toString();
}

int FrmGraficoPanel::typeIndex() const
{
    return m_types->currentIndex();
}

bool FrmGraficoPanel::isThreeD() const
{
    return m_solid->isChecked();
}

} // namespace mervola
