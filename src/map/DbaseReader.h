#pragma once
// Reads the attribute table of a shapefile (.dbf, with the code page of its
// .cpg) straight from a memory map into LayerData's columns.
//
// Text fields (C) and numeric fields (N, F) are read here; a file with any
// other field type, or with a code page other than UTF-8 or ISO-8859-1,
// gives kReadUnsupported so that the caller can hand it to GDAL. A table
// cut short, or whose header does not hold together, gives kReadTruncated or
// kReadMalformed with an Italian message: never a partial table.
//
// Values read as GDAL reads them: text trimmed of blanks at both ends and an
// empty text is null; a numeric field all blanks or starting with '*' is
// null; N or F with decimals, or 19 digits or more, is Real, else Integer.

#include "map/LayerData.h"
#include "platform/Result.h"

#include <QString>
#include <vector>

namespace mervola::map
{

// Error::code of the direct shapefile and dBase readers.
enum ReadErrorCode : int {
    kReadUnreadable = 1,  // the file is missing or cannot be read
    kReadUnsupported = 2, // a valid file outside what the direct reader handles
    kReadTruncated = 3,   // a file ends before what its header or index declares
    kReadMalformed = 4,   // a bad header or inconsistent content
};

struct DbaseColumns {
    std::vector<Column> columns;       // one value per record not marked deleted
    std::vector<std::uint8_t> deleted; // per record of the file: 1 when marked deleted
};

Result<DbaseColumns> readDbaseColumns(const QString &dbfPath);

// The file beside `path` with extension `ext` in lower case, else in upper
// case (as shapefile tools look for them); the lower-case name when neither
// exists.
QString siblingFile(const QString &path, const char *ext);

} // namespace mervola::map
