// frmLabelProperties: digit-only boxes, the field list, the values handed
// out, OK running SetLabelProperties and the font button without fonts.
#include "app/ui/FrmLabelProperties.h"
#include "platform/Messages.h"
#include "map/test_map_fixtures.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

LabelDialogInput input()
{
    LabelDialogInput in;
    in.themeName = QStringLiteral("comu_01");
    in.entries = {{QStringLiteral("Denominazione"), QStringLiteral("Label")},
                  {QStringLiteral("Popolazione residente 2022"), QStringLiteral("_02010")}};
    in.form = {QStringLiteral("Courier"), QStringLiteral("0"), QStringLiteral("8"), 255,
               QStringLiteral("Popolazione residente 2022")};
    in.fontFamilies = QStringList{QStringLiteral("Arial"), QStringLiteral("Courier")};
    return in;
}

template <class T>
T *child(QWidget &w, const char *name)
{
    T *c = w.findChild<T *>(QLatin1String(name));
    Q_ASSERT(c);
    return c;
}

}  // namespace

class TestLabelWindow : public QObject {
    Q_OBJECT
private slots:
    void boxesTakeDigitsOnly_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("text");
        for (const char *box : {"txtRotation", "txtLabelHeight"}) {
            const QString b = QLatin1String(box);
            QTest::newRow(qPrintable(b + " letter")) << b << "a" << "1";
            QTest::newRow(qPrintable(b + " minus")) << b << "-" << "1";
            QTest::newRow(qPrintable(b + " plus")) << b << "+" << "1";
            QTest::newRow(qPrintable(b + " comma")) << b << "," << "1";
            QTest::newRow(qPrintable(b + " point")) << b << "." << "1";
            QTest::newRow(qPrintable(b + " digits")) << b << "25" << "125";
        }
    }
    void boxesTakeDigitsOnly()
    {
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QFETCH(QString, text);
        FrmLabelProperties w(input());
        w.show();
        auto *edit = w.findChild<QLineEdit *>(box);
        QVERIFY(edit);
        edit->setText(QStringLiteral("1"));
        edit->setFocus();
        edit->end(false);
        QTest::keyClicks(edit, typed);
        QCOMPARE(edit->text(), text);
        // Editing keys keep working.
        QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(edit->text(), text.chopped(1));
    }

    void showsAndHandsOutValues()
    {
        FrmLabelProperties w(input());
        auto *combo = child<QComboBox>(w, "cboCampoLabel");
        QCOMPARE(combo->count(), 2);
        QCOMPARE(combo->currentText(), QStringLiteral("Popolazione residente 2022"));
        QCOMPARE(w.form(), input().form);
        combo->setCurrentIndex(0);
        child<QLineEdit>(w, "txtRotation")->setText(QStringLiteral("45"));
        w.setColor(65280);
        const LabelForm f = w.form();
        QCOMPARE(f.fieldEntry, QStringLiteral("Denominazione"));
        QCOMPARE(f.rotation, QStringLiteral("45"));
        QCOMPARE(f.color, 65280);
        QCOMPARE(f.font, QStringLiteral("Courier"));
    }

    void okWithEmptyValueKeepsWindowOpen()
    {
        MessageRecorder rec;
        map::LabelRenderer renderer;
        renderer.field = QStringLiteral("dummy");
        FrmLabelProperties w(input());
        LabelTarget target;
        target.themeName = QStringLiteral("comu_01");
        w.setApply([&](const LabelForm &f) { return SetLabelProperties(f, renderer, target).ok(); });
        w.show();
        child<QLineEdit>(w, "txtLabelHeight")->clear();
        QTest::mouseClick(child<QPushButton>(w, "cmdOk"), Qt::LeftButton);
        QVERIFY(w.isVisible());
        QVERIFY(rec.contains(QStringLiteral("Bisogna inserire un valore valido")));
        QCOMPARE(renderer.field, QStringLiteral("dummy"));

        child<QLineEdit>(w, "txtLabelHeight")->setText(QStringLiteral("12"));
        QTest::mouseClick(child<QPushButton>(w, "cmdOk"), Qt::LeftButton);
        QVERIFY(!w.isVisible());
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QCOMPARE(renderer.field, QStringLiteral("Popolazione residente 2022"));  // no structure: as shown
        QCOMPARE(renderer.height, 12.0);
    }

    void fontButtonWithoutFonts()
    {
        MessageRecorder rec;
        LabelDialogInput in = input();
        in.fontFamilies = QStringList();
        FrmLabelProperties w(in);
        w.show();
        QTest::mouseClick(child<QPushButton>(w, "cmdFont"), Qt::LeftButton);
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().front().text, QStringLiteral("Non è installato alcun font nel sistema"));
        QCOMPARE(rec.entries().front().title, QStringLiteral("Mervola"));
        QCOMPARE(w.form().font, QStringLiteral("Courier"));
    }

    void inputOfLayerWithoutLabels()
    {
        map::MapLayer layer = makeLayer(QStringLiteral("regioni"), fixturePolygons());
        layer.labels.field = QStringLiteral("dummy");
        const LabelDialogInput in = labelDialogInput(layer, StructureTable{});
        QCOMPARE(in.themeName, QStringLiteral("regioni"));
        QCOMPARE(in.entries.size(), 2);
        QCOMPARE(in.form, (LabelForm{QStringLiteral("Arial"), QStringLiteral("0"), QStringLiteral("8"), 0,
                                     QStringLiteral("Label")}));
    }
};

QTEST_MAIN(TestLabelWindow)
#include "test_label_window.moc"
