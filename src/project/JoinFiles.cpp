#include "project/JoinFiles.h"

#include "platform/FileReplace.h"
#include "project/PristineSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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
    return static_cast<bool>(renameOver(from, to));
}

namespace
{

// The entries of every FileRollback open in this process, outermost first:
// they form one operation with one journal.
struct OpenOperation {
    QList<JournalEntry> entries;
    int open = 0;
};

OpenOperation &operation()
{
    static OpenOperation op;
    return op;
}

void writeOperationJournal(bool committed)
{
    if (!journalFolder().isEmpty())
        (void)writeJournal(journalFolder(), operation().entries, committed);
}

} // namespace

FileRollback::FileRollback()
{
    m_outermost = operation().open++ == 0;
    if (m_outermost)
        operation().entries.clear();
}

FileRollback::~FileRollback()
{
    if (!m_done)
        rollback();
    --operation().open;
}

void FileRollback::note(const JournalEntry &entry)
{
    m_entries << entry;
    operation().entries << entry;
    writeOperationJournal(false);
}

Status FileRollback::keep(const QString &path)
{
    for (const JournalEntry &e : std::as_const(operation().entries))
        if (e.kind == JournalEntry::Kind::Kept && e.path == path)
            return {};
    const bool exists = QFileInfo::exists(path);
    const QString copy = exists ? path + QStringLiteral(".old") : QString();
    note({JournalEntry::Kind::Kept, path, copy});
    if (exists)
        return copyFileReplacing(path, copy);
    return {};
}

void FileRollback::created(const QString &path)
{
    note({JournalEntry::Kind::Created, path, {}});
}

void FileRollback::working(const QString &path)
{
    note({JournalEntry::Kind::Working, path, {}});
}

void FileRollback::discardOnCommit(const QString &path)
{
    note({JournalEntry::Kind::Discard, path, {}});
}

void FileRollback::settle(const QList<JournalEntry> &entries, bool committed)
{
    (void)settleEntries(entries, committed);
}

void FileRollback::rollback()
{
    if (m_done)
        return;
    m_done = true;
    if (m_outermost) {
        settle(operation().entries, false);
        operation().entries.clear();
        if (!journalFolder().isEmpty())
            removeJournal(journalFolder());
        return;
    }
    // A nested operation takes back only its own files.
    settle(m_entries, false);
    for (const JournalEntry &mine : std::as_const(m_entries))
        for (qsizetype i = operation().entries.size() - 1; i >= 0; --i)
            if (operation().entries[i].kind == mine.kind && operation().entries[i].path == mine.path) {
                operation().entries.removeAt(i);
                break;
            }
    writeOperationJournal(false);
}

void FileRollback::commit()
{
    if (m_done)
        return;
    m_done = true;
    if (!m_outermost)
        return; // the outermost operation ends it
    // The journal's COMMIT line is the moment the operation is done; what
    // follows only clears copies and working files, which the next start
    // would clear as well.
    writeOperationJournal(true);
    settle(operation().entries, true);
    operation().entries.clear();
    if (!journalFolder().isEmpty())
        removeJournal(journalFolder());
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
