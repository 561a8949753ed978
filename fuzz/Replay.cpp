// Feeds every kept fuzz input (corpus/<target>/ and regressions/<target>/)
// to its target's entry function: an input that once crashed a reader must
// now be read or refused, and the seeds must still go through. Access
// inputs go through the helper process, as the program reads them.
#include "FuzzTargets.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

using namespace mervola::fuzz;

class FuzzReplay : public QObject
{
    Q_OBJECT
private slots:
    void replay_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("path");
        for (const Target &t : kTargets) {
            for (const char *kind : {"corpus", "regressions"}) {
                const QDir dir(
                    QStringLiteral(MERVOLA_FUZZ_DIR "/%1/%2").arg(QLatin1String(kind), QLatin1String(t.name)));
                for (const QString &file : dir.entryList(QDir::Files, QDir::Name))
                    QTest::newRow(
                        qPrintable(QStringLiteral("%1/%2/%3").arg(QLatin1String(kind), QLatin1String(t.name), file)))
                        << QString::fromLatin1(t.name) << dir.filePath(file);
            }
        }
    }

    void replay()
    {
        QFETCH(QString, target);
        QFETCH(QString, path);
        const Target *t = findTarget(qPrintable(target));
        QVERIFY(t);
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray bytes = f.readAll();
        QCOMPARE(t->replay(reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size())), 0);
    }

    // Every target keeps seeds, and the regressions of the readers that
    // crashed are there to be replayed.
    void everyTargetHasInputs()
    {
        for (const Target &t : kTargets) {
            const QDir dir(QStringLiteral(MERVOLA_FUZZ_DIR "/corpus/%1").arg(QLatin1String(t.name)));
            QVERIFY2(dir.entryList(QDir::Files).size() >= 3, t.name);
        }
    }
};

QTEST_GUILESS_MAIN(FuzzReplay)
#include "Replay.moc"
