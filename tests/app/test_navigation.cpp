// Scale arithmetic, the extent history, the region table, the command table
// and the exit questions.
#include "app/CommandTable.h"
#include "app/ExitFlow.h"
#include "project/Regions.h"
#include "app/Scale.h"
#include "app/Stack.h"
#include "app/Twips.h"
#include "platform/Messages.h"

#include <QtTest>

using namespace mervola;

class TestNavigation : public QObject {
    Q_OBJECT
private slots:
    void groupDigits_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("seven") << qint64(1234567) << "1.234.567";
        QTest::newRow("six") << qint64(123456) << "123.456";
        QTest::newRow("three") << qint64(999) << "999";
        QTest::newRow("four") << qint64(1600) << "1.600";
        QTest::newRow("zero") << qint64(0) << "0";
    }
    void groupDigits()
    {
        QFETCH(qint64, value);
        QFETCH(QString, text);
        QCOMPARE(mervola::groupDigits(value), text);
        QCOMPARE(parseScale(text), double(value));
    }

    void scaleUsesTheOldPaperFactor()
    {
        // 1440 twips = one inch; 0.025 map units per unit of paper, not 0.0254.
        QCOMPARE(currentScale(1000.0, 1440.0), 40000.0);
        QCOMPARE(currentScale(1000.9, 14400.0), 4003.0);
        QVERIFY(isScaleCharacter(QLatin1Char(',')) && !isScaleCharacter(QLatin1Char('a')));
    }

    void historyWalksBackToTheFirstExtent()
    {
        Stack history;
        QList<bool> states;
        history.onStatus = [&](bool any) { states << any; };
        map::MapRect r(0, 100, 100, 0);
        const map::MapRect first = r;
        for (int i = 0; i < 5; ++i) {
            history.Push(r);
            r.scale(0.5);
        }
        for (int i = 0; i < 5; ++i)
            r = history.Pop();
        QCOMPARE(r, first);
        QCOMPARE(history.count(), 0);
        QCOMPARE(states.first(), true);
        QCOMPARE(states.last(), false);
        QVERIFY(history.Pop().isEmpty());
    }

    void regionTableAndThemes()
    {
        const auto &r = regionEntries();
        QCOMPARE(int(r.size()), 21);
        QCOMPARE(r.front().text, QStringLiteral("<Tutta l'Italia>"));
        QCOMPARE(r.front().code, QStringLiteral("00"));
        QCOMPARE(r.back().text, QStringLiteral("VENETO"));
        QCOMPARE(regionCode(1), QStringLiteral("01"));
        QCOMPARE(regionCode(20), QStringLiteral("20"));
        QCOMPARE(mountainTheme(QStringLiteral("19")), QString());
        QCOMPARE(mountainTheme(QStringLiteral("02")), QStringLiteral("cmont_02"));
        QCOMPARE(municipalityTheme(QStringLiteral("00")), QStringLiteral("comuni"));
    }

    void commandTable()
    {
        QCOMPARE(int(toolbarButtons().size()), 20);
        QCOMPARE(toolbarButtons().front().key, QStringLiteral("apri"));
        QCOMPARE(toolbarButtons().back().toolTip, QStringLiteral("Esce dall'applicazione"));
        QCOMPARE(dispatchOrder().indexOf(QStringLiteral("pan")), 8);
        QStringList captions;
        for (const Menu &m : menuDefinitions())
            for (const MenuItem &i : m.items)
                captions << i.caption;
        QVERIFY(captions.contains(QStringLiteral("Es&porta mappa")));
        QVERIFY(captions.contains(QStringLiteral("Editor della &legenda")));
    }

    void exitQuestions()
    {
        {
            MessageRecorder rec;
            rec.script(MsgAnswer::No);
            QVERIFY(!confirmExit(false, {}));
            QCOMPARE(rec.entries().first().text, QStringLiteral("Uscire dall'applicazione?"));
            QCOMPARE(rec.entries().first().style, 36);
        }
        {
            MessageRecorder rec;
            rec.script(MsgAnswer::Cancel);
            bool saved = false;
            QVERIFY(!confirmExit(true, [&] { return saved = true; }));
            QVERIFY(!saved);
            QCOMPARE(rec.entries().first().style, 51);
            QCOMPARE(rec.entries().first().text, QStringLiteral("Salvare le modifiche al progetto?"));
        }
        {
            MessageRecorder rec;
            rec.script(MsgAnswer::Yes);
            QVERIFY(!confirmExit(true, [] { return false; }));  // a failed save keeps the program open
            rec.script(MsgAnswer::Yes);
            QVERIFY(confirmExit(true, [] { return true; }));
            rec.script(MsgAnswer::No);
            QVERIFY(confirmExit(true, [] { return false; }));
        }
    }

    void dividerNeverLeftOfItsMinimum()
    {
        QCOMPARE(dividerPositionTwips(100), kMinDividerTwips);
        QCOMPARE(dividerPositionTwips(5000), 4950.0);
    }
};

QTEST_GUILESS_MAIN(TestNavigation)
#include "test_navigation.moc"
