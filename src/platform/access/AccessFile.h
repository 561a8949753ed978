#pragma once
// Access databases, read through libmdb. libmdb trusts the pages of the file
// it reads, and a damaged database can make it crash or loop; so the program
// never calls it in its own process. The helper executable mervola-access
// runs the reads below (the "Here" functions) and streams the result back on
// its standard output; readAccessTableNames / readAccessRows start it and
// turn a helper that crashes, hangs or answers with a garbled stream into an
// ordinary failure with an Italian message.

#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <vector>

namespace mervola
{

inline const QString kAccessUnreadable = QStringLiteral("Impossibile leggere il file di origine.");

struct AccessColumn {
    QString name;
    int type = 0; // libmdb's column type (the engine's numbering)
    int size = 0; // declared size in bytes
};

// A table as text: every value as libmdb formats it (UTF-8), dates as
// "YYYY-MM-DD", booleans as 1/0; a null QByteArray is a null value.
struct AccessRows {
    QList<AccessColumn> columns;
    std::vector<std::vector<QByteArray>> rows;
};

// Through the helper process (what the program uses).
Result<QStringList> readAccessTableNames(const QString &mdbPath);
Result<AccessRows> readAccessRows(const QString &mdbPath, const QString &table);

// In this process: the helper's own work, and the fuzz targets'.
Result<QStringList> readAccessTableNamesHere(const QString &mdbPath);
Result<AccessRows> readAccessRowsHere(const QString &mdbPath, const QString &table);

// The stream between helper and program.
QByteArray encodeAccessNames(const QStringList &names);
QByteArray encodeAccessRows(const AccessRows &rows);
Result<QStringList> decodeAccessNames(const QByteArray &stream);
Result<AccessRows> decodeAccessRows(const QByteArray &stream);

// The helper's main: "tables <file>" or "table <file> <name>".
int accessHelperMain(int argc, char **argv);

} // namespace mervola
