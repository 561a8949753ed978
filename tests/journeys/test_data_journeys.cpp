// Journeys of a statistician through the tables and the program's start, on
// copies of the atlas of all Italy: the municipalities' table queried,
// sorted, charted, summarised and printed; a text file of every
// municipality joined, classified on and removed again; a second copy of
// the program started on a home in use; a damaged settings file and a
// missing folder met at start-up.
#include "app/ui/AppStart.h"
#include "app/ui/SplashWindow.h"
#include "classify/ui/ClassificationDialog.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/FrmGrafico.h"
#include "data/ui/FrmStatistiche.h"
#include "journeys/JourneySteps.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/NumberText.h"
#include "project/ui/ListMdb.h"
#include "support/JoinWizardSteps.h"
#include "support/TableWindowSteps.h"

#include <QBarSet>
#include <QBarSeries>
#include <QChart>
#include <QChartView>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTableWidget>

using namespace mervola;
using namespace mervola::journey;
using mervola::test::clickHeader;
using mervola::test::clickRow;
using mervola::test::query;

namespace
{

QString cell(FrmDbf *table, int row, const QString &field)
{
    return table->grid()->model()->index(row, table->table()->fieldIndex(field)).data().toString();
}

QString label(QWidget *w, const char *name) { return w->findChild<QLabel *>(QLatin1String(name))->text(); }

// The municipalities' table window, opened from the legend and the menu.
FrmDbf *openComuni(MainWindow &w)
{
    LegendView *legend = w.legend();
    const QPoint at = legend->visualItemRect(legend->topLevelItem(test::legendIndex(legend, QStringLiteral("comuni"))))
                          .center();
    QTest::mouseClick(legend->viewport(), Qt::LeftButton, {}, at);
    press(w, QStringLiteral("mnuApriTabella"));
    return w.findChild<FrmDbf *>();
}

// Starts the program as its main() does and waits for the main window.
bool startAsMainDoes(AppStart &start)
{
    if (start.begin())
        return false;
    return QTest::qWaitFor([&] { return start.mainWindow() && start.mainWindow()->isVisible(); }, 20000) &&
           !start.splash()->isVisible();
}

// The program itself on `home`, as a second copy a user starts; messages
// go to stderr.
int runProgram(const QString &home, QString *err)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("MERVOLA_NONINTERACTIVE"), QStringLiteral("1"));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(MERVOLA_APP), {QStringLiteral("--home"), home, QStringLiteral("--quit-after-start")});
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        return -1;
    }
    *err = QString::fromUtf8(p.readAllStandardError());
    return p.exitCode();
}

} // namespace

class TestDataJourneys : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home; // shared by the journeys that leave the tables as they found them

    QString freshHome()
    {
        const QString home = m_dir.filePath(QString::fromLatin1(QTest::currentTestFunction()));
        return test::copyRealAtlas(home) ? home : QString();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_home = m_dir.filePath(QStringLiteral("atlante"));
        QVERIFY(test::copyRealAtlas(m_home));
    }

    // The municipalities of Piemonte queried, sorted by population, charted,
    // summarised and printed to a PDF report.
    void tableQueriedSortedChartedSummarisedAndPrinted()
    {
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        FrmDbf *table = openComuni(*w);
        QVERIFY(table);
        QCOMPARE(table->windowTitle(), QStringLiteral("Tabella Comuni"));
        QCOMPARE(table->grid()->model()->rowCount(), 7899);
        QCOMPARE(label(table, "InfoSel"), QStringLiteral("7899 record di 7899 selezionati."));

        query(table, QStringLiteral("[COD_REG] = '01'"));
        QCOMPARE(table->grid()->model()->rowCount(), 1179);
        QCOMPARE(label(table, "InfoSel"), QStringLiteral("1179 record di 7899 selezionati.      (7899 elementi nella tabella originaria)"));

        clickHeader(table, QStringLiteral("_02010"));
        table->command(QStringLiteral("sortDec"))->trigger();
        const QStringList first = {cell(table, 0, QStringLiteral("Label")), cell(table, 1, QStringLiteral("Label")),
                                   cell(table, 2, QStringLiteral("Label"))};
        QCOMPARE(first, (QStringList{"Torino", "Novara", "Alessandria"}));

        // The three largest charted as bars, values straight from the table.
        table->command(QStringLiteral("grafico"))->trigger();
        clickRow(table, 0);
        clickRow(table, 1, Qt::ControlModifier);
        clickRow(table, 2, Qt::ControlModifier);
        QTRY_COMPARE(label(table, "txtCountSel"), QStringLiteral("3"));
        auto *indicator = table->findChild<QComboBox *>(QStringLiteral("cbonumeric"));
        indicator->setCurrentIndex(indicator->findData(QStringLiteral("_02010")));
        test::choose(table->findChild<QComboBox *>(QStringLiteral("cboTipo")), QStringLiteral("Barre"));
        QTest::mouseClick(table->findChild<QPushButton *>(QStringLiteral("cmdGrafico")), Qt::LeftButton);
        FrmGrafico *chart = table->findChild<FrmGrafico *>();
        QVERIFY(chart && chart->chartView());
        QList<qreal> bars;
        for (QAbstractSeries *s : chart->chartView()->chart()->series())
            if (auto *series = qobject_cast<QBarSeries *>(s))
                for (QBarSet *set : series->barSets())
                    for (int i = 0; i < set->count(); ++i)
                        bars << set->at(i);
        QList<qreal> populations;
        for (int r = 0; r < 3; ++r)
            populations << cell(table, r, QStringLiteral("_02010")).toDouble();
        QCOMPARE(bars, populations);
        chart->close();

        // Statistics of the population column, checked against the table.
        clickHeader(table, QStringLiteral("_02010"));
        table->command(QStringLiteral("statistiche"))->trigger();
        FrmStatistiche *stats = table->findChild<FrmStatistiche *>();
        QVERIFY(stats);
        QCOMPARE(label(stats, "lblColonna"), QStringLiteral("Colonna: Popolazione residente 2022"));
        DbfFolder folder(m_home + QStringLiteral("/italia"));
        auto expected = folder.query(
            QStringLiteral("SELECT count([_02010]), sum([_02010]), max([_02010]) FROM comuni WHERE [COD_REG] = '01'"));
        QVERIFY(expected.ok());
        QHash<QString, QString> values;
        for (int r = 0; r < stats->grid()->rowCount(); ++r)
            values.insert(stats->grid()->item(r, 0)->text(), stats->grid()->item(r, 1)->text());
        QCOMPARE(values.value(QStringLiteral("conteggio")), QStringLiteral("1179"));
        QCOMPARE(values.value(QStringLiteral("somma")), decimalText(expected->rows[0][1].toDouble(), 4));
        QCOMPARE(values.value(QStringLiteral("massimo")), cell(table, 0, QStringLiteral("_02010")));
        stats->close();

        // The report of the window's rows, in its order, saved as PDF.
        const QString pdf = m_dir.filePath(QStringLiteral("piemonte.pdf"));
        bool previewShown = false;
        onDialog("mervola::ReportPreview", [&](QWidget *preview) {
            previewShown = true;
            answerFileDialog(pdf);
            preview->findChild<QAction *>(QStringLiteral("pdf"))->trigger();
            static_cast<QDialog *>(preview)->reject();
        });
        table->command(QStringLiteral("stampa"))->trigger();
        QVERIFY(previewShown);
        QVERIFY(QFileInfo::exists(pdf));
        const QString text = test::pdfText(pdf);
        QVERIFY2(text.indexOf(QStringLiteral("Torino")) >= 0, qPrintable(text.left(2000)));
        QVERIFY(text.indexOf(QStringLiteral("Torino")) < text.indexOf(QStringLiteral("Novara")));
        QVERIFY(text.indexOf(QStringLiteral("Novara")) < text.indexOf(QStringLiteral("Alessandria")));
        QVERIFY(!text.contains(QStringLiteral("Milano")));
        for (const auto &e : rec.entries()) // only the note that no printer is installed
            QCOMPARE(e.text, QStringLiteral("Non è installata alcuna stampante. Impossibile visualizzare il preview di stampa"));
        table->close();
    }

    // A text file of every municipality joined on the ISTAT code, the
    // municipalities classified on a joined column, the join removed: the
    // table and its folder are byte for byte as before.
    void joinedTextFileClassifiedAndRemovedLeavesTheTableAsItWas()
    {
        MessageRecorder rec;
        const QString home = freshHome();
        QVERIFY(!home.isEmpty());
        const QString italia = home + QStringLiteral("/italia");
        const QMap<QString, QByteArray> before = test::folderSnapshot(italia);
        const QList<test::Municipality> all = test::municipalities(home);
        QCOMPARE(all.size(), 7899);
        const QString csv = m_dir.filePath(QStringLiteral("utente/abitanti.txt"));
        QVERIFY(test::writeFile(csv, test::spreadsheetCsv(all, QLatin1Char(';'), false)));

        auto w = startWindow(home);
        QVERIFY(w);
        FrmDbf *table = openComuni(*w);
        QVERIFY(table);
        bool joined = false;
        test::whenModal<ListMdb>([&](ListMdb *wizard) {
            wizard->findChild<QRadioButton *>(QStringLiteral("rb_Text"))->click();
            answerFileDialog(csv);
            wizard->findChild<QPushButton *>(QStringLiteral("cmd_avanti"))->click();
            QCOMPARE(wizard->step(), 2);
            test::joinOnIstatCodes(wizard);
            joined = true;
        });
        table->command(QStringLiteral("join"))->trigger();
        QVERIFY(joined);
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
        QCOMPARE(table->windowTitle(), QStringLiteral("Tabella Comuni (collegata con dati esterni)"));
        QCOMPARE(table->grid()->model()->columnCount(), 29);
        QVERIFY(test::readFile(italia + QStringLiteral("/comuni.dbf")) != before.value(QStringLiteral("/comuni.dbf")));
        table->close();

        // Every municipality found its row: the classes count all 7,899.
        QStringList lines;
        test::classifyThroughLegend(*w, QStringLiteral("comuni"), [&](classify::ClassificationDialog *d) {
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboCampo")), QStringLiteral("Abitanti"));
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboClassi")), QStringLiteral("4"));
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            for (int r = 0; r < grid->rowCount(); ++r)
                lines << grid->item(r, classify::ClassificationDialog::ColLabel)->text() + QStringLiteral(" (") +
                             grid->item(r, classify::ClassificationDialog::ColElementi)->text() + QLatin1Char(')');
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_COMPARE(legendLines(*w, QStringLiteral("comuni")), lines);
        QCOMPARE(lines.size(), 4);
        QCOMPARE(totalCount(lines), 7899);

        press(*w, QStringLiteral("mnuElimJoin"));
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
        QVERIFY(legendLines(*w, QStringLiteral("comuni")).isEmpty());
        QCOMPARE(firstDifference(before, test::folderSnapshot(italia)), QString());
        table = openComuni(*w);
        QVERIFY(table);
        QCOMPARE(table->windowTitle(), QStringLiteral("Tabella Comuni"));
        QCOMPARE(table->grid()->model()->columnCount(), 25);
        table->close();
    }

    // A second copy on a home in use is refused with its message and writes
    // nothing, while the first copy goes on; once that one is closed the
    // program starts again.
    void secondCopyIsRefusedWhileTheFirstWorks()
    {
        MessageRecorder rec;
        appState().reset();
        auto start = std::make_unique<AppStart>(AtlasHome(m_home), appState());
        QVERIFY(startAsMainDoes(*start));
        MainWindow &w = *start->mainWindow();
        test::classifyThroughLegend(w, QStringLiteral("comuni"), [&](classify::ClassificationDialog *d) {
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboCampo")),
                         QStringLiteral("Popolazione residente 2022"));
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY(!legendLines(w, QStringLiteral("comuni")).isEmpty());
        const QStringList legend = legendLines(w, QStringLiteral("comuni"));
        const QMap<QString, QByteArray> files = test::folderSnapshot(m_home);

        QString err;
        QCOMPARE(runProgram(m_home, &err), 1);
        QVERIFY2(err.contains(QStringLiteral("L'applicazione è già in esecuzione.")), qPrintable(err));
        QCOMPARE(firstDifference(files, test::folderSnapshot(m_home)), QString());
        QVERIFY(w.isVisible());
        QCOMPARE(legendLines(w, QStringLiteral("comuni")), legend);

        rec.script(MsgAnswer::No); // do not save the classification
        press(w, QStringLiteral("mnuEsci"));
        QVERIFY(!w.isVisible());
        QCOMPARE(rec.entries().last().text, QStringLiteral("Salvare le modifiche al progetto?"));
        start.reset();
        QCOMPARE(runProgram(m_home, &err), 0);
        QVERIFY2(!err.contains(QStringLiteral("già in esecuzione")), qPrintable(err));
    }

    // A settings file damaged on disk: the program starts with every other
    // theme, names the file, leaves it as it is; mended, it is back.
    void damagedSettingsFileCostsItsThemeOnly()
    {
        const QString home = freshHome();
        QVERIFY(!home.isEmpty());
        const QString pristine = home + QStringLiteral("/originali/citta.ini");
        const QByteArray good = test::readFile(pristine);
        const QByteArray damaged = good.left(good.size() / 3) + QByteArray("\0\0\0\xff", 4);
        QVERIFY(test::writeFile(pristine, damaged));
        {
            MessageRecorder rec;
            appState().reset();
            AppStart start(AtlasHome(home), appState());
            QVERIFY(startAsMainDoes(start));
            QCOMPARE(rec.entries().size(), 1);
            QCOMPARE(rec.entries()[0].style, MsgStyle::Critical);
            QCOMPARE(rec.entries()[0].text,
                     QStringLiteral("Il tema citta non è stato caricato. Il file delle impostazioni %1/supporto/citta.ini "
                                    "non indica lo shapefile del tema (chiave BASE).")
                         .arg(home));
            QCOMPARE(legendThemes(*start.mainWindow()),
                     (QStringList{"Province", "Comunità montane", "Comuni", "Regioni"}));
            QCOMPARE(test::readFile(pristine), damaged);
            rec.script(MsgAnswer::Yes);
            start.mainWindow()->close();
        }
        QVERIFY(test::writeFile(pristine, good));
        MessageRecorder rec;
        appState().reset();
        AppStart start(AtlasHome(home), appState());
        QVERIFY(startAsMainDoes(start));
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
        QCOMPARE(legendThemes(*start.mainWindow()).size(), 5);
        rec.script(MsgAnswer::Yes);
        start.mainWindow()->close();
    }

    // Folders gone: a project whose themes' folder was moved away is refused
    // with the reason and the initial map stays; an atlas without its
    // pristine folder is named and the program ends without writing.
    void missingFoldersAreNamed()
    {
        const QString home = freshHome();
        QVERIFY(!home.isEmpty());
        const QString moved = m_dir.filePath(QStringLiteral("spostato"));
        QString project = QString::fromUtf8(test::readFile(home + QStringLiteral("/supporto/default.rlx")));
        project.replace(home + QStringLiteral("/italia/"), moved + QStringLiteral("/italia/"));
        const QString rlx = m_dir.filePath(QStringLiteral("spostato.rlx"));
        QVERIFY(test::writeFile(rlx, project.toUtf8()));
        {
            MessageRecorder rec;
            auto w = startWindow(home);
            QVERIFY(w);
            const QStringList themes = legendThemes(*w);
            answerFileDialog(rlx);
            press(*w, QStringLiteral("mnuApriProgetto"));
            QCOMPARE(rec.entries().size(), 1);
            QCOMPARE(rec.entries()[0].text,
                     QStringLiteral("Il progetto non può essere aperto.\nSarà ripristinato il progetto iniziale."));
            QCOMPARE(rec.entries()[0].details, QStringLiteral("Shapefile non trovato: regioni.shp"));
            QCOMPARE(w->windowTitle(), QStringLiteral("Mervola"));
            QCOMPARE(legendThemes(*w), themes);
            QVERIFY(!QFileInfo::exists(moved));
        }

        QVERIFY(QDir(home + QStringLiteral("/originali")).removeRecursively());
        const QMap<QString, QByteArray> files = test::folderSnapshot(home);
        QString err;
        QCOMPARE(runProgram(home, &err), 1);
        QVERIFY2(err.contains(QStringLiteral("Cartella non trovata: ") + home + QStringLiteral("/originali")),
                 qPrintable(err));
        QCOMPARE(firstDifference(files, test::folderSnapshot(home)), QString());
        QVERIFY(!QFileInfo::exists(home + QStringLiteral("/.mervola.lock")));
    }
};

QTEST_MAIN(TestDataJourneys)
#include "test_data_journeys.moc"
