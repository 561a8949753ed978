#include "print/ui/PageDialogs.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace mervola::pagedlg {

QDialogButtonBox *okCancel(QDialog *dlg)
{
    auto *box = new QDialogButtonBox(dlg);
    auto *ok = box->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto *cancel = box->addButton(QStringLiteral("Annulla"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdAnnulla"));
    QObject::connect(box, &QDialogButtonBox::accepted, dlg, &QDialog::accept);
    QObject::connect(box, &QDialogButtonBox::rejected, dlg, &QDialog::reject);
    return box;
}

QHBoxLayout *fontRow(QDialog *dlg, QLabel *label, const QString &caption, const std::function<void()> &onClick)
{
    auto *button = new QPushButton(caption, dlg);
    button->setObjectName(QStringLiteral("cmdFont"));
    QObject::connect(button, &QPushButton::clicked, dlg, onClick);
    auto *row = new QHBoxLayout;
    row->addWidget(label, 1);
    row->addWidget(button);
    return row;
}

}  // namespace mervola::pagedlg
