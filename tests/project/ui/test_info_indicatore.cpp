// The indicator description window.
#include "project/ui/FrmInfoIndicatore.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

using namespace mervola;

class TestInfoIndicatore : public QObject {
    Q_OBJECT
private slots:
    void showsTheTextAndFollowsTheSize()
    {
        const QString text = indicatorDescriptionText(QStringLiteral("_02010"), QStringLiteral("Popolazione residente 2022"),
                                                      QStringLiteral("02010"), QStringLiteral("Popolazione"),
                                                      QStringLiteral("ISTAT"), QStringLiteral("persone"));
        QVERIFY(text.startsWith(QStringLiteral("Popolazione residente 2022\n")));
        QVERIFY(text.contains(QStringLiteral("Categoria: Popolazione")));
        FrmInfoIndicatore w(text);
        QCOMPARE(w.windowTitle(), QStringLiteral("Descrizione Indicatore"));
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        auto *area = w.findChild<QPlainTextEdit *>(QStringLiteral("txtDescrizione"));
        QCOMPARE(area->toPlainText(), text);
        const QSize before = area->size();
        w.resize(w.width() + 200, w.height() + 100);
        QTRY_VERIFY(area->width() >= before.width() + 150 && area->height() >= before.height() + 50);
        w.findChild<QPushButton *>(QStringLiteral("cmdOk"))->click();
        QVERIFY(!w.isVisible());
        QCOMPARE(w.result(), int(QDialog::Accepted));
    }
    void plainFieldFallsBackToItsName()
    {
        QVERIFY(indicatorDescriptionText(QStringLiteral("AREA"), {}, {}, {}, {}, {}).startsWith(QStringLiteral("AREA\n")));
    }
};

QTEST_MAIN(TestInfoIndicatore)
#include "test_info_indicatore.moc"
