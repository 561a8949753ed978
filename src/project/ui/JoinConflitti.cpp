#include "project/ui/JoinConflitti.h"

#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/ui/DialogButtons.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace mervola {

namespace {
const QString kCaption = QStringLiteral("Conflitti tra i nomi dei campi");
const QString kIntro = QStringLiteral(
    "I campi seguenti hanno lo stesso nome di un campo della tabella del tema. Indicare il nuovo nome.");
const QString kUnresolved = QStringLiteral("Campi con il nome assegnato automaticamente: %1");
const QString kNameTaken = QStringLiteral(" è gia presente come nome campo.");
}  // namespace

JoinConflitti::JoinConflitti(const QList<StagedField> &rows, const QStringList &taken, QWidget *parent)
    : QDialog(parent), m_rows(rows), m_taken(taken)
{
    setObjectName(QStringLiteral("JoinConflitti"));
    setWindowTitle(kCaption);
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(kIntro, this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    m_grid = new QTableWidget(int(m_rows.size()), 3, this);
    m_grid->setObjectName(QStringLiteral("grdConflitti"));
    m_grid->setHorizontalHeaderLabels({QStringLiteral("Campo"), QStringLiteral("Alias"), QStringLiteral("Nuovo nome")});
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->verticalHeader()->hide();
    m_filling = true;
    for (int r = 0; r < m_rows.size(); ++r) {
        const StagedField &f = m_rows[r];
        auto *name = new QTableWidgetItem(f.nomeCampo);
        auto *alias = new QTableWidgetItem(f.aliasCampo);
        name->setFlags(name->flags() & ~Qt::ItemIsEditable);
        alias->setFlags(alias->flags() & ~Qt::ItemIsEditable);
        m_grid->setItem(r, 0, name);
        m_grid->setItem(r, 1, alias);
        m_grid->setItem(r, 2, new QTableWidgetItem(f.nomeConflitto));
    }
    m_filling = false;
    connect(m_grid, &QTableWidget::cellChanged, this, &JoinConflitti::nameEdited);
    layout->addWidget(m_grid);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStato"));
    layout->addWidget(m_status);

    const OkCancelRow buttons = okCancelRow(this, QStringLiteral("btnContinua"), QStringLiteral("btnAnnulla"));
    buttons.ok->setText(QStringLiteral("Continua"));
    connect(buttons.ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(buttons.cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addLayout(buttons.layout);
    refreshStatus();
}

void JoinConflitti::refreshStatus()
{
    QStringList open;
    for (const StagedField &f : m_rows)
        if (isUnresolvedConflict(f))
            open << f.aliasCampo;
    m_status->setText(open.isEmpty() ? JoinText::kAllResolved : kUnresolved.arg(open.join(QStringLiteral(", "))));
}

void JoinConflitti::nameEdited(int row, int column)
{
    if (m_filling || column != 2 || row < 0 || row >= m_rows.size())
        return;
    QTableWidgetItem *item = m_grid->item(row, column);
    const QString name = item->text().trimmed();
    bool valid = !name.isEmpty() && name.size() <= 10;
    for (QChar c : name)
        valid = valid && JoinText::kAliasCharacters.contains(c.toLower());
    QString clash;
    for (const QString &t : m_taken)
        if (t.compare(name, Qt::CaseInsensitive) == 0)
            clash = t;
    for (int r = 0; r < m_rows.size(); ++r)
        if (r != row && m_rows[r].nomeConflitto.compare(name, Qt::CaseInsensitive) == 0)
            clash = name;
    if (!valid || !clash.isEmpty()) {
        if (!clash.isEmpty())
            showMessage(MsgStyle::Exclamation, QStringLiteral("campo = ") + name + kNameTaken + JoinText::kCrLf +
                                                   JoinText::kAliasUnique);
        m_filling = true;
        item->setText(m_rows[row].nomeConflitto);
        m_filling = false;
        return;
    }
    m_rows[row].nomeConflitto = name;
    refreshStatus();
}

bool VerifyConflitti(const ReferenceDb &db, const QString &themeTable, const QStringList &themeFields,
                     QWidget *parent)
{
    auto rows = readStaged(db, QStringLiteral("where CONFLITTO=-1 and collegatoAFile = ") + sqlQuote(themeTable));
    if (!rows) {
        showMessage(MsgStyle::Critical, rows.errorMessage());
        return false;
    }
    if (rows->isEmpty())
        return true;
    QStringList taken = themeFields;
    if (auto all = readStaged(db, QStringLiteral("where CONFLITTO=0 and INCLUSO=-1")); all)
        for (const StagedField &f : all.value())
            taken << f.outputName();
    JoinConflitti window(rows.value(), taken, parent);
    if (window.exec() != QDialog::Accepted)
        return false;
    if (Status st = updateStaged(db, window.rows()); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return false;
    }
    return true;
}

}  // namespace mervola
