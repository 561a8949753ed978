#pragma once
// Small helpers shared by the tests: temporary folders and the paths of the
// built executables and the real source data.

#include <QString>
#include <QStringList>

namespace mervola::test {

// Folder of the real source data (../shared/atlas-src beside the checkout);
// empty when it is not there.
QString atlasSourceDir();
// Runs a program, returns exit code; stdout/stderr captured.
int runProgram(const QString &program, const QStringList &args, QString *out = nullptr, QString *err = nullptr,
               int timeoutMs = 300000);
// Writes bytes to a file, creating folders.
bool writeFile(const QString &path, const QByteArray &bytes);
QByteArray readFile(const QString &path);

}  // namespace mervola::test
