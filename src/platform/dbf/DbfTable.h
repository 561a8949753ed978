#pragma once
// A dBase table held in memory: field definitions as the file declares them
// and rows of values. Read and written through GDAL/OGR so that widths,
// decimals, nulls and the .cpg code page survive a round trip.

#include "platform/Result.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <vector>

namespace mervola
{

enum class DbfType {
    Text,    // C(width)          values: QString
    Numeric, // N(width,decimals) values: qlonglong when decimals == 0, else double
    Float,   // F(width,decimals) values: double
    Logical, // L(1)              values: bool
    Date,    // D(8)              values: QDate
};

struct DbfField {
    QString name;
    DbfType type = DbfType::Text;
    int width = 0;
    int decimals = 0;

    bool operator==(const DbfField &o) const = default;
};

// dBase limits checked before anything is written.
inline constexpr int kDbfMaxFieldNameLength = 10;
inline constexpr int kDbfMaxFields = 255;
inline constexpr int kDbfMaxTextWidth = 254;
inline constexpr int kDbfMaxNumericWidth = 20;

struct DbfTable {
    QList<DbfField> fields;
    std::vector<std::vector<QVariant>> rows; // null value = QVariant()
    // Code page of the text values ("UTF-8", "ISO-8859-1", "CP1252" ...),
    // as read from the .cpg or the header's language driver. New tables use UTF-8.
    QString encoding = QStringLiteral("UTF-8");

    int fieldIndex(const QString &name) const; // case-insensitive, -1 when absent
    int columnCount() const { return int(fields.size()); }
    size_t rowCount() const { return rows.size(); }
};

// Reads a .dbf (alone or beside a .shp); deleted records are skipped.
Result<DbfTable> readDbf(const QString &path);

// Checks the dBase limits (field names, field count, widths) and that every
// value fits its field; the message names the offending field.
Status validateDbf(const DbfTable &table);

// Writes the table to `path` through a new file that replaces the old one
// only when complete. Only the .dbf and the .cpg are written, so a table
// beside a shapefile keeps its .shp/.shx untouched.
Status writeDbf(const QString &path, const DbfTable &table);

// The .cpg file that goes with a .dbf path (an existing one matched without
// regard to case, else the base name + ".cpg").
QString cpgPathFor(const QString &dbfPath);

} // namespace mervola
