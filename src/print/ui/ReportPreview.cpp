#include "print/ui/ReportPreview.h"

#include "platform/Messages.h"
#include "platform/dbf/DbfFolder.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>

namespace mervola
{

namespace
{

constexpr double kPreviewDpi = 72;

} // namespace

ReportPreview::ReportPreview(AtlasHome home, QWidget *parent)
    : QDialog(parent), m_home(std::move(home)), m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
{
    setObjectName(QStringLiteral("frmStampaTabella"));
    setWindowTitle(reporttext::kPreviewCaption);

    auto *toolbar = new QToolBar(this);
    toolbar->setObjectName(QStringLiteral("Toolbar1"));
    toolbar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto action = [&](const QString &key, const QString &caption, auto slot) {
        QAction *a = toolbar->addAction(caption, this, slot);
        a->setObjectName(key);
        return a;
    };
    action(QStringLiteral("setup"), reporttext::kSetup, [this] { setupPrinter(); });
    action(QStringLiteral("print"), reporttext::kPrint, [this] { printAll(); });
    action(QStringLiteral("pdf"), QStringLiteral("Salva in PDF"), [this] { savePdf(); });
    toolbar->addSeparator();
    m_portrait = new QRadioButton(QStringLiteral("Verticale"), this);
    m_portrait->setObjectName(QStringLiteral("optVerticale"));
    m_landscape = new QRadioButton(QStringLiteral("Orizzontale"), this);
    m_landscape->setObjectName(QStringLiteral("optOrizzontale"));
    toolbar->addWidget(m_portrait);
    toolbar->addWidget(m_landscape);
    toolbar->addSeparator();
    action(QStringLiteral("exit"), reporttext::kExit, [this] { reject(); });

    // cmdSposta: first, previous, next, last page.
    auto *nav = new QHBoxLayout;
    const QStringList arrows{QStringLiteral("|<"), QStringLiteral("<"), QStringLiteral(">"), QStringLiteral(">|")};
    for (int i = 0; i < arrows.size(); ++i) {
        auto *b = new QPushButton(arrows[i], this);
        b->setObjectName(QStringLiteral("cmdSposta_%1").arg(i));
        b->setAutoDefault(false);
        b->setMaximumWidth(40);
        connect(b, &QPushButton::clicked, this, [this, i] {
            const int target = i == 0 ? 0 : i == 1 ? m_page - 1 : i == 2 ? m_page + 1 : pageCount() - 1;
            showPage(target);
        });
        nav->addWidget(b);
        if (i == 1) {
            m_indicator = new QLabel(this);
            m_indicator->setObjectName(QStringLiteral("lblPagina"));
            m_indicator->setAlignment(Qt::AlignCenter);
            m_indicator->setMinimumWidth(80);
            nav->addWidget(m_indicator);
        }
    }
    nav->addStretch();

    m_picture = new QLabel(this);
    m_picture->setObjectName(QStringLiteral("picPagina"));
    m_picture->setAlignment(Qt::AlignCenter);
    m_scroll = new QScrollArea(this);
    m_scroll->setWidget(m_picture);
    m_scroll->setWidgetResizable(true);
    m_scroll->setBackgroundRole(QPalette::Dark);

    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(toolbar);
    layout->addLayout(nav);
    layout->addWidget(m_scroll, 1);
    resize(760, 900);

    reload();
    connect(m_landscape, &QRadioButton::toggled, this,
            [this](bool on) { setOrientation(on ? ReportOrientation::Landscape : ReportOrientation::Portrait); });
}

ReportPreview::~ReportPreview() = default;

void ReportPreview::reload()
{
    auto doc = ReportDocument::load(m_home);
    m_loaded = doc.ok();
    if (!doc) {
        showMessage(MsgStyle::Critical, doc.errorMessage());
        m_doc = ReportDocument();
    } else {
        m_doc = std::move(*doc);
    }
    const QRectF paper = m_printer->pageLayout().fullRect(QPageLayout::Point);
    m_doc.setPaperSize(QSizeF(paper.width() * 20, paper.height() * 20));
    const bool landscape = m_doc.definition().orientation == ReportOrientation::Landscape;
    const QSignalBlocker b1(m_portrait), b2(m_landscape);
    m_portrait->setChecked(!landscape);
    m_landscape->setChecked(landscape);
    showPage(0);
}

void ReportPreview::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    showPage(m_page);
}

void ReportPreview::showPage(int page)
{
    m_page = std::clamp(page, 0, std::max(0, pageCount() - 1));
    m_indicator->setText(reporttext::pageIndicator(m_page + 1, pageCount()));
    if (m_loaded) {
        // The whole page width fits the window, never larger than life size.
        const double inches = m_doc.pageSizeTwips().width() / 1440.0;
        const double dpi = std::clamp((width() - 60) / inches, 30.0, kPreviewDpi);
        QImage img = m_doc.pageImage(m_page, dpi * devicePixelRatioF());
        img.setDevicePixelRatio(devicePixelRatioF());
        m_picture->setPixmap(QPixmap::fromImage(img));
    }
}

void ReportPreview::setOrientation(ReportOrientation orientation)
{
    if (Status s = setReportOrientation(m_home, orientation); !s) {
        showMessage(MsgStyle::Critical, s.errorMessage());
        return;
    }
    m_printer->setPageOrientation(orientation == ReportOrientation::Landscape ? QPageLayout::Landscape
                                                                              : QPageLayout::Portrait);
    reload();
}

void ReportPreview::setupPrinter()
{
    QPageSetupDialog dialog(m_printer.get(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const bool landscape = m_printer->pageLayout().orientation() == QPageLayout::Landscape;
    if (landscape != (m_doc.definition().orientation == ReportOrientation::Landscape))
        setOrientation(landscape ? ReportOrientation::Landscape : ReportOrientation::Portrait);
    else
        reload();
}

void ReportPreview::printAll()
{
    if (!m_loaded)
        return;
    if (Status s = m_doc.print(*m_printer); !s)
        showMessage(MsgStyle::Critical, s.errorMessage());
}

void ReportPreview::savePdf()
{
    if (!m_loaded)
        return;
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Salva in PDF"), QString(),
                                                      QStringLiteral("Documenti PDF (*.pdf)"));
    if (path.isEmpty())
        return;
    if (Status s = m_doc.writePdf(path); !s)
        showMessage(MsgStyle::Critical, s.errorMessage());
}

void openTableReport(QWidget *parent, const AtlasHome &home, const QString &tableFolder, const QString &table,
                     const QList<ReportColumn> &columns, const QString &filter)
{
    DbfFolder folder(tableFolder);
    if (Status s = prepareTableReport(home, folder, table, columns, filter); !s) {
        showMessage(MsgStyle::Critical, s.errorMessage());
        return;
    }
    ReportPreview preview(home, parent);
    if (preview.loaded())
        preview.exec();
}

} // namespace mervola
