// The attribute table, the map and the chart show the same elements: rows
// selected in the table are highlighted on the map at once, an element
// clicked with the information tool becomes the selected row, and a chart
// opened from the table follows the selection. On the atlas of all Italy,
// the main window shown offscreen and driven through its controls.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmInfor.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "support/UiSupport.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>

using namespace mervola;
using mervola::test::legendIndex;
using mervola::test::yellowPixels;

namespace
{

// Clicks a grid row, with Shift held to extend the selection.
void clickRow(QTableView *grid, int row, Qt::KeyboardModifiers modifiers = {})
{
    const QModelIndex index = grid->model()->index(row, 1);
    grid->scrollTo(index);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, grid->visualRect(index).center());
}

std::vector<int> selectedRecords(const FrmDbf &table)
{
    std::vector<int> records;
    for (const QModelIndex &i : table.grid()->selectionModel()->selectedRows())
        records.push_back(table.table()->rows()[size_t(i.row())]);
    std::sort(records.begin(), records.end());
    return records;
}

} // namespace

class TestLinkedSelection : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

    // The main window on the real atlas with the table of `layer` open.
    FrmDbf *openTable(MainWindow &w, const QString &layer)
    {
        if (!test::showLoaded(w))
            return nullptr;
        const int index = legendIndex(w.legend(), layer);
        w.legend()->topLevelItem(index)->setCheckState(0, Qt::Checked); // the theme shown
        w.legend()->setActiveIndex(index);
        w.dispatch(QStringLiteral("dbf"));
        return currentAttributeWindow();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
    }

    void init() { appState().reset(); }

    void selectedRowsAreHighlightedOnTheMap()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        FrmDbf *table = openTable(w, QStringLiteral("comuni"));
        QVERIFY(table);
        // The user looks at the part of Italy where the first fifty rows lie.
        map::MapLayer *comuni = w.mapWidget()->model().find(QStringLiteral("comuni"));
        map::MapRect area = comuni->data->featureExtent(table->table()->rows()[0]);
        for (int row = 1; row < 50; ++row)
            area = area.united(comuni->data->featureExtent(table->table()->rows()[size_t(row)]));
        area.scale(1.3);
        w.mapWidget()->setExtent(area);
        const map::MapRect before = w.mapWidget()->extent();
        QTRY_VERIFY(w.mapWidget()->renderCount() > 0);
        QCOMPARE(yellowPixels(w.mapWidget()->grab().toImage()), 0);
        const int renders = w.mapWidget()->renderCount();

        clickRow(table->grid(), 0);
        clickRow(table->grid(), 49, Qt::ShiftModifier);
        const std::vector<int> rows = selectedRecords(*table);
        QCOMPARE(int(rows.size()), 50);
        QCOMPARE(comuni->selection, rows); // at once, with no button pressed
        for (const map::MapLayer &l : w.mapWidget()->model().layers())
            if (l.name != QStringLiteral("comuni"))
                QVERIFY(l.selection.empty());
        QTRY_VERIFY(yellowPixels(w.mapWidget()->grab().toImage()) > 5000);
        // The view stays put and the themes are not drawn again: only the
        // highlight goes on the picture of the layers.
        QCOMPARE(w.mapWidget()->extent(), before);
        QCOMPARE(w.mapWidget()->renderCount(), renders);
        test::snapshot(&w, QStringLiteral("cinquanta-comuni"));

        // Thousands of rows: every one highlighted, the themes still not redrawn.
        clickRow(table->grid(), 2999, Qt::ShiftModifier);
        QCOMPARE(comuni->selection.size(), std::size_t(3000));
        QCOMPARE(comuni->selection, selectedRecords(*table));
        QTRY_VERIFY(yellowPixels(w.mapWidget()->grab().toImage()) > 0);
        QCOMPARE(w.mapWidget()->renderCount(), renders);
        clickRow(table->grid(), 0);
        clickRow(table->grid(), 49, Qt::ShiftModifier);

        // Fewer rows: fewer highlighted elements; none selected, none drawn.
        const int fifty = yellowPixels(w.mapWidget()->grab().toImage());
        clickRow(table->grid(), 3);
        QCOMPARE(comuni->selection, std::vector<int>{table->table()->rows()[3]});
        QTRY_VERIFY(yellowPixels(w.mapWidget()->grab().toImage()) < fifty);
        table->grid()->clearSelection();
        QVERIFY(comuni->selection.empty());
        QTRY_COMPARE(yellowPixels(w.mapWidget()->grab().toImage()), 0);
        QVERIFY(rec.entries().isEmpty());
        table->close();
    }

    void informationClickSelectsTheRow()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        FrmDbf *table = openTable(w, QStringLiteral("comuni"));
        QVERIFY(table);
        map::MapLayer *comuni = w.mapWidget()->model().find(QStringLiteral("comuni"));
        const auto found = map::findFeatures(*comuni->data, QStringLiteral("Label = 'Torino'"));
        QVERIFY(found && found->size() == 1);
        const int torino = found->front();
        // Sorted by name, Torino is far from the top of the grid.
        QVERIFY(table->table()->rows()[0] != torino);

        w.action(QStringLiteral("info"))->trigger();
        bool shown = false;
        test::whenModal<FrmInfor>([&](FrmInfor *info) {
            shown = true;
            QCOMPARE(selectedRecords(*table), std::vector<int>{torino});
            info->reject();
        });
        const QPoint at = w.mapWidget()->toWidgetPoint(map::labelPoint(*comuni->data, torino));
        QTest::mouseClick(w.mapWidget(), Qt::LeftButton, {}, at);
        QTRY_VERIFY(shown);
        QCOMPARE(selectedRecords(*table), std::vector<int>{torino});
        QCOMPARE(comuni->selection, std::vector<int>{torino});
        const QModelIndex row = table->grid()->selectionModel()->selectedRows().value(0);
        QVERIFY(table->grid()->viewport()->rect().intersects(table->grid()->visualRect(row))); // scrolled to it
        table->close();
    }

    void chartFollowsTheSelection()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        FrmDbf *table = openTable(w, QStringLiteral("comuni"));
        QVERIFY(table);
        clickRow(table->grid(), 0);
        clickRow(table->grid(), 2, Qt::ShiftModifier);
        table->runCommand(QStringLiteral("grafico"));
        auto *indicator = table->findChild<QComboBox *>(QStringLiteral("cbonumeric"));
        test::choose(indicator, QStringLiteral("Popolazione residente 2022"));
        table->findChild<QPushButton *>(QStringLiteral("cmdGrafico"))->click();
        FrmGrafico *chart = table->findChild<FrmGrafico *>();
        QVERIFY(chart);
        QCOMPARE(chart->series().points.size(), 3);

        clickRow(table->grid(), 4, Qt::ShiftModifier); // rows 0 to 4
        QStringList expected;
        for (int row = 0; row < 5; ++row)
            expected << table->table()->value(row, table->table()->fieldIndex(QStringLiteral("Label"))).toString();
        QTRY_COMPARE(chart->series().points.size(), 5);
        QStringList labels;
        for (const ChartPoint &p : chart->series().points)
            labels << p.label;
        QCOMPARE(labels, expected);
        // Beyond what a chart shows (ten rows) the chart keeps its picture.
        clickRow(table->grid(), 20, Qt::ShiftModifier);
        QTest::qWait(250);
        QCOMPARE(chart->series().points.size(), 5);
        QVERIFY(rec.entries().isEmpty());
        chart->close();
        table->close();
    }
};

QTEST_MAIN(TestLinkedSelection)
#include "test_linked_selection.moc"
