// Start-up of the real program on copies of the real atlas with faults made
// on disk: message boxes while the splash is up, settings files that cannot
// be read, damaged tables. The main window must appear with every theme that
// can be shown, and the user is told exactly which file is at fault.
#include "app/AppState.h"
#include "app/ui/AppStart.h"
#include "app/ui/MainWindow.h"
#include "app/ui/SplashWindow.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

using namespace mervola;

namespace
{

// A user who reads each box for a while. The box's event loop runs
// meanwhile, as a real modal box's does, so the splash timer fires inside it.
class SlowReader : public MessagePresenter
{
public:
    SlowReader() : m_previous(setMessagePresenter(this)) {}
    ~SlowReader() override { setMessagePresenter(m_previous); }
    MsgAnswer present(int style, const QString &text, const QString &) override
    {
        texts << text;
        QEventLoop reading;
        QTimer::singleShot(2 * AppStart::kSplashMilliseconds, &reading, &QEventLoop::quit);
        reading.exec();
        return defaultAnswer(style);
    }
    QStringList texts;

private:
    MessagePresenter *m_previous;
};

QStringList layerNames(const MainWindow &w)
{
    QStringList names;
    for (const auto &layer : w.mapWidget()->model().layers())
        names << layer.name;
    names.sort();
    return names;
}

// The header of a dBase table with a record count it does not hold: same
// size and time as before, so nothing but its content says it is damaged.
bool claimMoreRecords(const QString &dbf, const QDateTime &time)
{
    QByteArray bytes = test::readFile(dbf);
    bytes[4] = char(quint8(bytes[4]) + 1);
    QFile f(dbf);
    return test::writeFile(dbf, bytes) && f.open(QIODevice::ReadWrite) &&
           f.setFileTime(time, QFileDevice::FileModificationTime);
}

} // namespace

class TestStartupFaults : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

    // Starts the program as main() does and waits for its main window.
    bool startAndShow(AppStart &start)
    {
        if (start.begin())
            return false;
        return QTest::qWaitFor([&] { return start.mainWindow()->isVisible(); }, 15000) && !start.splash()->isVisible();
    }

private slots:
    void init()
    {
        appState().reset();
        m_home = m_dir.filePath(QString::fromLatin1(QTest::currentTestFunction()));
        QVERIFY(test::copyRealAtlas(m_home));
    }

    // Boxes shown while the splash is up: the window still appears, with
    // every theme that could be loaded.
    void boxesDuringStartUpDoNotHangOnTheSplash()
    {
        QVERIFY(ReferenceDb(AtlasHome(m_home)).executeAll({QStringLiteral("DELETE * FROM STRUTTURE")}));
        QVERIFY(QFile::remove(m_home + QStringLiteral("/italia/comuni.shx")));
        SlowReader reader;
        AppStart start{AtlasHome(m_home), appState()};
        QVERIFY(startAndShow(start));
        QCOMPARE(reader.texts.size(), 2);
        QCOMPARE(reader.texts[0], QStringLiteral("Il tema comuni non è stato caricato. Manca il file comuni.shx."));
        QVERIFY(reader.texts[1].startsWith(QStringLiteral("Impossibile reperire informazioni su tabella:")));
        QVERIFY(reader.texts[1].endsWith(QStringLiteral("STRUTTURE in t_rec!!!")));
        QCOMPARE(layerNames(*start.mainWindow()), QStringList({QStringLiteral("citta"), QStringLiteral("commont"),
                                                               QStringLiteral("province"), QStringLiteral("regioni")}));
        QVERIFY(start.mainWindow()->isEnabled());
    }

    // A settings file that cannot be read costs its own theme only, is named
    // in the message and is never rewritten.
    void unreadableSettingsFilesLeaveTheOtherThemes()
    {
        static const char png[] = "\x89PNG\r\n\x1a\n\x00\x00\x00\rIHDR\xff\xfe";
        const QByteArray garbage(png, sizeof png - 1);
        QVERIFY(test::writeFile(m_home + QStringLiteral("/originali/province.ini"), garbage));
        QVERIFY(QFile::remove(m_home + QStringLiteral("/supporto/citta.ini")));
        QVERIFY(QDir().mkpath(m_home + QStringLiteral("/supporto/citta.ini")));
        MessageRecorder rec;
        AppStart start{AtlasHome(m_home), appState()};
        QVERIFY(startAndShow(start));
        QCOMPARE(layerNames(*start.mainWindow()),
                 QStringList({QStringLiteral("commont"), QStringLiteral("comuni"), QStringLiteral("regioni")}));
        const QString supporto = m_home + QStringLiteral("/supporto/");
        QCOMPARE(rec.entries().size(), 2);
        QCOMPARE(
            rec.entries()[0].text,
            QStringLiteral("Impossibile sostituire il file %1citta.ini: al suo posto c'è una cartella.").arg(supporto));
        QCOMPARE(rec.entries()[1].text,
                 QStringLiteral("Il tema province non è stato caricato. Il file delle impostazioni %2province.ini non "
                                "contiene la sezione [province].\n"
                                "Il tema citta non è stato caricato. Impossibile leggere il file delle impostazioni "
                                "%1citta.ini.")
                     .arg(supporto, m_home + QStringLiteral("/originali/"))); // the pristine copy is the one to mend
        QCOMPARE(rec.entries()[1].style, MsgStyle::Critical);
        QCOMPARE(test::readFile(supporto + QStringLiteral("province.ini")), garbage);
        QCOMPARE(test::readFile(m_home + QStringLiteral("/originali/province.ini")), garbage);
        QVERIFY(QFileInfo(supporto + QStringLiteral("citta.ini")).isDir());
        QVERIFY(QDir(supporto).entryList({QStringLiteral("*.new")}).isEmpty());
    }

    // A cut pristine copy is never spread over the whole working table.
    void damagedPristineTableIsNotUsed()
    {
        const QString pristine = m_home + QStringLiteral("/originali/comuni.dbf");
        const QString working = m_home + QStringLiteral("/italia/comuni.dbf");
        const QByteArray whole = test::readFile(working);
        QVERIFY(test::writeFile(pristine, whole.left(whole.size() * 2 / 5)));
        MessageRecorder rec;
        AppStart start{AtlasHome(m_home), appState()};
        QVERIFY(startAndShow(start));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].text,
                 QStringLiteral("La copia originale %1 è danneggiata e non è stata usata. Il file comuni.dbf è "
                                "danneggiato: contiene 3.158 record completi su 7.899.")
                     .arg(pristine));
        QCOMPARE(test::readFile(working), whole);
        QCOMPARE(start.mainWindow()->mapWidget()->model().find(QStringLiteral("comuni"))->data->featureCount(), 7899);
    }

    // When both copies are cut the theme is left out, never drawn in part.
    void tableCutEverywhereIsLeftOut()
    {
        for (const char *folder : {"/originali/", "/italia/"}) {
            const QString dbf = m_home + QLatin1String(folder) + QStringLiteral("comuni.dbf");
            QVERIFY(test::writeFile(dbf, test::readFile(dbf).left(200)));
        }
        MessageRecorder rec;
        AppStart start{AtlasHome(m_home), appState()};
        QVERIFY(startAndShow(start));
        QVERIFY(!start.mainWindow()->mapWidget()->model().find(QStringLiteral("comuni")));
        QVERIFY(rec.contains(QStringLiteral("Il tema comuni non è stato caricato. Il file comuni.dbf è danneggiato: "
                                            "l'intestazione della tabella è incompleta.")));
        QCOMPARE(layerNames(*start.mainWindow()).size(), 4);
    }

    // A working table damaged without a change of size or time is found
    // when its theme is drawn and restored from the pristine copy.
    void damagedWorkingTableIsRestored()
    {
        const QString working = m_home + QStringLiteral("/italia/comuni.dbf");
        const QByteArray whole = test::readFile(working);
        QVERIFY(claimMoreRecords(working, QFileInfo(m_home + QStringLiteral("/originali/comuni.dbf")).lastModified()));
        MessageRecorder rec;
        AppStart start{AtlasHome(m_home), appState()};
        QVERIFY(startAndShow(start));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(
            rec.entries()[0].text,
            QStringLiteral("La tabella comuni.dbf era danneggiata ed è stata ripristinata dalla copia originale."));
        QCOMPARE(test::readFile(working), whole);
        QCOMPARE(start.mainWindow()->mapWidget()->model().find(QStringLiteral("comuni"))->data->featureCount(), 7899);
    }
};

QTEST_MAIN(TestStartupFaults)
#include "test_startup_faults.moc"
