// How well the classes fit, seen by the user on the atlas of all Italy: the
// GVF of the classification window, the natural breaks that become limits of
// the user's own, the method comparison, the histogram and the printed
// legend. The main window is shown offscreen and driven through its controls.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "classify/ClassFit.h"
#include "classify/ColumnReader.h"
#include "classify/NaturalBreaks.h"
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/HistogramWidget.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "print/ui/FrmStampaNew.h"
#include "support/FitSupport.h"
#include "support/UiSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

using namespace mervola;
using mervola::test::classifyThroughLegend;
using mervola::test::legendIndex;
using mervola::test::showLoaded;
using namespace mervola::classify;

namespace
{

const QString kPopulation = QStringLiteral("Popolazione residente 2022");

// GVF written out: every value in the first class whose upper limit (the
// number after " - " in the grid) is not below it, else in the last.
double directGvf(const std::vector<double> &values, const QStringList &valueTexts)
{
    std::vector<double> uppers;
    for (const QString &t : valueTexts)
        uppers.push_back(QLocale(QLocale::Italian).toDouble(t.section(QStringLiteral(" - "), 1)));
    return test::gvfByUpperLimits(values, uppers);
}

QString twoDecimals(double v)
{
    return QLocale(QLocale::Italian).toString(v, 'f', 2);
}

QStringList column(const QTableWidget *grid, int c)
{
    QStringList out;
    for (int row = 0; row < grid->rowCount(); ++row)
        out << grid->item(row, c)->text();
    return out;
}

} // namespace

class TestClassificationFit : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;
    std::vector<double> m_population; // the comuni values, ascending

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
        const Result<FieldColumn> pop =
            readFieldColumn(m_home.italia() + QStringLiteral("/comuni.dbf"), QStringLiteral("_02010"));
        QVERIFY(pop.ok());
        m_population = pop->sortedNumbers();
        QCOMPARE(int(m_population.size()), 7896); // three municipalities have no figure
    }

    void init() { appState().reset(); }

    void fitNaturalBreaksAndComparison()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        QStringList natural;
        bool done = false;
        classifyThroughLegend(w, QStringLiteral("comuni"), [&](ClassificationDialog *d) {
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboCampo")), kPopulation);
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboMetodo")), QStringLiteral("Quantile"));
            test::choose(d->findChild<QComboBox *>(QStringLiteral("cboClassi")), QStringLiteral("5"));
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            auto *gvf = d->findChild<QLabel *>(QStringLiteral("lblGvf"));
            QVERIFY(gvf->isVisible());
            const double quantileFit = directGvf(m_population, column(grid, ClassificationDialog::ColValore));
            QCOMPARE(gvf->text(), QStringLiteral("Bontà dell'adattamento (GVF): ") + twoDecimals(quantileFit));

            // The method list stays as it is; natural breaks come from the button.
            QCOMPARE(d->findChild<QComboBox *>(QStringLiteral("cboMetodo"))->count(), 2);
            d->findChild<QPushButton *>(QStringLiteral("cmdInterruzioniNaturali"))->click();
            const NaturalBreaksResult nb = naturalBreaks(m_population, 5);
            QCOMPARE(grid->rowCount(), 5);
            for (int row = 0; row < 5; ++row)
                QCOMPARE(grid->item(row, ClassificationDialog::ColValore)->text(),
                         rangeText(nb.lowers[size_t(row)], nb.uppers[size_t(row)]));
            natural = column(grid, ClassificationDialog::ColValore);
            const double naturalFit = directGvf(m_population, natural);
            QVERIFY(naturalFit > quantileFit);
            QCOMPARE(gvf->text(), QStringLiteral("Bontà dell'adattamento (GVF): ") + twoDecimals(naturalFit));
            int counted = 0;
            for (const QString &c : column(grid, ClassificationDialog::ColElementi))
                counted += c.toInt();
            QCOMPARE(counted, 7896);

            // "Confronta metodi": one row per class count from 2 to 5.
            auto *compare = d->findChild<QTableWidget *>(QStringLiteral("tblConfrontaMetodi"));
            QVERIFY(!compare->isVisible());
            d->findChild<QPushButton *>(QStringLiteral("cmdConfrontaMetodi"))->click();
            QVERIFY(compare->isVisible());
            QCOMPARE(compare->horizontalHeaderItem(3)->text(), QStringLiteral("Interruzioni naturali"));
            QCOMPARE(column(compare, 0), (QStringList{"2", "3", "4", "5"}));
            const QLocale it(QLocale::Italian);
            QCOMPARE(compare->item(3, 1)->text(), it.toString(quantileFit, 'f', 3));
            QCOMPARE(compare->item(3, 3)->text(), it.toString(naturalFit, 'f', 3));
            for (int row = 1; row < 4; ++row) // more classes never fit worse
                QVERIFY(it.toDouble(compare->item(row, 3)->text()) >= it.toDouble(compare->item(row - 1, 3)->text()));

            // Population spans four orders of magnitude: the log axis is offered.
            auto *log = d->findChild<QCheckBox *>(QStringLiteral("chkScalaLogaritmica"));
            QVERIFY(log->isEnabled());
            log->click();
            auto *histogram = d->findChild<HistogramWidget *>();
            QVERIFY(histogram->logarithmic());
            QList<int> classesSeen;
            for (const HistogramBin &b : histogram->bars())
                if (!classesSeen.contains(b.classIndex))
                    classesSeen << b.classIndex;
            QCOMPARE(classesSeen, (QList<int>{0, 1, 2, 3, 4})); // every class has its bars, in order
            d->resize(760, 720);
            test::snapshot(d, QStringLiteral("classificazione-gvf"));
            done = true;
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY(done);
        QVERIFY(rec.entries().isEmpty());
        const QString ini = QString::fromUtf8(test::readFile(m_home.supporto() + QStringLiteral("/comuni.ini")));
        QVERIFY2(ini.contains(QStringLiteral("\nTIPOCLASSIFICAZIONE=PERSONALI\n")), qPrintable(ini));

        // Opened again, the window shows the same limits, still the user's own.
        bool reopened = false;
        classifyThroughLegend(w, QStringLiteral("comuni"), [&](ClassificationDialog *d) {
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            QCOMPARE(column(grid, ClassificationDialog::ColValore), natural);
            QCOMPARE(d->classification().method, QStringLiteral("PERSONALI"));
            reopened = true;
            d->findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->click();
        });
        QTRY_VERIFY(reopened);

        // The printed legend carries the fit when asked for.
        w.legend()->topLevelItem(legendIndex(w.legend(), QStringLiteral("comuni")))->setCheckState(0, Qt::Checked);
        const QString expected =
            QStringLiteral("Bontà dell'adattamento (GVF): ") + twoDecimals(directGvf(m_population, natural));
        bool printed = false;
        const QString plain = m_dir.filePath(QStringLiteral("senza.pdf"));
        const QString withFit = m_dir.filePath(QStringLiteral("gvf.pdf"));
        test::whenModal<FrmStampaNew>([&](FrmStampaNew *page) {
            auto *fit = page->findChild<QCheckBox *>(QStringLiteral("chkGvf"));
            QVERIFY(!fit->isChecked());
            QVERIFY(page->savePdfTo(plain).ok());
            fit->click();
            QVERIFY(page->pageContent().legendFit);
            QVERIFY(page->savePdfTo(withFit).ok());
            test::snapshot(page, QStringLiteral("stampa-gvf"));
            printed = true;
            page->findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
        });
        w.dispatch(QStringLiteral("stampa"));
        QTRY_VERIFY(printed);
        QVERIFY(!test::pdfText(plain).contains(QStringLiteral("GVF")));
        const QString page = test::pdfText(withFit);
        QVERIFY2(page.contains(expected), qPrintable(expected + QStringLiteral(" missing from:\n") + page));
    }
};

QTEST_MAIN(TestClassificationFit)
#include "test_classification_fit.moc"
