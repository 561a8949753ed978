#pragma once
// Checks that a dBase table or a shapefile is whole before it is read. A
// file cut short (a crash while it was copied, a full disk, a broken
// transfer) still opens, but shows only part of its records: the checks
// compare the sizes the headers announce with the sizes on disk.
//
// A table is damaged when its header is cut (shorter than 32 bytes or than
// the header length it declares, or without the 0x0D that ends the field
// list) or when its records are cut (fewer bytes than record count x record
// length). A shapefile is damaged when its .shp or .shx is missing or cut,
// or when its .shx, .shp and .dbf disagree on the number of features.

#include "platform/Result.h"

#include <QString>

namespace mervola
{

// Error code of a damaged table or shapefile (Error::code).
constexpr int kDamagedFile = 9100;

Status checkDbfFile(const QString &dbfPath);
// Checks X.shp, X.shx and (when present) X.dbf of the shapefile X.shp.
Status checkShapefile(const QString &shpPath);

} // namespace mervola
