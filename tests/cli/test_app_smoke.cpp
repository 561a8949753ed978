// The application run as a user runs it: start-up to the first painted map,
// and the refusal of a second copy on the same atlas home.
#include "support/TestSupport.h"

#include <QDirIterator>
#include <QLockFile>
#include <QProcess>
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
