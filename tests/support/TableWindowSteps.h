#pragma once
// Steps in the attribute table window as a user takes them: a query typed
// and run, rows and column headers clicked. Header-only: widget tests
// include it.

#include "data/ui/FrmDbf.h"
#include "support/ModalDriver.h"

#include <QAction>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace mervola::test
{

// Runs a condition through the table query window, as a user types it.
inline void query(FrmDbf *table, const QString &condition)
{
    onModal("mervola::QueryDbf", [condition](QWidget *q) {
        q->findChild<QPlainTextEdit *>(QStringLiteral("txt_query"))->setPlainText(condition);
        q->findChild<QPushButton *>(QStringLiteral("cmd_esegui"))->click();
        q->findChild<QPushButton *>(QStringLiteral("Command1_1"))->click();
    });
    table->command(QStringLiteral("query"))->trigger();
}

inline void clickRow(FrmDbf *table, int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTableView *grid = table->grid();
    grid->scrollTo(grid->model()->index(row, 0));
    const QRect cell = grid->visualRect(grid->model()->index(row, 0));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, cell.center());
}

inline void clickHeader(FrmDbf *table, const QString &field)
{
    const int c = table->table()->fieldIndex(field);
    QTableView *grid = table->grid();
    grid->scrollTo(grid->model()->index(0, c));
    QHeaderView *header = grid->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(c) + 4, header->height() / 2));
}

} // namespace mervola::test
