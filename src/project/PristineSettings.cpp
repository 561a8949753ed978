#include "project/PristineSettings.h"

#include "platform/Profile.h"
#include "platform/dbf/TableCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace mervola {

namespace {

QString twoDigits(int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); }

QStringList filesIn(const QString &dir, const QStringList &filters = {})
{
    return QDir(dir).entryList(filters, QDir::Files, QDir::Name | QDir::IgnoreCase);
}

// Name of a file without its four-character extension (".ini", ".dbf").
QString stripExtension(const QString &fileName)
{
    return fileName.size() > 4 ? fileName.left(fileName.size() - 4) : QString();
}

Error missingFolder(const QString &dir)
{
    return Error{QStringLiteral("Cartella non trovata: %1").arg(QDir::toNativeSeparators(dir)), kMissingFolder};
}

// Gathers the failures of a loop that goes on past them.
struct Failures {
    QStringList messages;
    void add(const Status &st)
    {
        if (!st && !messages.contains(st.errorMessage()))
            messages << st.errorMessage();
    }
    Status result() const
    {
        if (messages.isEmpty())
            return {};
        return Status::fail(messages.join(QLatin1Char('\n')));
    }
};

}  // namespace

QStringList pristineThemeLines(const QString &home, int region, bool mountain)
{
    const QString nn = twoDigits(region);
    const QString prefix = mountain ? QStringLiteral("cmont_") : QStringLiteral("comu_");
    return {
        QLatin1Char('[') + prefix.toUpper() + nn + QLatin1Char(']'),
        QStringLiteral("JOIN=-1^-1^-1^-1^-1^-1^"),
        QStringLiteral("STRUCTJOIN=*^"),
        QStringLiteral("WORKSPACE=") + home + QStringLiteral("/italia/"),
        QStringLiteral("BASE=") + prefix + nn + QStringLiteral(".shp^") + prefix + nn + QLatin1Char('^'),
        mountain ? QStringLiteral("SIMBOLO=2^0^0^56320^33554432^") : QStringLiteral("SIMBOLO=2^0^0^16776960^33554432^"),
        QStringLiteral("LABEL=*"),
        QStringLiteral("TIPOCLASSIFICAZIONE=0"),
        mountain ? QStringLiteral("CAMPO=I010^0^0^0^") : QStringLiteral("CAMPO=0^0^0^0^"),
        QStringLiteral("CLASSIFICAZIONE=0"),
        QStringLiteral("OUTLINE=1"),
        QStringLiteral("VISIBILE=0"),
    };
}

Result<int> writePristineSettingsIfMissing(const AtlasHome &home)
{
    const QString dir = home.originali();
    if (!QFileInfo(dir).isDir())
        return missingFolder(dir);
    if (!filesIn(dir, {QStringLiteral("*.ini"), QStringLiteral("*.INI")}).isEmpty())
        return 0;
    int written = 0;
    for (int region = 1; region <= 20; ++region) {
        // Sicily (19) has no mountain communities, so no mountain theme.
        for (bool mountain : {true, false}) {
            if (mountain && region == 19)
                continue;
            const QString name = (mountain ? QStringLiteral("cmont_") : QStringLiteral("comu_")) + twoDigits(region);
            if (auto st = writeLinesReplacing(dir + QLatin1Char('/') + name + QStringLiteral(".ini"),
                                              pristineThemeLines(home.root(), region, mountain));
                !st)
                return st.error();
            ++written;
        }
    }
    return written;
}

// True when both files exist and hold the same bytes (settings files are small).
static bool sameContent(const QString &a, const QString &b)
{
    QFile fa(a), fb(b);
    if (fa.size() != fb.size() || !fa.open(QIODevice::ReadOnly) || !fb.open(QIODevice::ReadOnly))
        return false;
    return fa.readAll() == fb.readAll();
}

namespace {

// Copies the pristine table over the working one and gives it the pristine
// copy's time, so that an untouched table is recognised later.
Status copyPristineTable(const QString &source, const QString &target)
{
    // A damaged pristine copy is never spread over the working table.
    if (Status whole = checkDbfFile(source); !whole)
        return Error{PristineText::kDamagedPristine.arg(QDir::toNativeSeparators(source), whole.errorMessage()),
                     kDamagedFile};
    if (auto st = copyFileReplacing(source, target); !st)
        return st;
    QFile copied(target);
    if (copied.open(QIODevice::ReadWrite))
        copied.setFileTime(QFileInfo(source).lastModified(), QFileDevice::FileModificationTime);
    return {};
}

}  // namespace

Status restoreThemeTable(const AtlasHome &home, const QString &name)
{
    const QString table = name + QStringLiteral(".dbf");
    const QString source = resolveCaseInsensitive(home.originali(), table);
    const QFileInfo src(source);
    if (!src.isFile())
        return {};
    const QString target = resolveCaseInsensitive(home.italia(), table);
    // A working table that still carries the pristine copy's size and time
    // has not been touched since it was restored: copying it again would
    // only slow every start down.
    const QFileInfo dst(target);
    if (dst.isFile() && dst.size() == src.size() && dst.lastModified() == src.lastModified())
        return {};
    return copyPristineTable(source, target);
}

Status repairThemeTable(const AtlasHome &home, const QString &name)
{
    const QString table = name + QStringLiteral(".dbf");
    const QString source = resolveCaseInsensitive(home.originali(), table);
    if (!QFileInfo(source).isFile())
        return Status::fail(QStringLiteral("Nessuna copia originale di %1.").arg(table));
    return copyPristineTable(source, resolveCaseInsensitive(home.italia(), table));
}

Status restoreAllThemeTables(const AtlasHome &home)
{
    const QString dir = home.originali();
    if (!QFileInfo(dir).isDir())
        return missingFolder(dir);
    QSet<QString> done;
    Failures failures;
    for (const QString &file : filesIn(dir)) {
        const QString name = stripExtension(file);
        if (name.isEmpty() || done.contains(name.toLower()))
            continue;
        done.insert(name.toLower());
        failures.add(restoreThemeTable(home, name));
    }
    return failures.result();
}

Status copyPristineSettings(const AtlasHome &home)
{
    const QString dir = home.originali();
    if (!QFileInfo(dir).isDir())
        return missingFolder(dir);
    QDir().mkpath(home.supporto());
    Failures failures;
    for (const QString &file : filesIn(dir)) {
        if (!file.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive))
            continue;
        // Replace the working file whatever the case of its name; one that
        // already holds the pristine text is left as it is.
        const QString target = resolveCaseInsensitive(home.supporto(), file);
        const QString source = dir + QLatin1Char('/') + file;
        if (sameContent(source, target))
            continue;
        failures.add(copyFileReplacing(source, target));
    }
    return failures.result();
}

QString settingsFileToMend(const AtlasHome &home, const QString &working)
{
    const QString pristine = resolveCaseInsensitive(home.originali(), QFileInfo(working).fileName());
    return QFileInfo(pristine).isFile() && sameContent(pristine, working) ? pristine : working;
}

void removeStraySettings(const AtlasHome &home)
{
    QSet<QString> pristine;
    for (const QString &f : filesIn(home.originali(), {QStringLiteral("*.ini"), QStringLiteral("*.INI")}))
        pristine.insert(f.toLower());
    for (const QString &f : filesIn(home.supporto())) {
        const QString lower = f.toLower();
        const bool stray = (lower.endsWith(QLatin1String(".ini")) && !pristine.contains(lower)
                            && lower != QLatin1String("stili.ini"))
                           || lower.endsWith(QLatin1String(".new"));
        if (stray)
            QFile::remove(home.supporto() + QLatin1Char('/') + f);
    }
}

Status restoreCommunityTable(const AtlasHome &home, const QString &stored, const QString &target)
{
    const QString storedTable = stored + QStringLiteral(".dbf");
    QString source = resolveCaseInsensitive(home.originali(), storedTable);
    if (!QFileInfo(source).isFile())
        source = resolveCaseInsensitive(home.italia(), storedTable);
    if (!QFileInfo(source).isFile())
        return Status::fail(QStringLiteral("Tabella non trovata: %1").arg(storedTable));
    const QString dest = resolveCaseInsensitive(home.italia(), target + QStringLiteral(".dbf"));
    if (QFileInfo(source).canonicalFilePath() == QFileInfo(dest).canonicalFilePath())
        return {};
    return copyFileReplacing(source, dest);
}

}  // namespace mervola
