#include "platform/WriteJournal.h"

#include "platform/FileReplace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace mervola
{

namespace
{

const QString kHeader = QStringLiteral("MERVOLA-GIORNALE 1");
const QString kCommit = QStringLiteral("COMMIT");

QString &folderOfProcess()
{
    static QString folder;
    return folder;
}

QChar kindLetter(JournalEntry::Kind kind)
{
    switch (kind) {
    case JournalEntry::Kind::Kept:
        return QLatin1Char('K');
    case JournalEntry::Kind::Created:
        return QLatin1Char('C');
    case JournalEntry::Kind::Working:
        return QLatin1Char('W');
    case JournalEntry::Kind::Discard:
        return QLatin1Char('D');
    }
    return QLatin1Char('W');
}

bool parseLine(const QString &line, JournalEntry &entry)
{
    const QStringList parts = line.split(QLatin1Char('\t'));
    if (parts.size() < 2 || parts[0].size() != 1 || parts[1].isEmpty())
        return false;
    switch (parts[0][0].toLatin1()) {
    case 'K':
        entry.kind = JournalEntry::Kind::Kept;
        break;
    case 'C':
        entry.kind = JournalEntry::Kind::Created;
        break;
    case 'W':
        entry.kind = JournalEntry::Kind::Working;
        break;
    case 'D':
        entry.kind = JournalEntry::Kind::Discard;
        break;
    default:
        return false;
    }
    entry.path = parts[1];
    entry.copy = parts.size() > 2 ? parts[2] : QString();
    return true;
}

void removeNoted(const QString &path, Recovery &r)
{
    if (QFileInfo::exists(path) && QFile::remove(path))
        r.removed << path;
}

// Puts a kept file back. A database's rollback journal beside it belongs to
// the content being replaced and would be replayed over the restored file.
void restoreKept(const JournalEntry &e, Recovery &r)
{
    if (e.copy.isEmpty()) {
        removeNoted(e.path, r);
        return;
    }
    if (!QFileInfo::exists(e.copy))
        return; // the copy was never finished, so the file was never touched
    removeNoted(e.path + QStringLiteral("-journal"), r);
    if (renameOver(e.copy, e.path))
        r.restored << e.path;
}

} // namespace

QString journalPath(const QString &folder)
{
    return folder + QStringLiteral("/.mervola.journal");
}

void setJournalFolder(const QString &folder)
{
    folderOfProcess() = folder;
}

QString journalFolder()
{
    return folderOfProcess();
}

Status writeJournal(const QString &folder, const QList<JournalEntry> &entries, bool committed)
{
    QString text = kHeader + QLatin1Char('\n');
    for (const JournalEntry &e : entries)
        text +=
            QString(kindLetter(e.kind)) + QLatin1Char('\t') + e.path + QLatin1Char('\t') + e.copy + QLatin1Char('\n');
    if (committed)
        text += kCommit + QLatin1Char('\n');
    return writeFileReplacing(journalPath(folder), text.toUtf8());
}

void removeJournal(const QString &folder)
{
    QFile::remove(journalPath(folder));
}

Recovery settleEntries(const QList<JournalEntry> &entries, bool committed)
{
    Recovery r;
    r.committed = committed;
    // Backwards, so that a file kept twice ends with its oldest content.
    for (auto it = entries.crbegin(); it != entries.crend(); ++it) {
        const JournalEntry &e = *it;
        removeNoted(e.path + QStringLiteral(".new"), r);
        switch (e.kind) {
        case JournalEntry::Kind::Kept:
            if (!e.copy.isEmpty())
                removeNoted(e.copy + QStringLiteral(".new"), r);
            if (r.committed) {
                if (!e.copy.isEmpty())
                    removeNoted(e.copy, r);
            } else {
                restoreKept(e, r);
            }
            break;
        case JournalEntry::Kind::Created:
            if (!r.committed)
                removeNoted(e.path, r);
            break;
        case JournalEntry::Kind::Working:
            removeNoted(e.path, r);
            break;
        case JournalEntry::Kind::Discard:
            if (r.committed)
                removeNoted(e.path, r);
            break;
        }
    }
    return r;
}

Recovery settleJournal(const QString &folder)
{
    Recovery r;
    const QString path = journalPath(folder);
    removeNoted(path + QStringLiteral(".new"), r);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return r;
    r.journalFound = true;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    file.close();
    QList<JournalEntry> entries;
    for (const QString &line : lines) {
        JournalEntry e;
        if (line == kCommit)
            r.committed = true;
        else if (parseLine(line, e))
            entries << e;
    }
    const Recovery settled = settleEntries(entries, r.committed);
    r.removed << settled.removed;
    r.restored << settled.restored;
    QFile::remove(path);
    return r;
}

void removeStaleDbfWork(const QString &folder, QStringList *removed)
{
    const QDir dir(folder);
    for (const QString &name :
         dir.entryList({QStringLiteral(".mervola-dbf-*")}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
        if (QDir(dir.filePath(name)).removeRecursively() && removed)
            *removed << dir.filePath(name);
    }
    // A code page whose table never arrived: no reader has a use for it.
    const QStringList present = dir.entryList(QDir::Files);
    for (const QString &name : dir.entryList({QStringLiteral("*.cpg")}, QDir::Files)) {
        const QString base = QFileInfo(name).completeBaseName();
        // (a join's backup "<table>.bak" keeps its code page as "<table>.bak.cpg")
        if (!present.contains(base, Qt::CaseInsensitive) &&
            !present.contains(base + QStringLiteral(".dbf"), Qt::CaseInsensitive) &&
            !present.contains(base + QStringLiteral(".shp"), Qt::CaseInsensitive) &&
            QFile::remove(dir.filePath(name)) && removed)
            *removed << dir.filePath(name);
    }
}

Recovery recoverInterruptedWrites(const AtlasHome &home)
{
    Recovery r = settleJournal(home.root());
    removeNoted(home.root() + QStringLiteral("/.mervola.prova"), r);
    removeNoted(home.root() + QStringLiteral("/.mervola.prova.new"), r);
    // The home itself too: projects are saved there unless the user chooses
    // another folder.
    for (const QString &folder : {home.root(), home.supporto(), home.italia(), home.originali(), home.dati()}) {
        const QDir dir(folder);
        for (const QString &name : dir.entryList({QStringLiteral("*.new")}, QDir::Files | QDir::Hidden))
            removeNoted(dir.filePath(name), r);
        // Copies a join keeps while it runs.
        for (const QString &name : dir.entryList({QStringLiteral("*.old")}, QDir::Files | QDir::Hidden))
            removeNoted(dir.filePath(name), r);
        removeNoted(dir.filePath(QStringLiteral("TempRptNew.vrd")), r);
        removeStaleDbfWork(folder, &r.removed);
    }
    return r;
}

} // namespace mervola
