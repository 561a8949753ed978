#pragma once
// The folder the user last chose a file in. The export, project and PDF
// dialogs open there, so that a user saving several files does not browse
// to the same folder again. Kept for the run of the program only: Mervola
// writes no configuration file of its own.

#include <QString>

namespace mervola {

// The last folder used, or `fallback` before any file was chosen.
QString lastUsedFolder(const QString &fallback = {});
// Remembers the folder of a chosen file; an empty path (cancelled) changes nothing.
void rememberFolderOf(const QString &filePath);
// Starts again with no folder (a new run, a test).
void forgetLastFolder();

}  // namespace mervola
