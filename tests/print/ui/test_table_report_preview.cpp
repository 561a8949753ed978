// The table report preview: pages, page indicator, orientation.
#include "platform/Messages.h"
#include "print/ui/ReportPreview.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

using namespace mervola;

class TestTableReportPreview : public QObject
{
    Q_OBJECT
private slots:
    void pagesAndOrientation()
    {
        QTemporaryDir dir;
        const AtlasHome home(dir.path());
        QDir().mkpath(home.dati());
        QVERIFY(ReferenceDb::createSchema(home.referenceDb()).ok());
        std::vector<QStringList> rows;
        for (int i = 0; i < 120; ++i)
            rows.push_back({QStringLiteral("Comune di Sant'Andrea %1").arg(i),
                            i % 5 ? QStringLiteral("%1").arg(i % 9, 2, 10, QLatin1Char('0')) : QString(),
                            QString::number(i * 1.25).replace(QLatin1Char('.'), QLatin1Char(','))});
        const QList<ReportColumn> columns{{QStringLiteral("LABEL"), QStringLiteral("Comune")},
                                          {QStringLiteral("PROG_MONT"), QStringLiteral("Comunità montana")},
                                          {QStringLiteral("I001"), QStringLiteral("Popolazione (migliaia)")}};
        QVERIFY(prepareTableReport(home, columns, rows).ok());

        MessageRecorder messages;
        ReportPreview preview(home);
        QVERIFY(preview.loaded());
        QCOMPARE(preview.windowTitle(), QStringLiteral("Anteprima di stampa tabella"));
        auto *indicator = preview.findChild<QLabel *>(QStringLiteral("lblPagina"));
        QVERIFY(indicator);
        const int portraitPages = preview.pageCount();
        QVERIFY(portraitPages > 1);
        QCOMPARE(indicator->text(), QStringLiteral("1 di %1").arg(portraitPages));
        preview.findChild<QPushButton *>(QStringLiteral("cmdSposta_2"))->click();
        QCOMPARE(indicator->text(), QStringLiteral("2 di %1").arg(portraitPages));
        preview.findChild<QPushButton *>(QStringLiteral("cmdSposta_3"))->click();
        preview.findChild<QPushButton *>(QStringLiteral("cmdSposta_2"))->click(); // stays on the last
        QCOMPARE(preview.page(), portraitPages - 1);
        preview.findChild<QPushButton *>(QStringLiteral("cmdSposta_0"))->click();
        QCOMPARE(preview.page(), 0);

        preview.findChild<QRadioButton *>(QStringLiteral("optOrizzontale"))->click();
        QVERIFY(QString::fromUtf8(test::readFile(reportDefinitionPath(home)))
                    .contains(QStringLiteral("\nOrientation = 1\n")));
        QVERIFY(preview.pageCount() > portraitPages);
        QCOMPARE(indicator->text(), QStringLiteral("1 di %1").arg(preview.pageCount()));
        QVERIFY(messages.entries().isEmpty());

        // MERVOLA_SHOTS=DIR keeps pictures of the window for a look.
        if (const QString shots = qEnvironmentVariable("MERVOLA_SHOTS"); !shots.isEmpty()) {
            preview.show();
            QVERIFY(QTest::qWaitForWindowExposed(&preview));
            preview.grab().save(shots + QStringLiteral("/report_preview.png"));
            auto doc = ReportDocument::load(home);
            QVERIFY(doc.ok());
            QVERIFY(doc->writePdf(shots + QStringLiteral("/report.pdf")).ok());
        }
    }
    void missingDefinitionIsReported()
    {
        QTemporaryDir dir;
        MessageRecorder messages;
        ReportPreview preview{AtlasHome(dir.path()), false};
        QVERIFY(!preview.loaded());
        QCOMPARE(messages.entries().size(), 1);
        QCOMPARE(messages.entries().front().style, int(MsgStyle::Critical));
    }
};

QTEST_MAIN(TestTableReportPreview)
#include "test_table_report_preview.moc"
