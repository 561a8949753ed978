#pragma once
// The files a join or its removal touches, kept so that a failure part-way
// puts every one of them back byte for byte: the theme table and its .cpg,
// the settings file, the reference database, and the working files the
// operation created. When the process keeps a journal (setJournalFolder),
// every file is listed there before it is touched, so that a process killed
// part-way is settled at the next start as a failure would have been.
// FileRollbacks opened while another is open share its journal: only the
// outermost commit ends the operation.

#include "platform/Result.h"
#include "platform/WriteJournal.h"

#include <QStringList>

namespace mervola
{

class FileRollback
{
public:
    FileRollback();
    FileRollback(const FileRollback &) = delete;
    FileRollback &operator=(const FileRollback &) = delete;
    // Puts everything back unless commit() was called.
    ~FileRollback();

    // Keeps a copy of `path` beside it (or notes that it does not exist)
    // before the operation replaces it.
    Status keep(const QString &path);
    // Notes a file the operation creates; rollback removes it.
    void created(const QString &path);
    // Notes a scratch file of the operation, removed whatever the outcome.
    void working(const QString &path);
    // Notes a file that goes when the operation succeeds.
    void discardOnCommit(const QString &path);
    // Removes the created files and brings every kept file back.
    void rollback();
    // The operation succeeded: the kept copies are deleted.
    void commit();

private:
    void note(const JournalEntry &entry);
    void settle(const QList<JournalEntry> &entries, bool committed);

    QList<JournalEntry> m_entries;
    bool m_outermost = false;
    bool m_done = false;
};

// Renames `from` over `to`, replacing it in one step.
bool renameReplacing(const QString &from, const QString &to);

// A name for the working copy of a join source in `folder`: "Copia" + the
// extension, or "Copia_1", "Copia_2" ... when that name is taken by any
// file (the source itself included), together with its .cpg.
QString freeWorkingCopyName(const QString &folder, const QString &extension);

} // namespace mervola
