// The attribute table window and its table query, driven through their
// controls over a generated table and reference database.
#include "data/AttributeTableTexts.h"
#include "data/ChartData.h"
#include "data/Statistics.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/QueryDbf.h"
#include "platform/Messages.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>

using namespace mervola;

namespace {

struct Host : AttributeTableHost {
    QString condition;
    QStringList keys;
    int closed = 0;
    int charts = 0;
    int statistics = 0;
    void showOnMap(const QString &, const QString &c, const QString &, const QStringList &k) override
    {
        condition = c;
        keys = k;
    }
    void attributeWindowClosed() override { ++closed; }
    void openChart(QWidget *, const DbfWindowState &, const QString &, int, bool) override { ++charts; }
    void openStatistics(QWidget *, const DbfWindowState &state) override
    {
        ++statistics;
        column = state.column;
    }
    int column = -1;
};

// An atlas home with a 12-row community table (Label, DUMMY, I010) and a catalog naming I010.
struct Fixture {
    QTemporaryDir dir;
    DbfWindowSource source;
    Fixture()
    {
        QDir(dir.path()).mkpath(QStringLiteral("italia"));
        QDir(dir.path()).mkpath(QStringLiteral("dati"));
        DbfTable t;
        t.fields = {{QStringLiteral("PROG_MONT"), DbfType::Text, 8, 0},
                    {QStringLiteral("Label"), DbfType::Text, 40, 0},
                    {QStringLiteral("DUMMY"), DbfType::Text, 4, 0},
                    {QStringLiteral("I010"), DbfType::Numeric, 8, 0}};
        for (int i = 0; i < 12; ++i)
            t.rows.push_back({QString::number(i + 1), QStringLiteral("Comunità %1").arg(QChar('A' + i)),
                              QStringLiteral("x"), qlonglong(100 - i)});
        source.home = AtlasHome(dir.path());
        (void)writeDbf(source.home.italia() + QStringLiteral("/cmont_01.dbf"), t);
        (void)ReferenceDb::createSchema(source.home.referenceDb());
        (void)ReferenceDb(source.home).executeAll(
            {"INSERT INTO CATEGORIE VALUES ('01','Territorio')", "INSERT INTO CATEGORIE VALUES ('02','Popolazione')",
             "INSERT INTO INDICATORI (ind,cod_ind,Cat) VALUES ('Popolazione 2022','02010','Popolazione')"});
        source.themeName = QStringLiteral("Comunità montane");
        source.layerName = QStringLiteral("cmont_01");
        source.shapefilePath = source.home.italia() + QStringLiteral("/cmont_01.shp");
    }
};

void selectRows(FrmDbf &w, const QList<int> &rows)
{
    w.grid()->clearSelection();
    for (int r : rows)
        w.grid()->selectionModel()->select(w.grid()->model()->index(r, 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

}  // namespace

class TestFrmDbf : public QObject {
    Q_OBJECT
private slots:
    void opensWithCaptionsStatusAndDisabledColumnCommands()
    {
        Fixture f;
        f.source.joined = true;
        Host host;
        FrmDbf w(host, f.source);
        QVERIFY2(w.loadError().isEmpty(), qPrintable(w.loadError()));
        QCOMPARE(w.windowTitle(), QStringLiteral("Tabella Comunità montane (collegata con dati esterni)"));
        QVERIFY(w.grid()->isColumnHidden(2));  // DUMMY
        QCOMPARE(w.grid()->model()->headerData(3, Qt::Horizontal).toString(), QStringLiteral("POPOLAZIONE 2022"));
        QCOMPARE(w.findChild<QLabel *>("InfoSel")->text(), QStringLiteral("12 record di 12 selezionati."));
        QVERIFY(!w.command("sortAsc")->isEnabled());
        QVERIFY(!w.command("statistiche")->isEnabled());
        w.grid()->horizontalHeader()->sectionClicked(3);
        QVERIFY(w.command("sortDec")->isEnabled());
        QCOMPARE(w.findChild<QLabel *>("InfoOn")->text(), texts::kCtrlHint);
        w.runCommand(QStringLiteral("sortDec"));
        QCOMPARE(w.grid()->model()->index(0, 1).data().toString(), QStringLiteral("Comunità A"));
        auto *cats = w.findChild<QComboBox *>("cboCategorieFormDbf");
        QCOMPARE(cats->itemText(0), QStringLiteral("INFORMAZIONI DI BASE"));
        cats->setCurrentIndex(1);  // Territorio: the population indicator is hidden
        emit cats->activated(1);
        QVERIFY(w.grid()->isColumnHidden(3));
        w.close();
        QCOMPARE(host.closed, 1);
    }

    void chartPreconditions_data()
    {
        QTest::addColumn<int>("selected");
        QTest::addColumn<bool>("indicator");
        QTest::addColumn<QString>("message");
        QTest::newRow("no indicator") << 2 << false << ChartText::kNoIndicator;
        QTest::newRow("eleven") << 11 << true << ChartText::kTooManyRows;
        QTest::newRow("none") << 0 << true << ChartText::kNoRows;
        QTest::newRow("ten") << 10 << true << QString();
    }
    void chartPreconditions()
    {
        QFETCH(int, selected);
        QFETCH(bool, indicator);
        QFETCH(QString, message);
        Fixture f;
        Host host;
        FrmDbf w(host, f.source);
        MessageRecorder rec;
        QList<int> rows;
        for (int i = 0; i < selected; ++i)
            rows << i;
        selectRows(w, rows);
        auto *numeric = w.findChild<QComboBox *>("cbonumeric");
        numeric->setCurrentIndex(indicator ? 0 : -1);
        QTest::mouseClick(w.findChild<QPushButton *>("cmdGrafico"), Qt::LeftButton);
        QCOMPARE(rec.entries().isEmpty() ? QString() : rec.entries().first().text, message);
        QCOMPARE(host.charts, message.isEmpty() ? 1 : 0);
    }

    void threeDimensionsDropThePie()
    {
        Fixture f;
        Host host;
        FrmDbf w(host, f.source);
        auto *types = w.findChild<QComboBox *>("cboTipo");
        QCOMPARE(types->count(), 5);
        w.findChild<QRadioButton *>("optDimen_0")->click();
        QCOMPARE(types->count(), 4);
        QCOMPARE(types->findText(QStringLiteral("Torta")), -1);
    }

    void showOnMapAndExport()
    {
        Fixture f;
        Host host;
        FrmDbf w(host, f.source);
        MessageRecorder rec;
        w.runCommand(QStringLiteral("onmap"));
        QVERIFY(rec.contains(texts::kNothingOnMap));
        selectRows(w, {4, 1});
        w.runCommand(QStringLiteral("onmap"));
        QCOMPARE(host.condition, QStringLiteral("PROG_MONT = '2' and PROG_MONT = '5'"));
        QCOMPARE(host.keys.size(), 2);

        QTemporaryDir out;
        const QString path = out.path() + QStringLiteral("/copia.dbf");
        QVERIFY(test::writeFile(path, "old"));
        w.chooseExportFile = [&] { return path; };
        w.runCommand(QStringLiteral("Export"));
        QVERIFY(rec.contains(QStringLiteral("File esportato con successo in ") + path));
        auto back = readDbf(path);
        QVERIFY(back.ok());
        QCOMPARE(int(back->rowCount()), 12);
        QCOMPARE(back->fieldIndex(QStringLiteral("DUMMY")), -1);
    }

    void tableQueryThroughTheDialog()
    {
        Fixture f;
        Host host;
        FrmDbf w(host, f.source);
        MessageRecorder rec;
        QueryDbf q(w);
        auto *fields = q.findChild<QListWidget *>("lstCampi");
        QCOMPARE(fields->count(), 3);  // DUMMY is not offered
        q.findChild<QCheckBox *>("chk_ante")->click();
        QVERIFY(rec.contains(texts::kChooseField));
        QListWidgetItem *pop = fields->item(2);
        QCOMPARE(pop->text(), QStringLiteral("POPOLAZIONE 2022"));
        fields->itemClicked(pop);
        QCOMPARE(q.findChild<QLabel *>("lbl_selected")->text(), QStringLiteral("Nome originale del campo: I010"));
        fields->itemClicked(pop);
        q.findChild<QPushButton *>("cmd_query_4")->click();
        q.findChild<QPlainTextEdit *>("txt_query")->insertPlainText(QStringLiteral("98"));
        QCOMPARE(q.condition(), QStringLiteral("[I010] >= 98"));
        QCOMPARE(q.execute(), QueryOutcome::Found);
        QCOMPARE(w.findChild<QLabel *>("InfoSel")->text(),
                 QStringLiteral("3 record di 12 selezionati.      (12 elementi nella tabella originaria)"));

        rec.clear();
        q.setCondition(QStringLiteral("[I010] >="));
        QCOMPARE(q.execute(), QueryOutcome::SyntaxError);
        QCOMPARE(rec.entries().first().style, int(MsgStyle::Critical));
        QCOMPARE(w.table()->shownCount(), 3);  // the earlier filter stays

        q.setCondition(QStringLiteral("[I010] > 1000"));
        QCOMPARE(q.execute(), QueryOutcome::NoRecord);
        QVERIFY(rec.contains(texts::kNoRecordFound));
        QCOMPARE(w.table()->shownCount(), 12);  // the whole table, never an empty grid

        selectRows(w, {0});
        w.grid()->horizontalHeader()->sectionClicked(3);
        w.runCommand(QStringLiteral("statistiche"));
        QCOMPARE(host.statistics, 1);  // passed on to the statistics window
        QCOMPARE(host.column, 3);
        QCOMPARE(runTableQuery(*w.table(), QStringLiteral("[I010] = 100")), QueryOutcome::Found);
        w.runCommand(QStringLiteral("statistiche"));
        QCOMPARE(rec.entries().last().text, StatText::kTooFewRecords);
    }
};

QTEST_MAIN(TestFrmDbf)
#include "test_frm_dbf.moc"
