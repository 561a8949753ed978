// A condition is one expression. In the attribute table's query and in the
// map query builder, on the municipalities of the real atlas, any text
// after the first statement (a second statement, a comment, a parenthesis
// that closes the program's own) is refused with the syntax error, nothing
// is modified, and sorting after an accepted query keeps working.
#include "data/MapQuery.h"
#include "data/ui/FrmDbf.h"
#include "data/ui/FrmQuery.h"
#include "data/ui/QueryDbf.h"
#include "platform/Messages.h"
#include "platform/dbf/DbfTable.h"
#include "project/StructureTable.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace
{

struct Host : AttributeTableHost {
    void showOnMap(const QString &, const QString &, const QString &, const QStringList &) override {}
    void attributeWindowClosed() override {}
};

struct NoMap : MapSelectionHost {
    bool selectAndZoom(const QString &, const QString &) override { return true; }
};

const char *const kRefused[] = {
    "[_02010] > 100000; DROP TABLE comuni", "[_02010] > 100000 --",      "[_02010] > 100000 /* ordine */",
    "[_02010] > 100000) or (1=1",           "x); DROP TABLE comuni; --", "[Label] = 'Roma",
};

// Types a condition in the open table query and runs it; the window is
// closed afterwards when the query left it open.
void runTableQuery(FrmDbf &w, const QString &condition)
{
    bool ran = false;
    QTimer::singleShot(0, [&] {
        auto *q = qobject_cast<QueryDbf *>(QApplication::activeModalWidget());
        QVERIFY(q);
        q->findChild<QPlainTextEdit *>(QStringLiteral("txt_query"))->setPlainText(condition);
        q->findChild<QPushButton *>(QStringLiteral("cmd_esegui"))->click();
        if (q->isVisible())
            q->findChild<QPushButton *>(QStringLiteral("Command1_1"))->click();
        ran = true;
    });
    w.command(QStringLiteral("query"))->trigger();
    QVERIFY(ran);
}

} // namespace

class TestQueryConditions : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    AtlasHome m_home;

    QString comuniDbf() const { return m_home.italia() + QStringLiteral("/comuni.dbf"); }
    DbfWindowSource comuniSource() const
    {
        return {QStringLiteral("Comuni"), QStringLiteral("comuni"), m_home.italia() + QStringLiteral("/comuni.shp"),
                false, m_home, readStructureTable(ReferenceDb(m_home)).valueOr({})};
    }

private slots:
    void initTestCase()
    {
        QVERIFY(copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
    }

    void tableQueryRefusesTextAfterTheCondition_data()
    {
        QTest::addColumn<QString>("condition");
        for (const char *c : kRefused)
            QTest::newRow(c) << QString::fromUtf8(c);
    }
    void tableQueryRefusesTextAfterTheCondition()
    {
        QFETCH(QString, condition);
        const QByteArray table = readFile(comuniDbf());
        Host host;
        FrmDbf w(host, comuniSource());
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        MessageRecorder rec;
        runTableQuery(w, QStringLiteral("[_02010] > 1000000"));
        QVERIFY(rec.entries().isEmpty());
        const QString status = w.findChild<QLabel *>(QStringLiteral("InfoSel"))->text();
        QVERIFY(status.startsWith(QStringLiteral("2 record di 7899 selezionati.")));

        runTableQuery(w, condition);
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, QStringLiteral("Errore di sintassi nella query."));
        QCOMPARE(rec.entries().first().style, int(MsgStyle::Critical));
        QCOMPARE(w.findChild<QLabel *>(QStringLiteral("InfoSel"))->text(), status); // earlier filter kept
        QCOMPARE(readFile(comuniDbf()), table);

        // Sorting the accepted query, largest population first.
        auto *header = w.grid()->horizontalHeader();
        const int column = w.table()->fieldIndex(QStringLiteral("_02010"));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(column) + 5, header->height() / 2));
        w.command(QStringLiteral("sortDec"))->trigger();
        const int label = w.table()->fieldIndex(QStringLiteral("Label"));
        QCOMPARE(w.grid()->model()->rowCount(), 2);
        QCOMPARE(w.grid()->model()->index(0, label).data().toString(), QStringLiteral("Roma"));
        QCOMPARE(w.grid()->model()->index(1, label).data().toString(), QStringLiteral("Milano"));
    }

    // A ";" or "--" inside quoted text is part of a value, not a statement.
    void separatorsInsideTextAreValues()
    {
        Host host;
        FrmDbf w(host, comuniSource());
        w.show();
        MessageRecorder rec;
        runTableQuery(w, QStringLiteral("[Label] = 'a;b -- c' or [Label] = 'Roma'"));
        QVERIFY(rec.entries().isEmpty());
        QVERIFY(
            w.findChild<QLabel *>(QStringLiteral("InfoSel"))->text().startsWith(QStringLiteral("1 record di 7899")));
    }

    void mapQueryRefusesTextAfterTheCondition_data() { tableQueryRefusesTextAfterTheCondition_data(); }
    void mapQueryRefusesTextAfterTheCondition()
    {
        QFETCH(QString, condition);
        const QByteArray table = readFile(comuniDbf());
        NoMap map;
        FrmQuery w(
            {{QStringLiteral("comuni"), QStringLiteral("Comuni"), m_home.italia() + QStringLiteral("/comuni.shp")}},
            map);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        w.chooseTheme(QStringLiteral("comuni"));
        MessageRecorder rec;
        w.findChild<QPlainTextEdit *>(QStringLiteral("txtQuery"))->setPlainText(condition);
        w.findChild<QPushButton *>(QStringLiteral("cmdEsegui"))->click();
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, QStringLiteral("Errore di sintassi nella query"));
        QCOMPARE(w.findChild<QListWidget *>(QStringLiteral("lstElementi"))->count(), 0);
        QCOMPARE(w.findChild<QPlainTextEdit *>(QStringLiteral("txtQuery"))->toPlainText(), condition);
        QCOMPARE(readFile(comuniDbf()), table);

        rec.clear();
        w.findChild<QPlainTextEdit *>(QStringLiteral("txtQuery"))->setPlainText(QStringLiteral("[_02010] > 1000000"));
        w.findChild<QPushButton *>(QStringLiteral("cmdEsegui"))->click();
        QCOMPARE(w.findChild<QListWidget *>(QStringLiteral("lstElementi"))->count(), 2);
    }
};

QTEST_MAIN(TestQueryConditions)
#include "test_query_conditions.moc"
