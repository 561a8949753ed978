// The application run as a user runs it: start-up to the first painted map,
// the refusal of a second copy on the same atlas home, and the lock files,
// read-only homes and full disks a user really meets.
#include "support/MountSupport.h"
#include "support/TestSupport.h"

#include <QDirIterator>
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

int runApp(const QString &home, QString *err)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("MERVOLA_NONINTERACTIVE"), QStringLiteral("1"));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(MERVOLA_APP), {QStringLiteral("--home"), home, QStringLiteral("--quit-after-start")});
    if (!p.waitForFinished(120000)) {
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
