#pragma once
// Small helpers shared by the tests: temporary folders and the paths of the
// built executables and the real source data.

#include <QString>
#include <QStringList>

namespace mervola::test {

// Folder of the real source data carried by the repository (data/sources).
QString atlasSourceDir();
// A test fixture file carried by the repository (tests/fixtures/NAME).
QString fixturePath(const QString &name);
// Copies the atlas home built from the real sources to DEST (which must not
// exist or be empty). The home is built once per build tree by mervola-cli
// and reused; paths inside settings and project files point to DEST.
bool copyRealAtlas(const QString &dest);
// What mervola-cli build-atlas printed while building that atlas.
QString realAtlasBuildLog();
// Runs a program, returns exit code; stdout/stderr captured.
int runProgram(const QString &program, const QStringList &args, QString *out = nullptr, QString *err = nullptr,
               int timeoutMs = 300000);
// Writes bytes to a file, creating folders.
bool writeFile(const QString &path, const QByteArray &bytes);
QByteArray readFile(const QString &path);

}  // namespace mervola::test
