#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace mervola::test {

QString atlasSourceDir()
{
    const QString d = QDir::cleanPath(QStringLiteral(MERVOLA_SOURCE_DIR) + QStringLiteral("/../shared/atlas-src"));
    return QFileInfo(d + QStringLiteral("/comuni_attributi.csv")).isFile() ? d : QString();
}

int runProgram(const QString &program, const QStringList &args, QString *out, QString *err, int timeoutMs)
{
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        return -1;
    }
    if (out)
        *out = QString::fromUtf8(p.readAllStandardOutput());
    if (err)
        *err = QString::fromUtf8(p.readAllStandardError());
    return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace mervola::test
