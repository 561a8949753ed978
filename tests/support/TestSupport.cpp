#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>

namespace mervola::test {

QString atlasSourceDir()
{
    return QStringLiteral(MERVOLA_SOURCE_DIR "/data/sources");
}

QString fixturePath(const QString &name)
{
    return QStringLiteral(MERVOLA_SOURCE_DIR "/tests/fixtures/") + name;
}

namespace {

// What the cached atlas was built by: the builder's size and time.
QByteArray builderStamp()
{
    const QFileInfo cli(QStringLiteral(MERVOLA_CLI));
    return QByteArray::number(cli.size()) + ' ' + QByteArray::number(cli.lastModified().toMSecsSinceEpoch());
}

// The real atlas home of this build tree, built when missing or stale.
QString realAtlasTemplate()
{
    const QString home = QStringLiteral(MERVOLA_BINARY_DIR "/test-atlas/real");
    QDir().mkpath(QFileInfo(home).path());
    QLockFile lock(home + QStringLiteral(".lock"));
    lock.setStaleLockTime(0);
    if (!lock.lock())
        return QString();
    const QString stampPath = home + QStringLiteral(".stamp");
    if (readFile(stampPath) == builderStamp() && QFileInfo::exists(home + QStringLiteral("/dati/mervola.sqlite")))
        return home;
    QDir(home).removeRecursively();
    QString out, err;
    if (runProgram(QStringLiteral(MERVOLA_CLI),
                   {QStringLiteral("build-atlas"), QStringLiteral("--sources"), atlasSourceDir(),
                    QStringLiteral("--home"), home},
                   &out, &err, 600000) != 0) {
        qWarning("build-atlas failed: %s", qPrintable(err));
        return QString();
    }
    writeFile(home + QStringLiteral(".log"), out.toUtf8());
    writeFile(stampPath, builderStamp());
    return home;
}

}  // namespace

bool copyRealAtlas(const QString &dest)
{
    const QString from = realAtlasTemplate();
    if (from.isEmpty())
        return false;
    const QString to = QDir::cleanPath(QDir(dest).absolutePath());
    QDirIterator it(from, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString src = it.next();
        const QString target = to + src.mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        const QString suffix = QFileInfo(src).suffix().toLower();
        if (suffix == QLatin1String("ini") || suffix == QLatin1String("rlx")) {
            QByteArray text = readFile(src);
            text.replace(from.toUtf8(), to.toUtf8());
            if (!writeFile(target, text))
                return false;
        } else if (!QFile::copy(src, target)) {
            return false;
        }
    }
    return true;
}

QString realAtlasBuildLog()
{
    const QString home = realAtlasTemplate();
    return home.isEmpty() ? QString() : QString::fromUtf8(readFile(home + QStringLiteral(".log")));
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
