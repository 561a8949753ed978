// Journeys of a statistician through the map, on one copy of the atlas of
// all Italy: a region classified, labelled, exported and saved, then the
// project opened again after a restart; a municipality found and asked
// about; unique values and limits of their own printed on the map page; a
// damaged project opened over a working map. Every step goes through the
// window's own menus, toolbar, dialogs and mouse.
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/FrmModFlx.h"
#include "data/ui/FrmSearch.h"
#include "journeys/JourneySteps.h"
#include "print/ui/FrmStampaNew.h"

#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidget>

using namespace mervola;
using namespace mervola::journey;
using classify::ClassificationDialog;

namespace
{

const QString kPopulation = QStringLiteral("Popolazione residente 2022");

std::uint32_t u32(const QByteArray &b, int at)
{
    return std::uint32_t(std::uint8_t(b[at])) | std::uint32_t(std::uint8_t(b[at + 1])) << 8 |
           std::uint32_t(std::uint8_t(b[at + 2])) << 16 | std::uint32_t(std::uint8_t(b[at + 3])) << 24;
}

// A text as an EMF text record holds it (UTF-16, little endian).
QByteArray utf16(const QString &text)
{
    return QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
}

// The class lines of the classification window's grid, as "label (count)".
QStringList gridLines(ClassificationDialog *d)
{
    QStringList out;
    auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
    for (int row = 0; row < grid->rowCount(); ++row)
        out << grid->item(row, ClassificationDialog::ColLabel)->text() + QStringLiteral(" (") +
                   grid->item(row, ClassificationDialog::ColElementi)->text() + QLatin1Char(')');
    return out;
}

QComboBox *box(QWidget *w, const char *name) { return w->findChild<QComboBox *>(QLatin1String(name)); }

// Prints the map page to `pdf` through the print window's "save as PDF".
void printPageToPdf(MainWindow &w, const QString &pdf, QString *title)
{
    test::whenModal<FrmStampaNew>([pdf, title](FrmStampaNew *page) {
        *title = page->findChild<QLineEdit *>(QStringLiteral("txtTitolo"))->text();
        answerFileDialog(pdf);
        page->findChild<QPushButton *>(QStringLiteral("cmdSalvaPdf"))->click();
        page->findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
    });
    press(w, QStringLiteral("mnuStampaMappa"));
}

} // namespace

class TestMapJourneys : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;
    // What the first journey left for the second: the project, the map
    // exported, the class lines of the legend.
    QString m_project, m_emf;
    QStringList m_classes;

    QString path(const QString &name) const { return m_dir.filePath(QStringLiteral("lavoro/") + name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_home = m_dir.filePath(QStringLiteral("atlante"));
        QVERIFY(test::copyRealAtlas(m_home));
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("lavoro"))));
    }

    // Piemonte, its municipalities by population in 7 quantiles, labelled
    // with their names, exported as EMF, saved as a project, then quit.
    void piemonteClassifiedLabelledExportedAndSaved()
    {
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        QCOMPARE(w->windowTitle(), QStringLiteral("Mervola"));
        QCOMPARE(regionBox(*w)->currentText(), QStringLiteral("<Tutta l'Italia>"));

        chooseRegion(*w, QStringLiteral("PIEMONTE"));
        QTRY_VERIFY(layer(*w, QStringLiteral("comu_01")));
        QCOMPARE(regionBox(*w)->currentText(), QStringLiteral("PIEMONTE"));
        QVERIFY(!layer(*w, QStringLiteral("comuni")));
        QCOMPARE(layer(*w, QStringLiteral("comu_01"))->data->featureCount(), 1179);

        QStringList inWindow;
        test::classifyThroughLegend(*w, QStringLiteral("comu_01"), [&](ClassificationDialog *d) {
            test::choose(box(d, "cboCampo"), kPopulation);
            test::choose(box(d, "cboTipoLegenda"), QStringLiteral("Classi"));
            test::choose(box(d, "cboMetodo"), QStringLiteral("Quantile"));
            test::choose(box(d, "cboClassi"), QStringLiteral("7"));
            inWindow = gridLines(d);
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY2(!inWindow.isEmpty(), shown(rec).constData());
        QCOMPARE(inWindow.size(), 7);
        QTRY_COMPARE(legendLines(*w, QStringLiteral("comu_01")), inWindow);
        QCOMPARE(totalCount(inWindow), 1179);
        for (const QString &line : inWindow) // quantiles: about a seventh each
            QVERIFY2(qAbs(classCount(line) - 1179 / 7) <= 12, qPrintable(line));
        const QString ini = QString::fromUtf8(test::readFile(m_home + QStringLiteral("/supporto/comu_01.ini")));
        QVERIFY2(ini.contains(QStringLiteral("\nTIPOCLASSIFICAZIONE=QUANTILE\n")), qPrintable(ini));
        QVERIFY(ini.contains(QStringLiteral("\nCAMPO=_02010^")));

        // Labels: the municipality names.
        QVERIFY(!w->action(QStringLiteral("mnuElimEtichette"))->isEnabled());
        onDialog("mervola::FrmLabelProperties", [](QWidget *d) {
            QCOMPARE(d->windowTitle(), QStringLiteral("Proprietà etichette - Comuni - Piemonte"));
            test::choose(box(d, "cboCampoLabel"), QStringLiteral("Denominazione"));
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        press(*w, QStringLiteral("mnuInsEtichette"));
        QTRY_VERIFY(w->action(QStringLiteral("mnuElimEtichette"))->isEnabled());
        QCOMPARE(layer(*w, QStringLiteral("comu_01"))->labels.field, QStringLiteral("Label"));

        // The map as a vector EMF, its labels written as text.
        m_emf = path(QStringLiteral("piemonte.emf"));
        answerFileDialog(path(QStringLiteral("piemonte")), QStringLiteral("Formato emf(*.emf)"));
        press(*w, QStringLiteral("mnuEsportaMappa"));
        const QByteArray emf = test::readFile(m_emf);
        QVERIFY2(emf.size() > 100000, qPrintable(QString::number(emf.size())));
        QCOMPARE(u32(emf, 0), 1u); // EMR_HEADER
        QCOMPARE(emf.mid(40, 4), QByteArray(" EMF"));
        for (const char *name : {"Torino", "Cuneo", "Alessandria"})
            QVERIFY2(emf.contains(utf16(QString::fromLatin1(name))), name);

        m_project = path(QStringLiteral("piemonte.rlx"));
        answerFileDialog(m_project);
        press(*w, QStringLiteral("mnuSalvaProgetto"));
        QCOMPARE(w->windowTitle(), QStringLiteral("Mervola - piemonte"));
        const QString project = QString::fromUtf8(test::readFile(m_project));
        QVERIFY2(project.contains(QStringLiteral("DBFCOMMONT=cmont_01^\n")), qPrintable(project));
        QVERIFY(project.contains(QStringLiteral("[COMU_01]\n")));
        QVERIFY(!project.contains(QStringLiteral("[comuni]"), Qt::CaseInsensitive));

        // Saved: leaving asks only whether to leave.
        rec.script(MsgAnswer::Yes);
        press(*w, QStringLiteral("mnuEsci"));
        QVERIFY(!w->isVisible());
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].text, QStringLiteral("Uscire dall'applicazione?"));
        m_classes = inWindow;
    }

    // A new start shows all Italy; the saved project brings back the same
    // region, classes, counts, labels and the same exported map.
    void savedProjectOpensTheSameMapAfterARestart()
    {
        if (m_project.isEmpty())
            QSKIP("needs the project of the journey before");
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        QCOMPARE(regionBox(*w)->currentText(), QStringLiteral("<Tutta l'Italia>"));
        QVERIFY(legendLines(*w, QStringLiteral("comuni")).isEmpty());

        answerFileDialog(m_project);
        press(*w, QStringLiteral("mnuApriProgetto"));
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
        QCOMPARE(w->windowTitle(), QStringLiteral("Mervola - piemonte"));
        QCOMPARE(regionBox(*w)->currentText(), QStringLiteral("PIEMONTE"));
        QCOMPARE(legendLines(*w, QStringLiteral("comu_01")), m_classes);
        QCOMPARE(layer(*w, QStringLiteral("comu_01"))->labels.field, QStringLiteral("Label"));
        // Made the active theme with a click, its labels can be removed.
        LegendView *legend = w->legend();
        QTest::mouseClick(legend->viewport(), Qt::LeftButton, {},
                          legend->visualItemRect(legend->topLevelItem(test::legendIndex(legend, QStringLiteral("comu_01"))))
                              .center());
        QCOMPARE(legend->activeLayerName(), QStringLiteral("comu_01"));
        QVERIFY(w->action(QStringLiteral("mnuElimEtichette"))->isEnabled());

        const QString again = path(QStringLiteral("piemonte-di-nuovo.emf"));
        answerFileDialog(again, QStringLiteral("Formato emf(*.emf)"));
        press(*w, QStringLiteral("mnuEsportaMappa"));
        QVERIFY(QFileInfo::exists(again));
        QVERIFY2(test::readFile(again) == test::readFile(m_emf), "the map exported after reopening differs");

        rec.script(MsgAnswer::Yes);
        press(*w, QStringLiteral("mnuEsci"));
        QVERIFY(!w->isVisible());
    }

    // "Trova" finds Agliè and shows it highlighted; the information tool
    // clicked on it lists its fields and selects its row in the open table.
    void municipalityFoundHighlightedAndIdentified()
    {
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        w->legend()->setActiveIndex(test::legendIndex(w->legend(), QStringLiteral("comuni")));
        onDialog("mervola::FrmSearch", [](QWidget *search) {
            auto *names = box(search, "cboFeatures");
            names->lineEdit()->clear();
            QTest::keyClicks(names->lineEdit(), QStringLiteral("Aglie"));
            search->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
        });
        press(*w, QStringLiteral("mnuTrova"));
        const map::MapLayer *comuni = layer(*w, QStringLiteral("comuni"));
        QCOMPARE(comuni->selection.size(), std::size_t(1));
        QCOMPARE(comuni->data->columns[size_t(comuni->data->columnIndex(QStringLiteral("COD_ISTAT")))].text(
                     comuni->selection.front()),
                 QStringLiteral("001001"));
        QTRY_VERIFY2(test::yellowPixels(w->mapWidget()->grab().toImage()) > 2000, "Agliè is not highlighted");

        // The table of the municipalities open beside the map.
        press(*w, QStringLiteral("mnuApriTabella"));
        auto *table = w->findChild<QDialog *>(QStringLiteral("frmDbf"));
        QVERIFY(table);
        QCOMPARE(table->windowTitle(), QStringLiteral("Tabella Comuni"));

        QStringList titles;
        QList<QPair<QString, QString>> fields;
        onDialog("mervola::FrmInfor", [&](QWidget *info) {
            auto *themes = info->findChild<QTableWidget *>(QStringLiteral("flexnome"));
            auto *list = info->findChild<QTreeWidget *>(QStringLiteral("ListView1"));
            for (int r = 0; r < themes->rowCount(); ++r) {
                QTest::mouseClick(themes->viewport(), Qt::LeftButton, {},
                                  themes->visualItemRect(themes->item(r, 0)).center());
                titles << info->windowTitle();
                if (themes->item(r, 0)->text() == QLatin1String("Comuni"))
                    for (int i = 0; i < list->topLevelItemCount(); ++i)
                        fields.append({list->topLevelItem(i)->text(0), list->topLevelItem(i)->text(1)});
            }
            static_cast<QDialog *>(info)->accept();
        });
        press(*w, QStringLiteral("info"));
        QVERIFY(w->action(QStringLiteral("info"))->isChecked());
        QTest::mouseClick(w->mapWidget(), Qt::LeftButton, {}, w->mapWidget()->rect().center());
        QVERIFY2(titles.contains(QStringLiteral("Informazioni su... Comuni")), qPrintable(titles.join('|')));
        QVERIFY(titles.contains(QStringLiteral("Informazioni su... Regioni")));
        QVERIFY(fields.contains({QStringLiteral("Denominazione"), QStringLiteral("Agliè")}));
        QVERIFY(fields.contains({QStringLiteral("Codice ISTAT"), QStringLiteral("001001")}));
        QVERIFY(fields.contains({QStringLiteral("Superficie territoriale (kmq)"), QStringLiteral("13,1462")}));
        QTRY_COMPARE(table->findChild<QLabel *>(QStringLiteral("txtCountSel"))->text(), QStringLiteral("1"));
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
        table->close();
    }

    // The mountain communities by their region's code (unique values), the
    // municipalities in three quantiles whose first class ends at limits of
    // the user's own; the printed page lists both legends and the counts.
    void uniqueValuesAndOwnLimitsOnThePrintedPage()
    {
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        QStringList communities, municipalities;
        test::classifyThroughLegend(*w, QStringLiteral("commont"), [&](ClassificationDialog *d) {
            test::choose(box(d, "cboCampo"), QStringLiteral("Codice regione"));
            QCOMPARE(box(d, "cboTipoLegenda")->currentText(), QStringLiteral("Valori unici"));
            communities = gridLines(d);
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY(!communities.isEmpty());
        QCOMPARE(legendLines(*w, QStringLiteral("commont")), communities);
        QCOMPARE(totalCount(communities), layer(*w, QStringLiteral("commont"))->data->featureCount());
        QVERIFY2(communities.contains(QStringLiteral("01 (37)")), qPrintable(communities.join('|')));

        test::classifyThroughLegend(*w, QStringLiteral("comuni"), [&](ClassificationDialog *d) {
            test::choose(box(d, "cboCampo"), kPopulation);
            test::choose(box(d, "cboTipoLegenda"), QStringLiteral("Classi"));
            test::choose(box(d, "cboMetodo"), QStringLiteral("Quantile"));
            test::choose(box(d, "cboClassi"), QStringLiteral("3"));
            auto *grid = d->findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
            test::whenModal<classify::FrmModFlx>([](classify::FrmModFlx *e) {
                auto *lower = e->findChild<QLineEdit *>(QStringLiteral("txtEstremoInferiore"));
                auto *upper = e->findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore"));
                lower->setText(QStringLiteral("0"));
                upper->setText(QStringLiteral("999"));
                e->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
            });
            test::doubleClick(grid->viewport(),
                              grid->visualItemRect(grid->item(0, ClassificationDialog::ColValore)).center());
            QCOMPARE(grid->item(0, ClassificationDialog::ColValore)->text(), QStringLiteral("0 - 999"));
            grid->item(0, ClassificationDialog::ColLabel)->setText(QStringLiteral("Sotto i mille abitanti"));
            municipalities = gridLines(d);
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_VERIFY2(!municipalities.isEmpty(), shown(rec).constData());
        QCOMPARE(legendLines(*w, QStringLiteral("comuni")), municipalities);
        QCOMPARE(municipalities.size(), 3);
        QVERIFY2(municipalities[0].startsWith(QStringLiteral("Sotto i mille abitanti (")), qPrintable(municipalities[0]));
        QCOMPARE(totalCount(municipalities), 7896); // Misiliscemi, Montecopiolo, Sassofeltrio have no value

        const QString pdf = path(QStringLiteral("pagina.pdf"));
        QString title;
        printPageToPdf(*w, pdf, &title);
        QCOMPARE(title, QStringLiteral("Mervola"));
        const QString page = test::pdfText(pdf);
        for (const QString &line : communities + municipalities)
            QVERIFY2(page.contains(line), qPrintable(line + QStringLiteral(" missing from:\n") + page));
        QVERIFY(page.contains(QStringLiteral("Scala 1:")));
        QVERIFY2(rec.entries().isEmpty(), shown(rec).constData());
    }

    // A project file zeroed by a power cut: its message, the project left alone, and the
    // initial map with every theme back and working.
    void damagedProjectLeavesAWorkingMap()
    {
        MessageRecorder rec;
        auto w = startWindow(m_home);
        QVERIFY(w);
        const QStringList themes = legendThemes(*w);
        const QString damaged = path(QStringLiteral("danneggiato.rlx"));
        // As a power cut leaves a file: its size, its bytes all zero.
        const QByteArray bytes(test::readFile(m_home + QStringLiteral("/supporto/default.rlx")).size(), '\0');
        QVERIFY(test::writeFile(damaged, bytes));

        answerFileDialog(damaged);
        press(*w, QStringLiteral("mnuApriProgetto"));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].style, MsgStyle::Critical);
        QCOMPARE(rec.entries()[0].text,
                 QStringLiteral("Il progetto non può essere aperto.\nSarà ripristinato il progetto iniziale."));
        QCOMPARE(test::readFile(damaged), bytes);
        QCOMPARE(w->windowTitle(), QStringLiteral("Mervola"));
        QCOMPARE(legendThemes(*w), themes);
        QVERIFY(w->isEnabled());

        // The map still works: a classification and a region switch.
        QStringList lines;
        test::classifyThroughLegend(*w, QStringLiteral("comuni"), [&](ClassificationDialog *d) {
            test::choose(box(d, "cboCampo"), kPopulation);
            lines = gridLines(d);
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        });
        QTRY_COMPARE(legendLines(*w, QStringLiteral("comuni")), lines);
        QCOMPARE(totalCount(lines), 7896);
        chooseRegion(*w, QStringLiteral("PUGLIA"));
        QTRY_VERIFY(layer(*w, QStringLiteral("comu_16")));
        QCOMPARE(rec.entries().size(), 1);
    }
};

QTEST_MAIN(TestMapJourneys)
#include "test_map_journeys.moc"
