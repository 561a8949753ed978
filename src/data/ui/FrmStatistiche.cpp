#include "data/ui/FrmStatistiche.h"

#include "data/AttributeTable.h"
#include "platform/Messages.h"
#include "platform/dbf/DbfFolder.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace mervola
{

namespace
{

constexpr int kNameColumnTwips = 1500;

int twipsToPixels(const QWidget *w, int twips)
{
    return twips * w->logicalDpiX() / 1440;
}

} // namespace

QColor statisticsGridColor()
{
    const quint32 bgr = 0xC0DCC0;
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

FrmStatistiche::FrmStatistiche(const ColumnStatistics &stats, const QString &tableWindowCaption, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmStatistiche"));
    setWindowTitle(statisticsCaption(tableWindowCaption));
    auto *layout = new QVBoxLayout(this);
    // The column described, by its header caption.
    auto *column = new QLabel(StatText::kColumn + stats.caption, this);
    column->setObjectName(QStringLiteral("lblColonna"));
    column->setWordWrap(true);
    layout->addWidget(column);
    m_grid = new QTableWidget(this);
    m_grid->setObjectName(QStringLiteral("flxgrdStat"));
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setFocusPolicy(Qt::NoFocus); // the close button keeps the focus
    m_grid->horizontalHeader()->hide();
    m_grid->verticalHeader()->hide();
    layout->addWidget(m_grid);

    auto *close = new QPushButton(StatText::kClose, this);
    close->setObjectName(QStringLiteral("cmdOk"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    layout->addLayout(row);

    createFlexStat(stats);
}

void FrmStatistiche::createFlexStat(const ColumnStatistics &stats)
{
    const QStringList names = statisticsRowNames();
    const QStringList values = statisticsValueTexts(stats);
    m_grid->setColumnCount(2);
    m_grid->setRowCount(int(names.size()));
    m_grid->setColumnWidth(0, twipsToPixels(this, kNameColumnTwips));
    m_grid->horizontalHeader()->setStretchLastSection(true);
    for (int r = 0; r < names.size(); ++r) {
        auto *name = new QTableWidgetItem(names[r]);
        name->setBackground(statisticsGridColor());
        m_grid->setItem(r, 0, name);
        auto *value = new QTableWidgetItem(values.value(r));
        value->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_grid->setItem(r, 1, value);
    }
    const int height = m_grid->rowHeight(0) * int(names.size()) + 2 * m_grid->frameWidth() + 2;
    m_grid->setMinimumHeight(height);
    m_grid->setMinimumWidth(twipsToPixels(this, kNameColumnTwips) * 2 + 2 * m_grid->frameWidth() + 2);
}

FrmStatistiche *openStatistics(QWidget *parent, const StatisticsRequest &request, const QString &tableWindowCaption)
{
    QProgressDialog wait(StatText::kWaitCaption, QString(), 0, kStatisticsSteps, parent);
    wait.setObjectName(QStringLiteral("WaitForStat"));
    wait.setWindowTitle(StatText::kWaitCaption);
    auto *bar = new QProgressBar(&wait);
    bar->setObjectName(QStringLiteral("ProgressBar1"));
    wait.setBar(bar);
    wait.setRange(0, kStatisticsSteps);
    wait.setMinimumDuration(0);
    wait.setWindowModality(Qt::WindowModal);
    wait.setValue(0);

    auto stats = computeStatistics(request, [&wait](int done) {
        wait.setValue(done);
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    });
    wait.close();
    if (!stats) {
        const bool refused = stats.error().code == kStatErrorNotNumeric || stats.error().code == kStatErrorNoColumn;
        showMessage(refused ? MsgStyle::Exclamation : MsgStyle::Critical, stats.errorMessage());
        return nullptr;
    }
    auto *window = new FrmStatistiche(*stats, tableWindowCaption, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowModality(Qt::WindowModal);
    window->show();
    return window;
}

FrmStatistiche *openStatisticsFor(QWidget *parent, const DbfWindowState &state)
{
    DbfFolder folder(state.folder);
    auto table = folder.table(state.table);
    if (!table) {
        showMessage(MsgStyle::Critical, table.errorMessage());
        return nullptr;
    }
    if (state.column < 0 || state.column >= table->columnCount()) {
        showMessage(MsgStyle::Exclamation, StatText::kNoColumn);
        return nullptr;
    }
    StatisticsRequest request{state.folder, state.table, state.filter, table->fields[state.column].name, QString()};
    const int shown = int(state.visibleFields.indexOf(request.field));
    request.caption = shown >= 0 ? state.visibleCaptions.value(shown, request.field) : request.field;
    return openStatistics(parent, request, state.caption);
}

} // namespace mervola
