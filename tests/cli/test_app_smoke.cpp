// The application run as a user runs it: start-up to the first painted map,
// the first start that prepares the atlas, the refusal of a second copy on
// the same atlas home, the lock files, read-only homes and full disks a user
// really meets, and the Italian usage of both programs.
#include "support/MountSupport.h"
#include "support/TestSupport.h"

#include <QDirIterator>
#include <QImage>
#include <QLockFile>
#include <QProcess>
#include <QSysInfo>
#include <QtTest>

using namespace mervola;

namespace {

// Every file of a folder with its size and modification time.
QMap<QString, QString> snapshot(const QString &dir)
{
    QMap<QString, QString> out;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QFileInfo fi = it.fileInfo();
        out.insert(fi.filePath(), QStringLiteral("%1 %2").arg(fi.size()).arg(fi.lastModified().toMSecsSinceEpoch()));
    }
    return out;
}

int runApp(const QString &home, QString *err, const QStringList &extra = {}, const QString &sources = {})
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("MERVOLA_NONINTERACTIVE"), QStringLiteral("1"));
    env.remove(QStringLiteral("MERVOLA_SOURCES"));
    if (!sources.isEmpty())
        env.insert(QStringLiteral("MERVOLA_SOURCES"), sources);
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(MERVOLA_APP),
            QStringList{QStringLiteral("--home"), home, QStringLiteral("--quit-after-start")} + extra);
    if (!p.waitForFinished(600000)) {
        p.kill();
        return -1;
    }
    *err = QString::fromUtf8(p.readAllStandardError());
    return p.exitCode();
}

}  // namespace

class TestAppSmoke : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

private slots:
    void initTestCase()
    {
        m_home = m_dir.path() + QStringLiteral("/home");
        QString err;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("build-atlas"), QStringLiteral("--demo"), QStringLiteral("--home"), m_home},
                                  nullptr, &err),
                 0);
    }

    void startsAndPaintsTheMap()
    {
        QString err;
        QCOMPARE(runApp(m_home, &err), 0);
        QVERIFY2(err.contains(QStringLiteral("Mappa disegnata")), qPrintable(err));
    }

    void startsOnTheRealAtlasOfAllItaly()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia"));
        QVERIFY(test::copyRealAtlas(home));
        QVERIFY(test::readFile(home + QStringLiteral("/supporto/default.rlx")).contains(home.toUtf8() + "/italia/"));
        QString err;
        QCOMPARE(runApp(home, &err), 0);
        QVERIFY2(err.contains(QStringLiteral("Mappa disegnata")), qPrintable(err));
    }

    void firstStartPreparesTheAtlasOfAllItaly()
    {
        // Nothing at --home: the atlas is built from the source data found
        // beside the program (data/sources of this source tree).
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("nuovo/atlante"));
        const QString shot = dir.filePath(QStringLiteral("finestra.png"));
        QString err;
        QCOMPARE(runApp(home, &err, {QStringLiteral("--screenshot"), shot}), 0);
        QVERIFY2(err.contains(QStringLiteral("Preparazione dell'atlante...\n  Lettura dei dati di origine da ")), qPrintable(err));
        QVERIFY2(err.contains(QStringLiteral("Atlante creato in %1: 7899 comuni").arg(home)), qPrintable(err));
        QVERIFY2(err.contains(QStringLiteral("Mappa disegnata")), qPrintable(err));
        QString count;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("sql"), QStringLiteral("--folder"), home + QStringLiteral("/italia"),
                                   QStringLiteral("SELECT COUNT(*) FROM comuni")},
                                  &count),
                 0);
        QCOMPARE(count.split(QLatin1Char('\n')).value(1).trimmed(), QStringLiteral("7899"));
        // The window shows the municipalities (cyan) and communities (green) of all Italy.
        const QImage window(shot);
        int cyan = 0, green = 0;
        for (int y = 0; y < window.height(); ++y)
            for (int x = 0; x < window.width(); ++x) {
                cyan += window.pixel(x, y) == qRgb(0, 255, 255);
                green += window.pixel(x, y) == qRgb(0, 220, 0);
            }
        QVERIFY2(cyan > 5000 && green > 5000, qPrintable(QStringLiteral("%1 %2").arg(cyan).arg(green)));

        // The second start finds the atlas and does not prepare it again.
        QCOMPARE(runApp(home, &err), 0);
        QVERIFY2(!err.contains(QStringLiteral("Preparazione")), qPrintable(err));
    }

    void missingSourcesAreSaidAndNothingIsCreated()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("atlante"));
        const QString sources = dir.filePath(QStringLiteral("nessuna"));
        QString err;
        QCOMPARE(runApp(home, &err, {}, sources), 1);
        QVERIFY2(err.contains(QStringLiteral("Impossibile preparare l'atlante in %1: i dati di origine non sono stati "
                                             "trovati.\nCartelle cercate:\n%2\nReinstallare Mervola")
                                  .arg(home, sources)),
                 qPrintable(err));
        QVERIFY(!QFileInfo::exists(home));
    }

    void usageIsItalianAndExitCodesAreDocumented()
    {
        QString out, err;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_APP), {QStringLiteral("--help")}, &out), 0);
        QVERIFY2(out.startsWith(QStringLiteral("Uso: mervola [--home CARTELLA]")), qPrintable(out));
        QVERIFY(out.contains(QStringLiteral("Codici di uscita: 0 uscita normale, 1 avvio impossibile")));
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_APP), {QStringLiteral("--version")}, &out), 0);
        QCOMPARE(out, QStringLiteral("mervola " MERVOLA_TEST_VERSION "\n"));
        QCOMPARE(runApp(m_home, &err, {QStringLiteral("--colore")}), 2);
        QVERIFY2(err.contains(QStringLiteral("argomento sconosciuto: --colore")), qPrintable(err));

        const QString cli = QStringLiteral(MERVOLA_CLI);
        QCOMPARE(test::runProgram(cli, {QStringLiteral("--version")}, &out), 0);
        QCOMPARE(out, QStringLiteral("mervola-cli " MERVOLA_TEST_VERSION "\n"));
        QCOMPARE(test::runProgram(cli, {QStringLiteral("--help")}, &out), 0);
        QVERIFY2(out.startsWith(QStringLiteral("Uso: mervola-cli COMANDO [opzioni]")), qPrintable(out));
        QVERIFY(out.contains(QStringLiteral("Codici di uscita: 0 riuscito, 1 operazione non riuscita, 2 riga di comando "
                                            "errata.")));
        for (const char *command : {"build-atlas", "sql", "render", "classify"}) {
            QCOMPARE(test::runProgram(cli, {QString::fromLatin1(command), QStringLiteral("--help")}, &out), 0);
            QVERIFY2(out.startsWith(QStringLiteral("Uso: mervola-cli ") + QLatin1String(command)), qPrintable(out));
            QVERIFY2(out.count(QLatin1Char('\n')) >= 4, qPrintable(out));
        }
        QVERIFY(out.contains(QStringLiteral("--method METODO       quantile, regolari, unico o naturali (limiti dell'utente)")));
        QCOMPARE(test::runProgram(cli, {QStringLiteral("disegna")}, nullptr, &err), 2);
        QVERIFY2(err.contains(QStringLiteral("comando sconosciuto: disegna")), qPrintable(err));
        QCOMPARE(test::runProgram(cli, {QStringLiteral("build-atlas"), QStringLiteral("--demo")}, nullptr, &err), 2);
    }

    void secondCopyIsRefusedAndWritesNothing()
    {
        QLockFile running(m_home + QStringLiteral("/.mervola.lock"));
        QVERIFY(running.tryLock(0));
        const auto before = snapshot(m_home);
        QString err;
        QVERIFY(runApp(m_home, &err) != 0);
        QVERIFY2(err.contains(QStringLiteral("L'applicazione è già in esecuzione.")), qPrintable(err));
        QCOMPARE(snapshot(m_home), before);
    }

    // Whatever a lock file holds, it is taken over when no live process
    // holds it; the program starts and leaves no lock behind.
    void leftoverLocksAreTakenOver_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("old");
        const QByteArray host = QSysInfo::machineHostName().toUtf8();
        QTest::newRow("vuoto") << QByteArray() << false;
        QTest::newRow("spazzatura") << QByteArray("\x00\xff\xfe garbage\n\x01", 12) << false;
        QTest::newRow("altro host") << QByteArray("4242\nMervola\naltro-calcolatore\n") << false;
        QTest::newRow("vecchio") << QByteArray("999999\nMervola\n" + host + "\n") << true;
        // A home copied while the program ran: the lock names a live process
        // (this test), which holds nothing on this copy.
        QTest::newRow("copia di una cartella in uso")
            << QByteArray::number(QCoreApplication::applicationPid()) + "\nMervola\n" + host + "\n" << false;
    }

    void leftoverLocksAreTakenOver()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, old);
        const QString lock = m_home + QStringLiteral("/.mervola.lock");
        QVERIFY(test::writeFile(lock, content));
        if (old) {
            QFile f(lock);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.setFileTime(QDateTime(QDate(2019, 3, 1), QTime(8, 0)), QFileDevice::FileModificationTime));
        }
        QString err;
        QCOMPARE(runApp(m_home, &err), 0);
        QVERIFY2(err.contains(QStringLiteral("Mappa disegnata")), qPrintable(err));
        QVERIFY2(!err.contains(QStringLiteral("già in esecuzione")), qPrintable(err));
        QVERIFY(!QFileInfo::exists(lock));
    }

    void folderInPlaceOfTheLockIsMovedAside()
    {
        const QString lock = m_home + QStringLiteral("/.mervola.lock");
        QVERIFY(QDir().mkpath(lock));
        QString err;
        QCOMPARE(runApp(m_home, &err), 0);
        QVERIFY(!QFileInfo::exists(lock));

        // A folder with content is kept, under another name.
        QVERIFY(test::writeFile(lock + QStringLiteral("/appunti.txt"), "da tenere"));
        QCOMPARE(runApp(m_home, &err), 0);
        QVERIFY2(!err.contains(QStringLiteral("già in esecuzione")), qPrintable(err));
        const QStringList aside =
            QDir(m_home).entryList({QStringLiteral(".mervola.lock.cartella-*")}, QDir::Dirs | QDir::Hidden);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(test::readFile(m_home + QLatin1Char('/') + aside.first() + QStringLiteral("/appunti.txt")),
                 QByteArray("da tenere"));
        QDir(m_home + QLatin1Char('/') + aside.first()).removeRecursively();
    }

    void readOnlyHomeIsNamedInItsOwnMessage()
    {
        if (!test::ScopedMount::available())
            QSKIP("mounting is not allowed here");
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia"));
        QVERIFY(test::copyRealAtlas(home));
        const QString view = dir.filePath(QStringLiteral("sola-lettura"));
        test::ScopedMount ro;
        QVERIFY(ro.readOnlyView(home, view));
        QString err;
        QCOMPARE(runApp(view, &err), 1);
        QVERIFY2(err.contains(QStringLiteral("Mervola: Impossibile scrivere nella cartella dell'atlante ") + view
                              + QStringLiteral(": il disco è in sola lettura.\n")),
                 qPrintable(err));
        QVERIFY2(!err.contains(QStringLiteral("già in esecuzione")), qPrintable(err));
    }

    void fullDiskIsNamedInItsOwnMessage()
    {
        if (!test::ScopedMount::available())
            QSKIP("mounting is not allowed here");
        QTemporaryDir dir;
        const QString real = dir.filePath(QStringLiteral("reale"));
        QVERIFY(test::copyRealAtlas(real));
        const QString disk = dir.filePath(QStringLiteral("disco"));
        test::ScopedMount mount;
        QVERIFY(mount.tmpfs(disk, test::folderSize(real) + 8 * 1024 * 1024));
        const QString home = disk + QStringLiteral("/italia");
        QVERIFY(test::copyRealAtlas(home));
        QVERIFY(test::fillDisk(disk));
        QString err;
        QCOMPARE(runApp(home, &err), 1);
        QVERIFY2(err.contains(QStringLiteral("Mervola: Impossibile scrivere nella cartella dell'atlante ") + home
                              + QStringLiteral(": il disco è pieno.\n")),
                 qPrintable(err));
        QVERIFY2(!err.contains(QStringLiteral("già in esecuzione")), qPrintable(err));
        QVERIFY(!QFileInfo::exists(home + QStringLiteral("/.mervola.lock")));
    }

    void startsAgainWithoutPristineSettings()
    {
        // With no settings files in originali/ the program writes the 39
        // region files and still shows the default project.
        for (const QString &f : QDir(m_home + QStringLiteral("/originali")).entryList({QStringLiteral("*.ini")}))
            QFile::remove(m_home + QStringLiteral("/originali/") + f);
        QString err;
        QCOMPARE(runApp(m_home, &err), 0);
        const QDir orig(m_home + QStringLiteral("/originali"));
        QCOMPARE(orig.entryList({QStringLiteral("cmont_*.ini")}).size(), 19);
        QCOMPARE(orig.entryList({QStringLiteral("comu_*.ini")}).size(), 20);
        QVERIFY(!orig.exists(QStringLiteral("cmont_19.ini")));
        QVERIFY2(!err.contains(QStringLiteral("non trovato")), qPrintable(err));
    }
};

QTEST_GUILESS_MAIN(TestAppSmoke)
#include "test_app_smoke.moc"
