#include "data/ui/FrmInfor.h"

#include "platform/Messages.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QStatusBar>
#include <QTableWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace mervola {

namespace {
const QColor kChosen(244, 244, 40);
const QString kCaptionPrefix = QStringLiteral("Informazioni su... ");
}  // namespace

FrmInfor::FrmInfor(const QString &currentTheme, QList<FoundElement> found, const QStringList &categories,
                   ReferenceDb db, QWidget *parent)
    : QDialog(parent), m_found(std::move(found)), m_db(std::move(db))
{
    setObjectName(QStringLiteral("frmInfor"));
    setWindowTitle(kCaptionPrefix + currentTheme);
    resize(640, 460);

    m_themes = new QTableWidget(int(m_found.size()), 1, this);
    m_themes->setObjectName(QStringLiteral("flexnome"));
    m_themes->setHorizontalHeaderLabels({QStringLiteral("Tema")});
    m_themes->horizontalHeader()->setStretchLastSection(true);
    m_themes->verticalHeader()->hide();
    m_themes->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_themes->setSelectionMode(QAbstractItemView::NoSelection);
    m_themes->setMaximumWidth(220);
    for (int i = 0; i < m_found.size(); ++i)
        m_themes->setItem(i, 0, new QTableWidgetItem(m_found[i].title.isEmpty() ? m_found[i].theme : m_found[i].title));
    connect(m_themes, &QTableWidget::cellClicked, this, [this](int row, int) { showRow(row); });

    m_fields = new QTreeWidget(this);
    m_fields->setObjectName(QStringLiteral("ListView1"));
    m_fields->setHeaderLabels({QStringLiteral("Nome del campo"), QStringLiteral("Valore")});
    m_fields->setRootIsDecorated(false);
    m_fields->header()->setSectionResizeMode(0, QHeaderView::Interactive);
    m_fields->header()->resizeSection(0, 250);
    m_fields->header()->setStretchLastSection(true);

    m_categories = new QComboBox(this);
    m_categories->setObjectName(QStringLiteral("cboCategorie"));
    m_categories->addItem(QStringLiteral("<Nessuna categoria>"));
    m_categories->addItems(categories);
    m_categories->setVisible(isCommunityLayer(currentTheme));
    connect(m_categories, &QComboBox::activated, this, &FrmInfor::chooseCategory);

    m_status = new QStatusBar(this);
    m_status->setObjectName(QStringLiteral("StatusBar1"));
    m_status->setSizeGripEnabled(false);

    auto *top = new QHBoxLayout;
    top->addWidget(m_themes);
    top->addWidget(m_fields, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_categories);
    layout->addLayout(top, 1);
    layout->addWidget(m_status);
    if (!m_found.isEmpty())
        showRow(0);
}

void FrmInfor::fillFields(const QList<QPair<QString, QString>> &fields)
{
    m_fields->clear();
    for (const auto &[name, value] : fields)
        new QTreeWidgetItem(m_fields, {name, value});
    m_status->showMessage(QStringLiteral("%1 campi").arg(fields.size()));
}

void FrmInfor::showRow(int row)
{
    if (row < 0 || row >= m_found.size())
        return;
    if (m_row >= 0)
        m_themes->item(m_row, 0)->setBackground(Qt::white);
    m_themes->item(row, 0)->setBackground(kChosen);
    m_row = row;
    // Titled by the theme of the element shown, under its legend name.
    setWindowTitle(kCaptionPrefix + m_themes->item(row, 0)->text());
    if (m_categories->currentIndex() > 0 && isCommunityLayer(m_found[row].theme))
        chooseCategory(m_categories->currentIndex());
    else
        fillFields(m_found[row].fields);
}

void FrmInfor::chooseCategory(int index)
{
    if (m_row < 0)
        return;
    const FoundElement &e = m_found[m_row];
    if (index <= 0 || !isCommunityLayer(e.theme)) {
        fillFields(e.fields);
        return;
    }
    auto row = categoryRow(m_db, categoryCodeOf(index), e.progMont);
    if (!row) {
        showMessage(MsgStyle::Critical, row.errorMessage());
        return;
    }
    fillFields(*row);
}

}  // namespace mervola
