// Joins seen from the main window on the atlas built from the real sources:
// the join made from the open table window shows at once, the stored join
// comes back with the same columns and names when the project is opened
// again, and "Elimina Join" puts a theme classified on a joined column
// back to its plain symbol.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "classify/ui/ClassificationDialog.h"
#include "data/ui/FrmDbf.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "project/ThemeSettings.h"
#include "project/ui/ListMdb.h"
#include "support/JoinSources.h"
#include "support/JoinWizardSteps.h"
#include "support/Modal.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTimer>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace
{

// The file dialog: the file typed in and accepted.
void answerFileDialog(const QString &path)
{
    whenModal<QFileDialog>([path](QFileDialog *d) {
        auto *name = d->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        QVERIFY(name);
        name->setText(path); // typed as a full path, then Enter
        QTest::keyClick(name, Qt::Key_Return);
    });
}

QStringList headerTexts(QTableView *view)
{
    QStringList out;
    for (int c = 0; c < view->model()->columnCount(); ++c)
        out << view->model()->headerData(c, Qt::Horizontal).toString();
    return out;
}

QStringList fieldNames(const QString &dbf)
{
    QStringList out;
    const auto table = readDbf(dbf);
    for (const DbfField &f : table->fields)
        out << f.name;
    return out;
}

} // namespace

class TestJoinMainWindow : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;
    std::unique_ptr<MainWindow> m_w;
    QString m_csv;
    QStringList m_joinedFields;

    QString comuniDbf() const { return m_home.italia() + QStringLiteral("/comuni.dbf"); }
    QString comuniIni() const { return m_home.supporto() + QStringLiteral("/comuni.ini"); }

    int comuniEntry() const
    {
        for (int i = 0; i < m_w->legend()->entryCount(); ++i)
            if (m_w->legend()->layerNameAt(i) == QLatin1String("comuni"))
                return i;
        return -1;
    }
    void clickComuni(bool twice = false)
    {
        LegendView *legend = m_w->legend();
        const QPoint at = legend->visualItemRect(legend->topLevelItem(comuniEntry())).center();
        if (twice)
            QTest::mouseDClick(legend->viewport(), Qt::LeftButton, {}, at);
        else
            QTest::mouseClick(legend->viewport(), Qt::LeftButton, {}, at);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
        m_csv = m_dir.filePath(QStringLiteral("utente/aree.csv"));
        QVERIFY(writeFile(m_csv, spreadsheetCsv(municipalities(m_home.root()), QLatin1Char(';'), true)));
        appState().reset();
        m_w = std::make_unique<MainWindow>(m_home, appState());
        QVERIFY(m_w->load());
        m_w->resize(1100, 800);
        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        clickComuni();
        QCOMPARE(m_w->legend()->activeLayerName(), QStringLiteral("comuni"));
    }

    // The join made from the open table window: columns and caption at once.
    void joinFromTheTableWindowShowsAtOnce()
    {
        MessageRecorder rec;
        m_w->dispatch(QStringLiteral("dbf"));
        auto *table = m_w->findChild<FrmDbf *>();
        QVERIFY(table);
        const QString caption = table->windowTitle();
        QVERIFY(!caption.contains(QStringLiteral("collegata")));
        QCOMPARE(table->grid()->model()->columnCount(), 25);

        bool joined = false;
        whenModal<ListMdb>([&](ListMdb *wizard) {
            wizard->findChild<QRadioButton *>(QStringLiteral("rb_Text"))->click();
            answerFileDialog(m_csv);
            wizard->findChild<QPushButton *>(QStringLiteral("cmd_avanti"))->click();
            QCOMPARE(wizard->step(), 2);
            auto *grid = wizard->findChild<QTableView *>(QStringLiteral("dbg_Alias"));
            // "Comune" left out, "Superficie" renamed.
            for (const auto &[row, column, value] :
                 {std::tuple{1, 0, QStringLiteral("No")}, std::tuple{2, 2, QStringLiteral("superf")}}) {
                grid->model()->setData(grid->model()->index(row, column), value);
            }
            joinOnIstatCodes(wizard);
            joined = true;
        });
        table->command(QStringLiteral("join"))->trigger();
        QVERIFY(joined);
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(table->windowTitle(), caption + QStringLiteral(" (collegata con dati esterni)"));
        const QStringList headers = headerTexts(table->grid());
        QCOMPARE(headers.size(), 28);
        QCOMPARE(headers.mid(25), QStringList({"ISTAT", "superf", "Abitanti"}));
        m_joinedFields = fieldNames(comuniDbf());
        QCOMPARE(m_joinedFields.mid(25), QStringList({"ISTAT", "superf", "Abitanti"}));
        table->close();
    }

    // Saved and opened again: the stored join gives the same columns under
    // the same names, the excluded one still out.
    void storedJoinComesBackWhenTheProjectOpens()
    {
        MessageRecorder rec;
        const QString project = m_dir.filePath(QStringLiteral("utente/aree.rlx"));
        answerFileDialog(project);
        QVERIFY(m_w->saveProjectInteractive());
        QVERIFY(QFile::exists(project));
        QVERIFY(readFile(project).contains("STRUCTJOIN =ISTAT^superf^Abitanti^"));
        answerFileDialog(project);
        QVERIFY(m_w->openProjectInteractive());
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(fieldNames(comuniDbf()), m_joinedFields);
        const map::MapLayer *layer = m_w->mapWidget()->model().find(QStringLiteral("comuni"));
        QVERIFY(layer && layer->data->columnIndex(QStringLiteral("superf")) >= 0);
    }

    // Classified on a joined column, then "Elimina Join": the plain symbol,
    // no classes in the legend, and a settings file without the classification.
    void removingTheJoinDropsClassesOnAJoinedColumn()
    {
        MessageRecorder rec;
        clickComuni();
        bool classified = false;
        whenModal<classify::ClassificationDialog>([&](classify::ClassificationDialog *d) {
            auto *field = d->findChild<QComboBox *>(QStringLiteral("cboCampo"));
            const int i = field->findData(QStringLiteral("Abitanti"));
            QVERIFY(i >= 0);
            field->setCurrentIndex(i);
            emit field->activated(i);
            d->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
            classified = true;
        });
        clickComuni(true);
        QVERIFY(classified);
        ThemeSettings s = readThemeSettingsFile(comuniIni(), QStringLiteral("comuni"));
        QCOMPARE(s.classificationType, QStringLiteral("QUANTILE"));
        QCOMPARE(s.campo.field, QStringLiteral("Abitanti"));
        QVERIFY(m_w->legend()->topLevelItem(comuniEntry())->childCount() > 0);

        m_w->action(QStringLiteral("mnuElimJoin"))->trigger();
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(readFile(comuniDbf()), readFile(m_home.originali() + QStringLiteral("/comuni.dbf")));
        const QString ini = QString::fromUtf8(readFile(comuniIni()));
        QVERIFY(ini.contains(QStringLiteral("\nTIPOCLASSIFICAZIONE=0\nCAMPO=0^0^0^0^\nCLASSIFICAZIONE=0\n")));
        QVERIFY(ini.contains(QStringLiteral("JOIN=-1^-1^-1^-1^-1^-1^\nSTRUCTJOIN=*^\n")));
        const map::MapLayer *layer = m_w->mapWidget()->model().find(QStringLiteral("comuni"));
        QVERIFY(std::holds_alternative<map::SimpleRenderer>(layer->renderer));
        QCOMPARE(std::get<map::SimpleRenderer>(layer->renderer).symbol.color, 16776960);
        QCOMPARE(m_w->legend()->topLevelItem(comuniEntry())->childCount(), 0);
    }

    void cleanupTestCase() { m_w.reset(); }
};

QTEST_MAIN(TestJoinMainWindow)
#include "test_join_main_window.moc"
