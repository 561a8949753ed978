#include "print/ui/ReportPreview.h"

#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/ScreenFit.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QProgressDialog>
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

ReportPreview::ReportPreview(AtlasHome home, bool printerAvailable, QWidget *parent)
    : QDialog(parent), m_home(std::move(home)), m_printerAvailable(printerAvailable),
      m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
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
    action(QStringLiteral("setup"), reporttext::kSetup, [this] { setupPrinter(); })->setEnabled(m_printerAvailable);
    action(QStringLiteral("print"), reporttext::kPrint, [this] { printAll(); })->setEnabled(m_printerAvailable);
    action(QStringLiteral("pdf"), QStringLiteral("Salva in PDF"), [this] { savePdf(); });
    toolbar->addSeparator();
    m_portrait = new QRadioButton(QStringLiteral("&Verticale"), this);
    m_portrait->setObjectName(QStringLiteral("optVerticale"));
    m_landscape = new QRadioButton(QStringLiteral("&Orizzontale"), this);
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
    resizeWithinScreen(this, QSize(760, 900));

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

Status ReportPreview::withProgress(const QString &caption,
                                   const std::function<Status(const ReportProgress &)> &work)
{
    QProgressDialog progress(caption, QStringLiteral("Annulla"), 0, std::max(1, pageCount()), this);
    progress.setObjectName(QStringLiteral("prgStampa"));
    progress.setWindowTitle(QStringLiteral("Mervola"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    return work([&progress](int done, int total) {
        progress.setMaximum(std::max(1, total));
        progress.setValue(done);
        QCoreApplication::processEvents();
        return !progress.wasCanceled();
    });
}

void ReportPreview::printAll()
{
    if (!m_loaded || !m_printerAvailable)
        return;
    const Status s = withProgress(QStringLiteral("Stampa della tabella in corso..."),
                                  [this](const ReportProgress &p) { return m_doc.print(*m_printer, p); });
    if (!s && s.errorMessage() != reporttext::kCancelled)
        showMessage(MsgStyle::Critical, s.errorMessage());
}

void ReportPreview::savePdf()
{
    if (!m_loaded)
        return;
    QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Salva in PDF"), lastUsedFolder(),
                                                QStringLiteral("Documenti PDF (*.pdf)"));
    if (path.isEmpty())
        return;
    rememberFolderOf(path);
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".pdf");
    const Status s = withProgress(QStringLiteral("Salvataggio del PDF in corso..."),
                                  [this, &path](const ReportProgress &p) { return m_doc.writePdf(path, p); });
    if (!s && s.errorMessage() != reporttext::kCancelled)
        showMessage(MsgStyle::Critical, s.errorMessage());
}

void openTableReport(QWidget *parent, const AtlasHome &home, const QList<ReportColumn> &columns,
                     const std::vector<QStringList> &rows, bool printerAvailable)
{
    QProgressDialog progress(QStringLiteral("Preparazione della stampa..."), QStringLiteral("Annulla"), 0,
                             std::max<int>(1, int(rows.size())), parent);
    progress.setObjectName(QStringLiteral("prgPreparazione"));
    progress.setWindowTitle(QStringLiteral("Mervola"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    const Status s = prepareTableReport(home, columns, rows, [&progress](int done, int) {
        progress.setValue(done);
        QCoreApplication::processEvents();
        return !progress.wasCanceled();
    });
    progress.close();
    if (!s) {
        if (s.errorMessage() != reporttext::kCancelled)
            showMessage(MsgStyle::Critical, s.errorMessage());
        return;
    }
    if (Status o = turnWideReport(home); !o)
        showMessage(MsgStyle::Critical, o.errorMessage());
    ReportPreview preview(home, printerAvailable, parent);
    if (preview.loaded())
        preview.exec();
}

} // namespace mervola
