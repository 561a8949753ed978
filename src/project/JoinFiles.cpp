#include "project/JoinFiles.h"

#include "project/PristineSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <filesystem>

namespace mervola
{

namespace
{

// Case-insensitive presence, as the names the user sees on a case-blind
// file system would clash.
bool nameTaken(const QStringList &present, const QString &name)
{
    return present.contains(name, Qt::CaseInsensitive);
}

} // namespace

bool renameReplacing(const QString &from, const QString &to)
{
    std::error_code ec;
    std::filesystem::rename(std::filesystem::path(QFile::encodeName(from).toStdString()),
                            std::filesystem::path(QFile::encodeName(to).toStdString()), ec);
    return !ec;
}

FileRollback::~FileRollback()
{
    if (!m_done)
        rollback();
}

Status FileRollback::keep(const QString &path)
{
    for (const Kept &k : m_kept)
        if (k.path == path)
            return {};
    if (!QFileInfo::exists(path)) {
        m_kept.push_back({path, QString()});
        return {};
    }
    const QString copy = path + QStringLiteral(".old");
    if (Status st = copyFileReplacing(path, copy); !st)
        return st;
    m_kept.push_back({path, copy});
    return {};
}

void FileRollback::created(const QString &path)
{
    if (!m_created.contains(path))
        m_created << path;
}

void FileRollback::rollback()
{
    if (m_done)
        return;
    m_done = true;
    for (const QString &path : std::as_const(m_created))
        QFile::remove(path);
    for (auto it = m_kept.rbegin(); it != m_kept.rend(); ++it) {
        if (it->copy.isEmpty())
            QFile::remove(it->path);
        else
            renameReplacing(it->copy, it->path);
    }
}

void FileRollback::commit()
{
    if (m_done)
        return;
    m_done = true;
    for (const Kept &k : m_kept)
        if (!k.copy.isEmpty())
            QFile::remove(k.copy);
}

QString freeWorkingCopyName(const QString &folder, const QString &extension)
{
    const QStringList present = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (int n = 0;; ++n) {
        const QString base = n == 0 ? QStringLiteral("Copia") : QStringLiteral("Copia_%1").arg(n);
        if (!nameTaken(present, base + extension) && !nameTaken(present, base + QStringLiteral(".cpg")))
            return base + extension;
    }
}

} // namespace mervola
