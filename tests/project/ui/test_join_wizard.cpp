// The join wizard driven through its controls: the file-name refusal, the
// staged fields and their aliases, the summary sentence, the join at the end,
// the refusals that keep the wizard on its step, and the conflict window.
#include "project/test_join_fixture.h"

#include "platform/Messages.h"
#include "project/ui/JoinConflitti.h"
#include "project/ui/ListMdb.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTableWidget>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

JoinTarget targetOf(const JoinFixture &fx)
{
    JoinTarget t;
    t.home = fx.home;
    t.shapefilePath = fx.themeShp();
    t.layerIndex = 1;
    t.layer.name = QStringLiteral("comu_01");
    t.layer.folder = fx.home.italia();
    t.layer.baseName = QStringLiteral("comu_01");
    t.iniPath = fx.home.supporto() + QStringLiteral("/comu_01.ini");
    return t;
}

void press(ListMdb &w, const char *name) { w.findChild<QPushButton *>(QString::fromLatin1(name))->click(); }

}  // namespace

class TestJoinWizard : public QObject {
    Q_OBJECT

private slots:
    void dbaseJoinThroughTheThreeSteps()
    {
        JoinFixture fx;
        DbfTable ext;
        ext.fields = {textField(QStringLiteral("PROG_MONT"), 10), numberField(QStringLiteral("POP")),
                      textField(QStringLiteral("Label"))};
        ext.rows = {{QStringLiteral("002"), 5LL, QStringLiteral("b")}};
        fx.writeExternal(QStringLiteral("ext.dbf"), ext);
        QVERIFY(writeFile(fx.extFolder() + QStringLiteral("/miofile1999.dbf"), readFile(fx.extFolder() + "/ext.dbf")));

        MessageRecorder recorder;
        ListMdb w(targetOf(fx));
        QString chosen = fx.extFolder() + QStringLiteral("/miofile1999.dbf");
        QString askedTitle, askedFilter;
        w.setFileChooser([&](const QString &title, const QString &filter) {
            askedTitle = title;
            askedFilter = filter;
            return chosen;
        });
        w.setConflictResolver([] { return true; });
        w.show();
        QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblPasso"))->text(),
                 QStringLiteral("1. Selezionare il tipo di fonte dati da collegare"));
        w.findChild<QRadioButton *>(QStringLiteral("rb_Dbase_3"))->setChecked(true);

        // A name of eleven characters is refused and the wizard stays on step 1.
        press(w, "cmd_avanti");
        QCOMPARE(askedTitle, QStringLiteral("Collega fonte dati esterna: Dbase IV;"));
        QCOMPARE(askedFilter, QStringLiteral("Dbase DBs (*.dbf)"));
        QCOMPARE(w.step(), 1);
        QCOMPARE(recorder.entries().size(), 1);
        QVERIFY(recorder.entries().first().text.startsWith(QStringLiteral("MIOFILE1999.DBF nome file non valido.")));

        chosen = fx.extFolder() + QStringLiteral("/ext.dbf");
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        auto *grid = w.findChild<QTableView *>(QStringLiteral("dbg_Alias"));
        QAbstractItemModel *model = grid->model();
        QCOMPARE(model->rowCount(), 3);
        QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("Sì"));
        QCOMPARE(model->index(1, 3).data().toString(), QStringLiteral("Numerico"));
        model->setData(model->index(1, 2), QStringLiteral("abitanti"));

        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 3);
        auto *ext_ = w.findChild<QComboBox *>(QStringLiteral("Combo_Ext"));
        auto *theme = w.findChild<QComboBox *>(QStringLiteral("cboJoin"));
        QCOMPARE(ext_->count(), 2);  // the text fields
        theme->setCurrentIndex(theme->findText(QStringLiteral("PROG_MONT")));
        ext_->setCurrentIndex(ext_->findText(QStringLiteral("PROG_MONT")));
        QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblDescrizione"))->text(),
                 joinSummary("ext.dbf", "comu_01", "PROG_MONT", "PROG_MONT"));

        press(w, "cmd_avanti");
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QVERIFY(w.outcome().has_value());
        QCOMPARE(w.outcome()->addedFields, QStringList({"zPROG_MONT", "abitanti", "zLabel"}));
        auto joined = readDbf(fx.themeDbf());
        QCOMPARE(joined->rows[1][joined->fieldIndex(QStringLiteral("abitanti"))].toLongLong(), 5LL);
        QVERIFY(readFile(fx.home.supporto() + QStringLiteral("/comu_01.ini")).contains("JOIN="));
    }

    void refusalsKeepTheStep()
    {
        JoinFixture fx;
        DbfTable ext;
        ext.fields = {numberField(QStringLiteral("ISTAT"))};
        fx.writeExternal(QStringLiteral("num.dbf"), ext);
        MessageRecorder recorder;
        ListMdb w(targetOf(fx));
        w.setFileChooser([&](const QString &, const QString &) { return fx.extFolder() + QStringLiteral("/num.dbf"); });
        w.findChild<QRadioButton *>(QStringLiteral("rb_Dbase_3"))->setChecked(true);
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        QVERIFY(recorder.contains(JoinText::kNoTextField));
        recorder.clear();
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        QVERIFY(recorder.contains(JoinText::kNoTextField));
    }

    void accessTableMustBeChosen()
    {
        const QString mdb = fixturePath(QStringLiteral("testV1997.mdb"));
        JoinFixture fx;
        MessageRecorder recorder;
        ListMdb w(targetOf(fx));
        w.setFileChooser([&](const QString &, const QString &) { return mdb; });
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        auto *tables = w.findChild<QListWidget *>(QStringLiteral("lstTabelle"));
        QVERIFY(tables->count() >= 4);
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        QVERIFY(recorder.contains(QStringLiteral("Selezionare una tabella.")));
        tables->setCurrentRow(0);  // Table1: a date column among text and numbers
        QCOMPARE(w.findChild<QTableView *>(QStringLiteral("dbg_Alias"))->model()->rowCount(), 9);
        press(w, "cmd_avanti");
        QCOMPARE(w.step(), 2);
        QVERIFY(recorder.contains(JoinText::kUnsupportedIncluded));
    }

    void conflictWindowTellsWhenAllAreResolved()
    {
        StagedField f;
        f.nomeCampo = QStringLiteral("Label");
        f.aliasCampo = QStringLiteral("Label");
        f.conflitto = true;
        f.nomeConflitto = QStringLiteral("zLabel");
        MessageRecorder recorder;
        JoinConflitti w({f}, {QStringLiteral("Label"), QStringLiteral("PROG_MONT")});
        auto *status = w.findChild<QLabel *>(QStringLiteral("lblStato"));
        QVERIFY(status->text() != JoinText::kAllResolved);
        auto *grid = w.findChild<QTableWidget *>(QStringLiteral("grdConflitti"));
        grid->item(0, 2)->setText(QStringLiteral("PROG_MONT"));  // taken by the theme: refused
        QCOMPARE(w.rows().first().nomeConflitto, QStringLiteral("zLabel"));
        QCOMPARE(recorder.entries().size(), 1);
        grid->item(0, 2)->setText(QStringLiteral("nome"));
        QCOMPARE(w.rows().first().nomeConflitto, QStringLiteral("nome"));
        QCOMPARE(status->text(), JoinText::kAllResolved);
    }
};

QTEST_MAIN(TestJoinWizard)
#include "test_join_wizard.moc"
