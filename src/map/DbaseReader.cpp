#include "map/DbaseReader.h"

#include "map/MappedFile.h"

#include <QFileInfo>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace mervola::map
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kHeaderSize = 32;
constexpr int kDescriptorSize = 32;
constexpr char kHeaderEnd = 0x0D;

enum class TextCoding { Raw, Utf8, Latin1, Other };

struct Field {
    Column column;
    int offset = 0; // within the record, after the deletion flag
    int width = 0;
};

std::uint16_t le16(const uchar *p)
{
    return std::uint16_t(p[0] | p[1] << 8);
}
std::uint32_t le32(const uchar *p)
{
    return std::uint32_t(p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t(p[3]) << 24);
}

QString fileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

Error malformed(const QString &path)
{
    return Error{
        QStringLiteral("Il file %1 non è una tabella dBase valida: intestazione danneggiata.").arg(fileName(path)),
        kReadMalformed};
}

// The code page named by the .cpg's first line, else by the header's
// language driver byte; Raw when neither names one (bytes kept as they are).
TextCoding codingOf(const QString &dbfPath, uchar languageDriver)
{
    const QString cpg = siblingFile(dbfPath, "cpg");
    QFile f(cpg);
    if (f.open(QIODevice::ReadOnly)) {
        QByteArray line = f.read(31);
        const qsizetype eol = line.indexOf('\n') >= 0 ? line.indexOf('\n') : line.indexOf('\r');
        if (eol >= 0)
            line.truncate(eol);
        line = line.trimmed().toUpper();
        if (line.isEmpty())
            return TextCoding::Raw;
        if (line.startsWith("UTF-8") || line.startsWith("UTF8"))
            return TextCoding::Utf8;
        if (line == "8859-1" || line == "88591" || line == "ISO-8859-1" || line == "ISO8859-1" || line == "LATIN1")
            return TextCoding::Latin1;
        return TextCoding::Other;
    }
    if (languageDriver == 0)
        return TextCoding::Raw;
    return languageDriver == 87 ? TextCoding::Latin1 : TextCoding::Other;
}

QString decode(const char *p, qsizetype n, TextCoding coding)
{
    return coding == TextCoding::Latin1 ? QString::fromLatin1(p, n) : QString::fromUtf8(p, n);
}

// The value's bytes up to the first NUL, without blanks at either end.
std::pair<const char *, qsizetype> trimmed(const char *p, int width)
{
    const char *end = static_cast<const char *>(std::memchr(p, 0, std::size_t(width)));
    if (!end)
        end = p + width;
    while (p < end && *p == ' ')
        ++p;
    while (end > p && end[-1] == ' ')
        --end;
    return {p, end - p};
}

// Integers read like strtoll (leading sign and digits, the rest ignored),
// reals like strtod in the C locale.
double parseNumber(const char *p, qsizetype n, ColumnType type)
{
    const char *end = p + n;
    if (p < end && *p == '+')
        ++p;
    if (type == ColumnType::Integer) {
        long long v = 0;
        const auto r = std::from_chars(p, end, v);
        if (r.ec == std::errc::result_out_of_range)
            return *p == '-' ? double(std::numeric_limits<long long>::min())
                             : double(std::numeric_limits<long long>::max());
        return r.ec == std::errc() ? double(v) : 0.0;
    }
    double v = 0;
    const auto r = std::from_chars(p, end, v);
    if (r.ec == std::errc::result_out_of_range) {
        // Beyond the range of a double: infinite, or zero for a tiny value.
        const char *e = std::find_if(p, end, [](char ch) { return ch == 'e' || ch == 'E'; });
        const double magnitude = e + 1 < end && e[1] == '-' ? 0.0 : HUGE_VAL;
        return *p == '-' ? -magnitude : magnitude;
    }
    return r.ec == std::errc() ? v : 0.0;
}

Result<std::vector<Field>> readFields(const QString &path, const uchar *data, qint64 size, int headerLength,
                                      int recordLength, TextCoding coding)
{
    std::vector<Field> fields;
    int offset = 1;
    for (qint64 at = kHeaderSize; at + kDescriptorSize <= headerLength && data[at] != kHeaderEnd;
         at += kDescriptorSize) {
        if (at + kDescriptorSize > size)
            return malformed(path);
        const uchar *d = data + at;
        const char type = char(d[11]);
        Field f;
        f.width = d[16];
        f.offset = offset;
        offset += f.width;
        if (offset > recordLength)
            return malformed(path);
        const char *name = reinterpret_cast<const char *>(d);
        f.column.name = decode(name, qsizetype(strnlen(name, 11)), coding);
        f.column.width = f.width;
        switch (type) {
        case 'C':
            f.column.type = ColumnType::Text;
            break;
        case 'N':
        case 'F':
            f.column.precision = d[17];
            f.column.type = f.column.precision > 0 || f.width >= 19 ? ColumnType::Real : ColumnType::Integer;
            if (f.column.type == ColumnType::Integer)
                f.column.precision = 0;
            break;
        default:
            return Error{
                QStringLiteral("Il file %1 ha un campo di tipo %2.").arg(fileName(path), QChar::fromLatin1(type)),
                kReadUnsupported};
        }
        fields.push_back(std::move(f));
    }
    return fields;
}

} // namespace

QString siblingFile(const QString &path, const char *ext)
{
    const QFileInfo info(path);
    const QString base = info.path() + QLatin1Char('/') + info.completeBaseName() + QLatin1Char('.');
    const QString lower = base + QString::fromLatin1(ext);
    if (QFileInfo::exists(lower))
        return lower;
    const QString upper = base + QString::fromLatin1(ext).toUpper();
    return QFileInfo::exists(upper) ? upper : lower;
}

Result<DbaseColumns> readDbaseColumns(const QString &path)
{
    MappedFile file(path);
    if (!file.isOpen())
        return Error{QStringLiteral("Impossibile leggere il file %1.").arg(fileName(path)), kReadUnreadable};
    const uchar *data = file.data();
    const qint64 size = file.size();
    if (size < kHeaderSize)
        return malformed(path);
    const qint64 records = le32(data + 4);
    const int headerLength = le16(data + 8);
    const int recordLength = le16(data + 10);
    if (headerLength < kHeaderSize + 1 || recordLength < 1 || headerLength > size)
        return malformed(path);
    const TextCoding coding = codingOf(path, data[29]);
    if (coding == TextCoding::Other)
        return Error{QStringLiteral("La codifica dei testi di %1 non è letta direttamente.").arg(fileName(path)),
                     kReadUnsupported};
    auto fields = readFields(path, data, size, headerLength, recordLength, coding);
    if (!fields)
        return fields.error();

    const qint64 present = (size - headerLength) / recordLength;
    if (present < records)
        return Error{QStringLiteral("Il file %1 è troncato: dichiara %2 record ma ne contiene %3.")
                         .arg(fileName(path))
                         .arg(records)
                         .arg(present),
                     kReadTruncated};

    DbaseColumns out;
    out.deleted.resize(std::size_t(records));
    std::size_t kept = 0;
    for (qint64 r = 0; r < records; ++r)
        if (data[headerLength + r * recordLength] == '*')
            out.deleted[std::size_t(r)] = 1;
        else
            ++kept;
    for (Field &f : *fields) {
        Column &c = f.column;
        c.isNull.reserve(kept);
        if (c.isNumeric())
            c.numbers.reserve(kept);
        else
            c.texts.reserve(kept);
        // A text equal to the one above shares its string: codes and names
        // of provinces and regions come in runs.
        std::string_view previous;
        for (qint64 r = 0; r < records; ++r) {
            if (out.deleted[std::size_t(r)])
                continue;
            const char *raw = reinterpret_cast<const char *>(data + headerLength + r * recordLength + f.offset);
            const auto [p, n] = trimmed(raw, f.width);
            if (c.isNumeric()) {
                const bool null = n == 0 || *p == '*';
                c.isNull.push_back(null);
                c.numbers.push_back(null ? kNaN : parseNumber(p, n, c.type));
            } else if (n == 0) {
                c.isNull.push_back(1);
                c.texts.emplace_back();
                previous = {};
            } else {
                const std::string_view value(p, std::size_t(n));
                c.isNull.push_back(0);
                c.texts.push_back(value == previous ? c.texts.back() : decode(p, n, coding));
                previous = value;
            }
        }
        out.columns.push_back(std::move(c));
    }
    return out;
}

} // namespace mervola::map
