#include "map/ShapefileReader.h"

#include "map/MappedFile.h"
#include "platform/dbf/TableCheck.h"

#include <QFileInfo>
#include <bit>
#include <cstring>

namespace mervola::map
{

namespace
{

static_assert(std::endian::native == std::endian::little, "coordinates are copied as stored (little-endian)");

constexpr qint64 kMainHeaderSize = 100;
constexpr int kFileCode = 9994;
constexpr qint64 kIndexEntrySize = 8;

enum class Family { Null, Point, MultiPoint, Line, Polygon, Unsupported };

Family familyOf(int type)
{
    switch (type) {
    case 0:
        return Family::Null;
    case 1:
    case 11:
    case 21:
        return Family::Point;
    case 8:
    case 18:
    case 28:
        return Family::MultiPoint;
    case 3:
    case 13:
    case 23:
        return Family::Line;
    case 5:
    case 15:
    case 25:
        return Family::Polygon;
    default:
        return Family::Unsupported;
    }
}

GeometryKind kindOf(Family f)
{
    switch (f) {
    case Family::Point:
    case Family::MultiPoint:
        return GeometryKind::Point;
    case Family::Line:
        return GeometryKind::Line;
    default:
        return GeometryKind::Polygon;
    }
}

std::int32_t be32(const uchar *p)
{
    return std::int32_t(std::uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]);
}
std::int32_t leInt32(const uchar *p)
{
    return std::int32_t(p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t(p[3]) << 24);
}

QString nameOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

Error unreadable(const QString &path, bool theme)
{
    const QString text =
        theme ? QStringLiteral("Impossibile aprire il tema %1") : QStringLiteral("Impossibile aprire il file %1.");
    return Error{text.arg(nameOf(path)), kReadUnreadable};
}

Error badHeader(const QString &path)
{
    return Error{QStringLiteral("Il file %1 non è uno shapefile valido: intestazione danneggiata.").arg(nameOf(path)),
                 kReadMalformed};
}

Error truncated(const QString &path, qint64 record)
{
    return Error{QStringLiteral("Il file %1 è troncato: l'elemento %2 supera la fine del file.")
                     .arg(nameOf(path))
                     .arg(record + 1),
                 kReadTruncated};
}

Error badRecord(const QString &path, qint64 record)
{
    return Error{
        QStringLiteral("Il file %1 è danneggiato: l'elemento %2 non è leggibile.").arg(nameOf(path)).arg(record + 1),
        kReadMalformed};
}

// Checks the 100-byte header shared by .shp and .shx; returns the shape type.
std::optional<int> headerType(const MappedFile &f)
{
    if (f.size() < kMainHeaderSize || be32(f.data()) != kFileCode || leInt32(f.data() + 28) != 1000)
        return std::nullopt;
    return leInt32(f.data() + 32);
}

// Appends the shape of one record (content without the record header).
// False when the content is shorter than its counts declare or its parts
// are out of order.
bool appendShape(LayerData &d, Family family, const uchar *c, qint64 length)
{
    auto addPoints = [&](const uchar *xy, std::size_t count) {
        const std::size_t at = d.xy.size();
        d.xy.resize(at + 2 * count);
        std::memcpy(d.xy.data() + at, xy, count * 16);
    };
    switch (family) {
    case Family::Null:
        return true;
    case Family::Point:
        if (length < 20)
            return false;
        addPoints(c + 4, 1);
        d.ringStart.push_back(std::uint32_t(d.xy.size() / 2));
        return true;
    case Family::MultiPoint: {
        if (length < 40)
            return false;
        const qint64 n = leInt32(c + 36);
        if (n < 0 || 40 + 16 * n > length)
            return false;
        addPoints(c + 40, std::size_t(n));
        for (qint64 i = 0; i < n; ++i)
            d.ringStart.push_back(std::uint32_t(d.xy.size() / 2 - std::size_t(n - 1 - i)));
        return true;
    }
    case Family::Line:
    case Family::Polygon: {
        if (length < 44)
            return false;
        const qint64 parts = leInt32(c + 36), points = leInt32(c + 40);
        if (parts < 0 || points < 0 || 44 + 4 * parts + 16 * points > length)
            return false;
        if (parts == 0)
            return points == 0;
        const uchar *partStart = c + 44;
        const std::uint32_t base = std::uint32_t(d.xy.size() / 2);
        for (qint64 p = 0; p < parts; ++p) {
            const qint64 start = leInt32(partStart + 4 * p);
            const qint64 end = p + 1 < parts ? leInt32(partStart + 4 * (p + 1)) : points;
            if (start < 0 || start > end || end > points || (p == 0 && start != 0))
                return false;
        }
        addPoints(partStart + 4 * parts, std::size_t(points));
        for (qint64 p = 1; p <= parts; ++p)
            d.ringStart.push_back(base + std::uint32_t(p < parts ? leInt32(partStart + 4 * p) : points));
        return true;
    }
    case Family::Unsupported:
        break;
    }
    return false;
}

} // namespace

Result<std::shared_ptr<LayerData>> readShapefile(const QString &shpPath)
{
    // Cut or inconsistent files are refused with the messages every reader
    // of the program gives (kDamagedFile); the checks below also guard the
    // memory reads against a file that changes after that check.
    if (Status whole = checkShapefile(shpPath); !whole)
        return whole.error();
    MappedFile shp(shpPath);
    if (!shp.isOpen())
        return unreadable(shpPath, true);
    const QString shxPath = siblingFile(shpPath, "shx");
    MappedFile shx(shxPath);
    if (!shx.isOpen())
        return unreadable(shxPath, false);
    const auto type = headerType(shp);
    if (!type || (familyOf(*type) == Family::Unsupported && *type != 31))
        return badHeader(shpPath);
    if (headerType(shx) != type)
        return badHeader(shxPath);
    const Family family = familyOf(*type);
    if (family == Family::Unsupported)
        return Error{QStringLiteral("Lo shapefile %1 contiene geometrie multipatch.").arg(nameOf(shpPath)),
                     kReadUnsupported};
    if ((shx.size() - kMainHeaderSize) % kIndexEntrySize != 0)
        return Error{QStringLiteral("Il file %1 è troncato.").arg(nameOf(shxPath)), kReadTruncated};
    const qint64 records = (shx.size() - kMainHeaderSize) / kIndexEntrySize;

    DbaseColumns table;
    const QString dbfPath = siblingFile(shpPath, "dbf");
    if (QFileInfo::exists(dbfPath)) {
        auto read = readDbaseColumns(dbfPath);
        if (!read)
            return read.error();
        table = std::move(*read);
        if (qint64(table.deleted.size()) != records)
            return Error{QStringLiteral("La tabella %1 ha %2 record ma lo shapefile %3 ha %4 elementi.")
                             .arg(nameOf(dbfPath))
                             .arg(table.deleted.size())
                             .arg(nameOf(shpPath))
                             .arg(records),
                         kReadMalformed};
    }

    auto d = std::make_shared<LayerData>();
    d->sourcePath = shpPath;
    d->kind = kindOf(family);
    d->columns = std::move(table.columns);
    // A vertex takes 16 bytes of the file: reserving for the whole file
    // leaves the coordinate array a single allocation.
    d->xy.reserve(std::size_t(shp.size() / 8));
    d->boxes.reserve(std::size_t(records));
    d->featureRing.reserve(std::size_t(records) + 1);
    const uchar *data = shp.data();
    for (qint64 r = 0; r < records; ++r) {
        if (!table.deleted.empty() && table.deleted[std::size_t(r)])
            continue;
        const uchar *entry = shx.data() + kMainHeaderSize + r * kIndexEntrySize;
        const qint64 offset = qint64(be32(entry)) * 2, length = qint64(be32(entry + 4)) * 2;
        if (offset < kMainHeaderSize || length < 4)
            return badRecord(shxPath, r);
        if (offset + 8 + length > shp.size())
            return truncated(shpPath, r);
        const uchar *content = data + offset + 8;
        const int recordType = leInt32(content);
        if (recordType != 0 && recordType != *type)
            return badRecord(shpPath, r);
        d->beginFeature();
        if (!appendShape(*d, familyOf(recordType), content, length))
            return badRecord(shpPath, r);
        d->endFeature();
    }
    d->finish();
    return d;
}

} // namespace mervola::map
