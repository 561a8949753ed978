// Killing every write: each operation that writes the user's files is run
// again and again with MERVOLA_KILL_AT=1, 2, ... so that the process dies by
// SIGKILL at each of its write steps in turn, until it runs to its end. After
// each death the start's recovery runs (the journal settled, temporary files
// removed) and every file of the home and of the user's folders must be as
// before the operation or as after it, all together.
//
// The suite runs the settings and project saves; MERVOLA_KILL_ALL=1 adds the
// join, the removal of a join, the table export and the map export
// (scripts/kill-writes.sh), and MERVOLA_KILL_TABLE=FILE collects one line per
// operation for the script's table.
#include "app/MapModelHost.h"
#include "map/MapModel.h"
#include "platform/FileReplace.h"
#include "platform/WriteJournal.h"
#include "project/ProjectFile.h"
#include "project/SettingsWriters.h"
#include "support/JoinSources.h"

#include <QGuiApplication>
#include <QProcess>
#include <QtTest>
#include <csignal>
#include <functional>

using namespace mervola;
using namespace mervola::test;

namespace
{

using Snapshot = QMap<QString, QByteArray>;

// The operation runs in a child process so that it can die; these are the
// children that call the same routines as the window.
int runChild(const QStringList &args)
{
    const AtlasHome home(args.value(1));
    if (args.value(0) == QLatin1String("settings")) {
        // What the window writes when a theme's labels are switched on and
        // the theme is hidden.
        return updateThemeKeys(home.supporto() + QStringLiteral("/comuni.ini"), QStringLiteral("comuni"),
                               {{ThemeKey::Label, QStringLiteral("Label")}, {ThemeKey::Visibile, QStringLiteral("0")}})
                   ? 0
                   : 1;
    }
    if (args.value(0) == QLatin1String("project") || args.value(0) == QLatin1String("load")) {
        map::MapModel model;
        MapModelHost host(model);
        ProjectFiles projects(home, host);
        if (!projects.restoreDefault())
            return 1;
        if (args.value(0) == QLatin1String("load"))
            return 0;
        return projects.save(args.value(2), QStringLiteral("commont")) ? 0 : 1;
    }
    return 2;
}

struct Outcome {
    bool killed = false;
    int exitCode = -1;
    QString err;
};

Outcome runKilledAt(const QString &program, const QStringList &args, int killAt)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("MERVOLA_NONINTERACTIVE"), QStringLiteral("1"));
    if (killAt > 0)
        env.insert(QStringLiteral("MERVOLA_KILL_AT"), QString::number(killAt));
    else
        env.remove(QStringLiteral("MERVOLA_KILL_AT"));
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        return {};
    }
    Outcome o;
    o.err = QString::fromUtf8(p.readAllStandardError());
    o.killed = p.exitStatus() == QProcess::CrashExit && p.exitCode() == SIGKILL;
    o.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return o;
}

// Every file of the work folder but the lock, whose content names a process.
Snapshot snapshotOf(const QString &folder)
{
    Snapshot s = folderSnapshot(folder);
    s.remove(QStringLiteral("/home/.mervola.lock"));
    return s;
}

// Files whose content differs between two snapshots (present in one only,
// or with other bytes).
QStringList differing(const Snapshot &a, const Snapshot &b)
{
    QStringList out;
    for (auto it = a.cbegin(); it != a.cend(); ++it)
        if (b.value(it.key(), QByteArray("\x01missing")) != it.value())
            out << it.key();
    for (auto it = b.cbegin(); it != b.cend(); ++it)
        if (!a.contains(it.key()))
            out << it.key();
    return out;
}

struct Operation {
    QString name;
    // Brings the fresh home to the state before the operation.
    std::function<bool(const QString &work)> prepare;
    // The command and its arguments.
    std::function<QPair<QString, QStringList>(const QString &work)> command;
};

struct Tally {
    int killPoints = 0;
    int badFiles = 0;
    int mixedPoints = 0; // kill points whose state was neither before nor after
};

QString cli()
{
    return QStringLiteral(MERVOLA_CLI);
}

QString self()
{
    return QCoreApplication::applicationFilePath();
}

QStringList joinArgs(const QString &work)
{
    return {QStringLiteral("join"),
            QStringLiteral("--home"),
            work + QStringLiteral("/home"),
            QStringLiteral("--theme"),
            QStringLiteral("comuni"),
            QStringLiteral("--source"),
            work + QStringLiteral("/utente/nomi.txt"),
            QStringLiteral("--theme-key"),
            QStringLiteral("COD_ISTAT"),
            QStringLiteral("--source-key"),
            QStringLiteral("CODICE")};
}

bool writeSource(const QString &work)
{
    return writeNamesFile(work + QStringLiteral("/utente/nomi.txt"), municipalities(work + QStringLiteral("/home")));
}

QStringList exportArgs(const QString &work)
{
    return {QStringLiteral("sql"), QStringLiteral("--folder"), work + QStringLiteral("/home/italia"),
            QStringLiteral("SELECT COD_ISTAT, Label INTO [dBase IV;DATABASE=") + work +
                QStringLiteral("/utente].[esporta] FROM comuni")};
}

bool runsClean(const QString &program, const QStringList &args)
{
    const Outcome o = runKilledAt(program, args, 0);
    if (o.exitCode != 0)
        qWarning("%s", qPrintable(o.err));
    return o.exitCode == 0;
}

QList<Operation> operations(bool all)
{
    QList<Operation> ops;
    ops << Operation{QStringLiteral("impostazioni del tema"), [](const QString &) { return true; },
                     [](const QString &work) {
                         return qMakePair(self(),
                                          QStringList{QStringLiteral("--kill-child"), QStringLiteral("settings"),
                                                      work + QStringLiteral("/home")});
                     }};
    // The project is saved where the save dialog first opens: the home.
    ops << Operation{QStringLiteral("progetto"),
                     [](const QString &work) {
                         // The session before the save: the default project
                         // loaded (which writes the settings files), and an
                         // older save of the same project.
                         return runsClean(self(), {QStringLiteral("--kill-child"), QStringLiteral("load"),
                                                   work + QStringLiteral("/home")}) &&
                                writeFile(work + QStringLiteral("/home/lavoro.rlx"),
                                          "[RLX]\nDBFCOMMONT=commont^\nEXTENT=0^0^1^1^\n");
                     },
                     [](const QString &work) {
                         return qMakePair(self(), QStringList{QStringLiteral("--kill-child"), QStringLiteral("project"),
                                                              work + QStringLiteral("/home"),
                                                              work + QStringLiteral("/home/lavoro.rlx")});
                     }};
    if (!all)
        return ops;
    ops << Operation{QStringLiteral("join"), writeSource,
                     [](const QString &work) { return qMakePair(cli(), joinArgs(work)); }};
    ops << Operation{QStringLiteral("elimina join"),
                     [](const QString &work) { return writeSource(work) && runsClean(cli(), joinArgs(work)); },
                     [](const QString &work) {
                         return qMakePair(cli(), QStringList{QStringLiteral("unjoin"), QStringLiteral("--home"),
                                                             work + QStringLiteral("/home"), QStringLiteral("--theme"),
                                                             QStringLiteral("comuni")});
                     }};
    // The query window's export: a new dBase table in the user's folder.
    ops << Operation{QStringLiteral("esportazione tabella"), [](const QString &) { return true; },
                     [](const QString &work) { return qMakePair(cli(), exportArgs(work)); }};
    // A table the user changes in place: the table and its code page.
    ops << Operation{QStringLiteral("modifica tabella"),
                     [](const QString &work) { return runsClean(cli(), exportArgs(work)); },
                     [](const QString &work) {
                         return qMakePair(cli(), QStringList{QStringLiteral("sql"), QStringLiteral("--folder"),
                                                             work + QStringLiteral("/utente"),
                                                             QStringLiteral("UPDATE esporta SET Label = 'Aglie' "
                                                                            "WHERE COD_ISTAT = '001001'")});
                     }};
    ops << Operation{QStringLiteral("esportazione mappa"),
                     [](const QString &work) {
                         return runsClean(cli(), {QStringLiteral("render"), QStringLiteral("--home"),
                                                  work + QStringLiteral("/home"), QStringLiteral("--size"),
                                                  QStringLiteral("200x150"), QStringLiteral("--out"),
                                                  work + QStringLiteral("/utente/mappa.png")});
                     },
                     [](const QString &work) {
                         return qMakePair(cli(), QStringList{QStringLiteral("render"), QStringLiteral("--home"),
                                                             work + QStringLiteral("/home"), QStringLiteral("--size"),
                                                             QStringLiteral("400x300"), QStringLiteral("--out"),
                                                             work + QStringLiteral("/utente/mappa.png")});
                     }};
    return ops;
}

} // namespace

class TestKillWrites : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

    QString work() const { return m_dir.filePath(QStringLiteral("lavoro")); }

    // A fresh atlas home (always at the same path, since settings files
    // hold it) and the user's folder, brought to the operation's "before".
    bool freshWork(const Operation &op)
    {
        QDir(work()).removeRecursively();
        QDir().mkpath(work() + QStringLiteral("/utente"));
        return copyRealAtlas(work() + QStringLiteral("/home")) && op.prepare(work());
    }

    // Brings the work folder back to a snapshot: quicker than a fresh copy
    // of the atlas, and the same, since the snapshot holds every file.
    void resetTo(const Snapshot &state)
    {
        const Snapshot now = snapshotOf(work());
        for (const QString &path : differing(state, now)) {
            const QString file = work() + path;
            if (state.contains(path))
                QVERIFY(writeFile(file, state.value(path)));
            else
                QFile::remove(file);
        }
        QFile::remove(work() + QStringLiteral("/home/.mervola.lock"));
    }

    // The first thing the next start does; for the user's dBase folder, the
    // first thing the next command on it does.
    void recover()
    {
        (void)recoverInterruptedWrites(AtlasHome(work() + QStringLiteral("/home")));
        removeStaleDbfWork(work() + QStringLiteral("/utente"));
    }

    Tally killEverywhere(const Operation &op)
    {
        Tally t;
        if (!freshWork(op))
            return {-1, -1, -1};
        const Snapshot before = snapshotOf(work());
        const auto [program, args] = op.command(work());
        if (!runsClean(program, args))
            return {-1, -1, -1};
        const Snapshot after = snapshotOf(work());
        if (before == after)
            return {-1, -1, -1};
        for (int n = 1; n < 1000; ++n) {
            resetTo(before);
            const Outcome o = runKilledAt(program, args, n);
            if (!o.killed) {
                // The run passed every kill point: it must have succeeded.
                if (o.exitCode != 0)
                    t.badFiles = -1;
                break;
            }
            ++t.killPoints;
            recover();
            const Snapshot now = snapshotOf(work());
            if (now == before || now == after)
                continue;
            const QStringList fromBefore = differing(before, now), fromAfter = differing(after, now);
            const QStringList &bad = fromBefore.size() <= fromAfter.size() ? fromBefore : fromAfter;
            qWarning("%s, kill point %d: %s", qPrintable(op.name), n, qPrintable(bad.join(QStringLiteral(", "))));
            t.badFiles += int(bad.size());
            ++t.mixedPoints;
        }
        return t;
    }

    void report(const QString &name, const Tally &t)
    {
        const QString table = qEnvironmentVariable("MERVOLA_KILL_TABLE");
        if (table.isEmpty())
            return;
        QFile f(table);
        if (f.open(QIODevice::Append))
            f.write(QStringLiteral("%1\t%2\t%3\t%4\n")
                        .arg(name)
                        .arg(t.killPoints)
                        .arg(t.badFiles)
                        .arg(t.mixedPoints)
                        .toUtf8());
    }

private slots:
    void everyKillPointLeavesBeforeOrAfter_data()
    {
        QTest::addColumn<int>("index");
        const auto ops = operations(qEnvironmentVariableIntValue("MERVOLA_KILL_ALL") == 1);
        for (int i = 0; i < ops.size(); ++i)
            QTest::newRow(ops[i].name.toUtf8().constData()) << i;
    }

    void everyKillPointLeavesBeforeOrAfter()
    {
        QFETCH(int, index);
        const Operation op = operations(true).at(index);
        const Tally t = killEverywhere(op);
        report(op.name, t);
        QVERIFY2(t.killPoints > 0, "the operation could not be run or changed nothing");
        // At least the content written and the file renamed into place.
        QVERIFY(t.killPoints >= 2);
        QCOMPARE(t.badFiles, 0);
        QCOMPARE(t.mixedPoints, 0);
    }

    // A journal left by a join killed before its end takes every file back;
    // one that reached COMMIT only loses the copies and working files.
    void journalGoesBackOrForward()
    {
        QTemporaryDir d;
        const QString table = d.filePath(QStringLiteral("comuni.dbf"));
        const QString copy = table + QStringLiteral(".old");
        const QString fresh = d.filePath(QStringLiteral("comuni.bak"));
        const QString scratch = d.filePath(QStringLiteral("temp.dbf"));
        const QString gone = d.filePath(QStringLiteral("vecchio.bak"));
        const QList<JournalEntry> entries{{JournalEntry::Kind::Kept, table, copy},
                                          {JournalEntry::Kind::Created, fresh, {}},
                                          {JournalEntry::Kind::Working, scratch, {}},
                                          {JournalEntry::Kind::Discard, gone, {}}};
        for (const bool committed : {false, true}) {
            QVERIFY(writeFile(table, "nuova"));
            QVERIFY(writeFile(copy, "vecchia"));
            QVERIFY(writeFile(table + QStringLiteral("-journal"), "pagine"));
            QVERIFY(writeFile(fresh, "copia"));
            QVERIFY(writeFile(scratch, "lavoro"));
            QVERIFY(writeFile(gone, "da togliere"));
            QVERIFY(writeJournal(d.path(), entries, committed));
            const Recovery r = settleJournal(d.path());
            QVERIFY(r.journalFound);
            QCOMPARE(r.committed, committed);
            QCOMPARE(readFile(table), committed ? QByteArray("nuova") : QByteArray("vecchia"));
            QCOMPARE(QFileInfo::exists(copy), false);
            // A database's rollback journal never outlives the file it belonged to.
            QCOMPARE(QFileInfo::exists(table + QStringLiteral("-journal")), committed);
            QCOMPARE(QFileInfo::exists(fresh), committed);
            QCOMPARE(QFileInfo::exists(scratch), false);
            QCOMPARE(QFileInfo::exists(gone), !committed);
            QVERIFY(!QFileInfo::exists(journalPath(d.path())));
            QFile::remove(table + QStringLiteral("-journal"));
            QFile::remove(gone);
        }
    }
};

int main(int argc, char **argv)
{
    if (argc > 1 && qstrcmp(argv[1], "--kill-child") == 0) {
        QGuiApplication app(argc, argv);
        return runChild(app.arguments().mid(2));
    }
    QGuiApplication app(argc, argv);
    TestKillWrites test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "test_kill_writes.moc"
