// Targets of the binary tables: dBase files with their code page, Access
// databases and shapefiles.
#include "FuzzTargets.h"

#include "map/DbaseReader.h"
#include "map/ShapefileReader.h"
#include "platform/access/AccessFile.h"
#include "platform/dbf/DbfGdal.h"
#include "project/JoinSource.h"

#include <QFile>

#include <array>
#include <cstring>

namespace mervola::fuzz
{

namespace
{

// The .cpg written beside the table, chosen by the input's first byte.
constexpr std::array<const char *, 8> kCodePages = {
    nullptr, "UTF-8", "ISO-8859-1", "CP1252", "1252", "LATIN1", "CP850", "\xff\xfe",
};

QString writeDbase(const QString &base, const std::uint8_t *data, std::size_t size)
{
    const QString cpg = scratchFolder() + QLatin1Char('/') + base + QStringLiteral(".cpg");
    const char *page = size > 0 ? kCodePages[data[0] % kCodePages.size()] : nullptr;
    if (page)
        scratchFile(base + QStringLiteral(".cpg"), reinterpret_cast<const std::uint8_t *>(page), std::strlen(page));
    else
        QFile::remove(cpg);
    return size > 0 ? scratchFile(base + QStringLiteral(".dbf"), data + 1, size - 1)
                    : scratchFile(base + QStringLiteral(".dbf"), data, 0);
}

} // namespace

int fuzzDbase(const std::uint8_t *data, std::size_t size)
{
    const QString path = writeDbase(QStringLiteral("tabella"), data, size);
    (void)map::readDbaseColumns(path);
    (void)dbfFieldNames(path);
    (void)dbfdetail::nativeFieldTypes(path);
    (void)readDbaseSource(path);
    return 0;
}

// Lists the tables of the input read as a database, reads the first four,
// then decodes the same bytes as the helper's answer.
template <class ListTables, class ReadTable>
void readAccessInput(const std::uint8_t *data, std::size_t size, ListTables listTables, ReadTable readTable)
{
    const QString path = scratchFile(QStringLiteral("origine.mdb"), data, size);
    if (auto names = listTables(path))
        for (const QString &table : names->mid(0, 4))
            (void)readTable(path, table);
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    (void)decodeAccessNames(bytes);
    (void)decodeAccessRows(bytes);
}

int fuzzAccess(const std::uint8_t *data, std::size_t size)
{
    readAccessInput(data, size, readAccessTableNamesHere, [](const QString &path, const QString &table) {
        auto rows = readAccessRowsHere(path, table);
        return rows ? decodeAccessRows(encodeAccessRows(rows.value())) : rows;
    });
    return 0;
}

int replayAccess(const std::uint8_t *data, std::size_t size)
{
    readAccessInput(data, size, accessTableNames, readAccessTable);
    return 0;
}

// Input: the .shp length and the .shx length (two bytes each, little
// endian), the .shp, the .shx, then the .dbf with its code-page byte.
int fuzzShapefile(const std::uint8_t *data, std::size_t size)
{
    if (size < 4)
        return 0;
    const std::size_t shpSize = std::min<std::size_t>(data[0] | (data[1] << 8), size - 4);
    const std::size_t shxSize = std::min<std::size_t>(data[2] | (data[3] << 8), size - 4 - shpSize);
    const std::uint8_t *shp = data + 4;
    const std::uint8_t *shx = shp + shpSize;
    const std::uint8_t *dbf = shx + shxSize;
    const QString path = scratchFile(QStringLiteral("tema.shp"), shp, shpSize);
    scratchFile(QStringLiteral("tema.shx"), shx, shxSize);
    writeDbase(QStringLiteral("tema"), dbf, size - 4 - shpSize - shxSize);
    auto layer = map::readShapefile(path);
    return 0;
}

} // namespace mervola::fuzz
