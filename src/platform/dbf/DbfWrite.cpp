// Writing a dBase table: GDAL lays out the file (field descriptors, code
// page, .cpg) in a private folder beside the destination, the records are
// appended with fast fixed-width formatting, and the finished file replaces
// the old .dbf/.cpg by rename.

#include "platform/FileReplace.h"
#include "platform/KillPoint.h"
#include "platform/dbf/DbfGdal.h"
#include "platform/dbf/DbfTable.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cpl_string.h>
#include <cstring>
#include <ogrsf_frmts.h>

namespace mervola
{

using namespace dbfdetail;

namespace
{

std::unique_ptr<OGRFieldDefn> ogrField(const DbfField &f)
{
    const QByteArray name = f.name.toUtf8();
    OGRFieldType type = OFTString;
    int width = f.width;
    int precision = 0;
    switch (f.type) {
    case DbfType::Text:
        break;
    case DbfType::Numeric:
    case DbfType::Float:
        precision = f.decimals;
        if (f.decimals > 0 || f.type == DbfType::Float || width > 18)
            type = OFTReal;
        else
            type = width <= 9 ? OFTInteger : OFTInteger64;
        break;
    case DbfType::Logical:
        width = 1;
        break; // header type patched to 'L' afterwards
    case DbfType::Date:
        type = OFTDate;
        width = 8;
        break;
    }
    auto fd = std::make_unique<OGRFieldDefn>(name.constData(), type);
    fd->SetWidth(width);
    fd->SetPrecision(precision);
    return fd;
}

bool logicalOf(const QVariant &v)
{
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed().toUpper();
        return !(s.isEmpty() || s == QLatin1String("0") || s.startsWith(QLatin1Char('F')) ||
                 s.startsWith(QLatin1Char('N')));
    }
    return v.toDouble() != 0.0;
}

// Text in the table's code page.
class TextEncoder
{
public:
    explicit TextEncoder(const QString &encoding)
        : m_utf8(isUtf8Encoding(encoding)), m_latin1(isLatin1Encoding(encoding)), m_name(encoding.toUtf8())
    {
    }
    QByteArray operator()(const QString &s) const
    {
        if (m_utf8)
            return s.toUtf8();
        if (m_latin1 || std::all_of(s.begin(), s.end(), [](QChar c) { return c.unicode() < 0x80; }))
            return s.toLatin1();
        char *recoded = CPLRecode(s.toUtf8().constData(), CPL_ENC_UTF8, m_name.constData());
        QByteArray out(recoded);
        CPLFree(recoded);
        return out;
    }

private:
    bool m_utf8, m_latin1;
    QByteArray m_name;
};

struct Slot {
    char type; // as declared in the header
    int offset;
    int width;
    int decimals;
};

// Writes one value into its fixed-width slot of a record; false when it does not fit.
bool putValue(char *out, const Slot &slot, const DbfField &f, const QVariant &v, const TextEncoder &encode)
{
    const int w = slot.width;
    if (v.isNull()) {
        const char fill = slot.type == 'N' || slot.type == 'F' ? '*' : slot.type == 'L' ? '?' : ' ';
        std::memset(out, fill, size_t(w));
        return true;
    }
    char buf[64];
    switch (f.type) {
    case DbfType::Text: {
        const QByteArray bytes = encode(v.toString());
        if (bytes.size() > w)
            return false;
        std::memcpy(out, bytes.constData(), size_t(bytes.size()));
        std::memset(out + bytes.size(), ' ', size_t(w - bytes.size()));
        return true;
    }
    case DbfType::Numeric:
    case DbfType::Float: {
        std::to_chars_result r;
        if (slot.decimals == 0 && f.type == DbfType::Numeric) {
            const bool real = v.typeId() == QMetaType::Double || v.typeId() == QMetaType::QString;
            r = std::to_chars(buf, buf + sizeof buf, real ? qlonglong(std::llround(v.toDouble())) : v.toLongLong());
        } else {
            r = std::to_chars(buf, buf + sizeof buf, v.toDouble(), std::chars_format::fixed, slot.decimals);
        }
        const int len = r.ec == std::errc() ? int(r.ptr - buf) : w + 1;
        if (len > w)
            return false;
        std::memset(out, ' ', size_t(w - len));
        std::memcpy(out + (w - len), buf, size_t(len));
        return true;
    }
    case DbfType::Logical:
        out[0] = logicalOf(v) ? 'T' : 'F';
        return true;
    case DbfType::Date: {
        const QDate d = v.typeId() == QMetaType::QDate ? v.toDate() : QDate::fromString(v.toString(), Qt::ISODate);
        if (!d.isValid() || d.year() < 0 || d.year() > 9999 || w != 8)
            return false;
        std::snprintf(buf, sizeof buf, "%04d%02d%02d", d.year(), d.month(), d.day());
        std::memcpy(out, buf, 8);
        return true;
    }
    }
    return false;
}

// GDAL has laid out the header and the code page; the records are written
// here, with the declared type letters of logical and float fields restored.
Status appendRecords(const QString &dbfPath, const DbfTable &table)
{
    const auto failed = [&] {
        return Status::fail(QStringLiteral("Errore nella scrittura della tabella %1.").arg(dbfPath));
    };
    QFile file(dbfPath);
    if (!file.open(QIODevice::ReadWrite))
        return failed();
    QByteArray header = file.read(32);
    if (header.size() < 32)
        return failed();
    const int headerLength = quint8(header[8]) | (quint8(header[9]) << 8);
    const int recordLength = quint8(header[10]) | (quint8(header[11]) << 8);
    header += file.read(headerLength - 32);
    if (header.size() != headerLength)
        return failed();
    std::vector<Slot> layout;
    int offset = 1;
    for (int i = 0; i < table.columnCount(); ++i) {
        char *d = header.data() + 32 + 32 * i;
        if (32 + 32 * i + 32 > headerLength)
            return failed();
        if (table.fields[i].type == DbfType::Logical)
            d[11] = 'L';
        else if (table.fields[i].type == DbfType::Float)
            d[11] = 'F';
        layout.push_back({d[11], offset, quint8(d[16]), quint8(d[17])});
        offset += quint8(d[16]);
    }
    if (offset != recordLength)
        return failed();
    const quint32 count = quint32(table.rowCount());
    for (int b = 0; b < 4; ++b)
        header[4 + b] = char((count >> (8 * b)) & 0xFF);

    const TextEncoder encode(table.encoding);
    QByteArray records(qsizetype(count) * recordLength + 1, ' ');
    char *rec = records.data();
    for (const auto &row : table.rows) {
        for (int i = 0; i < table.columnCount(); ++i) {
            const Slot &slot = layout[size_t(i)];
            if (!putValue(rec + slot.offset, slot, table.fields[i], row[size_t(i)], encode))
                return Status::fail(QStringLiteral("Campo %1: il valore \"%2\" non entra nel campo.")
                                        .arg(table.fields[i].name, row[size_t(i)].toString()));
        }
        rec += recordLength;
    }
    records[records.size() - 1] = '\x1A';
    if (!file.seek(0) || file.write(header) != header.size() || file.write(records) != records.size() ||
        !file.resize(qint64(headerLength) + records.size()))
        return failed();
    return {};
}

Status writeTemporary(const QString &tmpPath, const DbfTable &table)
{
    ensureGdal();
    GdalErrorScope errors;
    GDALDriver *driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!driver)
        return Status::fail(QStringLiteral("Il driver dBase di GDAL non è disponibile."));
    GDALDatasetUniquePtr ds(driver->Create(tmpPath.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds)
        return Status::fail(QStringLiteral("Impossibile creare la tabella %1. %2").arg(tmpPath, errors.lastMessage()));
    const QByteArray encodingOption = "ENCODING=" + table.encoding.toUtf8();
    const char *options[] = {encodingOption.constData(), nullptr};
    const QByteArray layerName = QFileInfo(tmpPath).completeBaseName().toUtf8();
    OGRLayer *layer = ds->CreateLayer(layerName.constData(), nullptr, wkbNone, const_cast<char **>(options));
    if (!layer)
        return Status::fail(QStringLiteral("Impossibile creare la tabella %1. %2").arg(tmpPath, errors.lastMessage()));
    for (const DbfField &f : table.fields) {
        const auto fd = ogrField(f);
        if (layer->CreateField(fd.get(), FALSE) != OGRERR_NONE)
            return Status::fail(QStringLiteral("Impossibile creare il campo %1. %2").arg(f.name, errors.lastMessage()));
    }
    ds.reset(); // flushes and closes the files
    return appendRecords(tmpPath, table);
}

} // namespace

Status writeDbf(const QString &path, const DbfTable &table)
{
    if (auto s = validateDbf(table); !s)
        return s;
    const QFileInfo dest(path);
    QTemporaryDir work(dest.absolutePath() + QStringLiteral("/.mervola-dbf-XXXXXX"));
    if (!work.isValid())
        return Status::fail(QStringLiteral("Impossibile scrivere nella cartella %1.").arg(dest.absolutePath()));
    const QString tmpDbf = work.path() + QStringLiteral("/tabella.dbf");
    if (auto s = writeTemporary(tmpDbf, table); !s)
        return s;
    if (auto s = syncFileToDisk(tmpDbf); !s)
        return s;
    // The code page goes first: the table never appears without it. A code
    // page left alone by an interrupted write is removed by the next write
    // in the folder (removeStaleDbfWork).
    const QString tmpCpg = work.path() + QStringLiteral("/tabella.cpg");
    const QString cpg = cpgPathFor(dest.absoluteFilePath());
    if (QFileInfo::exists(tmpCpg)) {
        if (Status s = renameOver(tmpCpg, cpg); !s)
            return s;
    } else if (QFileInfo::exists(cpg)) {
        QFile::remove(cpg); // a stale code page would misread the new file
    }
    return renameOver(tmpDbf, dest.absoluteFilePath());
}

} // namespace mervola
