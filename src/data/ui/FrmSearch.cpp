#include "data/ui/FrmSearch.h"
#include "platform/ui/DialogButtons.h"

#include "data/Search.h"

#include <QComboBox>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QStringListModel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mervola {

FrmSearch::FrmSearch(const QString &themeName, const QStringList &names, QWidget *parent)
    : QDialog(parent), m_names(names)
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
    // The popup lists the names that contain what was typed, without regard
    // to case or accents ("forli" offers "Forlì").
    m_matches = new QStringListModel(this);
    auto *completer = new QCompleter(m_matches, this);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_features->setCompleter(completer);
    connect(m_features->lineEdit(), &QLineEdit::textEdited, this, [this](const QString &typed) {
        m_matches->setStringList(typed.isEmpty() ? QStringList() : matchingNames(m_names, typed));
        if (!typed.isEmpty())
            m_features->completer()->complete();
    });
    m_features->setMinimumWidth(320);
    caption->setBuddy(m_features);
    layout->addWidget(caption);
    layout->addWidget(m_features);
    const OkCancelRow row = okCancelRow(this, QStringLiteral("cmdOK"), QStringLiteral("cmdAnnulla"));
    connect(row.ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(row.cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addLayout(row.layout);
}

QString FrmSearch::chosenName() const { return resolveName(m_names, m_features->currentText()); }

}  // namespace mervola
