#include "print/ui/FrmModMappa.h"

#include "print/ui/PageDialogs.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

namespace mervola {

FrmModMappa::FrmModMappa(const MapPageContent &pageContent, FontFamiliesSource families, QWidget *parent)
    : QDialog(parent), m_families(std::move(families)), m_font(pageContent.titleFont)
{
    setObjectName(QStringLiteral("frmModMappa"));
    setWindowTitle(QStringLiteral("Titolo e legenda"));

    m_title = new QLineEdit(pageContent.title, this);
    m_title->setObjectName(QStringLiteral("txtTitolo"));
    m_fontLabel = new QLabel(m_font, this);
    m_fontLabel->setObjectName(QStringLiteral("lblFont"));
    m_size = new QSpinBox(this);
    m_size->setObjectName(QStringLiteral("spnDimensione"));
    m_size->setRange(6, 72);
    m_size->setValue(int(pageContent.titlePointSize));
    m_size->setSuffix(QStringLiteral(" pt"));

    m_names = new QTableWidget(this);
    m_names->setObjectName(QStringLiteral("grdLegenda"));
    m_names->setColumnCount(1);
    m_names->setHorizontalHeaderLabels({QStringLiteral("Nome nella legenda")});
    m_names->horizontalHeader()->setStretchLastSection(true);
    m_names->verticalHeader()->setVisible(false);
    for (std::size_t i = 0; i < pageContent.legend.size(); ++i) {
        if (!pageContent.legend[i].visible)
            continue;
        const int row = m_names->rowCount();
        m_names->insertRow(row);
        m_names->setItem(row, 0, new QTableWidgetItem(pageContent.legend[i].alias));
        m_rows.push_back(int(i));
    }

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("&Titolo:"), m_title);
    form->addRow(QStringLiteral("Carattere:"),
                 pagedlg::fontRow(this, m_fontLabel, QStringLiteral("&Carattere..."), [this] { cmdFont_Click(); }));
    form->addRow(QStringLiteral("&Dimensione:"), m_size);
    auto *legendLabel = new QLabel(QStringLiteral("&Nomi dei temi nella legenda:"), this);
    legendLabel->setBuddy(m_names);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(legendLabel);
    layout->addWidget(m_names, 1);
    layout->addLayout(pagedlg::okCancel(this));
    resize(440, 380);
}

void FrmModMappa::cmdFont_Click()
{
    if (choosePageFont(this, m_font, m_families))
        m_fontLabel->setText(m_font);
}

MapPageContent FrmModMappa::result(MapPageContent pageContent) const
{
    pageContent.title = m_title->text();
    pageContent.titleFont = m_font;
    pageContent.titlePointSize = m_size->value();
    for (int row = 0; row < m_names->rowCount(); ++row) {
        const QString name = m_names->item(row, 0) ? m_names->item(row, 0)->text().trimmed() : QString();
        if (!name.isEmpty())
            pageContent.legend[std::size_t(m_rows[std::size_t(row)])].alias = name;
    }
    return pageContent;
}

}  // namespace mervola
