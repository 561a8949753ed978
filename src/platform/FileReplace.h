#pragma once
// Replacing a file without ever leaving it half-written. The new content is
// written to a temporary file beside the target ("<name>.new" for settings
// and project files), flushed, and renamed over the target in one step. On
// any failure the temporary file is removed and the target keeps its old
// content, so a full disk or a read-only folder never costs the user a file.
// Every writer of settings files, projects, report definitions and copied
// tables goes through here.

#include "platform/Result.h"

#include <QByteArray>
#include <QString>
#include <functional>

namespace mervola
{

// "<folder>/<name without its last extension>.new": the temporary name of
// settings and project files (comu_01.ini -> comu_01.new).
QString newFilePath(const QString &target);

// Fills the temporary file; returns a failure to abandon the replacement.
using TemporaryWriter = std::function<Status(const QString &temporaryPath)>;

// Runs `write` on `temporaryPath` (target + ".new" when empty), then renames
// the result over `target`. The temporary file is gone afterwards whatever
// happened; the target changes only when everything succeeded.
Status replaceFile(const QString &target, const TemporaryWriter &write, const QString &temporaryPath = {});

// Writes `bytes` as the new content of `target`.
Status writeFileReplacing(const QString &target, const QByteArray &bytes, const QString &temporaryPath = {});

// Copies `source` over `target` (through target + ".new").
Status copyFileReplacing(const QString &source, const QString &target);

// Renames `from` over `to`, replacing it in one step.
Status renameOver(const QString &from, const QString &to);

// Flushes a file written by another writer (GDAL) to the disk before it is
// renamed into place.
Status syncFileToDisk(const QString &path);

// A short Italian reason for a system error number ("il disco è pieno", ...).
QString systemErrorReason(int error);

} // namespace mervola
