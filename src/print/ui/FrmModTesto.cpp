#include "print/ui/FrmModTesto.h"

#include "print/ui/PageDialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace mervola {

FrmModTesto::FrmModTesto(const MapPageContent &pageContent, FontFamiliesSource families, QWidget *parent)
    : QDialog(parent), m_families(std::move(families)), m_font(pageContent.textFont)
{
    setObjectName(QStringLiteral("frmModTesto"));
    setWindowTitle(QStringLiteral("Testo"));

    auto *prompt = new QLabel(QStringLiteral("&Testo da stampare sotto la mappa:"), this);
    m_text = new QPlainTextEdit(pageContent.freeText, this);
    m_text->setObjectName(QStringLiteral("txtTesto"));
    prompt->setBuddy(m_text);
    m_fontLabel = new QLabel(m_font, this);
    m_fontLabel->setObjectName(QStringLiteral("lblFont"));

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(m_text, 1);
    layout->addLayout(pagedlg::fontRow(this, m_fontLabel, QStringLiteral("&Carattere..."), [this] {
        if (choosePageFont(this, m_font, m_families))
            m_fontLabel->setText(m_font);
    }));
    layout->addLayout(pagedlg::okCancel(this));
    resize(420, 300);
}

MapPageContent FrmModTesto::result(MapPageContent pageContent) const
{
    pageContent.freeText = m_text->toPlainText();
    pageContent.textFont = m_font;
    return pageContent;
}

}  // namespace mervola
