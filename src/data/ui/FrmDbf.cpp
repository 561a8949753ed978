#include "data/ui/FrmDbf.h"

#include "data/AttributeTableTexts.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmStatistiche.h"
#include "data/ui/QueryDbf.h"
#include "platform/Messages.h"

#include <QAction>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPointer>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSet>
#include <QRadioButton>
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
void AttributeTableHost::printTable(const DbfWindowState &) { showMessage(MsgStyle::Information, texts::kNotAvailable); }
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

const QStringList kChartTypes = {QStringLiteral("Barre"), QStringLiteral("Linee"), QStringLiteral("Aree"),
                                 QStringLiteral("Step"), QStringLiteral("Torta")};

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
    QString caption = texts::kCaptionPrefix + m_source.themeName;
    if (m_source.joined)
        caption += texts::kJoinedSuffix;
    setWindowTitle(caption);
    setSizeGripEnabled(true);
    resize(900, 560);

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
    m_categories->addItem(kBaseCategoryName, kBaseCategoryCode);
    for (const auto &[code, name] : m_catalog.categories())
        m_categories->addItem(name, code);
    m_categories->setMinimumWidth(260);
    m_toolbar->addSeparator();
    m_toolbar->addWidget(m_categories);
    connect(m_categories, &QComboBox::activated, this, [this] {
        setUpColumns();
        refreshStatus();
    });

    m_grid = new QTableView(this);
    m_grid->setObjectName(QStringLiteral("grdDbf"));
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setAlternatingRowColors(true);
    m_grid->verticalHeader()->setDefaultSectionSize(m_grid->fontMetrics().height() + 6);
    m_grid->horizontalHeader()->setHighlightSections(false);
    if (m_table) {
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

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("tmrDbf"));
    m_timer->setSingleShot(true);
    m_timer->setInterval(100);
    connect(m_timer, &QTimer::timeout, this, &FrmDbf::updateSelectionCount);

    auto *status = new QStatusBar(this);
    status->setObjectName(QStringLiteral("StatusBar1"));
    status->setSizeGripEnabled(false);
    m_infoSel = new QLabel(status);
    m_infoSel->setObjectName(QStringLiteral("InfoSel"));
    m_infoOn = new QLabel(status);
    m_infoOn->setObjectName(QStringLiteral("InfoOn"));
    status->addWidget(m_infoSel, 1);
    status->addWidget(m_infoOn, 1);

    m_chartPanel = buildChartPanel();
    m_chartPanel->hide();
    auto *centre = new QHBoxLayout;
    centre->addWidget(m_grid, 1);
    centre->addWidget(m_chartPanel);
    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("cmdChiudi"));
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(status, 1);
    bottom->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_toolbar);
    layout->addLayout(centre, 1);
    layout->addLayout(bottom);

    chooseExportFile = [this] {
        return QFileDialog::getSaveFileName(this, texts::kExportTitle, QString(), texts::kExportFilter, nullptr,
                                            QFileDialog::DontConfirmOverwrite);
    };
    openQuery = [](FrmDbf &window) {
        QueryDbf query(window, &window);
        query.exec();
    };

    if (m_table) {
        setUpColumns();
        m_grid->resizeColumnsToContents();
        for (int c = 0; c < m_table->columnCount(); ++c)
            m_grid->setColumnWidth(c, std::min(m_grid->columnWidth(c), 260));
        refreshStatus();
    }
}

FrmDbf::~FrmDbf() = default;

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

QWidget *FrmDbf::buildChartPanel()
{
    auto *frame = new QGroupBox(this);
    frame->setObjectName(QStringLiteral("Frame1"));
    frame->setMaximumWidth(280);
    auto *v = new QVBoxLayout(frame);
    for (const char *help : {"Selezionare gli elementi dalla griglia", "Tenere premuto il tasto CTRL per selezionare più righe",
                             "Scegliere al massimo 10 elementi dalla griglia e un'indicatore per ottenere un grafico."}) {
        auto *l = new QLabel(QString::fromUtf8(help), frame);
        l->setWordWrap(true);
        v->addWidget(l);
    }
    m_dimension = new QButtonGroup(frame);
    const char *dims[] = {"Grafico tridimensionale", "Grafico bidimensionale"};
    for (int i = 0; i < 2; ++i) {
        auto *opt = new QRadioButton(QString::fromUtf8(dims[i]), frame);
        opt->setObjectName(QStringLiteral("optDimen_%1").arg(i));
        m_dimension->addButton(opt, i);
        v->addWidget(opt);
    }
    m_dimension->button(1)->setChecked(true);
    connect(m_dimension, &QButtonGroup::idClicked, this, &FrmDbf::fillChartTypes);
    m_chartType = new QComboBox(frame);
    m_chartType->setObjectName(QStringLiteral("cboTipo"));
    v->addWidget(m_chartType);
    fillChartTypes();
    auto *numHelp = new QLabel(QStringLiteral("Selezionare un'indicatore in base al quale si desidera avere il grafico"), frame);
    numHelp->setWordWrap(true);
    v->addWidget(numHelp);
    m_numeric = new QComboBox(frame);
    m_numeric->setObjectName(QStringLiteral("cbonumeric"));
    v->addWidget(m_numeric);
    auto *count = new QLabel(QStringLiteral("Numero di elementi selezionati"), frame);
    count->setObjectName(QStringLiteral("lblCountSel"));
    m_countSel = new QLabel(QStringLiteral("0"), frame);
    m_countSel->setObjectName(QStringLiteral("txtCountSel"));
    auto *countRow = new QHBoxLayout;
    countRow->addWidget(count, 1);
    countRow->addWidget(m_countSel);
    v->addLayout(countRow);
    auto *show = new QPushButton(QStringLiteral("&Mostra grafico"), frame);
    show->setObjectName(QStringLiteral("cmdGrafico"));
    connect(show, &QPushButton::clicked, this, &FrmDbf::showChart);
    v->addWidget(show);
    v->addStretch(1);
    return frame;
}

void FrmDbf::fillChartTypes()
{
    const bool threeD = m_dimension->checkedId() == 0;
    m_chartType->clear();
    m_chartType->addItems(threeD ? kChartTypes.mid(0, 4) : kChartTypes);
    m_chartType->setCurrentIndex(0);
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
    m_selectionOrder.clear();
    const QString current = m_numeric->currentData().toString();
    m_numeric->clear();
    for (int c = 0; c < m_table->columnCount(); ++c)
        if (m_table->column(c).visible && m_table->isNumeric(c))
            m_numeric->addItem(m_table->column(c).caption, m_table->column(c).field.name);
    m_numeric->setCurrentIndex(current.isEmpty() ? -1 : m_numeric->findData(current));
}

void FrmDbf::refreshStatus()
{
    if (m_table)
        m_infoSel->setText(m_table->statusText());
}

void FrmDbf::updateSelectionCount()
{
    m_countSel->setText(QString::number(selectedRows().size()));
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
    if (m_table->shownCount() < 2) {
        showMessage(MsgStyle::Information, texts::kTooFewRecords);
        return;
    }
    if (!m_table->hasNumericColumn()) {
        showMessage(MsgStyle::Information, texts::kNoStatistics + QLatin1Char('\n') + texts::kNoNumericData);
        return;
    }
    m_host.openStatistics(this, windowState());
}

void FrmDbf::print()
{
    if (QPrinterInfo::availablePrinters().isEmpty()) {
        showMessage(MsgStyle::Information, texts::kNoPrinter);
        return;
    }
    m_host.printTable(windowState());
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
    const int label = m_table->fieldIndex(QStringLiteral("Label"));
    const QString keyField = m_table->column(label >= 0 ? label : 2).field.name;
    m_host.showOnMap(m_source.layerName, condition, keyField, m_table->keyValues(rows));
}

void FrmDbf::showChart()
{
    const int count = int(selectedRows().size());
    if (m_numeric->currentIndex() < 0) {
        showMessage(MsgStyle::Information, texts::kNoIndicator);
        return;
    }
    if (count > 10) {
        showMessage(MsgStyle::Information, texts::kMaxTen);
        return;
    }
    if (count < 1) {
        showMessage(MsgStyle::Information, texts::kNoneSelected);
        return;
    }
    m_chartField = m_numeric->currentData().toString();
    m_host.openChart(this, windowState(), m_chartField, m_chartType->currentIndex(), m_dimension->checkedId() == 0);
}

void FrmDbf::closeEvent(QCloseEvent *event)
{
    m_host.attributeWindowClosed();
    event->accept();
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
