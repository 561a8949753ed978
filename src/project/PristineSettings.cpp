#include "project/PristineSettings.h"

#include "platform/Profile.h"

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
    return Error{QStringLiteral("Cartella non trovata: %1").arg(QDir::toNativeSeparators(dir))};
}

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

Status copyFileReplacing(const QString &source, const QString &target)
{
    const QString temp = target + QStringLiteral(".new");
    QFile::remove(temp);
    if (!QFile::copy(source, temp))
        return Status::fail(QStringLiteral("Impossibile copiare il file %1.").arg(QDir::toNativeSeparators(source)));
    if (QFileInfo::exists(target) && !QFile::remove(target)) {
        QFile::remove(temp);
        return Status::fail(QStringLiteral("Impossibile sostituire il file %1.").arg(QDir::toNativeSeparators(target)));
    }
    if (!QFile::rename(temp, target))
        return Status::fail(QStringLiteral("Impossibile rinominare il file %1.").arg(QDir::toNativeSeparators(temp)));
    return {};
}

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
    if (auto st = copyFileReplacing(source, target); !st)
        return st;
    QFile copied(target);
    if (copied.open(QIODevice::ReadWrite))
        copied.setFileTime(src.lastModified(), QFileDevice::FileModificationTime);
    return {};
}

Status restoreAllThemeTables(const AtlasHome &home)
{
    const QString dir = home.originali();
    if (!QFileInfo(dir).isDir())
        return missingFolder(dir);
    QSet<QString> done;
    for (const QString &file : filesIn(dir)) {
        const QString name = stripExtension(file);
        if (name.isEmpty() || done.contains(name.toLower()))
            continue;
        done.insert(name.toLower());
        if (auto st = restoreThemeTable(home, name); !st)
            return st;
    }
    return {};
}

Status copyPristineSettings(const AtlasHome &home)
{
    const QString dir = home.originali();
    if (!QFileInfo(dir).isDir())
        return missingFolder(dir);
    QDir().mkpath(home.supporto());
    for (const QString &file : filesIn(dir)) {
        if (!file.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive))
            continue;
        // Replace the working file whatever the case of its name; one that
        // already holds the pristine text is left as it is.
        const QString target = resolveCaseInsensitive(home.supporto(), file);
        const QString source = dir + QLatin1Char('/') + file;
        if (sameContent(source, target))
            continue;
        if (auto st = copyFileReplacing(source, target); !st)
            return st;
    }
    return {};
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
