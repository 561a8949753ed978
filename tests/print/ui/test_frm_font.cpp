// frmFont: the font list in the system's order, OK hands the chosen family
// back, Annulla keeps the caller's font.
#include "print/ui/FrmFont.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

using namespace mervola;

namespace {
const QStringList kFamilies{"Zapf", "Arial", "Courier", "Arial", "Bitstream"};

QStringList listed(const FrmFont &f)
{
    QStringList out;
    for (int i = 0; i < f.list()->count(); ++i)
        out << f.list()->item(i)->text();
    return out;
}
}  // namespace

class TestFrmFont : public QObject {
    Q_OBJECT
private slots:
    void controlsAndCaptions()
    {
        QString font = QStringLiteral("Arial");
        FrmFont f(font, kFamilies);
        QCOMPARE(f.objectName(), QStringLiteral("frmFont"));
        QCOMPARE(f.windowTitle(), QStringLiteral("Font"));
        QVERIFY(f.findChild<QListWidget *>(QStringLiteral("LstFonts")));
        QVERIFY(f.findChild<QPushButton *>(QStringLiteral("cmdOK")));
        QCOMPARE(f.findChild<QPushButton *>(QStringLiteral("cmdAnnulla"))->text(), QStringLiteral("Annulla"));
        bool prompt = false;
        for (QLabel *l : f.findChildren<QLabel *>())
            prompt |= l->text() == QStringLiteral("Selezionare il tipo di carattere:");
        QVERIFY(prompt);
    }

    void familiesOnceInReportedOrder()
    {
        QString font;
        FrmFont f(font, kFamilies);
        QCOMPARE(listed(f), (QStringList{"Zapf", "Arial", "Courier", "Bitstream"}));
    }

    void buttons_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("result");
        QTest::newRow("OK takes the clicked font") << "cmdOK" << "Courier" << int(QDialog::Accepted);
        QTest::newRow("Annulla keeps the caller's font") << "cmdAnnulla" << "Arial" << int(QDialog::Rejected);
    }
    void buttons()
    {
        QFETCH(QString, button);
        QFETCH(QString, expected);
        QFETCH(int, result);
        QString font = QStringLiteral("Arial");
        FrmFont f(font, kFamilies);
        f.show();
        QListWidget *list = f.list();
        QListWidgetItem *courier = list->findItems(QStringLiteral("Courier"), Qt::MatchExactly).front();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(courier).center());
        QCOMPARE(list->currentItem(), courier);
        QTest::mouseClick(f.findChild<QPushButton *>(button), Qt::LeftButton);
        QCOMPARE(font, expected);
        QCOMPARE(f.result(), result);
        QVERIFY(!f.isVisible());
    }

    void okWithoutClickKeepsCurrentFont()
    {
        QString font = QStringLiteral("Courier");
        FrmFont f(font, kFamilies);
        QCOMPARE(f.list()->currentItem()->text(), QStringLiteral("Courier"));
        QTest::mouseClick(f.findChild<QPushButton *>(QStringLiteral("cmdOK")), Qt::LeftButton);
        QCOMPARE(font, QStringLiteral("Courier"));
    }
};

QTEST_MAIN(TestFrmFont)
#include "test_frm_font.moc"
