// What the user sees on the atlas of all Italy: the found element on the
// screen, in an exported picture and on the printed page; the classes of
// the classification window, the legend panel and the printed page; the
// navigation history; the exported metafile; the font list. The main window
// is shown offscreen and driven through its own controls and dialogs.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/FrmModFlx.h"
#include "data/ui/FrmSearch.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "print/ui/FrmFont.h"
#include "print/ui/FrmStampaNew.h"
#include "support/UiSupport.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QtTest>
#include <functional>

using namespace mervola;
using mervola::test::classifyThroughLegend;
using mervola::test::choose;
using mervola::test::doubleClick;
using mervola::test::legendIndex;
using mervola::test::pdfText;
using mervola::test::showLoaded;
using mervola::test::snapshot;
using mervola::test::whenModal;
using mervola::test::yellowPixels;

namespace {

// Answers the next file dialog with `path`, the file type `filter` chosen.
void answerFileDialog(const QString &path, const QString &filter = QString())
{
    whenModal<QFileDialog>([path, filter](QFileDialog *d) { mervola::test::typeIntoFileDialog(d, path, filter); });
}

QStringList legendLines(const LegendView *legend, const QString &layer)
{
    QStringList out;
    if (const QTreeWidgetItem *item = legend->topLevelItem(legendIndex(legend, layer)))
        for (int c = 0; c < item->childCount(); ++c)
            out << item->child(c)->text(0);
    return out;
}

// The messages shown so far, for a failing check.
QByteArray messages(const MessageRecorder &rec)
{
    QStringList texts;
    for (const auto &e : rec.entries())
        texts << e.text;
    return texts.join(QStringLiteral(" | ")).toUtf8();
}

QImage pdfImage(const QString &pdf)
{
    const QString base = pdf + QStringLiteral("-pagina");
    test::runProgram(QStringLiteral("pdftoppm"),
                     {QStringLiteral("-r"), QStringLiteral("60"), QStringLiteral("-png"), QStringLiteral("-singlefile"), pdf, base});
    return QImage(base + QStringLiteral(".png"));
}

// Prints the map page of the window to `pdf` through the print window.
void printToPdf(MainWindow &w, const QString &pdf)
{
    whenModal<FrmStampaNew>([pdf](FrmStampaNew *page) {
        answerFileDialog(pdf);
        page->findChild<QPushButton *>(QStringLiteral("cmdSalvaPdf"))->click();
        page->findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
    });
    w.dispatch(QStringLiteral("stampa"));
}

// The "Scala 1:..." line of a page's text.
QString scaleLine(const QString &text)
{
    for (const QString &line : text.split(QLatin1Char('\n')))
        if (line.trimmed().startsWith(QStringLiteral("Scala 1:")))
            return line.trimmed();
    return {};
}

void snapshotPdf(const QString &pdf, const QString &name)
{
    const QString dir = qEnvironmentVariable("MERVOLA_SCREENSHOT_DIR");
    if (!dir.isEmpty())
        pdfImage(pdf).save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

std::uint32_t u32(const QByteArray &b, int at)
{
    return std::uint32_t(std::uint8_t(b[at])) | std::uint32_t(std::uint8_t(b[at + 1])) << 8 |
           std::uint32_t(std::uint8_t(b[at + 2])) << 16 | std::uint32_t(std::uint8_t(b[at + 3])) << 24;
}

// A copy of a font file whose maker (the OS/2 vendor) is `vendor`: the
// system then holds its family from two foundries.
QByteArray withVendor(QByteArray font, const QByteArray &vendor)
{
    const int tables = (std::uint8_t(font[4]) << 8) | std::uint8_t(font[5]);
    for (int i = 0; i < tables; ++i) {
        const int at = 12 + 16 * i;
        if (font.mid(at, 4) == "OS/2") {
            const int offset = int((std::uint32_t(std::uint8_t(font[at + 8])) << 24) | (std::uint8_t(font[at + 9]) << 16) |
                                   (std::uint8_t(font[at + 10]) << 8) | std::uint8_t(font[at + 11]));
            font.replace(offset + 58, 4, vendor);
        }
    }
    return font;
}

}  // namespace

class TestViewRealAtlas : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
    }

    void init() { appState().reset(); }

    void foundMunicipalityIsDrawnAboveEveryTheme()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        LegendView *legend = w.legend();
        for (int i = 0; i < legend->entryCount(); ++i)
            legend->topLevelItem(i)->setCheckState(0, Qt::Checked);
        // The mountain communities lie above the municipalities.
        QVERIFY(legendIndex(legend, QStringLiteral("commont")) < legendIndex(legend, QStringLiteral("comuni")));
        legend->setActiveIndex(legendIndex(legend, QStringLiteral("comuni")));
        whenModal<FrmSearch>([](FrmSearch *s) {
            auto *names = s->findChild<QComboBox *>(QStringLiteral("cboFeatures"));
            names->setCurrentIndex(names->findText(QStringLiteral("Bardonecchia")));
            s->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
        });
        w.dispatch(QStringLiteral("cerca"));
        QCOMPARE(w.mapWidget()->model().find(QStringLiteral("comuni"))->selection.size(), std::size_t(1));

        QTRY_VERIFY2(yellowPixels(w.mapWidget()->grab().toImage()) > 2000, "on the screen");
        snapshot(&w, QStringLiteral("trovato"));

        const QString bmp = m_dir.filePath(QStringLiteral("trovato.bmp"));
        answerFileDialog(bmp, QStringLiteral("Formato bmp (*.bmp)"));
        w.dispatch(QStringLiteral("esporta"));
        QVERIFY2(yellowPixels(QImage(bmp)) > 2000, "in the exported picture");

        const QString pdf = m_dir.filePath(QStringLiteral("trovato.pdf"));
        printToPdf(w, pdf);
        QVERIFY2(QFile::exists(pdf), qPrintable(QDir(m_dir.path()).entryList().join(QLatin1Char(' '))));
        snapshotPdf(pdf, QStringLiteral("trovato-pagina"));
        QVERIFY2(yellowPixels(pdfImage(pdf)) > 500, "on the printed page");
        QVERIFY(rec.entries().isEmpty());
    }

    // For every method the class texts and counts of the window are those
    // of the legend panel and of the printed page.
    void windowLegendAndPageAgree_data()
    {
        QTest::addColumn<QString>("region");
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("legendType");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("classes");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QStringList>("limits");
        const QString pop = QStringLiteral("Popolazione residente 2022");
        QTest::newRow("quantili") << "" << "commont" << pop << "Classi" << "Quantile" << "5" << "Poco popolate"
                                  << QStringList();
        QTest::newRow("intervalli regolari") << "" << "commont" << pop << "Classi" << "Intervalli regolari" << "4"
                                             << "" << QStringList();
        QTest::newRow("limiti dell'utente") << "" << "commont" << pop << "Classi" << "Quantile" << "3"
                                            << "Fino a 15.645 abitanti" << QStringList{"8000", "15645"};
        QTest::newRow("valori unici decimali") << "PIEMONTE" << "cmont_01" << "Quota di donne sulla popolazione 2022 (%)"
                                               << "Valori unici" << "" << "" << "" << QStringList();
        QTest::newRow("valori unici di un testo") << "" << "commont" << "Codice regione" << "" << "" << ""
                                                  << "Regione" << QStringList();
    }
    void windowLegendAndPageAgree()
    {
        QFETCH(QString, region);
        QFETCH(QString, layer);
        QFETCH(QString, field);
        QFETCH(QString, legendType);
        QFETCH(QString, method);
        QFETCH(QString, classes);
        QFETCH(QString, label);
        QFETCH(QStringList, limits);
        MessageRecorder rec;
        rec.script(MsgAnswer::Yes);
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        if (!region.isEmpty()) {
            auto *regions = w.findChild<QComboBox *>(QStringLiteral("cboRegioni"));
            choose(regions, region);
        }
        QStringList shown;
        bool done = false;
        classifyThroughLegend(w, layer, [&](classify::ClassificationDialog *d) {
            auto *tipo = d->findChild<QComboBox *>(QStringLiteral("cboTipoLegenda"));
            choose(d->findChild<QComboBox *>(QStringLiteral("cboCampo")), field);
            if (legendType.isEmpty()) {
                // A text field can only be shown by unique values.
                QCOMPARE(tipo->currentText(), QStringLiteral("Valori unici"));
                QVERIFY(!qobject_cast<QStandardItemModel *>(tipo->model())->item(0)->isEnabled());
            } else {
                choose(tipo, legendType);
            }
            if (!method.isEmpty())
                choose(d->findChild<QComboBox *>(QStringLiteral("cboMetodo")), method);
            if (!classes.isEmpty())
                choose(d->findChild<QComboBox *>(QStringLiteral("cboClassi")), classes);
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            QVERIFY(grid->rowCount() > 1);
            if (!limits.isEmpty()) {
                whenModal<classify::FrmModFlx>([&limits](classify::FrmModFlx *e) {
                    auto *lower = e->findChild<QLineEdit *>(QStringLiteral("txtEstremoInferiore"));
                    auto *upper = e->findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore"));
                    e->activateWindow();
                    QVERIFY(QTest::qWaitForWindowActive(e));
                    lower->setFocus();
                    QTRY_VERIFY(lower->hasFocus()); // a loaded machine activates late
                    lower->selectAll();
                    QTest::keyClicks(lower, limits[0]);
                    // Leaving a whole lower limit puts its successor in the upper box.
                    QTest::mouseClick(upper, Qt::LeftButton);
                    QTRY_COMPARE(upper->text(), QString::number(limits[0].toInt() + 1));
                    upper->selectAll();
                    QTest::keyClicks(upper, limits[1]);
                    QTest::mouseClick(e->findChild<QPushButton *>(QStringLiteral("cmdOk")), Qt::LeftButton);
                });
                const QRect cell = grid->visualItemRect(grid->item(0, classify::ClassificationDialog::ColValore));
                doubleClick(grid->viewport(), cell.center());
                QCOMPARE(grid->item(0, classify::ClassificationDialog::ColValore)->text(),
                         limits[0] + QStringLiteral(" - ") + limits[1]);
            }
            if (!label.isEmpty())
                grid->item(0, classify::ClassificationDialog::ColLabel)->setText(label);
            for (int row = 0; row < grid->rowCount(); ++row)
                shown << grid->item(row, classify::ClassificationDialog::ColLabel)->text() + QStringLiteral(" (")
                             + grid->item(row, classify::ClassificationDialog::ColElementi)->text() + QLatin1Char(')');
            snapshot(d, QStringLiteral("classificazione-") + QString::fromLatin1(QTest::currentDataTag()));
            done = true;
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY2(done, messages(rec).constData());
        if (!label.isEmpty())
            QVERIFY(shown.first().startsWith(label + QStringLiteral(" (")));
        // Every element of the theme is in one class.
        int total = 0;
        for (const QString &s : shown)
            total += s.section(QLatin1Char('('), -1).chopped(1).toInt();
        QCOMPARE(total, w.mapWidget()->model().find(layer)->data->featureCount());

        QTRY_COMPARE(legendLines(w.legend(), layer), shown);

        const QString pdf = m_dir.filePath(QStringLiteral("legenda.pdf"));
        QFile::remove(pdf);
        printToPdf(w, pdf);
        const QString page = pdfText(pdf);
        snapshot(&w, QStringLiteral("legenda-") + QString::fromLatin1(QTest::currentDataTag()));
        snapshotPdf(pdf, QStringLiteral("pagina-") + QString::fromLatin1(QTest::currentDataTag()));
        for (const QString &line : shown)
            QVERIFY2(page.contains(line), qPrintable(line + QStringLiteral(" missing from:\n") + page));
    }

    void refusedUniqueValuesPutTheLegendTypeBack()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        QStringList shown;
        classifyThroughLegend(w, QStringLiteral("comuni"), [&](classify::ClassificationDialog *d) {
            auto *tipo = d->findChild<QComboBox *>(QStringLiteral("cboTipoLegenda"));
            auto *metodo = d->findChild<QComboBox *>(QStringLiteral("cboMetodo"));
            choose(d->findChild<QComboBox *>(QStringLiteral("cboCampo")), QStringLiteral("Popolazione residente 2022"));
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            const int rows = grid->rowCount();
            choose(tipo, QStringLiteral("Valori unici"));
            QCOMPARE(rec.entries().size(), 1);
            QCOMPARE(rec.entries()[0].text, QStringLiteral("Attenzione!\nSono presenti più di 500 valori differenti.\n"
                                                           "L'operazione di classificazione mediante il criterio "
                                                           "dei Valori Unici non è possibile."));
            QCOMPARE(tipo->currentText(), QStringLiteral("Classi"));
            QVERIFY(metodo->isEnabled());
            QCOMPARE(grid->rowCount(), rows);
            for (int row = 0; row < rows; ++row)
                shown << grid->item(row, classify::ClassificationDialog::ColLabel)->text() + QStringLiteral(" (")
                             + grid->item(row, classify::ClassificationDialog::ColElementi)->text() + QLatin1Char(')');
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY(!shown.isEmpty());
        const QString ini = QString::fromUtf8(test::readFile(m_home.supporto() + QStringLiteral("/comuni.ini")));
        QVERIFY2(ini.contains(QStringLiteral("\nTIPOCLASSIFICAZIONE=QUANTILE\n")), qPrintable(ini));
        QCOMPARE(legendLines(w.legend(), QStringLiteral("comuni")), shown);
    }

    void cancellingTheLimitsEditorAsksNothingMore()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        bool done = false;
        classifyThroughLegend(w, QStringLiteral("commont"), [&](classify::ClassificationDialog *d) {
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            const QString before = grid->item(0, classify::ClassificationDialog::ColValore)->text();
            const QString lower = before.section(QStringLiteral(" - "), 0, 0);
            whenModal<classify::FrmModFlx>([&rec, lower](classify::FrmModFlx *e) {
                auto *upper = e->findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore"));
                e->activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(e));
                upper->setFocus();
                upper->clear();
                QTest::keyClicks(upper, QStringLiteral("1"));
                QTest::keyClick(upper, Qt::Key_Tab);
                QCOMPARE(rec.entries().size(), 1);
                QCOMPARE(rec.entries()[0].text, QStringLiteral("ATTENZIONE! Inserire un valore superiore a ") + lower);
                e->findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->click();
            });
            const QRect cell = grid->visualItemRect(grid->item(0, classify::ClassificationDialog::ColValore));
            doubleClick(grid->viewport(), cell.center());
            QVERIFY(!d->findChild<classify::FrmModFlx *>() || !d->findChild<classify::FrmModFlx *>()->isVisible());
            QCOMPARE(grid->item(0, classify::ClassificationDialog::ColValore)->text(), before);
            done = true;
            d->findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->click();
        });
        QTRY_VERIFY(done);
        QCOMPARE(rec.entries().size(), 1);
    }

    void previewAndPdfPrintTheSameScale()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        const QString pdf = m_dir.filePath(QStringLiteral("scala.pdf"));
        const QString preview = m_dir.filePath(QStringLiteral("anteprima.pdf"));
        whenModal<FrmStampaNew>([&](FrmStampaNew *page) {
            // The preview's own printer, written to a file at its resolution.
            QPrinter *printer = nullptr;
            auto *view = page->findChild<QPrintPreviewWidget *>(QStringLiteral("picAnteprima"));
            const auto c = connect(view, &QPrintPreviewWidget::paintRequested, [&printer](QPrinter *p) { printer = p; });
            view->updatePreview();
            QObject::disconnect(c);
            QVERIFY(printer);
            printer->setOutputFormat(QPrinter::PdfFormat);
            printer->setOutputFileName(preview);
            view->print();
            answerFileDialog(pdf);
            page->findChild<QPushButton *>(QStringLiteral("cmdSalvaPdf"))->click();
            page->findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
        });
        w.dispatch(QStringLiteral("stampa"));
        const QString printed = scaleLine(pdfText(pdf));
        QVERIFY2(printed.startsWith(QStringLiteral("Scala 1:")), qPrintable(pdfText(pdf)));
        QCOMPARE(scaleLine(pdfText(preview)), printed);
    }

    void zoomInClickThatMovesAPixelIsAClick()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        MapWidget *map = w.mapWidget();
        QTRY_VERIFY(!w.scaleText().isEmpty());  // the scale box is filled once the map is shown
        const map::MapRect before = map->extent();
        w.action(QStringLiteral("zoomin"))->trigger();
        QTest::mousePress(map, Qt::LeftButton, {}, QPoint(300, 300));
        QTest::mouseMove(map, QPoint(300, 301));
        QTest::mouseRelease(map, Qt::LeftButton, {}, QPoint(300, 301));
        QCOMPARE(w.history().count(), 1);
        QVERIFY(qAbs(map->extent().width() - 0.7 * before.width()) < 1e-6 * before.width());
        w.dispatch(QStringLiteral("zoomprec"));
        QVERIFY(qAbs(map->extent().width() - before.width()) < 1e-6 * before.width());
        QVERIFY(!w.action(QStringLiteral("zoomprec"))->isEnabled());
        // A command that leaves the view as it is records nothing.
        w.dispatch(QStringLiteral("totale"));
        const int recorded = w.history().count();
        w.dispatch(QStringLiteral("totale"));
        QCOMPARE(w.history().count(), recorded);
    }

    void emfChosenByItsFileTypeKeepsThinOutlines()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        const QString name = m_dir.filePath(QStringLiteral("mappa"));
        answerFileDialog(name, QStringLiteral("Formato emf(*.emf)"));
        w.dispatch(QStringLiteral("esporta"));
        QVERIFY(rec.entries().isEmpty());
        QVERIFY(!QFile::exists(name));
        const QByteArray emf = test::readFile(name + QStringLiteral(".emf"));
        QVERIFY(emf.size() > 1000);
        QCOMPARE(u32(emf, 0), 1u);             // EMR_HEADER
        QCOMPARE(emf.mid(40, 4), QByteArray(" EMF"));
        QList<int> widths;
        for (int at = 0; at + 8 <= emf.size();) {
            const std::uint32_t type = u32(emf, at), size = u32(emf, at + 4);
            if (type == 38)  // EMR_CREATEPEN: width at 16, in logical units (16 a pixel)
                widths << int(u32(emf, at + 16));
            QVERIFY(size >= 8);
            at += int(size);
        }
        QVERIFY(!widths.isEmpty());
        QVERIFY2(!widths.contains(0), "a pen of width 0");
        QVERIFY2(widths.contains(10), "the 0.6 pixel outline of the themes");
    }

    void fontListNamesEachFamilyOnce()
    {
        const QByteArray dejavu = test::readFile(QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
        if (dejavu.isEmpty())
            QSKIP("DejaVu Sans is not installed");
        QVERIFY(QFontDatabase::addApplicationFontFromData(withVendor(dejavu, "MRVL")) >= 0);
        QVERIFY2(QFontDatabase::families().filter(QStringLiteral("DejaVu Sans [")).size() >= 1,
                 qPrintable(QFontDatabase::families().join(QLatin1Char('|'))));
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        QStringList listed;
        whenModal<FrmStampaNew>([&listed](FrmStampaNew *page) {
            whenModal<FrmFont>([&listed](FrmFont *f) {
                for (int i = 0; i < f->list()->count(); ++i)
                    listed << f->list()->item(i)->text();
                f->list()->setCurrentItem(f->list()->findItems(QStringLiteral("DejaVu Sans"), Qt::MatchExactly).value(0));
                f->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
            });
            page->findChild<QPushButton *>(QStringLiteral("cmdFontTitolo"))->click();
            QCOMPARE(page->findChild<QLabel *>(QStringLiteral("lblFontTitolo"))->text(), QStringLiteral("DejaVu Sans, 20 pt"));
            page->findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
        });
        w.dispatch(QStringLiteral("stampa"));
        QVERIFY(listed.contains(QStringLiteral("DejaVu Sans")));
        QCOMPARE(listed.filter(QStringLiteral("[")), QStringList());
        QCOMPARE(QSet<QString>(listed.begin(), listed.end()).size(), listed.size());
    }
};

QTEST_MAIN(TestViewRealAtlas)
#include "test_view_real_atlas.moc"
