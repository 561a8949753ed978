// The printed map page window and its text editors, offscreen.
#include "../test_map_page_fixture.h"
#include "platform/Messages.h"
#include "print/ui/FrmFont.h"
#include "print/ui/FrmStampaNew.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

// Answers the next modal frmFont by choosing `family` (or cancelling when empty).
void answerFontDialog(const QString &family)
{
    QTimer::singleShot(0, [family] {
        auto *dlg = qobject_cast<FrmFont *>(QApplication::activeModalWidget());
        QVERIFY(dlg);
        if (family.isEmpty()) {
            dlg->findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->click();
            return;
        }
        const auto items = dlg->list()->findItems(family, Qt::MatchExactly);
        QVERIFY(!items.isEmpty());
        dlg->list()->setCurrentItem(items.front());
        dlg->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
}

}  // namespace

class TestPrintDialog : public QObject {
    Q_OBJECT
private slots:
    void opensWithItsControls()
    {
        FrmStampaNew dlg(stripePage(QPageLayout::Portrait));
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        QCOMPARE(dlg.findChild<QLineEdit *>(QStringLiteral("txtTitolo"))->text(), QStringLiteral("Comunità montane"));
        QVERIFY(dlg.findChild<QPlainTextEdit *>(QStringLiteral("txtTesto")));
        QVERIFY(dlg.findChild<QRadioButton *>(QStringLiteral("optVerticale"))->isChecked());
        QVERIFY(!dlg.findChild<QRadioButton *>(QStringLiteral("optOrizzontale"))->isChecked());
        QVERIFY(dlg.findChild<QPrintPreviewWidget *>(QStringLiteral("picAnteprima")));
        const QStringList buttons{"cmdFontTitolo", "cmdModMappa", "cmdModTesto", "cmdStampa", "cmdSalvaPdf",
                                  "cmdChiudi"};
        for (const QString &name : buttons) {
            auto *b = dlg.findChild<QPushButton *>(name);
            QVERIFY2(b, qPrintable(name));
            QVERIFY2(b->text().contains(QLatin1Char('&')), qPrintable(name));  // reachable from the keyboard
        }
        QCOMPARE(dlg.findChild<QPushButton *>(QStringLiteral("cmdStampa"))->text().remove(QLatin1Char('&')),
                 QStringLiteral("Stampa..."));
        QCOMPARE(dlg.findChild<QPushButton *>(QStringLiteral("cmdSalvaPdf"))->text().remove(QLatin1Char('&')),
                 QStringLiteral("Salva PDF..."));
        QCOMPARE(dlg.findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->text().remove(QLatin1Char('&')),
                 QStringLiteral("Chiudi"));
        dlg.findChild<QPushButton *>(QStringLiteral("cmdChiudi"))->click();
        QVERIFY(!dlg.isVisible());
    }

    void editsChangeTheWindowsPageOnly()
    {
        const MapPageContent original = stripePage(QPageLayout::Portrait);
        FrmStampaNew dlg(original);
        dlg.show();
        auto *title = dlg.findChild<QLineEdit *>(QStringLiteral("txtTitolo"));
        title->selectAll();
        QTest::keyClicks(title, QStringLiteral("Popolazione"));
        dlg.findChild<QPlainTextEdit *>(QStringLiteral("txtTesto"))->setPlainText(QStringLiteral("Fonte: ISTAT"));
        dlg.findChild<QRadioButton *>(QStringLiteral("optOrizzontale"))->click();
        QCOMPARE(dlg.pageContent().title, QStringLiteral("Popolazione"));
        QCOMPARE(dlg.pageContent().freeText, QStringLiteral("Fonte: ISTAT"));
        QCOMPARE(dlg.pageContent().orientation, QPageLayout::Landscape);
        QCOMPARE(dlg.preview()->orientation(), QPageLayout::Landscape);
        QCOMPARE(original.title, QStringLiteral("Comunità montane"));
    }

    void titleFontWithoutInstalledFontsIsRefused()
    {
        MessageRecorder recorder;
        FrmStampaNew dlg(stripePage(QPageLayout::Portrait));
        dlg.setFontFamiliesSource([] { return QStringList(); });
        dlg.findChild<QPushButton *>(QStringLiteral("cmdFontTitolo"))->click();
        QVERIFY(recorder.contains(QStringLiteral("Non è installato alcun font nel sistema")));
        QCOMPARE(recorder.entries().front().title, QStringLiteral("Mervola"));
        QCOMPARE(dlg.pageContent().titleFont, QStringLiteral("Arial"));
    }

    void titleFontIsChosenOrKept_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("font");
        QTest::newRow("chosen") << "Serif Uno" << "Serif Uno";
        QTest::newRow("cancelled") << QString() << "Arial";
    }
    void titleFontIsChosenOrKept()
    {
        QFETCH(QString, answer);
        QFETCH(QString, font);
        FrmStampaNew dlg(stripePage(QPageLayout::Portrait));
        dlg.setFontFamiliesSource([] { return QStringList{"Arial", "Serif Uno", "Mono Due"}; });
        answerFontDialog(answer);
        dlg.findChild<QPushButton *>(QStringLiteral("cmdFontTitolo"))->click();
        QCOMPARE(dlg.pageContent().titleFont, font);
        QVERIFY(dlg.findChild<QLabel *>(QStringLiteral("lblFontTitolo"))->text().startsWith(font));
    }

    void savedPdfStartsWithItsSignature()
    {
        QTemporaryDir dir;
        FrmStampaNew dlg(stripePage(QPageLayout::Landscape));
        const QString path = dir.filePath(QStringLiteral("pagina.pdf"));
        QVERIFY(dlg.savePdfTo(path).ok());
        QCOMPARE(readFile(path).left(4), QByteArray("%PDF"));
    }

    void titleEditorRenamesVisibleThemesOnly()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Portrait);
        MapPageTheme hidden;
        hidden.alias = QStringLiteral("Comuni");
        hidden.visible = false;
        pageContent.legend.insert(pageContent.legend.begin(), hidden);
        FrmModMappa dlg(pageContent, [] { return QStringList{"Arial"}; });
        auto *grid = dlg.findChild<QTableWidget *>(QStringLiteral("grdLegenda"));
        QCOMPARE(grid->rowCount(), 1);
        grid->item(0, 0)->setText(QStringLiteral("Comunità"));
        dlg.findChild<QLineEdit *>(QStringLiteral("txtTitolo"))->setText(QStringLiteral("Nuovo titolo"));
        const MapPageContent out = dlg.result(pageContent);
        QCOMPARE(out.title, QStringLiteral("Nuovo titolo"));
        QCOMPARE(out.legend[0].alias, QStringLiteral("Comuni"));
        QCOMPARE(out.legend[1].alias, QStringLiteral("Comunità"));
    }

    void textEditorGivesTextAndFont()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Portrait);
        FrmModTesto dlg(pageContent, [] { return QStringList{"Arial", "Mono Due"}; });
        dlg.findChild<QPlainTextEdit *>(QStringLiteral("txtTesto"))->setPlainText(QStringLiteral("riga 1\nriga 2"));
        answerFontDialog(QStringLiteral("Mono Due"));
        dlg.findChild<QPushButton *>(QStringLiteral("cmdFont"))->click();
        const MapPageContent out = dlg.result(pageContent);
        QCOMPARE(out.freeText, QStringLiteral("riga 1\nriga 2"));
        QCOMPARE(out.textFont, QStringLiteral("Mono Due"));
    }
};

QTEST_MAIN(TestPrintDialog)
#include "test_print_dialog.moc"
