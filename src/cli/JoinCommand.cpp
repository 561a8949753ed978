// mervola-cli join / unjoin: an external table joined to a theme's table,
// and removed again, with the checks, messages and roll-back of the join
// wizard and of "Elimina Join". They run in the tools module, since reading
// a user's dBase or Access table needs GDAL and mdbtools.
#include "cli/Commands.h"
#include "platform/AtlasHome.h"
#include "platform/InstanceLock.h"
#include "platform/WriteJournal.h"
#include "project/JoinScript.h"

#include <cstdio>

namespace mervola::cli
{

namespace
{

int refuse(const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    return 1;
}

Result<AtlasHome> homeOf(const QStringList &args)
{
    const AtlasHome home = AtlasHome::locate(option(args, QStringLiteral("--home")));
    if (!home.exists())
        return Result<AtlasHome>::fail(QStringLiteral("Cartella dell'atlante non trovata: ") + home.root());
    return home;
}

// A join changes the home as the program does, so it takes the home as the
// program does: one copy at a time, and an operation a killed process left
// half-done is settled first. Each change is journaled in the home.
Status takeHome(const AtlasHome &home, InstanceLock &lock)
{
    switch (lock.acquire()) {
    case InstanceLock::State::Held: break;
    case InstanceLock::State::InUse: return Status::fail(LockText::kInUse);
    case InstanceLock::State::CannotWrite: return Status::fail(lock.message());
    }
    setJournalFolder(home.root());
    (void)recoverInterruptedWrites(home);
    return {};
}

} // namespace

int cmdJoin(const QStringList &args)
{
    ScriptedJoin join;
    join.theme = option(args, QStringLiteral("--theme"));
    join.source = option(args, QStringLiteral("--source"));
    join.table = option(args, QStringLiteral("--table"));
    join.themeKey = option(args, QStringLiteral("--theme-key"));
    join.sourceKey = option(args, QStringLiteral("--source-key"));
    const QString fields = option(args, QStringLiteral("--fields"));
    if (!fields.isEmpty())
        join.fields = fields.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (join.theme.isEmpty() || join.source.isEmpty() || join.themeKey.isEmpty() || join.sourceKey.isEmpty())
        return fail(
            QStringLiteral("occorrono --theme, --source, --theme-key e --source-key (mervola-cli join --help)"));
    auto home = homeOf(args);
    if (!home)
        return refuse(home.errorMessage());
    InstanceLock lock(home->root());
    if (Status st = takeHome(*home, lock); !st)
        return refuse(st.errorMessage());
    auto outcome = runScriptedJoin(*home, join);
    if (!outcome)
        return refuse(outcome.errorMessage());
    std::printf("%s\n", QStringLiteral("Collegati al tema %1 i campi: %2")
                            .arg(join.theme, outcome->addedFields.join(QStringLiteral(", ")))
                            .toUtf8()
                            .constData());
    return 0;
}

int cmdUnjoin(const QStringList &args)
{
    const QString theme = option(args, QStringLiteral("--theme"));
    if (theme.isEmpty())
        return fail(QStringLiteral("occorre --theme (mervola-cli unjoin --help)"));
    auto home = homeOf(args);
    if (!home)
        return refuse(home.errorMessage());
    InstanceLock lock(home->root());
    if (Status st = takeHome(*home, lock); !st)
        return refuse(st.errorMessage());
    if (Status st = runScriptedUnjoin(*home, theme); !st)
        return refuse(st.errorMessage());
    return 0;
}

} // namespace mervola::cli
