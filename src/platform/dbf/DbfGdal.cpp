#include "platform/dbf/DbfGdal.h"

#include <QFile>
#include <cpl_error.h>
#include <gdal.h>
#include <mutex>

namespace mervola::dbfdetail
{

void ensureGdal()
{
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

GdalErrorScope::GdalErrorScope()
{
    CPLPushErrorHandler(CPLQuietErrorHandler);
    CPLErrorReset();
}

GdalErrorScope::~GdalErrorScope()
{
    CPLPopErrorHandler();
}

QString GdalErrorScope::lastMessage() const
{
    return QString::fromUtf8(CPLGetLastErrorMsg());
}

QList<QByteArray> fieldDescriptors(const QString &dbfPath)
{
    QFile f(dbfPath);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    const QByteArray head = f.read(32);
    if (head.size() < 32)
        return {};
    const int headerLength = quint8(head[8]) | (quint8(head[9]) << 8);
    const QByteArray descriptors = f.read(std::max(0, headerLength - 32));
    QList<QByteArray> out;
    for (int off = 0; off + 32 <= descriptors.size() && descriptors[off] != '\r'; off += 32)
        out.append(descriptors.mid(off, 32));
    return out;
}

QByteArray nativeFieldTypes(const QString &dbfPath)
{
    QByteArray types;
    for (const QByteArray &d : fieldDescriptors(dbfPath))
        types.append(d[11]);
    return types;
}

static QString normalizedEncoding(const QString &encoding)
{
    QString e = encoding.trimmed().toUpper();
    e.remove(QLatin1Char('-'));
    e.remove(QLatin1Char('_'));
    return e;
}

bool isUtf8Encoding(const QString &encoding)
{
    const QString e = normalizedEncoding(encoding);
    return e == QLatin1String("UTF8") || e == QLatin1String("65001");
}

bool isLatin1Encoding(const QString &encoding)
{
    const QString e = normalizedEncoding(encoding);
    return e == QLatin1String("ISO88591") || e == QLatin1String("LATIN1") || e == QLatin1String("88591");
}

} // namespace mervola::dbfdetail
