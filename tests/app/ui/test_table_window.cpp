// The attribute table window of the municipalities, opened from the main
// window on the atlas of all Italy and driven through its controls: show on
// map, queries, categories, statistics, charts, the printed report and the
// search window.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmStatistiche.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/NumberText.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/LegendView.h"
#include "support/ModalDriver.h"
#include "support/RealAtlasWindow.h"
#include "support/TableWindowSteps.h"
#include "support/TestSupport.h"
#include "support/UiSupport.h"

#include <QAction>
#include <QChart>
#include <QChartView>
#include <QCollator>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QPlainTextEdit>
#include <QPrinterInfo>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QtTest>

using namespace mervola;
using mervola::test::clickHeader;
using mervola::test::clickRow;
using mervola::test::query;

namespace
{

// The main window as the table tests use it.
struct RealAtlasWindow : test::RealAtlasWindow {
    RealAtlasWindow() : test::RealAtlasWindow({}, QSize(1000, 700)) {}
    FrmDbf *openTable(const QString &layer)
    {
        activate(layer);
        window->dispatch(QStringLiteral("dbf"));
        return window->findChild<FrmDbf *>();
    }
    const map::MapLayer &layer(const QString &name) { return *window->mapWidget()->model().find(name); }
    QString selectedText(const QString &layerName, const QString &field)
    {
        const map::MapLayer &l = layer(layerName);
        if (l.selection.size() != 1)
            return QStringLiteral("%1 selezionati").arg(l.selection.size());
        return l.data->columns[size_t(l.data->columnIndex(field))].text(l.selection.front());
    }
};

int rowWhere(FrmDbf *table, const QString &field, const QString &value)
{
    const int c = table->table()->fieldIndex(field);
    for (int r = 0; r < table->grid()->model()->rowCount(); ++r)
        if (table->grid()->model()->index(r, c).data().toString() == value)
            return r;
    return -1;
}

QStringList visibleCaptions(FrmDbf *table)
{
    QStringList out;
    for (int c = 0; c < table->grid()->model()->columnCount(); ++c)
        if (!table->grid()->isColumnHidden(c))
            out << table->grid()->model()->headerData(c, Qt::Horizontal).toString();
    return out;
}

QString pdfText(const QString &path)
{
    QString out;
    test::runProgram(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")}, &out);
    return out;
}

} // namespace

class TestTableWindow : public QObject
{
    Q_OBJECT
private slots:
    // Two municipalities are called Castro: the one chosen in the table is
    // the one selected, found by its ISTAT code.
    void showOnMapSelectsTheChosenRowByItsCode()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        FrmDbf *table = a.openTable(QStringLiteral("comuni"));
        QVERIFY(table);
        QCOMPARE(table->windowTitle(), QStringLiteral("Tabella Comuni"));
        query(table, QStringLiteral("[Label] = 'Castro'"));
        QCOMPARE(table->grid()->model()->rowCount(), 2);
        const int bergamo = rowWhere(table, QStringLiteral("PROVINCIA"), QStringLiteral("Bergamo"));
        QVERIFY(bergamo >= 0);
        clickRow(table, bergamo);
        QTRY_COMPARE(table->findChild<QLabel *>(QStringLiteral("txtCountSel"))->text(), QStringLiteral("1"));
        table->command(QStringLiteral("onmap"))->trigger();
        QCOMPARE(a.selectedText(QStringLiteral("comuni"), QStringLiteral("COD_ISTAT")), QStringLiteral("016065"));
        QVERIFY(a.window->mapWidget()->extent().width() < 40000); // zoomed to one small municipality

        // A new query drops the selection, and the count says so at once.
        query(table, QStringLiteral("[PROVINCIA] = 'Bergamo'"));
        QCOMPARE(table->findChild<QLabel *>(QStringLiteral("txtCountSel"))->text(), QStringLiteral("0"));
    }

    // A category reloads the whole table and shows the base information and
    // its own indicators; numbers are written with the decimal comma.
    void categoriesStatisticsAndDecimalCommas()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        FrmDbf *table = a.openTable(QStringLiteral("comuni"));
        QVERIFY(table);
        const int aglie = rowWhere(table, QStringLiteral("Label"), QStringLiteral("Agliè"));
        QCOMPARE(table->grid()->model()->index(aglie, table->table()->fieldIndex(QStringLiteral("_01001"))).data(),
                 QVariant(QStringLiteral("13,1462")));
        query(table, QStringLiteral("[Label] = 'Castro'"));
        auto *categories = table->findChild<QComboBox *>(QStringLiteral("cboCategorieFormDbf"));
        categories->setFocus();
        QTest::keyClick(categories, Qt::Key_Down); // Territorio
        QTest::keyClick(categories, Qt::Key_Down); // Popolazione
        QCOMPARE(categories->currentText(), QStringLiteral("Popolazione"));
        QCOMPARE(table->findChild<QLabel *>(QStringLiteral("InfoSel"))->text(),
                 QStringLiteral("7899 record di 7899 selezionati."));
        QCOMPARE(visibleCaptions(table),
                 (QStringList{"Denominazione", "Codice ISTAT", "Codice provincia", "Provincia", "Codice regione",
                              "Codice comunità montana", "Popolazione residente 2022", "Popolazione legale 2001",
                              "Popolazione legale 2011", "Popolazione residente al 31/12/2019", "Maschi residenti 2022",
                              "Femmine residenti 2022"}));
        QTest::keyClick(categories, Qt::Key_Home); // INFORMAZIONI DI BASE: every column again
        QCOMPARE(visibleCaptions(table).size(), 25);

        clickHeader(table, QStringLiteral("_01001"));
        table->command(QStringLiteral("statistiche"))->trigger();
        FrmStatistiche *stats = table->findChild<FrmStatistiche *>();
        QVERIFY(stats);
        QCOMPARE(stats->findChild<QLabel *>(QStringLiteral("lblColonna"))->text(),
                 QStringLiteral("Colonna: Superficie territoriale (kmq)"));
        DbfFolder folder(QFileInfo(a.layer(QStringLiteral("comuni")).data->sourcePath).absolutePath());
        auto expected = folder.query(QStringLiteral("SELECT avg([_01001]), max([_01001]) FROM comuni"));
        QVERIFY(expected.ok());
        QCOMPARE(stats->grid()->item(5, 1)->text(), decimalText(expected->rows[0][0].toDouble(), 4)); // media
        QCOMPARE(stats->grid()->item(3, 1)->text(), decimalText(expected->rows[0][1].toDouble(), 4)); // massimo
        QVERIFY(stats->grid()->item(5, 1)->text().contains(QLatin1Char(',')));
        QVERIFY(stats->grid()->item(5, 1)->text().section(QLatin1Char(','), 1).size() <= 4);
        stats->close();
    }

    // A null value is left out of the chart, never drawn as 0.
    void chartLeavesNullValuesEmpty()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        FrmDbf *table = a.openTable(QStringLiteral("comuni"));
        QVERIFY(table);
        // Every comma of a condition is a decimal comma, so the rows are
        // named one by one.
        query(table, QStringLiteral("[Label] = 'Agliè' or [Label] = 'Airasca' or [Label] = 'Borgaro Torinese'"));
        QCOMPARE(table->grid()->model()->rowCount(), 3);
        table->command(QStringLiteral("grafico"))->trigger();
        clickRow(table, rowWhere(table, QStringLiteral("Label"), QStringLiteral("Agliè")));
        clickRow(table, rowWhere(table, QStringLiteral("Label"), QStringLiteral("Borgaro Torinese")),
                 Qt::ControlModifier);
        clickRow(table, rowWhere(table, QStringLiteral("Label"), QStringLiteral("Airasca")), Qt::ControlModifier);
        auto *indicator = table->findChild<QComboBox *>(QStringLiteral("cbonumeric"));
        indicator->setCurrentIndex(indicator->findData(QStringLiteral("_02011"))); // null for Borgaro
        auto *type = table->findChild<QComboBox *>(QStringLiteral("cboTipo"));
        type->setCurrentIndex(type->findText(QStringLiteral("Linee")));
        QTest::mouseClick(table->findChild<QPushButton *>(QStringLiteral("cmdGrafico")), Qt::LeftButton);
        FrmGrafico *chart = table->findChild<FrmGrafico *>();
        QVERIFY(chart && chart->chartView());
        QList<QPointF> points;
        int lines = 0;
        for (QAbstractSeries *s : chart->chartView()->chart()->series())
            if (auto *line = qobject_cast<QLineSeries *>(s)) {
                ++lines;
                points += line->points();
            }
        QCOMPARE(lines, 2); // the line breaks at the missing value
        QCOMPARE(points.size(), 2);
        QCOMPARE(points[0].x(), 0.0);
        QCOMPARE(points[1].x(), 2.0);
        for (const QPointF &p : points)
            QVERIFY(p.y() > 0);
        chart->close();
    }

    // The report prints the rows of the window in its order, every value
    // whole, and without a printer the preview still saves a PDF.
    void reportPrintsTheWindowsRowsInItsOrder()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        FrmDbf *table = a.openTable(QStringLiteral("comuni"));
        QVERIFY(table);
        query(table, QStringLiteral("[COD_REG] = '01'")); // Piemonte
        clickHeader(table, QStringLiteral("_02010"));
        table->command(QStringLiteral("sortDec"))->trigger();
        const bool printer = !QPrinterInfo::availablePrinters().isEmpty();
        const QString folder = a.dir.path() + QStringLiteral("/stampe");
        QDir().mkpath(folder);
        QString secondDialogFolder;
        MessageRecorder messages;
        test::onModal("mervola::ReportPreview", [&](QWidget *preview) {
            QCOMPARE(preview->findChild<QAction *>(QStringLiteral("print"))->isEnabled(), printer);
            test::onModal("QFileDialog", [&](QWidget *w) {
                // Typed without an extension; accepted once the dialog has
                // taken the name (its folder is read by a thread).
                test::typeIntoFileDialog(static_cast<QFileDialog *>(w), folder + QStringLiteral("/piemonte"));
            });
            preview->findChild<QAction *>(QStringLiteral("pdf"))->trigger();
            test::onModal("QFileDialog", [&](QWidget *w) {
                secondDialogFolder = static_cast<QFileDialog *>(w)->directory().absolutePath();
                static_cast<QFileDialog *>(w)->reject();
            });
            preview->findChild<QAction *>(QStringLiteral("pdf"))->trigger();
            static_cast<QDialog *>(preview)->reject();
        });
        table->command(QStringLiteral("stampa"))->trigger();
        if (!printer)
            QCOMPARE(
                messages.entries().value(0).text,
                QStringLiteral("Non è installata alcuna stampante. Impossibile visualizzare il preview di stampa"));
        QCOMPARE(secondDialogFolder, QDir(folder).absolutePath()); // the folder last used
        const QString pdf = folder + QStringLiteral("/piemonte.pdf");
        QVERIFY(QFileInfo::exists(pdf));
        const QString text = pdfText(pdf);
        QVERIFY2(text.contains(QStringLiteral("Torino")), qPrintable(text.left(2000)));
        QVERIFY(!text.contains(QStringLiteral("Milano"))); // only the query's rows
        // Sorted by population, largest first.
        QVERIFY(text.indexOf(QStringLiteral("Torino")) < text.indexOf(QStringLiteral("Novara")));
        QVERIFY(text.indexOf(QStringLiteral("Novara")) < text.indexOf(QStringLiteral("Alessandria")));
        // Whole values: population, ISTAT codes, decimals with the comma.
        for (const char *value : {"2562", "001001", "13,1462", "194,89"})
            QVERIFY2(text.contains(QLatin1String(value)), value);
        QVERIFY(!text.contains(QChar(0x2026))); // nothing shortened
    }

    // Names in alphabetical order, found without their accents.
    void searchListsNamesAlphabeticallyAndIgnoresAccents()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        a.activate(QStringLiteral("comuni"));
        QStringList names;
        test::onModal("mervola::FrmSearch", [&names](QWidget *search) {
            auto *features = search->findChild<QComboBox *>(QStringLiteral("cboFeatures"));
            for (int i = 0; i < features->count(); ++i)
                names << features->itemText(i);
            features->lineEdit()->clear();
            QTest::keyClicks(features->lineEdit(), QStringLiteral("Forli"));
            search->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
        });
        a.window->dispatch(QStringLiteral("cerca"));
        QVERIFY(names.size() > 7000);
        QCollator italian{QLocale(QLocale::Italian, QLocale::Italy)};
        italian.setCaseSensitivity(Qt::CaseInsensitive);
        for (int i = 1; i < names.size(); ++i)
            QVERIFY2(italian.compare(names[i - 1], names[i]) <= 0, qPrintable(names[i - 1] + " > " + names[i]));
        QCOMPARE(a.selectedText(QStringLiteral("comuni"), QStringLiteral("Label")), QStringLiteral("Forlì"));
    }
};

QTEST_MAIN(TestTableWindow)
#include "test_table_window.moc"
