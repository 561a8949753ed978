// Theme commands of the main window on the demo atlas: classification from
// the legend kept through a project, the legend editor, the print refusal.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "atlas/AtlasBuilder.h"
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/LegendEditor.h"
#include "data/ui/FrmDbf.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "project/ProjectFile.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QTimer>
#include <QTableView>
#include <QtTest>

using namespace mervola;

namespace {

// Accepts the next modal dialog of type D after running `prepare` on it.
template <class D>
void acceptNextDialog(std::function<void(D *)> prepare = {})
{
    QTimer::singleShot(0, [prepare] {
        auto *d = qobject_cast<D *>(QApplication::activeModalWidget());
        QVERIFY(d);
        if (prepare)
            prepare(d);
        d->accept();
    });
}

int legendRowOf(LegendView *legend, const QString &layer)
{
    for (int i = 0; i < legend->entryCount(); ++i)
        if (legend->layerNameAt(i) == layer)
            return i;
    return -1;
}

}  // namespace

class TestThemeCommands : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

private slots:
    void initTestCase()
    {
        QVERIFY(atlas::buildDemoAtlas(m_dir.path()).ok());
        m_home = AtlasHome(m_dir.path());
    }
    void init() { appState().reset(); }

    void classificationIsDrawnListedAndKeptInTheProject()
    {
        MessageRecorder rec;
        const QString project = m_dir.path() + QStringLiteral("/classi.rlx");
        int classes = 0;
        {
            MainWindow w(m_home, appState());
            QVERIFY(w.load());
            acceptNextDialog<classify::ClassificationDialog>([](classify::ClassificationDialog *d) { d->classify(); });
            QMetaObject::invokeMethod(w.legend(), "themeDoubleClicked", Q_ARG(QString, QStringLiteral("comuni")));
            const map::MapLayer *layer = w.mapWidget()->model().find(QStringLiteral("comuni"));
            const auto *cb = std::get_if<map::ClassBreaksRenderer>(&layer->renderer);
            QVERIFY2(cb, "the municipalities are drawn by classes");
            classes = cb->breakCount();
            QVERIFY(classes >= 2);
            QVERIFY(appState().projectModified);
            const int row = legendRowOf(w.legend(), QStringLiteral("comuni"));
            QCOMPARE(w.legend()->topLevelItem(row)->childCount(), classes);
            // Every municipality with a value is counted in one class.
            int counted = 0;
            for (int i = 0; i < classes; ++i) {
                const QString text = w.legend()->topLevelItem(row)->child(i)->text(0);
                counted += text.section(QLatin1Char('('), -1).chopped(1).toInt();
            }
            QVERIFY(counted > 0 && counted <= layer->data->featureCount());

            MapModelHost host(w.mapWidget()->model());
            ProjectFiles files(m_home, host);
            QVERIFY(files.save(project, QStringLiteral("commont")).ok());
        }
        appState().reset();
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        QVERIFY(std::holds_alternative<map::SimpleRenderer>(w.mapWidget()->model().find(QStringLiteral("comuni"))->renderer));
        MapModelHost host(w.mapWidget()->model());
        ProjectFiles files(m_home, host);
        QVERIFY(files.open(project).ok());
        const auto *cb = std::get_if<map::ClassBreaksRenderer>(&w.mapWidget()->model().find(QStringLiteral("comuni"))->renderer);
        QVERIFY(cb);
        QCOMPARE(cb->breakCount(), classes);
    }

    void legendEditorChangesTheFillColour()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        w.legend()->setActiveIndex(legendRowOf(w.legend(), QStringLiteral("regioni")));
        QTimer::singleShot(0, [] {
            auto *d = qobject_cast<classify::LegendEditor *>(QApplication::activeModalWidget());
            QVERIFY(d);
            d->accept();
        });
        w.dispatch(QStringLiteral("legenda"));
        QVERIFY(appState().projectModified);
        const QString ini = test_iniText(m_home, QStringLiteral("regioni"));
        QVERIFY(ini.startsWith(QStringLiteral("[REGIONI]")));
        QVERIFY(ini.contains(QStringLiteral("SIMBOLO=")));
    }

    void regionIsShownAndKeptInTheProject()
    {
        MessageRecorder rec;
        const QString project = m_dir.path() + QStringLiteral("/piemonte.rlx");
        {
            MainWindow w(m_home, appState());
            QVERIFY(w.load());
            auto *regions = w.findChild<QComboBox *>(QStringLiteral("cboRegioni"));
            const int piemonte = regions->findText(QStringLiteral("PIEMONTE"));
            regions->setCurrentIndex(piemonte);
            emit regions->activated(piemonte);
            map::MapModel &model = w.mapWidget()->model();
            QVERIFY(!model.find(QStringLiteral("comuni")) && !model.find(QStringLiteral("commont")));
            QVERIFY(model.find(QStringLiteral("comu_01")) && model.find(QStringLiteral("comu_01"))->visible);
            QVERIFY(model.find(QStringLiteral("cmont_01")) && model.find(QStringLiteral("cmont_01"))->visible);
            QCOMPARE(appState().regionCode, QStringLiteral("01"));
            QVERIFY(w.action(QStringLiteral("zoomprec"))->isEnabled());
            MapModelHost host(w.mapWidget()->model());
            ProjectFiles files(m_home, host);
            QVERIFY(files.save(project, appState().communityTable).ok());
            QVERIFY(QString::fromUtf8(test_file(project)).contains(QStringLiteral("DBFCOMMONT=cmont_01^")));
        }
        appState().reset();
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        MapModelHost host(w.mapWidget()->model());
        ProjectFiles files(m_home, host);
        QVERIFY(files.open(project).ok());
        const map::MapLayer *comu = w.mapWidget()->model().find(QStringLiteral("comu_01"));
        QVERIFY(comu && comu->visible);
        QCOMPARE(files.session().regionCode, QStringLiteral("01"));
        QVERIFY(rec.entries().isEmpty());
    }

    void attributeTableOpensOnceAndGivesTheButtonBack()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        w.legend()->setActiveIndex(legendRowOf(w.legend(), QStringLiteral("comuni")));
        w.dispatch(QStringLiteral("dbf"));
        auto *table = w.findChild<FrmDbf *>();
        QVERIFY2(table, "the attribute table window opens");
        QVERIFY(table->windowTitle().startsWith(QStringLiteral("Tabella ")));
        QVERIFY(table->grid()->model()->rowCount() > 0);
        QVERIFY(!w.action(QStringLiteral("dbf"))->isEnabled());
        table->close();
        QTRY_VERIFY(w.action(QStringLiteral("dbf"))->isEnabled());
        QVERIFY(rec.entries().isEmpty());
    }

    void selectAndZoomFindsNamesWithApostrophes()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        const map::MapLayer *comuni = w.mapWidget()->model().find(QStringLiteral("comuni"));
        const map::Column *label = comuni->data->column(QStringLiteral("Label"));
        QString withApostrophe;
        for (int f = 0; f < comuni->data->featureCount() && withApostrophe.isEmpty(); ++f)
            if (label->text(f).contains(QLatin1Char('\'')))
                withApostrophe = label->text(f);
        QVERIFY(!withApostrophe.isEmpty());
        QString quoted = withApostrophe;
        quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
        QVERIFY(w.selectAndZoom(QStringLiteral("comuni"), {QStringLiteral("Label = '") + quoted + QLatin1Char('\'')}));
        QCOMPARE(comuni->selection.size(), size_t(1));
        QVERIFY(w.action(QStringLiteral("zoomprec"))->isEnabled());
        QVERIFY(!w.selectAndZoom(QStringLiteral("comuni"), {QStringLiteral("Label = 'Nessuno'")}));
    }

    void printingNeedsAVisibleTheme()
    {
        MessageRecorder rec;
        MainWindow w(m_home, appState());
        QVERIFY(w.load());
        for (int i = 0; i < w.legend()->entryCount(); ++i)
            w.legend()->topLevelItem(i)->setCheckState(0, Qt::Unchecked);
        w.dispatch(QStringLiteral("stampa"));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text,
                 QStringLiteral("La procedura di stampa non può esssere avviata senza temi visibili."));
        QCOMPARE(rec.entries().first().style, 48);
    }

private:
    static QByteArray test_file(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    static QString test_iniText(const AtlasHome &home, const QString &theme)
    {
        QFile f(home.supporto() + QLatin1Char('/') + theme + QStringLiteral(".ini"));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
};

QTEST_MAIN(TestThemeCommands)
#include "test_theme_commands.moc"
