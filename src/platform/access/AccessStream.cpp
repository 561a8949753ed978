// The stream the helper writes: a magic word, then either the table names or
// the columns and rows of one table, then an end mark. Anything else (a
// stream cut short because the helper died, stray output) is refused.
#include "platform/access/AccessFile.h"

#include <QDataStream>
#include <QIODevice>

namespace mervola
{

namespace
{

constexpr quint32 kMagic = 0x4d564143; // "MVAC"
constexpr quint32 kEnd = 0x454e4421;
constexpr quint8 kRowMark = 1;
constexpr quint8 kLastMark = 0;
// More columns than any Access table can have means a garbled stream.
constexpr qint32 kMaxColumns = 4096;

QDataStream &operator<<(QDataStream &s, const AccessColumn &c)
{
    return s << c.name << qint32(c.type) << qint32(c.size);
}

bool readColumn(QDataStream &s, AccessColumn &c)
{
    qint32 type = 0, size = 0;
    s >> c.name >> type >> size;
    c.type = type;
    c.size = size;
    return s.status() == QDataStream::Ok;
}

bool endsCleanly(QDataStream &s)
{
    quint32 end = 0;
    s >> end;
    return s.status() == QDataStream::Ok && end == kEnd && s.atEnd();
}

template <class T> Result<T> garbled()
{
    return Result<T>::fail(kAccessUnreadable);
}

} // namespace

QByteArray encodeAccessNames(const QStringList &names)
{
    QByteArray out;
    QDataStream s(&out, QIODevice::WriteOnly);
    s << kMagic << names << kEnd;
    return out;
}

QByteArray encodeAccessRows(const AccessRows &rows)
{
    QByteArray out;
    QDataStream s(&out, QIODevice::WriteOnly);
    s << kMagic << qint32(rows.columns.size());
    for (const AccessColumn &c : rows.columns)
        s << c;
    for (const auto &row : rows.rows) {
        s << kRowMark;
        for (const QByteArray &v : row)
            s << v;
    }
    s << kLastMark << kEnd;
    return out;
}

Result<QStringList> decodeAccessNames(const QByteArray &stream)
{
    QDataStream s(stream);
    quint32 magic = 0, count = 0;
    s >> magic >> count;
    // Each name takes at least the 4 bytes of its length: a larger count is
    // garbled, and is never used to reserve memory.
    if (magic != kMagic || s.status() != QDataStream::Ok || count > quint32(stream.size() / 4))
        return garbled<QStringList>();
    QStringList names;
    for (quint32 i = 0; i < count; ++i) {
        QString name;
        s >> name;
        if (s.status() != QDataStream::Ok)
            return garbled<QStringList>();
        names << name;
    }
    if (!endsCleanly(s))
        return garbled<QStringList>();
    return names;
}

Result<AccessRows> decodeAccessRows(const QByteArray &stream)
{
    QDataStream s(stream);
    quint32 magic = 0;
    qint32 count = 0;
    s >> magic >> count;
    if (magic != kMagic || s.status() != QDataStream::Ok || count < 0 || count > kMaxColumns)
        return garbled<AccessRows>();
    AccessRows out;
    for (qint32 i = 0; i < count; ++i) {
        AccessColumn c;
        if (!readColumn(s, c))
            return garbled<AccessRows>();
        out.columns << c;
    }
    for (;;) {
        quint8 mark = kLastMark;
        s >> mark;
        if (s.status() != QDataStream::Ok || (mark != kRowMark && mark != kLastMark))
            return garbled<AccessRows>();
        if (mark == kLastMark)
            break;
        std::vector<QByteArray> row(static_cast<std::size_t>(count));
        for (QByteArray &v : row)
            s >> v;
        if (s.status() != QDataStream::Ok)
            return garbled<AccessRows>();
        out.rows.push_back(std::move(row));
    }
    if (!endsCleanly(s))
        return garbled<AccessRows>();
    return out;
}

} // namespace mervola
