#include "data/ui/FrmDbf.h"

#include "data/AttributeTableTexts.h"
#include "data/ChartData.h"
#include "data/Statistics.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmGraficoPanel.h"
#include "data/ui/FrmStatistiche.h"
#include "data/ui/QueryDbf.h"
#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/ScreenFit.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPointer>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSet>
#include <QStatusBar>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace mervola {

void AttributeTableHost::openStatistics(QWidget *parent, const DbfWindowState &state)
{
    openStatisticsFor(parent, state);
}
void AttributeTableHost::openChart(QWidget *parent, const DbfWindowState &state, const QString &field, int typeIndex,
                                   bool threeD)
{
    openChartFor(parent, state, field, typeIndex, threeD);
}
void AttributeTableHost::printTable(QWidget *, const TablePrintout &)
{
    showMessage(MsgStyle::Information, texts::kNotAvailable);
}
void AttributeTableHost::highlightRecords(const QString &, const std::vector<int> &) {}
void AttributeTableHost::openJoin(const QString &) { showMessage(MsgStyle::Information, texts::kNotAvailable); }

namespace {

struct ToolDef {
    const char *key;
    const char *tip;
    QStyle::StandardPixmap icon;
};

const ToolDef kTools[] = {
    {"statistiche", "Statistiche", QStyle::SP_FileDialogInfoView},
    {"query", "Query", QStyle::SP_FileDialogContentsView},
    {"Mostra", "Annulla la query corrente e mostra tutti i dati", QStyle::SP_BrowserReload},
    {"grafico", "Grafici", QStyle::SP_FileDialogDetailedView},
    {"sortAsc", "Ordina in senso crescente", QStyle::SP_ArrowUp},
    {"sortDec", "Ordina in senso decrescente", QStyle::SP_ArrowDown},
    {"stampa", "Stampa tabella", QStyle::SP_FileIcon},
    {"join", "Collega fonte dati esterna", QStyle::SP_DirLinkIcon},
    {"Export", "Salva dati in formato dbf", QStyle::SP_DialogSaveButton},
    {"onmap", "Mostra su mappa", QStyle::SP_DialogApplyButton},
    {"exit", "Chiudi tabella", QStyle::SP_DialogCloseButton},
};

QString captionOf(const DbfWindowSource &source)
{
    return texts::kCaptionPrefix + source.themeName + (source.joined ? texts::kJoinedSuffix : QString());
}

QPointer<FrmDbf> &openWindow()
{
    static QPointer<FrmDbf> window;
    return window;
}

}  // namespace

FrmDbf::FrmDbf(AttributeTableHost &host, DbfWindowSource source, QWidget *parent)
    : QDialog(parent), m_host(host), m_source(std::move(source))
{
    setObjectName(QStringLiteral("frmDbf"));
    setWindowTitle(captionOf(m_source));
    setSizeGripEnabled(true);

    const QFileInfo shp(m_source.shapefilePath);
    auto opened = AttributeTable::open(shp.absolutePath(), shp.completeBaseName());
    if (opened)
        m_table = std::make_unique<AttributeTable>(std::move(*opened));
    else
        m_loadError = opened.errorMessage();
    if (auto catalog = IndicatorCatalog::read(ReferenceDb(m_source.home), m_source.structure))
        m_catalog = std::move(*catalog);
    else
        m_catalog.setStructure(m_source.structure);  // captions fall back to field names

    buildToolbar();
    m_categories = new QComboBox(this);
    m_categories->setObjectName(QStringLiteral("cboCategorieFormDbf"));
    m_categories->setAccessibleName(QStringLiteral("Categoria di indicatori"));
    m_categories->addItem(kBaseCategoryName, kBaseCategoryCode);
    for (const auto &[code, name] : m_catalog.categories())
        m_categories->addItem(name, code);
    m_categories->setMinimumContentsLength(24);
    m_toolbar->addSeparator();
    m_toolbar->addWidget(m_categories);
    // A category shows its columns over the whole table: the statement is
    // loaded again without the query's filter.
    connect(m_categories, &QComboBox::activated, this, [this] {
        if (!m_table)
            return;
        (void)m_table->showAll();
        setUpColumns();
        refreshStatus();
    });

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("tmrDbf"));
    m_timer->setSingleShot(true);
    m_timer->setInterval(100);
    connect(m_timer, &QTimer::timeout, this, &FrmDbf::updateSelectionCount);
    buildGrid();

    auto *status = new QStatusBar(this);
    status->setObjectName(QStringLiteral("StatusBar1"));
    status->setSizeGripEnabled(false);
    m_infoSel = new QLabel(status);
    m_infoSel->setObjectName(QStringLiteral("InfoSel"));
    m_infoOn = new QLabel(status);
    m_infoOn->setObjectName(QStringLiteral("InfoOn"));
    // The count keeps its natural width; the longer "InfoOn" text takes the rest.
    status->addWidget(m_infoSel, 0);
    status->addWidget(m_infoOn, 1);

    m_chartPanel = new FrmGraficoPanel(this);
    m_chartPanel->setMaximumWidth(280);
    m_chartPanel->hide();
    connect(m_chartPanel, &FrmGraficoPanel::chartRequested, this, &FrmDbf::showChart);
    auto *centre = new QHBoxLayout;
    centre->addWidget(m_grid, 1);
    centre->addWidget(m_chartPanel);
    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("cmdChiudi"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(status, 1);
    bottom->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_toolbar);
    layout->addLayout(centre, 1);
    layout->addLayout(bottom);
    setTabOrder(m_categories, m_grid);
    setTabOrder(m_grid, close);

    chooseExportFile = [this] {
        const QString path =
            QFileDialog::getSaveFileName(this, texts::kExportTitle, lastUsedFolder(), texts::kExportFilter, nullptr,
                                         QFileDialog::DontConfirmOverwrite);
        rememberFolderOf(path);
        return path;
    };
    openQuery = [](FrmDbf &window) {
        QueryDbf query(window, &window);
        query.exec();
    };

    if (m_table) {
        setUpColumns();
        fitColumnWidths();
        refreshStatus();
    }
    resizeWithinScreen(this, QSize(900, 560));
}

// The grid's model reads the table: both go before the table does, since
// the dialog's own destructor still lays out (hides) the grid.
FrmDbf::~FrmDbf()
{
    delete m_grid;
    delete m_model;
}

void FrmDbf::buildToolbar()
{
    m_toolbar = new QToolBar(this);
    m_toolbar->setObjectName(QStringLiteral("ToolbarDbf"));
    m_toolbar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const ToolDef &t : kTools) {
        const QString key = QString::fromLatin1(t.key);
        QAction *a = m_toolbar->addAction(style()->standardIcon(t.icon), QString::fromUtf8(t.tip));
        a->setObjectName(key);
        a->setToolTip(QString::fromUtf8(t.tip));
        connect(a, &QAction::triggered, this, [this, key] { runCommand(key); });
        m_actions.insert(key, a);
    }
    for (const char *key : {"sortAsc", "sortDec", "statistiche"})
        m_actions.value(QString::fromLatin1(key))->setEnabled(false);
}

void FrmDbf::buildGrid()
{
    m_grid = new QTableView(this);
    m_grid->setObjectName(QStringLiteral("grdDbf"));
    m_grid->setAccessibleName(QStringLiteral("Tabella degli attributi"));
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setAlternatingRowColors(true);
    m_grid->setTabKeyNavigation(false);  // Tab leaves the grid for the next control
    m_grid->verticalHeader()->setDefaultSectionSize(m_grid->fontMetrics().height() + 6);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->horizontalHeader()->setHighlightSections(false);
    if (!m_table)
        return;
    m_model = new AttributeTableModel(m_table.get(), this);
    m_grid->setModel(m_model);
    // A header click picks the column for sorting and statistics; it does
    // not select the column's cells.
    disconnect(m_grid->horizontalHeader(), SIGNAL(sectionPressed(int)), m_grid, SLOT(selectColumn(int)));
    connect(m_grid->horizontalHeader(), &QHeaderView::sectionClicked, this, &FrmDbf::columnClicked);
    connect(m_grid->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection &selected, const QItemSelection &deselected) {
                // Row sets, not list scans: selecting thousands of rows
                // (one index per cell) stays instant.
                QSet<int> gone;
                for (const QItemSelectionRange &r : deselected)
                    for (int row = r.top(); row <= r.bottom(); ++row)
                        gone.insert(row);
                if (!gone.isEmpty())
                    m_selectionOrder.removeIf([&gone](int row) { return gone.contains(row); });
                QSet<int> have(m_selectionOrder.cbegin(), m_selectionOrder.cend());
                for (const QItemSelectionRange &r : selected)
                    for (int row = r.top(); row <= r.bottom(); ++row)
                        if (!have.contains(row)) {
                            have.insert(row);
                            m_selectionOrder.append(row);
                        }
                selectionChanged();
            });
}

// Column widths from the caption and a sample of the values (the widest of
// the first rows): measuring every cell of a large table would cost more
// than opening it.
void FrmDbf::fitColumnWidths()
{
    const QFontMetrics cell = m_grid->fontMetrics();
    const QFontMetrics head = m_grid->horizontalHeader()->fontMetrics();
    const int sample = std::min(m_table->shownCount(), 200);
    for (int c = 0; c < m_table->columnCount(); ++c) {
        int w = head.horizontalAdvance(m_table->column(c).caption) + 16;
        for (int r = 0; r < sample; ++r)
            w = std::max(w, cell.horizontalAdvance(AttributeTableModel::displayText(m_table->value(r, c))) + 12);
        m_grid->setColumnWidth(c, std::min(w, 260));
    }
}

QString FrmDbf::categoryCode() const { return m_categories->currentData().toString(); }

void FrmDbf::setUpColumns()
{
    if (!m_table)
        return;
    QList<int> widths;
    for (int c = 0; c < m_table->columnCount(); ++c)
        widths << m_grid->columnWidth(c);
    m_table->setUpColumns(m_catalog, categoryCode());
    m_model->reload();
    for (int c = 0; c < m_table->columnCount(); ++c) {
        m_grid->setColumnHidden(c, !m_table->column(c).visible);
        if (widths[c] > 0)
            m_grid->setColumnWidth(c, widths[c]);
    }
    // The reload drops the grid's selection: the count says so at once.
    m_selectionOrder.clear();
    updateSelectionCount();
    QStringList fields, captions;
    for (int c = 0; c < m_table->columnCount(); ++c)
        if (m_table->column(c).visible && m_table->isNumeric(c)) {
            fields << m_table->column(c).field.name;
            captions << m_table->column(c).caption;
        }
    m_chartPanel->setIndicators(fields, captions);
}

void FrmDbf::refreshStatus()
{
    if (m_table)
        m_infoSel->setText(m_table->statusText());
}

void FrmDbf::updateSelectionCount()
{
    m_timer->stop();
    m_chartPanel->setSelectedCount(int(selectedRows().size()));
    followChart();
}

void FrmDbf::selectionChanged()
{
    // The map follows at once; the count and the chart after a short pause.
    std::vector<int> records;
    records.reserve(size_t(m_selectionOrder.size()));
    for (int row : std::as_const(m_selectionOrder))
        if (row >= 0 && row < m_table->shownCount())
            records.push_back(m_table->rows()[size_t(row)]);
    std::sort(records.begin(), records.end());
    m_host.highlightRecords(m_source.layerName, records);
    m_timer->start();
}

void FrmDbf::followChart()
{
    // A chart opened from this window redraws for the new selection while
    // the selection stays within what a chart can show (1 to 10 rows).
    const int count = int(selectedRows().size());
    if (m_chartField.isEmpty() || count < 1 || count > 10)
        return;
    for (FrmGrafico *chart : findChildren<FrmGrafico *>())
        if (chart->isVisible())
            chart->setSeriesFor(windowState(), m_chartField);
}

bool FrmDbf::selectRecord(int record)
{
    if (!m_table)
        return false;
    const auto &rows = m_table->rows();
    const auto it = std::find(rows.begin(), rows.end(), record);
    if (it == rows.end())
        return false;
    const int row = int(it - rows.begin());
    m_grid->selectRow(row);
    m_grid->scrollTo(m_model->index(row, 0), QAbstractItemView::PositionAtCenter);
    return true;
}

QList<int> FrmDbf::selectedRows() const { return m_selectionOrder; }

void FrmDbf::columnClicked(int column)
{
    if (m_infoOn->text().isEmpty())
        m_infoOn->setText(texts::kCtrlHint);
    m_column = column;
    for (const char *key : {"sortAsc", "sortDec", "statistiche"})
        m_actions.value(QString::fromLatin1(key))->setEnabled(true);
}

DbfWindowState FrmDbf::windowState() const
{
    return m_table ? m_table->state(m_column, selectedRows(), windowTitle()) : DbfWindowState{};
}

void FrmDbf::runCommand(const QString &key)
{
    if (!m_table)
        return;
    if (key == QLatin1String("statistiche"))
        statistics();
    else if (key == QLatin1String("query"))
        openQuery(*this);
    else if (key == QLatin1String("Mostra")) {
        (void)m_table->showAll();
        setUpColumns();
        refreshStatus();
    } else if (key == QLatin1String("grafico"))
        m_chartPanel->setVisible(!m_chartPanel->isVisible());
    else if (key == QLatin1String("sortAsc"))
        sort(SortOrder::Ascending);
    else if (key == QLatin1String("sortDec"))
        sort(SortOrder::Descending);
    else if (key == QLatin1String("stampa"))
        print();
    else if (key == QLatin1String("join"))
        m_host.openJoin(m_source.layerName);
    else if (key == QLatin1String("Export"))
        exportTable();
    else if (key == QLatin1String("onmap"))
        showOnMap();
    else if (key == QLatin1String("exit"))
        close();
}

void FrmDbf::sort(SortOrder order)
{
    if (auto s = m_table->sortBy(m_column, order); !s) {
        showMessage(MsgStyle::Critical, s.errorMessage());
        return;
    }
    setUpColumns();
    refreshStatus();
}

void FrmDbf::tableChanged(bool joined)
{
    m_source.joined = joined;
    setWindowTitle(captionOf(m_source));
    const QFileInfo shp(m_source.shapefilePath);
    auto opened = AttributeTable::open(shp.absolutePath(), shp.completeBaseName());
    if (!opened || !m_table) {
        showMessage(MsgStyle::Critical, opened ? texts::kNotAvailable : opened.errorMessage());
        return;
    }
    m_grid->clearSelection();
    *m_table = std::move(*opened);  // the model keeps pointing at the same table
    m_column = -1;
    for (const char *key : {"sortAsc", "sortDec", "statistiche"})
        m_actions.value(QString::fromLatin1(key))->setEnabled(false);
    setUpColumns();
    m_grid->resizeColumnsToContents();
    for (int c = 0; c < m_table->columnCount(); ++c)
        m_grid->setColumnWidth(c, std::min(m_grid->columnWidth(c), 260));
    refreshStatus();
}

void FrmDbf::queryApplied(bool found)
{
    setUpColumns();
    refreshStatus();
    if (found) {
        m_actions.value(QStringLiteral("onmap"))->setEnabled(true);
        m_actions.value(QStringLiteral("Mostra"))->setEnabled(true);
    }
}

void FrmDbf::statistics()
{
    QList<DbfField> fields;
    for (int c = 0; c < m_table->columnCount(); ++c)
        if (m_table->column(c).visible)
            fields << m_table->column(c).field;
    if (auto s = checkStatisticsAllowed(m_table->shownCount(), fields); !s) {
        showMessage(MsgStyle::Information, s.errorMessage());
        return;
    }
    m_host.openStatistics(this, windowState());
}

void FrmDbf::print()
{
    TablePrintout out;
    // Without a printer the preview still opens, to save the report as PDF.
    out.printerAvailable = !QPrinterInfo::availablePrinters().isEmpty();
    if (!out.printerAvailable)
        showMessage(MsgStyle::Information, texts::kNoPrinter);
    std::vector<int> columns;
    for (int c = 0; c < m_table->columnCount(); ++c)
        if (m_table->column(c).visible) {
            columns.push_back(c);
            out.fields << m_table->column(c).field.name;
            out.captions << m_table->column(c).caption;
        }
    out.rows.reserve(size_t(m_table->shownCount()));
    for (int r = 0; r < m_table->shownCount(); ++r) {
        QStringList row;
        row.reserve(qsizetype(columns.size()));
        for (int c : columns)
            row << AttributeTableModel::displayText(m_table->value(r, c));
        out.rows.push_back(std::move(row));
    }
    m_host.printTable(this, out);
}

void FrmDbf::exportTable()
{
    QString path = chooseExportFile ? chooseExportFile() : QString();
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".dbf");
    if (auto s = m_table->exportTo(path); !s) {
        showMessage(MsgStyle::Critical, s.errorMessage());
        return;
    }
    showMessage(MsgStyle::Information, texts::kExported + path);
}

void FrmDbf::showOnMap()
{
    QList<int> rows = selectedRows();
    std::sort(rows.begin(), rows.end());
    const QString condition = m_table->onMapCondition(rows);
    if (condition.isEmpty()) {
        showMessage(MsgStyle::Information, texts::kNothingOnMap);
        return;
    }
    const QString keyField = m_table->column(m_table->keyColumn()).field.name;
    m_host.showOnMap(m_source.layerName, condition, keyField, m_table->keyValues(rows));
}

void FrmDbf::showChart()
{
    const QString field = m_chartPanel->indicatorField();
    if (auto s = checkChartRequest(!field.isEmpty(), int(selectedRows().size())); !s) {
        showMessage(MsgStyle::Information, s.errorMessage());
        return;
    }
    m_chartField = field;
    m_host.openChart(this, windowState(), field, m_chartPanel->typeIndex(), m_chartPanel->isThreeD());
}

void FrmDbf::closeEvent(QCloseEvent *event)
{
    m_host.attributeWindowClosed();
    event->accept();
}

void attributeTableChanged(const QString &layerName, bool joined)
{
    if (FrmDbf *open = openWindow(); open && open->layerName() == layerName)
        open->tableChanged(joined);
}

FrmDbf *currentAttributeWindow()
{
    return openWindow();
}

FrmDbf *openAttributeTable(QWidget *parent, AttributeTableHost &host, const DbfWindowSource &source)
{
    if (FrmDbf *open = openWindow()) {
        open->raise();
        open->activateWindow();
        return open;
    }
    auto *window = new FrmDbf(host, source, parent);
    if (!window->loadError().isEmpty()) {
        showMessage(MsgStyle::Critical, window->loadError());
        delete window;
        return nullptr;
    }
    window->setAttribute(Qt::WA_DeleteOnClose);
    openWindow() = window;
    window->show();
    return window;
}

}  // namespace mervola
