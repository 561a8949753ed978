#include "project/ui/FrmInfoIndicatore.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace mervola {

FrmInfoIndicatore::FrmInfoIndicatore(const QString &text, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmInfoIndicatore"));
    setWindowTitle(QStringLiteral("Descrizione Indicatore"));
    resize(460, 260);
    auto *layout = new QVBoxLayout(this);
    m_text = new QPlainTextEdit(text, this);
    m_text->setObjectName(QStringLiteral("txtDescrizione"));
    m_text->setReadOnly(true);
    layout->addWidget(m_text, 1);  // the text area takes every resize
    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(ok);
    layout->addLayout(row);
}

QString FrmInfoIndicatore::text() const { return m_text->toPlainText(); }

QString indicatorDescriptionText(const QString &field, const QString &description, const QString &code,
                                 const QString &category, const QString &source, const QString &unit)
{
    QStringList lines;
    lines << (description.isEmpty() ? field : description);
    lines << QString();
    lines << QStringLiteral("Campo: ") + field;
    if (!code.isEmpty())
        lines << QStringLiteral("Codice indicatore: ") + code;
    if (!category.isEmpty())
        lines << QStringLiteral("Categoria: ") + category;
    if (!unit.isEmpty())
        lines << QStringLiteral("Unità di misura: ") + unit;
    if (!source.isEmpty())
        lines << QStringLiteral("Fonte: ") + source;
    return lines.join(QLatin1Char('\n'));
}

}  // namespace mervola
