#include "print/ui/PageDialogs.h"

#include "platform/ui/DialogButtons.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace mervola::pagedlg {

QHBoxLayout *okCancel(QDialog *dlg)
{
    const OkCancelRow row = okCancelRow(dlg, QStringLiteral("cmdOK"), QStringLiteral("cmdAnnulla"));
    QObject::connect(row.ok, &QPushButton::clicked, dlg, &QDialog::accept);
    QObject::connect(row.cancel, &QPushButton::clicked, dlg, &QDialog::reject);
    return row.layout;
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
