#include "platform/InstanceLock.h"

#include "platform/FileReplace.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace mervola
{

namespace
{
// Free room the home must have at start (bytes).
constexpr int kRoomNeeded = 256 * 1024;
} // namespace

InstanceLock::InstanceLock(QString homeFolder)
    : m_home(std::move(homeFolder)), m_path(m_home + QStringLiteral("/.mervola.lock"))
{
}

InstanceLock::~InstanceLock()
{
    if (m_fd < 0)
        return;
    // Removed while still held, so no other start can slip in between.
    QFile::remove(m_path);
    ::close(m_fd);
}

InstanceLock::State InstanceLock::acquire()
{
    auto cannotWrite = [this](int error) {
        m_message = LockText::kCannotWrite.arg(QDir::toNativeSeparators(m_home), systemErrorReason(error));
        return State::CannotWrite;
    };
    if (!QDir().mkpath(m_home))
        return cannotWrite(errno ? errno : EACCES);

    // A folder where the lock file belongs: an empty one is removed, one with
    // content is renamed aside, never deleted.
    if (QFileInfo(m_path).isDir() && !QDir().rmdir(m_path)) {
        const QString aside = m_path + QStringLiteral(".cartella-") +
                              QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
        if (!QDir().rename(m_path, aside))
            return cannotWrite(EISDIR);
    }

    const QByteArray native = QFile::encodeName(m_path);
    const int fd = ::open(native.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        return cannotWrite(errno);
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        ::close(fd);
        if (error == EWOULDBLOCK)
            return State::InUse;
        return cannotWrite(error);
    }
    // Ours now: say who holds it (read by people, not by the program).
    const QByteArray who = QByteArray::number(QCoreApplication::applicationPid()) + '\n' +
                           QCoreApplication::applicationName().toUtf8() + '\n' + QSysInfo::machineHostName().toUtf8() +
                           '\n';
    if (::ftruncate(fd, 0) != 0 || ::write(fd, who.constData(), size_t(who.size())) != who.size() || ::fsync(fd) != 0) {
        const int error = errno ? errno : ENOSPC;
        ::close(fd);
        ::unlink(native.constData());
        return cannotWrite(error);
    }
    m_fd = fd;
    // The lock file is tiny: make sure the home also has room for the
    // settings files and work tables the program writes as it runs.
    const QString probe = m_home + QStringLiteral("/.mervola.prova");
    const Status room = writeFileReplacing(probe, QByteArray(kRoomNeeded, '\0'));
    QFile::remove(probe);
    if (!room) {
        const int error = room.error().code ? room.error().code : ENOSPC;
        QFile::remove(m_path);
        ::close(m_fd);
        m_fd = -1;
        return cannotWrite(error);
    }
    return State::Held;
}

} // namespace mervola
