#pragma once
// The files a join or its removal touches, kept so that a failure part-way
// puts every one of them back byte for byte: the theme table and its .cpg,
// the settings file, and the working files the operation created.

#include "platform/Result.h"

#include <QStringList>
#include <vector>

namespace mervola
{

class FileRollback
{
public:
    FileRollback() = default;
    FileRollback(const FileRollback &) = delete;
    FileRollback &operator=(const FileRollback &) = delete;
    // Puts everything back unless commit() was called.
    ~FileRollback();

    // Keeps a copy of `path` beside it (or notes that it does not exist)
    // before the operation replaces it.
    Status keep(const QString &path);
    // Notes a file the operation creates; rollback removes it.
    void created(const QString &path);
    // Removes the created files and brings every kept file back.
    void rollback();
    // The operation succeeded: the kept copies are deleted.
    void commit();

private:
    struct Kept {
        QString path;
        QString copy; // empty when the file did not exist
    };
    std::vector<Kept> m_kept;
    QStringList m_created;
    bool m_done = false;
};

// Renames `from` over `to`, replacing it in one step.
bool renameReplacing(const QString &from, const QString &to);

// A name for the working copy of a join source in `folder`: "Copia" + the
// extension, or "Copia_1", "Copia_2" ... when that name is taken by any
// file (the source itself included), together with its .cpg.
QString freeWorkingCopyName(const QString &folder, const QString &extension);

} // namespace mervola
