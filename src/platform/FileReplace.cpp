#include "platform/FileReplace.h"

#include "platform/KillPoint.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace mervola
{

namespace
{

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

Error writeError(const QString &path, int error)
{
    return Error{QStringLiteral("Impossibile scrivere il file %1: %2.").arg(native(path), systemErrorReason(error)),
                 error};
}

// The temporary file's content reaches the disk before it is renamed over
// the target, so the rename never publishes a file whose data is still only
// in memory.
Status flushToDisk(QFile &file, const QString &target)
{
    errno = 0;
    if (!file.flush())
        return writeError(target, errno ? errno : ENOSPC);
    killPoint();
    if (::fsync(file.handle()) != 0)
        return writeError(target, errno);
    killPoint();
    return {};
}

} // namespace

QString systemErrorReason(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("il disco è pieno");
    case EROFS:
        return QStringLiteral("il disco è in sola lettura");
    case EACCES:
    case EPERM:
        return QStringLiteral("permesso negato");
    case EISDIR:
        return QStringLiteral("al suo posto c'è una cartella");
    case ENOENT:
        return QStringLiteral("la cartella non esiste");
    default:
        return QStringLiteral("errore di sistema %1 (%2)").arg(error).arg(QString::fromLocal8Bit(std::strerror(error)));
    }
}

QString newFilePath(const QString &target)
{
    const QFileInfo info(target);
    const QString name = info.fileName();
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return info.path() + QLatin1Char('/') + (dot > 0 ? name.left(dot) : name) + QStringLiteral(".new");
}

Status renameOver(const QString &from, const QString &to)
{
    // rename(2) replaces an existing file atomically: there is no moment
    // at which neither the old nor the new content is on disk.
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
        const int error = errno;
        return Error{QStringLiteral("Impossibile sostituire il file %1: %2.").arg(native(to), systemErrorReason(error)),
                     error};
    }
    killPoint();
    return {};
}

Status replaceFile(const QString &target, const TemporaryWriter &write, const QString &temporaryPath)
{
    const QString temp = temporaryPath.isEmpty() ? target + QStringLiteral(".new") : temporaryPath;
    // A temporary file left by an interrupted run is stale: start afresh.
    QFile::remove(temp);
    Status st = write(temp);
    if (st)
        st = renameOver(temp, target);
    if (!st)
        QFile::remove(temp);
    return st;
}

Status syncFileToDisk(const QString &path)
{
    QFile f(path);
    errno = 0;
    if (!f.open(QIODevice::ReadWrite))
        return writeError(path, errno ? errno : EACCES);
    return flushToDisk(f, path);
}

Status writeFileReplacing(const QString &target, const QByteArray &bytes, const QString &temporaryPath)
{
    return replaceFile(
        target,
        [&bytes, &target](const QString &temp) -> Status {
            QFile f(temp);
            errno = 0;
            if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
                return writeError(target, errno ? errno : EACCES);
            errno = 0;
            if (f.write(bytes) != bytes.size())
                return writeError(target, errno ? errno : ENOSPC);
            return flushToDisk(f, target);
        },
        temporaryPath);
}

Status copyFileReplacing(const QString &source, const QString &target)
{
    return replaceFile(target, [&source, &target](const QString &temp) -> Status {
        QFile in(source);
        if (!in.open(QIODevice::ReadOnly))
            return Error{QStringLiteral("Impossibile leggere il file %1.").arg(native(source))};
        QFile out(temp);
        errno = 0;
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return writeError(target, errno ? errno : EACCES);
        constexpr qint64 kChunk = 1 << 20;
        while (!in.atEnd()) {
            const QByteArray chunk = in.read(kChunk);
            if (chunk.isEmpty() && in.error() != QFileDevice::NoError)
                return Error{QStringLiteral("Impossibile leggere il file %1.").arg(native(source))};
            errno = 0;
            if (out.write(chunk) != chunk.size())
                return writeError(target, errno ? errno : ENOSPC);
        }
        return flushToDisk(out, target);
    });
}

} // namespace mervola
