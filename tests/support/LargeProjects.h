#pragma once
// Very large projects and the peak memory of the process, shared by the
// project tests and bench_project_memory (header only: the benchmarks do not
// link the test support library).

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

namespace mervola::test
{

// A project of `count` themes, each the provincial capitals of `home` under
// its own name.
inline QByteArray manyThemes(const QString &home, int count)
{
    QStringList lines{QStringLiteral("[RLX]"), QStringLiteral("DBFCOMMONT=^"),
                      QStringLiteral("EXTENT=313323^3933845^1312015^5220293^")};
    for (int i = 0; i < count; ++i) {
        const QString name = QStringLiteral("tema_%1").arg(i, 5, 10, QLatin1Char('0'));
        lines << QLatin1Char('[') + name + QLatin1Char(']') << QStringLiteral("JOIN=-1^-1^-1^-1^-1^-1^")
              << QStringLiteral("WORKSPACE=") + home + QStringLiteral("/italia/")
              << QStringLiteral("BASE=citta.shp^") + name + QLatin1Char('^') << QStringLiteral("VISIBILE=1");
    }
    return lines.join(QLatin1Char('\n')).toUtf8();
}

// Peak resident memory of this process since the last resetPeakMemory(), in MB.
inline qint64 peakMemoryMb()
{
    QFile f(QStringLiteral("/proc/self/status"));
    const QByteArray status = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    const int at = status.indexOf("VmHWM:");
    if (at < 0)
        return -1;
    return status.mid(at + 6, status.indexOf('\n', at) - at - 6).trimmed().split(' ').value(0).toLongLong() / 1024;
}

inline void resetPeakMemory()
{
    QFile f(QStringLiteral("/proc/self/clear_refs"));
    if (f.open(QIODevice::WriteOnly))
        f.write("5");
}

} // namespace mervola::test
