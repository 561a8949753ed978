#include "classify/ui/LegendEditor.h"

#include "classify/ui/QtColors.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace mervola::classify {

LegendEditor::LegendEditor(const LegendEntry &entry, QWidget *parent) : QDialog(parent), m_entry(entry)
{
    setObjectName(QStringLiteral("frmLegenda"));
    setWindowTitle(QStringLiteral("Legenda - %1").arg(entry.theme));

    m_visible = new QCheckBox(QStringLiteral("Tema visibile"), this);
    m_visible->setObjectName(QStringLiteral("chkVisibile"));
    m_visible->setChecked(entry.visible);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_visible);

    const bool classified = !entry.classification.classes.empty();
    if (!classified) {
        auto *box = new QGroupBox(QStringLiteral("Simbolo"), this);
        auto *form = new QFormLayout(box);
        m_fill = new QPushButton(box);
        m_fill->setObjectName(QStringLiteral("cmdColore"));
        m_outlineColor = new QPushButton(box);
        m_outlineColor->setObjectName(QStringLiteral("cmdColoreBordo"));
        m_outline = new QCheckBox(QStringLiteral("Disegna il bordo"), box);
        m_outline->setObjectName(QStringLiteral("chkOutline"));
        m_outline->setChecked(entry.outline);
        form->addRow(QStringLiteral("Colore di riempimento:"), m_fill);
        form->addRow(QStringLiteral("Colore del bordo:"), m_outlineColor);
        form->addRow(QString(), m_outline);
        paintButton(m_fill, m_entry.fillColor);
        paintButton(m_outlineColor, m_entry.outlineColor);
        connect(m_fill, &QPushButton::clicked, this, [this] { pickColor(&m_entry.fillColor, m_fill); });
        connect(m_outlineColor, &QPushButton::clicked, this,
                [this] { pickColor(&m_entry.outlineColor, m_outlineColor); });
        connect(m_outline, &QCheckBox::toggled, m_outlineColor, &QWidget::setEnabled);
        m_outlineColor->setEnabled(entry.outline);
        layout->addWidget(box);
    } else {
        m_grid = new QTableWidget(0, 3, this);
        m_grid->setObjectName(QStringLiteral("grdClassi"));
        m_grid->setHorizontalHeaderLabels({QStringLiteral("Colore"), QStringLiteral("Label"),
                                           QStringLiteral("Visibile")});
        m_grid->verticalHeader()->hide();
        m_grid->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
        m_grid->setColumnWidth(0, 60);
        fillGrid();
        connect(m_grid, &QTableWidget::cellDoubleClicked, this, [this](int row, int col) {
            if (col != 0)
                return;
            ClassRange &r = m_entry.classification.classes[size_t(row)];
            const QColor c = QColorDialog::getColor(toQColor(r.fillColor), this, QStringLiteral("Colore della classe"));
            if (c.isValid()) {
                r.fillColor = fromQColor(c);
                m_grid->item(row, 0)->setBackground(c);
            }
        });
        layout->addWidget(m_grid);
    }

    auto *buttons = new QDialogButtonBox(this);
    auto *ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    auto *cancel = buttons->addButton(QStringLiteral("Annulla"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdAnnulla"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(classified ? 420 : 320, classified ? 380 : 200);
}

void LegendEditor::fillGrid()
{
    const auto &classes = m_entry.classification.classes;
    m_grid->setRowCount(int(classes.size()));
    for (int row = 0; row < int(classes.size()); ++row) {
        const ClassRange &r = classes[size_t(row)];
        auto *colour = new QTableWidgetItem;
        colour->setFlags(Qt::ItemIsEnabled);
        colour->setBackground(toQColor(r.fillColor));
        m_grid->setItem(row, 0, colour);
        m_grid->setItem(row, 1, new QTableWidgetItem(r.label));
        auto *drawn = new QTableWidgetItem;
        drawn->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        drawn->setCheckState(r.drawn ? Qt::Checked : Qt::Unchecked);
        m_grid->setItem(row, 2, drawn);
    }
}

void LegendEditor::paintButton(QPushButton *button, std::int32_t color)
{
    QPixmap pm(40, 14);
    pm.fill(toQColor(color));
    button->setIcon(QIcon(pm));
    button->setIconSize(pm.size());
    button->setText(QStringLiteral("Cambia..."));
}

void LegendEditor::pickColor(std::int32_t *color, QPushButton *button)
{
    const QColor c = QColorDialog::getColor(toQColor(*color), this, QStringLiteral("Scegli il colore"));
    if (!c.isValid())
        return;
    *color = fromQColor(c);
    paintButton(button, *color);
}

LegendEntry LegendEditor::entry() const
{
    LegendEntry e = m_entry;
    e.visible = m_visible->isChecked();
    if (m_outline)
        e.outline = m_outline->isChecked();
    if (m_grid) {
        for (int row = 0; row < m_grid->rowCount(); ++row) {
            ClassRange &r = e.classification.classes[size_t(row)];
            r.label = m_grid->item(row, 1)->text();
            r.drawn = m_grid->item(row, 2)->checkState() == Qt::Checked;
        }
    }
    return e;
}

}  // namespace mervola::classify
