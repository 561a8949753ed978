#include "data/ui/FrmSearch.h"
#include "platform/ui/DialogButtons.h"

#include "data/Search.h"

#include <QComboBox>
#include <QCompleter>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mervola {

FrmSearch::FrmSearch(const QString &themeName, const QStringList &names, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSearch"));
    setWindowTitle(searchCaption(themeName));
    auto *layout = new QVBoxLayout(this);
    auto *caption = new QLabel(QStringLiteral("Lista degli elementi geografici."), this);
    m_features = new QComboBox(this);
    m_features->setObjectName(QStringLiteral("cboFeatures"));
    m_features->setEditable(true);  // typing a name narrows the list
    m_features->setInsertPolicy(QComboBox::NoInsert);
    m_features->addItems(names);
    m_features->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_features->completer()->setFilterMode(Qt::MatchContains);
    m_features->setMinimumWidth(320);
    caption->setBuddy(m_features);
    layout->addWidget(caption);
    layout->addWidget(m_features);
    const OkCancelRow row = okCancelRow(this, QStringLiteral("cmdOK"), QStringLiteral("cmdAnnulla"));
    connect(row.ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(row.cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addLayout(row.layout);
}

QString FrmSearch::chosenName() const { return m_features->currentText(); }

}  // namespace mervola
