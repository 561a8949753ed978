#include "platform/dbf/TableCheck.h"

#include "platform/AtlasHome.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace mervola
{

namespace
{

Error damaged(const QString &path, const QString &why)
{
    return Error{QStringLiteral("Il file %1 è danneggiato: %2.").arg(QFileInfo(path).fileName(), why), kDamagedFile};
}

QString count(qint64 n)
{
    return QLocale(QLocale::Italian).toString(n);
}

quint32 le32(const QByteArray &b, int at)
{
    return quint32(quint8(b[at])) | quint32(quint8(b[at + 1])) << 8 | quint32(quint8(b[at + 2])) << 16 |
           quint32(quint8(b[at + 3])) << 24;
}
quint16 le16(const QByteArray &b, int at)
{
    return quint16(quint8(b[at]) | quint8(b[at + 1]) << 8);
}
quint32 be32(const QByteArray &b, int at)
{
    return quint32(quint8(b[at])) << 24 | quint32(quint8(b[at + 1])) << 16 | quint32(quint8(b[at + 2])) << 8 |
           quint32(quint8(b[at + 3]));
}

// The number of records a whole table holds, or the damage.
Result<qint64> dbfRecords(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return Result<qint64>::fail(QStringLiteral("Impossibile leggere il file %1.").arg(path));
    const qint64 size = f.size();
    const QByteArray head = f.read(32);
    if (head.size() < 32)
        return damaged(path, QStringLiteral("l'intestazione della tabella è incompleta"));
    const qint64 records = le32(head, 4);
    const qint64 headerLength = le16(head, 8);
    const qint64 recordLength = le16(head, 10);
    if (headerLength < 33 || recordLength < 1 || size < headerLength)
        return damaged(path, QStringLiteral("l'intestazione della tabella è incompleta"));
    // The field descriptors (32 bytes each) end with 0x0D.
    f.seek(32);
    const QByteArray fields = f.read(headerLength - 32);
    bool terminated = false;
    for (qint64 i = 0; i < fields.size(); i += 32)
        if (fields.at(i) == '\x0D') {
            terminated = true;
            break;
        }
    if (!terminated)
        return damaged(path, QStringLiteral("l'intestazione della tabella è incompleta"));
    const qint64 whole = (size - headerLength) / recordLength;
    if (whole < records)
        return damaged(path, QStringLiteral("contiene %1 record completi su %2").arg(count(whole), count(records)));
    return records;
}

// The length a shapefile main or index file declares (16-bit words at byte 24).
Status checkShapeHeader(const QString &path, qint64 *size)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return Error{QStringLiteral("Manca il file %1.").arg(QFileInfo(path).fileName()), kDamagedFile};
    *size = f.size();
    const QByteArray head = f.read(100);
    if (head.size() < 100 || be32(head, 0) != 9994)
        return damaged(path, QStringLiteral("l'intestazione è incompleta"));
    if (qint64(be32(head, 24)) * 2 != *size)
        return damaged(path, QStringLiteral("il file è troncato"));
    return {};
}

} // namespace

Status checkDbfFile(const QString &dbfPath)
{
    if (auto r = dbfRecords(dbfPath); !r)
        return r.error();
    return {};
}

Status checkShapefile(const QString &shpPath)
{
    const QFileInfo shp(shpPath);
    const QString base = shp.completeBaseName();
    qint64 shpSize = 0, shxSize = 0;
    if (Status s = checkShapeHeader(shpPath, &shpSize); !s)
        return s;
    const QString shx = resolveCaseInsensitive(shp.path(), base + QStringLiteral(".shx"));
    if (Status s = checkShapeHeader(shx, &shxSize); !s)
        return s;
    if ((shxSize - 100) % 8 != 0)
        return damaged(shx, QStringLiteral("il file è troncato"));
    const qint64 features = (shxSize - 100) / 8;
    const QString dbf = resolveCaseInsensitive(shp.path(), base + QStringLiteral(".dbf"));
    if (!QFileInfo(dbf).isFile())
        return {};
    auto records = dbfRecords(dbf);
    if (!records)
        return records.error();
    if (*records != features)
        return damaged(dbf, QStringLiteral("contiene %1 record per %2 elementi").arg(count(*records), count(features)));
    return {};
}

} // namespace mervola
