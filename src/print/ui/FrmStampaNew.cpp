#include "print/ui/FrmStampaNew.h"

#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/ScreenFit.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTimer>
#include <QVBoxLayout>

namespace mervola
{

namespace
{

constexpr int kPreviewDelayMs = 300;

// Paints the page on a printer: the whole sheet is the page, the layout
// keeps its own margins.
void paintOnPrinter(QPrinter *printer, const MapPageContent &pageContent)
{
    QPainter painter(printer);
    if (!painter.isActive())
        return;
    paintMapPage(painter, QRectF(QPointF(0, 0), printer->paperRect(QPrinter::DevicePixel).size()), pageContent);
}

void preparePrinter(QPrinter &printer, const MapPageContent &pageContent)
{
    printer.setFullPage(true);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(pageContent.orientation);
    printer.setDocName(pageContent.title.isEmpty() ? QStringLiteral("Mervola") : pageContent.title);
}

} // namespace

FrmStampaNew::FrmStampaNew(MapPageContent pageContent, QWidget *parent)
    : QDialog(parent), m_content(std::move(pageContent)),
      m_previewPrinter(std::make_unique<QPrinter>(QPrinter::ScreenResolution))
{
    setObjectName(QStringLiteral("frmStampaNew"));
    setWindowTitle(QStringLiteral("Stampa della mappa"));
    if (m_content.title.isEmpty())
        m_content.title = QStringLiteral("Mervola");
    if (m_content.dateText.isEmpty())
        m_content.dateText = defaultDateText();
    preparePrinter(*m_previewPrinter, m_content);

    m_preview = new QPrintPreviewWidget(m_previewPrinter.get(), this);
    m_preview->setObjectName(QStringLiteral("picAnteprima"));
    m_preview->setZoomMode(QPrintPreviewWidget::FitInView);
    connect(m_preview, &QPrintPreviewWidget::paintRequested, this, [this](QPrinter *p) { paintPreview(p); });

    m_previewTimer = new QTimer(this);
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(kPreviewDelayMs);
    connect(m_previewTimer, &QTimer::timeout, m_preview, &QPrintPreviewWidget::updatePreview);

    buildControls();
    writeControls();
    resizeWithinScreen(this, QSize(1100, 780));
}

FrmStampaNew::~FrmStampaNew() = default;

void FrmStampaNew::buildControls()
{
    m_title = new QLineEdit(this);
    m_title->setObjectName(QStringLiteral("txtTitolo"));
    m_titleFont = new QLabel(this);
    m_titleFont->setObjectName(QStringLiteral("lblFontTitolo"));
    auto *cmdFontTitolo = new QPushButton(QStringLiteral("Ca&rattere..."), this);
    cmdFontTitolo->setObjectName(QStringLiteral("cmdFontTitolo"));
    auto *fontRow = new QHBoxLayout;
    fontRow->addWidget(m_titleFont, 1);
    fontRow->addWidget(cmdFontTitolo);
    auto *cmdModMappa = new QPushButton(QStringLiteral("Titolo e &legenda..."), this);
    cmdModMappa->setObjectName(QStringLiteral("cmdModMappa"));

    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txtTesto"));
    m_text->setTabChangesFocus(true);
    m_text->setMaximumHeight(110);
    auto *cmdModTesto = new QPushButton(QStringLiteral("Carattere del t&esto..."), this);
    cmdModTesto->setObjectName(QStringLiteral("cmdModTesto"));
    m_date = new QLineEdit(this);
    m_date->setObjectName(QStringLiteral("txtData"));

    auto *fraTitolo = new QGroupBox(QStringLiteral("Titolo"), this);
    auto *tf = new QFormLayout(fraTitolo);
    auto *lblTitolo = new QLabel(QStringLiteral("&Titolo:"), fraTitolo);
    lblTitolo->setBuddy(m_title);
    tf->addRow(lblTitolo, m_title);
    tf->addRow(QStringLiteral("Carattere:"), fontRow);
    tf->addRow(cmdModMappa);

    auto *fraTesto = new QGroupBox(QStringLiteral("Testo"), this);
    auto *xf = new QVBoxLayout(fraTesto);
    auto *lblTesto = new QLabel(QStringLiteral("Testo l&ibero sotto la mappa:"), fraTesto);
    lblTesto->setBuddy(m_text);
    xf->addWidget(lblTesto);
    xf->addWidget(m_text);
    xf->addWidget(cmdModTesto);
    auto *lblData = new QLabel(QStringLiteral("&Data:"), fraTesto);
    lblData->setBuddy(m_date);
    auto *dateRow = new QHBoxLayout;
    dateRow->addWidget(lblData);
    dateRow->addWidget(m_date, 1);
    xf->addLayout(dateRow);

    auto *fraOrientamento = new QGroupBox(QStringLiteral("Orientamento"), this);
    m_portrait = new QRadioButton(QStringLiteral("&Verticale"), fraOrientamento);
    m_portrait->setObjectName(QStringLiteral("optVerticale"));
    m_landscape = new QRadioButton(QStringLiteral("&Orizzontale"), fraOrientamento);
    m_landscape->setObjectName(QStringLiteral("optOrizzontale"));
    auto *of = new QHBoxLayout(fraOrientamento);
    of->addWidget(m_portrait);
    of->addWidget(m_landscape);

    // The fit of each classification, under its classes in the legend.
    auto *fraLegenda = new QGroupBox(QStringLiteral("Legenda"), this);
    m_fit = new QCheckBox(QStringLiteral("Bontà dell'adattamento (&GVF) delle classi"), fraLegenda);
    m_fit->setObjectName(QStringLiteral("chkGvf"));
    auto *lf = new QVBoxLayout(fraLegenda);
    lf->addWidget(m_fit);

    auto *cmdStampa = new QPushButton(QStringLiteral("&Stampa..."), this);
    cmdStampa->setObjectName(QStringLiteral("cmdStampa"));
    auto *cmdSalvaPdf = new QPushButton(QStringLiteral("Salva &PDF..."), this);
    cmdSalvaPdf->setObjectName(QStringLiteral("cmdSalvaPdf"));
    auto *cmdChiudi = new QPushButton(QStringLiteral("&Chiudi"), this);
    cmdChiudi->setObjectName(QStringLiteral("cmdChiudi"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdStampa);
    buttons->addWidget(cmdSalvaPdf);
    buttons->addStretch(1);
    buttons->addWidget(cmdChiudi);

    auto *side = new QVBoxLayout;
    side->addWidget(fraTitolo);
    side->addWidget(fraTesto);
    side->addWidget(fraOrientamento);
    side->addWidget(fraLegenda);
    side->addStretch(1);
    auto *sideWidget = new QWidget(this);
    sideWidget->setLayout(side);
    sideWidget->setFixedWidth(330);

    auto *top = new QHBoxLayout;
    top->addWidget(sideWidget);
    top->addWidget(m_preview, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(buttons);

    connect(m_title, &QLineEdit::textEdited, this, [this] { readControls(); });
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] { readControls(); });
    connect(m_date, &QLineEdit::textEdited, this, [this] { readControls(); });
    connect(m_portrait, &QRadioButton::toggled, this, [this](bool on) {
        if (on && !m_writing)
            setOrientation(QPageLayout::Portrait);
    });
    connect(m_landscape, &QRadioButton::toggled, this, [this](bool on) {
        if (on && !m_writing)
            setOrientation(QPageLayout::Landscape);
    });
    connect(m_fit, &QCheckBox::toggled, this, [this](bool on) {
        if (m_writing)
            return;
        m_content.legendFit = on;
        schedulePreview();
    });
    connect(cmdFontTitolo, &QPushButton::clicked, this, [this] { cmdFontTitolo_Click(); });
    connect(cmdModMappa, &QPushButton::clicked, this, [this] { cmdModMappa_Click(); });
    connect(cmdModTesto, &QPushButton::clicked, this, [this] { cmdModTesto_Click(); });
    connect(cmdStampa, &QPushButton::clicked, this, [this] { cmdStampa_Click(); });
    connect(cmdSalvaPdf, &QPushButton::clicked, this, [this] { cmdSalvaPdf_Click(); });
    connect(cmdChiudi, &QPushButton::clicked, this, &QDialog::accept);
    m_title->setFocus();
}

void FrmStampaNew::writeControls()
{
    m_writing = true;
    if (m_title->text() != m_content.title)
        m_title->setText(m_content.title);
    m_titleFont->setText(QStringLiteral("%1, %2 pt").arg(m_content.titleFont).arg(m_content.titlePointSize));
    if (m_text->toPlainText() != m_content.freeText)
        m_text->setPlainText(m_content.freeText);
    if (m_date->text() != m_content.dateText)
        m_date->setText(m_content.dateText);
    m_portrait->setChecked(m_content.orientation == QPageLayout::Portrait);
    m_landscape->setChecked(m_content.orientation == QPageLayout::Landscape);
    m_fit->setChecked(m_content.legendFit);
    m_writing = false;
}

void FrmStampaNew::readControls()
{
    if (m_writing)
        return;
    m_content.title = m_title->text();
    m_content.freeText = m_text->toPlainText();
    m_content.dateText = m_date->text();
    schedulePreview();
}

void FrmStampaNew::schedulePreview()
{
    m_previewTimer->start();
}

void FrmStampaNew::paintPreview(QPrinter *printer)
{
    paintOnPrinter(printer, m_content);
}

void FrmStampaNew::setOrientation(QPageLayout::Orientation o)
{
    m_content.orientation = o;
    m_previewPrinter->setPageOrientation(o);
    // Changing the orientation repaints the preview.
    if (o == QPageLayout::Landscape)
        m_preview->setLandscapeOrientation();
    else
        m_preview->setPortraitOrientation();
}

void FrmStampaNew::cmdFontTitolo_Click()
{
    if (choosePageFont(this, m_content.titleFont, m_families)) {
        writeControls();
        schedulePreview();
    }
}

void FrmStampaNew::cmdModMappa_Click()
{
    FrmModMappa dlg(m_content, m_families, this);
    if (dlg.exec() != QDialog::Accepted)
        return;
    m_content = dlg.result(std::move(m_content));
    writeControls();
    schedulePreview();
}

void FrmStampaNew::cmdModTesto_Click()
{
    FrmModTesto dlg(m_content, m_families, this);
    if (dlg.exec() != QDialog::Accepted)
        return;
    m_content = dlg.result(std::move(m_content));
    writeControls();
    schedulePreview();
}

void FrmStampaNew::cmdStampa_Click()
{
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(printer, m_content);
    QPrintDialog dlg(&printer, this);
    dlg.setWindowTitle(QStringLiteral("Stampa"));
    if (dlg.exec() != QDialog::Accepted)
        return;
    paintOnPrinter(&printer, m_content);
}

Status FrmStampaNew::savePdfTo(const QString &path) const
{
    return writeMapPagePdf(m_content, path);
}

void FrmStampaNew::cmdSalvaPdf_Click()
{
    // Suggest the title as file name, without characters file systems refuse.
    QString name = m_content.title.trimmed();
    name.replace(QRegularExpression(QStringLiteral("[\\\\/:*?\"<>|]")), QStringLiteral("_"));
    if (name.isEmpty())
        name = QStringLiteral("mappa");
    QString path =
        QFileDialog::getSaveFileName(this, QStringLiteral("Salva la mappa in PDF"),
                                     QDir(lastUsedFolder(QDir::homePath())).filePath(name + QStringLiteral(".pdf")),
                                     QStringLiteral("Documenti PDF (*.pdf)"));
    if (path.isEmpty())
        return;
    rememberFolderOf(path);
    if (!path.endsWith(QStringLiteral(".pdf"), Qt::CaseInsensitive))
        path += QStringLiteral(".pdf");
    const Status s = savePdfTo(path);
    if (!s.ok())
        showMessage(MsgStyle::Critical, s.errorMessage());
}

void openMapPrintPage(QWidget *parent, const MapPageContent &pageContent)
{
    FrmStampaNew dlg(pageContent, parent);
    dlg.exec();
}

} // namespace mervola
