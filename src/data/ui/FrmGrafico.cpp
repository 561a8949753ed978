#include "data/ui/FrmGrafico.h"

#include "data/AttributeTable.h"
#include "data/ui/FrmGraficoCharts.h"
#include "platform/Messages.h"

#include <QButtonGroup>
#include <QChartView>
#include <QHBoxLayout>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace mervola
{

FrmGrafico::FrmGrafico(ChartSeries series, ChartKind kind, bool threeD, QWidget *parent)
    : QDialog(parent), m_series(std::move(series)), m_kind(kind), m_threeD(threeD)
{
    setObjectName(QStringLiteral("frmChart"));
    setWindowTitle(ChartText::kCaption);
    auto *layout = new QVBoxLayout(this);
    m_chartHost = new QWidget(this);
    m_chartHost->setObjectName(QStringLiteral("MSChart1"));
    m_chartLayout = new QVBoxLayout(m_chartHost);
    m_chartLayout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_chartHost, 1);

    auto *row = new QHBoxLayout;
    auto *group = new QButtonGroup(this);
    const QList<std::pair<QString, LabelFormat>> options{{ChartText::kValues, LabelFormat::Values},
                                                         {ChartText::kPercentages, LabelFormat::Percentages}};
    for (const auto &[text, format] : options) {
        auto *option = new QRadioButton(text, this);
        option->setObjectName(QStringLiteral("Option1"));
        option->setChecked(format == m_format);
        option->setProperty("labelFormat", int(format));
        group->addButton(option);
        const LabelFormat f = format;
        connect(option, &QRadioButton::toggled, this, [this, f](bool on) {
            if (on)
                setLabelFormat(f);
        });
        row->addWidget(option);
    }
    row->addStretch();
    auto *preview = new QPushButton(ChartText::kPreview, this);
    preview->setObjectName(QStringLiteral("cmd_preview"));
    connect(preview, &QPushButton::clicked, this, &FrmGrafico::preview);
    row->addWidget(preview);
    auto *close = new QPushButton(ChartText::kClose, this);
    close->setObjectName(QStringLiteral("cmdChiudi"));
    close->setDefault(true);
    preview->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addWidget(close);
    layout->addLayout(row);
    resize(860, 620);
    rebuild();
}

void FrmGrafico::setLabelFormat(LabelFormat format)
{
    if (format == m_format)
        return;
    m_format = format;
    for (QRadioButton *option : findChildren<QRadioButton *>(QStringLiteral("Option1"))) {
        const QSignalBlocker quiet(option);
        option->setChecked(option->property("labelFormat").toInt() == int(format));
    }
    rebuild();
}

void FrmGrafico::rebuild()
{
    if (m_chart) {
        m_chartLayout->removeWidget(m_chart);
        delete m_chart;
        m_chart = nullptr;
        m_view = nullptr;
    }
    if (m_threeD)
        m_chart = buildSolidChart(m_series, m_kind, m_format, m_chartHost);
    if (!m_chart) {
        m_view = new QChartView(buildFlatChart(m_series, m_kind, m_format), m_chartHost);
        m_view->setRenderHint(QPainter::Antialiasing);
        m_chart = m_view;
    }
    m_chartLayout->addWidget(m_chart);
}

void FrmGrafico::preview()
{
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        showMessage(MsgStyle::Information, ChartText::kNoPrinter);
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintPreviewDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("frmStampaGraph"));
    dialog.setWindowTitle(QStringLiteral("Mervola - Anteprima di stampa"));
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter *p) {
        QPainter painter(p);
        const QRect page = painter.viewport();
        // The flat chart is drawn again at the printer's resolution; a solid
        // one is printed from its picture on screen.
        if (m_view) {
            m_view->render(&painter, page, m_view->viewport()->rect());
        } else if (m_chart) {
            const QPixmap picture = m_chart->grab();
            painter.drawPixmap(page, picture.scaled(page.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
        }
    });
    dialog.exec();
}

FrmGrafico *openChart(QWidget *parent, const DbfTable &table, const QString &field, const QString &caption,
                      const QList<int> &rows, int typeIndex, bool threeD)
{
    if (auto s = checkChartRequest(!field.isEmpty(), int(rows.size())); !s) {
        showMessage(MsgStyle::Information, s.errorMessage());
        return nullptr;
    }
    const std::optional<ChartKind> kind = chartKindAt(typeIndex, threeD);
    if (!kind)
        return nullptr;
    if (auto s = checkChartKind(*kind, int(rows.size())); !s) {
        showMessage(MsgStyle::Information, s.errorMessage());
        return nullptr;
    }
    auto series = chartSeries(table, field, rows);
    if (!series) {
        showMessage(MsgStyle::Information, series.errorMessage());
        return nullptr;
    }
    if (!caption.isEmpty())
        series->caption = caption;
    bool solid = threeD;
    if (solid && !solidChartsAvailable()) {
        showMessage(MsgStyle::Information, ChartText::kNo3d);
        solid = false;
    }
    auto *window = new FrmGrafico(*series, *kind, solid, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    return window;
}

namespace
{

// The indicator's caption in the window: its column header.
QString captionOf(const DbfWindowState &state, const QString &field)
{
    const int shown = int(state.visibleFields.indexOf(field));
    return shown >= 0 ? state.visibleCaptions.value(shown) : QString();
}

} // namespace

FrmGrafico *openChartFor(QWidget *parent, const DbfWindowState &state, const QString &field, int typeIndex, bool threeD)
{
    DbfFolder folder(state.folder);
    auto table = folder.table(state.table);
    if (!table) {
        showMessage(MsgStyle::Critical, table.errorMessage());
        return nullptr;
    }
    const QList<int> rows(state.selectedRecords.begin(), state.selectedRecords.end());
    return openChart(parent, *table, field, captionOf(state, field), rows, typeIndex, threeD);
}

void FrmGrafico::setSeriesFor(const DbfWindowState &state, const QString &field)
{
    DbfFolder folder(state.folder);
    auto table = folder.table(state.table);
    if (!table)
        return;
    const QList<int> rows(state.selectedRecords.begin(), state.selectedRecords.end());
    Result<ChartSeries> series = chartSeries(*table, field, rows);
    if (!series)
        return;
    if (const QString caption = captionOf(state, field); !caption.isEmpty())
        series->caption = caption;
    // A pie holds at most five slices: it keeps its picture beyond them.
    if (m_kind == ChartKind::Pie && series->points.size() > 5)
        return;
    m_series = std::move(*series);
    rebuild();
}

} // namespace mervola
