#include "FuzzTargets.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstring>

namespace mervola::fuzz
{

const Target *findTarget(const char *name)
{
    for (const Target &t : kTargets)
        if (std::strcmp(t.name, name) == 0)
            return &t;
    return nullptr;
}

QString scratchFolder()
{
    // Kept for the life of the process: inputs are written over and over,
    // in memory when the system offers a memory file system.
    static const QString base =
        QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath();
    static const QTemporaryDir dir(base + QStringLiteral("/mervola-fuzz-XXXXXX"));
    return dir.path();
}

QString scratchFile(const QString &name, const std::uint8_t *data, std::size_t size)
{
    const QString path = scratchFolder() + QLatin1Char('/') + name;
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(reinterpret_cast<const char *>(data), qint64(size));
    return path;
}

} // namespace mervola::fuzz
