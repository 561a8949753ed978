// The class limits editor, the classification window and the legend editor,
// driven offscreen through their controls.
#include "classify/ColorRamp.h"
#include "classify/ClassificationMethod.h"
#include "classify/ui/ClassificationDialog.h"
#include "classify/ui/FrmModFlx.h"
#include "classify/ui/LegendEditor.h"
#include "platform/Messages.h"
#include "support/FitSupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QCheckBox>
#include <QtTest>

using namespace mervola;
using namespace mervola::classify;

namespace {

// Moves the focus out of a box the way a user leaving it does.
void leave(QLineEdit *box)
{
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(box, &out);
}

void retype(QLineEdit *box, const QString &text)
{
    box->clear();
    QTest::keyClicks(box, text);
}

FieldColumn oneToTwenty(const QString &field)
{
    FieldColumn c;
    c.name = field;
    for (int i = 1; i <= 20; ++i)
        c.numbers.push_back(i);
    c.numbers.push_back(FieldColumn::null());
    return c;
}

// The GVF label a user reads for values 1 .. 20 under the grid's upper
// limits, computed here value by value.
QString expectedGvf(const QTableWidget *grid)
{
    std::vector<double> uppers, values;
    for (int row = 0; row < grid->rowCount(); ++row)
        uppers.push_back(grid->item(row, 1)->text().section(QStringLiteral(" - "), 1).toDouble());
    for (int v = 1; v <= 20; ++v)
        values.push_back(v);
    return QStringLiteral("Bontà dell'adattamento (GVF): ") +
           QLocale(QLocale::Italian).toString(test::gvfByUpperLimits(values, uppers), 'f', 2);
}

// Saves a picture of the widget when MERVOLA_SCREENSHOT_DIR is set.
void snapshot(QWidget *w, const QString &name)
{
    const QString dir = qEnvironmentVariable("MERVOLA_SCREENSHOT_DIR");
    if (dir.isEmpty())
        return;
    w->show();
    QTest::qWait(50);
    w->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

}  // namespace

class TestDialogs : public QObject {
    Q_OBJECT
private slots:
    void keyFilterKeepsOnlyNumbers_data();
    void keyFilterKeepsOnlyNumbers();
    void lowerWholeNumberMovesUpper();
    void leaveChecks_data();
    void leaveChecks();
    void okGivesNewLimitsAndCancelKeepsOld();
    void classificationWindowFillsGridAndHistogram();
    void editingLimitsMakesPersonali();
    void rampAndInversionRecolourGrid();
    void legendEditorGivesValuesBack();
};

void TestDialogs::keyFilterKeepsOnlyNumbers_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::newRow("letters dropped") << "1a2b" << "12";
    QTest::newRow("decimal comma") << "12,5" << "12,5";
    QTest::newRow("decimal point") << "12.5" << "12.5";
    QTest::newRow("minus and blank dropped") << "-3 4" << "34";
}

void TestDialogs::keyFilterKeepsOnlyNumbers()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    FrmModFlx dlg(QStringLiteral("10 - 20"));
    for (const char *name : {"txtEstremoInferiore", "txtEstremoSuperiore"}) {
        auto *box = dlg.findChild<QLineEdit *>(QLatin1String(name));
        QVERIFY(box);
        retype(box, typed);
        QCOMPARE(box->text(), shown);
        QTest::keyClick(box, Qt::Key_Backspace);
        QCOMPARE(box->text(), shown.chopped(1));
    }
}

void TestDialogs::lowerWholeNumberMovesUpper()
{
    MessageRecorder rec;
    FrmModFlx dlg(QStringLiteral("10 - 20"));
    QSignalSpy changed(&dlg, &FrmModFlx::limitsChanged);
    auto *lower = dlg.findChild<QLineEdit *>(QStringLiteral("txtEstremoInferiore"));
    auto *upper = dlg.findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore"));
    retype(lower, QStringLiteral("15"));
    leave(lower);
    QCOMPARE(upper->text(), QStringLiteral("16"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toString(), QStringLiteral("15 - 16"));
    QVERIFY(rec.entries().isEmpty());
}

void TestDialogs::leaveChecks_data()
{
    QTest::addColumn<QString>("initial");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("upperAfter");
    QTest::newRow("empty lower") << "10 - 20" << "txtEstremoInferiore" << "" << "Occorre inserire un valore valido"
                                 << "20";
    QTest::newRow("decimal class keeps upper") << "10,5 - 20" << "txtEstremoInferiore" << "12,5" << "" << "20";
    QTest::newRow("empty upper") << "10 - 20" << "txtEstremoSuperiore" << "" << "Occorre inserire un valore valido"
                                 << "";
    QTest::newRow("upper below lower") << "10 - 20" << "txtEstremoSuperiore" << "9"
                                       << "ATTENZIONE! Inserire un valore superiore a 10" << "9";
    QTest::newRow("upper equal to lower") << "10 - 20" << "txtEstremoSuperiore" << "10" << "" << "10";
}

void TestDialogs::leaveChecks()
{
    QFETCH(QString, initial);
    QFETCH(QString, box);
    QFETCH(QString, typed);
    QFETCH(QString, message);
    QFETCH(QString, upperAfter);
    MessageRecorder rec;
    FrmModFlx dlg(initial);
    QSignalSpy changed(&dlg, &FrmModFlx::limitsChanged);
    auto *edit = dlg.findChild<QLineEdit *>(box);
    retype(edit, typed);
    leave(edit);
    if (message.isEmpty()) {
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(changed.size(), 1);
    } else {
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].text, message);
        QCOMPARE(rec.entries()[0].style, int(MsgStyle::Critical));
        QCOMPARE(changed.size(), 0);  // nothing written for a refused value
    }
    QCOMPARE(dlg.upperText(), upperAfter);
}

void TestDialogs::okGivesNewLimitsAndCancelKeepsOld()
{
    MessageRecorder rec;
    {
        FrmModFlx dlg(QStringLiteral("10 - 20"));
        retype(dlg.findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore")), QStringLiteral("25.5"));
        dlg.findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        QCOMPARE(dlg.valueText(), QStringLiteral("10 - 25,5"));
    }
    {
        FrmModFlx dlg(QStringLiteral("10 - 20"));
        retype(dlg.findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore")), QStringLiteral("5"));
        dlg.findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        QCOMPARE(dlg.result(), int(QDialog::Rejected));  // still open: refused
        QCOMPARE(rec.entries().size(), 1);
        snapshot(&dlg, QStringLiteral("frmModFlx"));
        dlg.findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->click();
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
}

void TestDialogs::classificationWindowFillsGridAndHistogram()
{
    MessageRecorder rec;
    const QList<CandidateField> fields = {{QStringLiteral("_00001"), QStringLiteral("POPOLAZIONE"), QStringLiteral("Demografia")},
                                          {QStringLiteral("_00002"), QStringLiteral("SUPERFICIE"), QStringLiteral("Territorio")}};
    QStringList asked;
    ClassificationDialog dlg(QStringLiteral("commont"), fields,
                             [&asked](const QString &f) -> Result<FieldColumn> {
                                 asked << f;
                                 return oneToTwenty(f);
                             },
                             Classification{});
    auto *grid = dlg.findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
    QVERIFY(grid);
    QCOMPARE(grid->horizontalHeaderItem(0)->text(), QStringLiteral("Colore"));
    QCOMPARE(grid->horizontalHeaderItem(1)->text(), QStringLiteral("Valore"));
    QCOMPARE(grid->horizontalHeaderItem(2)->text(), QStringLiteral("Label"));
    auto *metodo = dlg.findChild<QComboBox *>(QStringLiteral("cboMetodo"));
    QCOMPARE(metodo->count(), 2);
    QCOMPARE(metodo->itemText(1), QStringLiteral("Intervalli regolari"));
    auto *classi = dlg.findChild<QComboBox *>(QStringLiteral("cboClassi"));
    QCOMPARE(classi->count(), 32);
    QCOMPARE(dlg.findChild<QComboBox *>(QStringLiteral("cboRamp"))->count(), 8);

    classi->setCurrentIndex(3);  // 4 classes
    dlg.classify();
    QCOMPARE(grid->rowCount(), 4);
    QCOMPARE(grid->item(0, 1)->text(), QStringLiteral("1 - 6"));  // 21 records with the Null: moves of 5
    QCOMPARE(grid->item(3, 3)->text(), QStringLiteral("4"));
    QCOMPARE(asked, QStringList{"_00001"});

    auto *tipo = dlg.findChild<QComboBox *>(QStringLiteral("cboTipoLegenda"));
    tipo->setCurrentIndex(1);  // "Valori unici": 20 values, no question
    dlg.classify();
    QCOMPARE(grid->rowCount(), 20);
    QVERIFY(rec.entries().isEmpty());
    const Classification c = dlg.classification();
    QCOMPARE(c.method, QStringLiteral("UNICO"));
    QVERIFY(c.uniqueValues);
    QCOMPARE(asked.size(), 1);  // the column is read once

    tipo->setCurrentIndex(0);
    metodo->setCurrentIndex(1);
    dlg.classify();
    grid->item(1, 2)->setText(QStringLiteral("Media"));
    const Classification r = dlg.classification();
    QCOMPARE(r.method, QStringLiteral("REGOLARI"));
    QCOMPARE(r.requestedClasses, 4);
    QCOMPARE(r.classes[1].label, QStringLiteral("Media"));
    snapshot(&dlg, QStringLiteral("frmClassificazione"));
}

void TestDialogs::editingLimitsMakesPersonali()
{
    MessageRecorder rec;
    Classification current = methodById(QStringLiteral("QUANTILE"))->classes(oneToTwenty("_00001"), 4, 2).classification;
    ClassificationDialog dlg(QStringLiteral("commont"), {{QStringLiteral("_00001"), QStringLiteral("POP"), {}}},
                             [](const QString &f) -> Result<FieldColumn> { return oneToTwenty(f); }, current);
    auto *grid = dlg.findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
    QCOMPARE(grid->rowCount(), 4);
    auto *gvf = dlg.findChild<QLabel *>(QStringLiteral("lblGvf"));
    const QString before = gvf->text();
    QCOMPARE(before, expectedGvf(grid));
    QString whileTyping;
    QTimer::singleShot(0, &dlg, [&dlg, gvf, &whileTyping] {
        auto *editor = dlg.findChild<FrmModFlx *>();
        QVERIFY(editor);
        auto *upper = editor->findChild<QLineEdit *>(QStringLiteral("txtEstremoSuperiore"));
        retype(upper, QStringLiteral("8"));
        leave(upper); // the grid and the fit follow the box as it is left
        whileTyping = gvf->text();
        editor->findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
    });
    dlg.editLimits(0);
    QCOMPARE(gvf->text(), expectedGvf(grid));
    QVERIFY(gvf->text() != before);
    QCOMPARE(whileTyping, gvf->text());
    QCOMPARE(grid->item(0, 1)->text(), QStringLiteral("1 - 8"));
    QCOMPARE(grid->item(0, 2)->text(), QStringLiteral("1 - 8"));
    QCOMPARE(grid->item(0, 3)->text(), QStringLiteral("8"));
    const Classification c = dlg.classification();
    QCOMPARE(c.method, QStringLiteral("PERSONALI"));
    QCOMPARE(c.classes[0].upper, 8.0);
}

void TestDialogs::rampAndInversionRecolourGrid()
{
    Classification current = methodById(QStringLiteral("QUANTILE"))->classes(oneToTwenty("_00001"), 3, 0).classification;
    ClassificationDialog dlg(QStringLiteral("comuni"), {{QStringLiteral("_00001"), QStringLiteral("POP"), {}}},
                             [](const QString &f) -> Result<FieldColumn> { return oneToTwenty(f); }, current);
    auto *ramp = dlg.findChild<QComboBox *>(QStringLiteral("cboRamp"));
    ramp->setCurrentIndex(2);
    emit ramp->activated(2);
    auto *grid = dlg.findChild<QTableWidget *>(QStringLiteral("flxSimboli"));
    QCOMPARE(grid->item(0, 0)->background().color(), QColor(223, 223, 255));
    QCOMPARE(grid->item(2, 0)->background().color(), QColor(0, 0, 255));
    dlg.findChild<QPushButton *>(QStringLiteral("cmdInvertiColori"))->click();
    QCOMPARE(grid->item(0, 0)->background().color(), QColor(0, 0, 255));
    QCOMPARE(dlg.classification().classes[2].fillColor, 16768991);
    QCOMPARE(dlg.classification().rampIndex, 2);
}

void TestDialogs::legendEditorGivesValuesBack()
{
    LegendEntry plain;
    plain.theme = QStringLiteral("Comunità montane");
    plain.fillColor = 56320;
    plain.outlineColor = 0;
    {
        LegendEditor ed(plain);
        QVERIFY(ed.findChild<QPushButton *>(QStringLiteral("cmdColore")));
        ed.findChild<QCheckBox *>(QStringLiteral("chkVisibile"))->setChecked(false);
        ed.findChild<QCheckBox *>(QStringLiteral("chkOutline"))->setChecked(false);
        const LegendEntry e = ed.entry();
        QVERIFY(!e.visible);
        QVERIFY(!e.outline);
        QCOMPARE(e.fillColor, 56320);
        snapshot(&ed, QStringLiteral("frmLegenda_semplice"));
    }
    LegendEntry classified = plain;
    classified.classification =
        methodById(QStringLiteral("REGOLARI"))->classes(oneToTwenty("_00001"), 3, 3).classification;
    LegendEditor ed(classified);
    auto *grid = ed.findChild<QTableWidget *>(QStringLiteral("grdClassi"));
    QVERIFY(grid);
    QCOMPARE(grid->rowCount(), 3);
    grid->item(0, 1)->setText(QStringLiteral("Poca"));
    grid->item(2, 2)->setCheckState(Qt::Unchecked);
    const LegendEntry e = ed.entry();
    QCOMPARE(e.classification.classes[0].label, QStringLiteral("Poca"));
    QVERIFY(!e.classification.classes[2].drawn);
    QVERIFY(e.classification.classes[1].drawn);
    snapshot(&ed, QStringLiteral("frmLegenda_classi"));
}

QTEST_MAIN(TestDialogs)
#include "test_dialogs.moc"
