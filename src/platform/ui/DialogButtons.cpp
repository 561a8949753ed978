#include "platform/ui/DialogButtons.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace mervola {

OkCancelRow okCancelRow(QWidget *parent, const QString &okName, const QString &cancelName)
{
    auto *ok = new QPushButton(QStringLiteral("OK"), parent);
    ok->setObjectName(okName);
    ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Annulla"), parent);
    cancel->setObjectName(cancelName);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(ok);
    row->addWidget(cancel);
    return {row, ok, cancel};
}

}  // namespace mervola
