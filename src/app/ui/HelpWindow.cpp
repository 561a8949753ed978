#include "app/ui/HelpWindow.h"

#include <QFileInfo>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace mervola {

HelpWindow::HelpWindow(const QString &htmlFile, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmGuida"));
    setWindowTitle(QStringLiteral("Guida in linea - Mervola"));
    resize(760, 640);
    auto *layout = new QVBoxLayout(this);
    m_browser = new QTextBrowser(this);
    m_browser->setObjectName(QStringLiteral("txtGuida"));
    m_browser->setOpenExternalLinks(true);
    layout->addWidget(m_browser, 1);
    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("cmdChiudi"));
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(close);
    layout->addLayout(row);
    if (QFileInfo(htmlFile).isFile()) {
        m_browser->setSource(QUrl::fromLocalFile(QFileInfo(htmlFile).absoluteFilePath()));
        m_loaded = true;
    }
}

}  // namespace mervola
