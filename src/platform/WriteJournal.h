#pragma once
// The journal of an operation that changes several files together (a join,
// the removal of a join): before any file is touched, the journal
// "<home>/.mervola.journal" lists what the operation is about to do, and it
// is rewritten (always by rename) before each further file is touched. Its
// last line "COMMIT" is the moment the operation counts as done.
//
// A process that dies part-way leaves the journal behind, and the next
// start (recoverInterruptedWrites) settles it:
//  - without "COMMIT" everything goes back: each kept copy "<file>.old" is
//    renamed over its file (a file that did not exist is removed), files the
//    operation created are removed, and so are its working files;
//  - with "COMMIT" everything goes forward: the kept copies, the working
//    files and the files marked to go on success are removed.

#include "platform/AtlasHome.h"
#include "platform/Result.h"

#include <QList>
#include <QString>

namespace mervola
{

struct JournalEntry {
    enum class Kind {
        Kept,    // `path` is about to change; its old content is in `copy` (empty: it did not exist)
        Created, // `path` is new: removed when going back, kept when going forward
        Working, // `path` is scratch: removed either way
        Discard, // `path` is removed when going forward, kept when going back
    };
    Kind kind = Kind::Working;
    QString path;
    QString copy;
};

// The journal's file in `folder`.
QString journalPath(const QString &folder);

// Where this process keeps its journal: the atlas home it works on, set once
// the home is its own. Empty (the default): operations keep no journal.
void setJournalFolder(const QString &folder);
QString journalFolder();

// Writes the journal (by rename, so it is always whole), or removes it.
Status writeJournal(const QString &folder, const QList<JournalEntry> &entries, bool committed);
void removeJournal(const QString &folder);

// What the next start found and did.
struct Recovery {
    bool journalFound = false;
    bool committed = false; // the interrupted operation had reached its end
    QStringList removed;    // stale temporary and working files removed
    QStringList restored;   // files put back from their kept copies
};

// Settles an interrupted operation of `home` (see above) and removes the
// temporary files an interrupted write leaves in the home and its folders:
// the "<name>.new" files of settings, projects and tables, "<name>.old"
// copies no journal accounts for, "TempRptNew.vrd",
// the ".mervola-dbf-*" folders of dBase writes and the start-up probe.
// Called by the start of the program and of every command that writes the
// home, once the home is theirs.
Recovery recoverInterruptedWrites(const AtlasHome &home);

// Removes what an interrupted dBase write leaves in `folder`: its
// ".mervola-dbf-*" work folder (the names are the program's own) and a
// ".cpg" code page whose table (".dbf" or ".shp") is not there.
void removeStaleDbfWork(const QString &folder, QStringList *removed = nullptr);

// Settles entries in memory, as the next start would settle their journal.
Recovery settleEntries(const QList<JournalEntry> &entries, bool committed);

// Settles only the journal of `folder` (recoverInterruptedWrites does this
// first).
Recovery settleJournal(const QString &folder);

} // namespace mervola
