#pragma once
// frmStatistiche: the statistics of one column of the attribute window, in a
// two-column grid (statistic, value), and WaitForStat, the small progress
// window shown while they are computed.
//
// The attribute window refuses too few records and tables without numbers
// itself, then asks its host; the host answers with openStatisticsFor().

#include "data/Statistics.h"

#include <QDialog>

class QTableWidget;

namespace mervola
{

class FrmStatistiche : public QDialog
{
    Q_OBJECT
public:
    FrmStatistiche(const ColumnStatistics &stats, const QString &tableWindowCaption, QWidget *parent = nullptr);

    QTableWidget *grid() const { return m_grid; }

private:
    void createFlexStat(const ColumnStatistics &stats);

    QTableWidget *m_grid = nullptr;
};

// The grid's fixed colour, C0DCC0 in blue-green-red order.
QColor statisticsGridColor();

// Computes the statistics with WaitForStat on screen. A column without
// numbers gives the exclamation box, a database error the critical box;
// both return nullptr. Otherwise the window is shown (modal to `parent`,
// deleted on close) and returned.
FrmStatistiche *openStatistics(QWidget *parent, const StatisticsRequest &request, const QString &tableWindowCaption);

struct DbfWindowState;
// The same for the attribute window's state: its table, filter, current
// column (index into the table's fields) and that column's header caption.
FrmStatistiche *openStatisticsFor(QWidget *parent, const DbfWindowState &state);

} // namespace mervola
