// The main window on the atlas of all Italy, on a 1024 x 768 screen, used
// from the keyboard: tools from the menu, Tab order, the region box, F1,
// message box mnemonics; the names and numbers the windows show; Italian in
// the standard dialogs.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "platform/ui/MessageBoxPresenter.h"
#include "platform/ui/ScreenFit.h"
#include "platform/ui/Translations.h"
#include "project/ReferenceDb.h"
#include "support/ModalDriver.h"
#include "support/RealAtlasWindow.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace mervola;

namespace
{

using test::RealAtlasWindow;

bool inside(const QRect &outer, const QRect &inner)
{
    return outer.contains(inner);
}

} // namespace

class TestKeyboardAndNames : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        // The program installs Qt's Italian texts at start-up; so does the test.
        QVERIFY2(installItalian(), "Qt's Italian translations are missing (Debian package qt6-translations-l10n)");
        QCOMPARE(QGuiApplication::primaryScreen()->geometry().size(), QSize(1024, 768));
    }

    void windowsOpenWithinASmallScreen()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QVERIFY(inside(screen, a.window->frameGeometry()));
        QWidget *scale = a.child("txtScala");
        QVERIFY(scale->isVisible());
        QVERIFY(inside(screen, QRect(scale->mapToGlobal(QPoint(0, 0)), scale->size())));
        QRect printWindow;
        test::onModal("mervola::FrmStampaNew", [&printWindow](QWidget *w) {
            printWindow = w->frameGeometry();
            w->close();
        });
        a.window->dispatch(QStringLiteral("stampa"));
        QVERIFY(!printWindow.isEmpty());
        QVERIFY(inside(screen, printWindow));
    }

    void toolsHelpAndTabFromTheKeyboard()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        MainWindow &w = *a.window;
        // The map tools are menu items with access keys.
        auto *view = w.menuBar()->findChild<QMenu *>(QStringLiteral("mnuVisualizza"));
        QStringList captions;
        for (QAction *item : view->actions())
            captions << item->text();
        for (const char *c : {"Zoom in p&roporzionale", "Zoom o&ut proporzionale", "I&nformazioni"})
            QVERIFY2(captions.contains(QString::fromUtf8(c)), c);
        QCOMPARE(w.action(QStringLiteral("info"))->toolTip(), QStringLiteral("Informazioni"));

        // Tab: legend, map, region box, scale box; the map shows its focus.
        w.legend()->setFocus();
        QTRY_VERIFY(w.legend()->hasFocus());
        QTest::keyClick(w.legend(), Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(w.mapWidget()));
        QCOMPARE(a.child("fraMappa")->property("focusMark").toBool(), true);
        QCOMPARE(w.mapWidget()->accessibleName(), QStringLiteral("Mappa"));
        QCOMPARE(w.legend()->accessibleName(), QStringLiteral("Legenda"));
        QTest::keyClick(w.mapWidget(), Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget(), a.child("cboRegioni"));
        QCOMPARE(a.child("fraMappa")->property("focusMark").toBool(), false);
        QTest::keyClick(a.child("cboRegioni"), Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget(), a.child("txtScala"));

        // F1 opens the help.
        bool helpShown = false;
        test::onModal("mervola::HelpWindow", [&helpShown](QWidget *help) {
            helpShown = true;
            help->close();
        });
        QTest::keyClick(&w, Qt::Key_F1);
        QVERIFY(helpShown);
    }

    // Arrows move through the region box; Enter loads the region.
    void regionBoxLoadsOnEnter()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        auto *regions = static_cast<QComboBox *>(a.child("cboRegioni"));
        const int layers = a.window->mapWidget()->model().layerCount();
        regions->setFocus();
        QTest::keyClick(regions, Qt::Key_Down);
        QTest::keyClick(regions, Qt::Key_Down);
        QCOMPARE(regions->currentIndex(), 2);
        QCOMPARE(a.window->mapWidget()->model().layerCount(), layers); // nothing loaded yet
        const QString code = regions->currentData().toString();
        QTest::keyClick(regions, Qt::Key_Return);
        QVERIFY(a.window->mapWidget()->model().find(QStringLiteral("comu_") + code));
    }

    // The information tool from the keyboard: Enter asks about the centre of
    // the map. Titles and field names are the ones the legend and the
    // indicators use; numbers have the decimal comma.
    void informationWindowNamesAndNumbers()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        QVERIFY(a.window->selectAndZoom(QStringLiteral("comuni"), {QStringLiteral("Label = 'Agliè'")}));
        auto *view = a.window->menuBar()->findChild<QMenu *>(QStringLiteral("mnuVisualizza"));
        for (QAction *item : view->actions())
            if (item->objectName() == QLatin1String("info"))
                item->trigger();
        QVERIFY(a.window->action(QStringLiteral("info"))->isChecked());
        QStringList titles;
        QList<QPair<QString, QString>> comuneFields, otherFields;
        test::onModal("mervola::FrmInfor", [&](QWidget *info) {
            auto *themes = info->findChild<QTableWidget *>(QStringLiteral("flexnome"));
            auto *fields = info->findChild<QTreeWidget *>(QStringLiteral("ListView1"));
            titles << info->windowTitle();
            for (int r = 0; r < themes->rowCount(); ++r) {
                const QRect cell = themes->visualItemRect(themes->item(r, 0));
                QTest::mouseClick(themes->viewport(), Qt::LeftButton, {}, cell.center());
                titles << info->windowTitle();
                auto &target = themes->item(r, 0)->text() == QLatin1String("Comuni") ? comuneFields : otherFields;
                for (int i = 0; i < fields->topLevelItemCount(); ++i)
                    target.append({fields->topLevelItem(i)->text(0), fields->topLevelItem(i)->text(1)});
            }
            info->close();
        });
        a.window->mapWidget()->setFocus();
        QTest::keyClick(a.window->mapWidget(), Qt::Key_Return);
        QVERIFY(titles.contains(QStringLiteral("Informazioni su... Comuni")));
        QVERIFY(titles.contains(QStringLiteral("Informazioni su... Regioni")));
        QVERIFY(comuneFields.contains({QStringLiteral("Denominazione"), QStringLiteral("Agliè")}));
        QVERIFY(comuneFields.contains({QStringLiteral("Superficie territoriale (kmq)"), QStringLiteral("13,1462")}));
        QVERIFY(
            comuneFields.contains({QStringLiteral("Densità di popolazione 2022 (ab/kmq)"), QStringLiteral("194,89")}));
        // The regions are not an indicator layer: their fields keep their names.
        QVERIFY(otherFields.contains({QStringLiteral("COD_REG"), QStringLiteral("01")}));

        // The coordinates of the cursor, with the decimal comma.
        QTest::mouseMove(a.window->mapWidget(), QPoint(123, 87));
        QTRY_VERIFY(!static_cast<QLabel *>(a.child("coord"))->text().isEmpty());
        QVERIFY2(QRegularExpression(QStringLiteral("^X:\\d+(,\\d+)?   Y:\\d+(,\\d+)?$"))
                     .match(static_cast<QLabel *>(a.child("coord"))->text())
                     .hasMatch(),
                 qPrintable(static_cast<QLabel *>(a.child("coord"))->text()));
    }

    void queryBuilderAndLabelWindowUseTheUsersNames()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        a.activate(QStringLiteral("comuni"));
        QStringList fieldNames;
        QString condition;
        test::onModal("mervola::FrmQuery", [&](QWidget *q) {
            auto *fields = q->findChild<QListWidget *>(QStringLiteral("lstCampi"));
            for (int i = 0; i < fields->count(); ++i)
                fieldNames << fields->item(i)->text();
            const auto items = fields->findItems(QStringLiteral("Superficie territoriale (kmq)"), Qt::MatchExactly);
            if (!items.isEmpty()) {
                const QRect r = fields->visualItemRect(items.front());
                QTest::mouseClick(fields->viewport(), Qt::LeftButton, {}, r.center());
                QTest::mouseClick(fields->viewport(), Qt::LeftButton, {}, r.center());
            }
            condition = q->findChild<QPlainTextEdit *>(QStringLiteral("txtQuery"))->toPlainText();
            static_cast<QDialog *>(q)->reject();
        });
        a.window->dispatch(QStringLiteral("query"));
        QVERIFY2(fieldNames.contains(QStringLiteral("Superficie territoriale (kmq)")),
                 qPrintable(fieldNames.join('|')));
        QVERIFY(fieldNames.contains(QStringLiteral("Codice ISTAT")));
        QCOMPARE(condition, QStringLiteral("[_01001]")); // the stored name goes into the condition

        a.activate(QStringLiteral("commont"));
        QString title;
        test::onModal("mervola::FrmLabelProperties", [&title](QWidget *w) {
            title = w->windowTitle();
            static_cast<QDialog *>(w)->reject();
        });
        a.window->dispatch(QStringLiteral("label"));
        QCOMPARE(title, QStringLiteral("Proprietà etichette - Comunità montane"));
    }

    // Standard dialogs in Italian; message boxes answer to access keys.
    void dialogsSpeakItalian()
    {
        RealAtlasWindow a;
        QVERIFY(a.ok);
        QStringList texts;
        test::onModal("QFileDialog", [&texts](QWidget *d) {
            for (QPushButton *b : d->findChildren<QPushButton *>())
                texts << b->text().remove(QLatin1Char('&'));
            for (QLabel *l : d->findChildren<QLabel *>())
                texts << l->text();
            static_cast<QDialog *>(d)->reject();
        });
        a.window->dispatch(QStringLiteral("salva"));
        QVERIFY2(texts.contains(QStringLiteral("Salva")), qPrintable(texts.join('|')));
        QVERIFY(texts.contains(QStringLiteral("Annulla")));
        QVERIFY(texts.contains(QStringLiteral("Cerca in:")));

        MessageBoxPresenter presenter;
        setMessagePresenter(&presenter);
        appState().projectModified = true;
        QStringList buttons;
        test::onModal("QMessageBox", [&buttons](QWidget *box) {
            QPushButton *cancel = nullptr;
            for (QPushButton *b : box->findChildren<QPushButton *>()) {
                buttons << b->text();
                if (b->text() == QLatin1String("&Annulla"))
                    cancel = b;
            }
            if (cancel)
                cancel->click();
        });
        a.window->close(); // asks whether to save; Annulla keeps the window open
        setMessagePresenter(nullptr);
        buttons.sort();
        QCOMPARE(buttons, (QStringList{"&Annulla", "&No", "&Sì"}));
        QVERIFY(a.window->isVisible());
        appState().projectModified = false;
    }

    void startUpAndResizeMessagesAndTimers()
    {
        MessageRecorder messages;
        RealAtlasWindow a({QStringLiteral("DELETE FROM STRUTTURE")});
        QVERIFY(a.ok);
        QCOMPARE(messages.entries().value(0).text,
                 QStringLiteral("Impossibile reperire informazioni su tabella: STRUTTURE in t_rec!!!"));
        auto *resize = a.window->findChild<QTimer *>(QStringLiteral("tmrGrandezza"));
        QTRY_VERIFY_WITH_TIMEOUT(!resize->isActive(), 3000); // the opening's own check is over
        a.window->resize(a.window->width() - 40, a.window->height() - 30);
        QVERIFY(resize->isActive());
        QCOMPARE(resize->interval(), 1000);
    }

    void legendSwatchesAreSharpOnHighDpi()
    {
        const QIcon icon = LegendView::swatch(QColor(200, 30, 30), Qt::black, true, 2);
        const QPixmap pm = icon.pixmap(QSize(20, 16), 2.0);
        QCOMPARE(pm.devicePixelRatio(), 2.0);
        QCOMPARE(pm.size(), QSize(40, 32));
        // Drawn at device resolution: every pixel is the fill, the outline or
        // nothing, none a blend of a picture scaled up.
        const QImage img = pm.toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(img.pixelColor(20, 16), QColor(200, 30, 30));
        for (int x = 0; x < img.width(); ++x) {
            const QColor c = img.pixelColor(x, 16);
            QVERIFY2(c.alpha() == 0 || c == QColor(200, 30, 30) || c == QColor(Qt::black),
                     qPrintable(QStringLiteral("x %1: %2").arg(x).arg(c.name(QColor::HexArgb))));
        }
    }
};

int main(int argc, char **argv)
{
    // A 1024 x 768 screen for the offscreen platform.
    QTemporaryDir dir;
    const QString config = dir.path() + QStringLiteral("/screen.json");
    test::writeFile(config, R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": 1024, "height": 768,
                              "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + config).toUtf8());
    QApplication app(argc, argv);
    TestKeyboardAndNames test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_keyboard_and_names.moc"
