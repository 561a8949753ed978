#include "support/MountSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <sys/mount.h>

namespace mervola::test
{

ScopedMount::~ScopedMount()
{
    release();
}

bool ScopedMount::available()
{
    static const bool ok = [] {
        QTemporaryDir dir;
        ScopedMount m;
        return dir.isValid() && m.tmpfs(dir.path(), 1 << 20);
    }();
    return ok;
}

bool ScopedMount::tmpfs(const QString &folder, qint64 bytes)
{
    QDir().mkpath(folder);
    const QByteArray options = "size=" + QByteArray::number(bytes);
    if (::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) != 0)
        return false;
    m_folder = folder;
    return true;
}

bool ScopedMount::readOnlyView(const QString &source, const QString &folder)
{
    QDir().mkpath(folder);
    const QByteArray src = QFile::encodeName(source), dst = QFile::encodeName(folder);
    if (::mount(src.constData(), dst.constData(), nullptr, MS_BIND, nullptr) != 0)
        return false;
    m_folder = folder;
    return ::mount(nullptr, dst.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}

void ScopedMount::release()
{
    if (m_folder.isEmpty())
        return;
    ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
    m_folder.clear();
}

bool fillDisk(const QString &folder)
{
    QFile f(folder + QStringLiteral("/riempitivo.bin"));
    if (!f.open(QIODevice::WriteOnly))
        return false;
    const QByteArray block(64 * 1024, 'x');
    while (f.write(block) == block.size() && f.flush()) {
    }
    // The last partial block: byte by byte until nothing fits.
    while (f.write("x", 1) == 1 && f.flush()) {
    }
    return true;
}

qint64 folderSize(const QString &folder)
{
    qint64 total = 0;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        total += it.fileInfo().size();
    }
    return total;
}

} // namespace mervola::test
