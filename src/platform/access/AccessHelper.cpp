// Starting the helper and the helper's own main.
#include "platform/access/AccessFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/prctl.h>
#include <unistd.h>

namespace mervola
{

namespace
{

constexpr char kHelperName[] = "mervola-access";
// A read that takes longer than this is a helper lost in a damaged file.
constexpr int kHelperTimeoutMs = 30000;

// The helper sits beside the running executable, or in ../lib/mervola/ from
// it once installed.
QString helperPath()
{
    const QString dir = QCoreApplication::instance() ? QCoreApplication::applicationDirPath()
                                                     : QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
    const QString name = QString::fromLatin1(kHelperName);
    const QString beside = dir + QLatin1Char('/') + name;
    if (QFileInfo::exists(beside))
        return beside;
    return dir + QStringLiteral("/../lib/mervola/") + name;
}

// The helper's standard output when it ran to a normal end; an error when
// it could not start, crashed, timed out or failed.
Result<QByteArray> runHelper(const QStringList &args)
{
    QProcess p;
    p.setStandardErrorFile(QProcess::nullDevice());
    p.start(helperPath(), args);
    if (!p.waitForStarted())
        return Result<QByteArray>::fail(kAccessUnreadable);
    p.closeWriteChannel();
    if (!p.waitForFinished(kHelperTimeoutMs)) {
        p.kill();
        p.waitForFinished();
        return Result<QByteArray>::fail(kAccessUnreadable);
    }
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return Result<QByteArray>::fail(kAccessUnreadable);
    return p.readAllStandardOutput();
}

} // namespace

Result<QStringList> readAccessTableNames(const QString &mdbPath)
{
    auto out = runHelper({QStringLiteral("tables"), mdbPath});
    if (!out)
        return out.error();
    return decodeAccessNames(out.value());
}

Result<AccessRows> readAccessRows(const QString &mdbPath, const QString &table)
{
    auto out = runHelper({QStringLiteral("table"), mdbPath, table});
    if (!out)
        return out.error();
    return decodeAccessRows(out.value());
}

int accessHelperMain(int argc, char **argv)
{
    // A helper lost in a damaged file ends with the program that started it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // libmdb may print on standard output: the stream goes to a descriptor
    // of its own and standard output joins standard error.
    const int stream = dup(STDOUT_FILENO);
    if (stream < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        return 2;
    QByteArray bytes;
    const bool tables = argc == 3 && std::strcmp(argv[1], "tables") == 0;
    const bool table = argc == 4 && std::strcmp(argv[1], "table") == 0;
    if (tables) {
        auto names = readAccessTableNamesHere(QFile::decodeName(argv[2]));
        if (!names)
            return 1;
        bytes = encodeAccessNames(names.value());
    } else if (table) {
        auto rows = readAccessRowsHere(QFile::decodeName(argv[2]), QString::fromUtf8(argv[3]));
        if (!rows)
            return 1;
        bytes = encodeAccessRows(rows.value());
    } else {
        std::fprintf(stderr, "uso: %s tables <file> | table <file> <tabella>\n", argv[0]);
        return 2;
    }
    QFile out;
    if (!out.open(stream, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle))
        return 2;
    return out.write(bytes) == bytes.size() && out.flush() ? 0 : 1;
}

} // namespace mervola
