// The query builder window driven as a user would: composing, running,
// and handing found elements to the map.
#include "data/ui/FrmQuery.h"
#include "platform/Messages.h"
#include "platform/dbf/DbfTable.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

using namespace mervola;

namespace
{

struct FakeMap : MapSelectionHost {
    QStringList calls;
    bool found = true;
    bool selectAndZoom(const QString &theme, const QString &expression) override
    {
        calls << theme + QLatin1Char('|') + expression;
        return found;
    }
};

// Two themes beside each other; the municipalities carry an apostrophe and a DUMMY column.
struct Fixture {
    QTemporaryDir dir;
    FakeMap map;
    QList<QueryTheme> themes;
    Fixture()
    {
        DbfTable t;
        t.fields = {{QStringLiteral("LABEL"), DbfType::Text, 40, 0},
                    {QStringLiteral("I001"), DbfType::Numeric, 10, 2},
                    {QStringLiteral("DUMMY"), DbfType::Text, 1, 0}};
        t.rows.push_back({QStringLiteral("Aosta"), 3.5, QVariant()});
        t.rows.push_back({QStringLiteral("Sant'Elia a Pianisi"), 7.25, QVariant()});
        t.rows.push_back({QStringLiteral("Bard"), 8.0, QVariant()});
        if (!writeDbf(dir.path() + QStringLiteral("/comu_02.dbf"), t).ok())
            qFatal("dbf");
        DbfTable c;
        c.fields = {{QStringLiteral("LABEL"), DbfType::Text, 40, 0}};
        c.rows.push_back({QStringLiteral("Valdigne")});
        if (!writeDbf(dir.path() + QStringLiteral("/cmont_02.dbf"), c).ok())
            qFatal("dbf");
        themes = {{QStringLiteral("cmont_02"), QStringLiteral("Comunità montane"),
                   dir.path() + QStringLiteral("/cmont_02.shp")},
                  {QStringLiteral("comu_02"), QStringLiteral("Comuni"), dir.path() + QStringLiteral("/comu_02.shp")}};
    }
};

template <class T> T *child(QWidget &w, const char *name)
{
    T *c = w.findChild<T *>(QString::fromLatin1(name));
    if (!c)
        qFatal("missing %s", name);
    return c;
}

void clickItem(QListWidget *list, int row)
{
    QListWidgetItem *item = list->item(row);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
}

} // namespace

class TestFrmQuery : public QObject
{
    Q_OBJECT
private slots:
    void composesTheCondition()
    {
        Fixture f;
        MessageRecorder messages;
        FrmQuery w(f.themes, f.map);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QCOMPARE(w.windowTitle(), QStringLiteral("Query builder"));
        w.chooseTheme(QStringLiteral("COMU_02"));
        auto *campi = child<QListWidget>(w, "lstCampi");
        QCOMPARE(campi->count(), 2); // DUMMY is never listed
        auto *ante = child<QCheckBox>(w, "chkAnte");
        ante->click();
        QVERIFY(messages.contains(QStringLiteral("E' necessario selezionare un campo dalla lista!")));
        QVERIFY(!ante->isChecked());

        auto *text = child<QPlainTextEdit>(w, "txtQuery");
        clickItem(campi, 0); // chooses
        QCOMPARE(child<QLabel>(w, "lblSelected")->text(), QStringLiteral("Nome originale del campo: LABEL"));
        QCOMPARE(text->toPlainText(), QString());
        clickItem(campi, 0); // inserts
        child<QPushButton>(w, "cmdquery_0")->click();
        ante->click();
        auto *valori = child<QListWidget>(w, "lstValori");
        QCOMPARE(valori->count(), 3);
        clickItem(valori, 2);
        QCOMPARE(text->toPlainText(), QStringLiteral("[LABEL] = 'Sant''Elia a Pianisi'"));
        clickItem(campi, 1); // a numeric field: values go in bare
        QCOMPARE(valori->item(0)->text(), QStringLiteral("3.5"));
        child<QPushButton>(w, "cmdquery_5")->click();
        clickItem(valori, 0);
        QCOMPARE(text->toPlainText(), QStringLiteral("[LABEL] = 'Sant''Elia a Pianisi' or 3.5"));
        child<QPushButton>(w, "cmdAnnullaQuery")->click();
        QCOMPARE(text->toPlainText(), QString());
    }

    void runs_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<bool>("mapFinds");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("style");
        QTest::addColumn<QStringList>("mapCalls");
        QTest::addColumn<int>("listed");
        QTest::newRow("one, decimal comma")
            << QStringLiteral("[I001] = 3,5") << true << QString() << 0 << QStringList{"comu_02|LABEL = 'Aosta'"} << 0;
        QTest::newRow("one, apostrophe") << QStringLiteral("[I001] > 7 and [I001] < 8") << true << QString() << 0
                                         << QStringList{"comu_02|LABEL = 'Sant''Elia a Pianisi'"} << 0;
        QTest::newRow("one, not on map") << QStringLiteral("[I001] = 8") << false
                                         << QStringLiteral("Non è stato trovato alcun elemento") << 48
                                         << QStringList{"comu_02|LABEL = 'Bard'"} << 0;
        QTest::newRow("many") << QStringLiteral("[I001] > 1") << true
                              << QStringLiteral(
                                     "La query ha trovato 3 valori. Poiché non è possibile evidenziarli sulla "
                                     "mappa contemporaneamente, è necessario selezionarne uno.")
                              << 64 << QStringList{} << 3;
        QTest::newRow("none") << QStringLiteral("[I001] > 100") << true
                              << QStringLiteral("La query non ha trovato nessun valore soddisfacente le condizioni!")
                              << 48 << QStringList{} << 0;
        QTest::newRow("bare number") << QStringLiteral("35") << true << QStringLiteral("Errore di sintassi nella query")
                                     << 16 << QStringList{} << 0;
    }
    void runs()
    {
        QFETCH(QString, condition);
        QFETCH(bool, mapFinds);
        QFETCH(QString, message);
        QFETCH(int, style);
        QFETCH(QStringList, mapCalls);
        QFETCH(int, listed);
        Fixture f;
        f.map.found = mapFinds;
        MessageRecorder messages;
        FrmQuery w(f.themes, f.map);
        w.chooseTheme(QStringLiteral("comu_02"));
        child<QPlainTextEdit>(w, "txtQuery")->setPlainText(condition);
        child<QPushButton>(w, "cmdEsegui")->click();
        QCOMPARE(f.map.calls, mapCalls);
        QCOMPARE(child<QListWidget>(w, "lstElementi")->count(), listed);
        if (message.isEmpty()) {
            QVERIFY(messages.entries().isEmpty());
        } else {
            QCOMPARE(messages.entries().size(), 1);
            QCOMPARE(messages.entries().front().text, message);
            QCOMPARE(messages.entries().front().style, style);
            QCOMPARE(messages.entries().front().title, QStringLiteral("Mervola"));
        }
        QCOMPARE(child<QPlainTextEdit>(w, "txtQuery")->toPlainText(), condition); // left for correction
    }

    void findsTheChosenElement()
    {
        Fixture f;
        MessageRecorder messages;
        FrmQuery w(f.themes, f.map);
        w.chooseTheme(QStringLiteral("comu_02"));
        child<QPlainTextEdit>(w, "txtQuery")->setPlainText(QStringLiteral("[I001] > 1"));
        child<QPushButton>(w, "cmdEsegui")->click();
        messages.clear();
        auto *trova = child<QPushButton>(w, "cmdTrova");
        trova->click();
        QVERIFY(messages.contains(QStringLiteral("Non è stato selezionato nessun elemento.")));
        auto *elementi = child<QListWidget>(w, "lstElementi");
        elementi->setCurrentRow(1);
        // MERVOLA_SHOTS=DIR keeps a picture of the window for a look.
        if (const QString shots = qEnvironmentVariable("MERVOLA_SHOTS"); !shots.isEmpty()) {
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            w.grab().save(shots + QStringLiteral("/frmquery.png"));
        }
        trova->click();
        QCOMPARE(f.map.calls, QStringList{"comu_02|Label = 'Sant''Elia a Pianisi'"});
        // Choosing another theme starts afresh.
        w.chooseTheme(QStringLiteral("cmont_02"));
        QCOMPARE(elementi->count(), 0);
        QCOMPARE(child<QListWidget>(w, "lstCampi")->count(), 1);
    }
};

QTEST_MAIN(TestFrmQuery)
#include "test_frm_query.moc"
