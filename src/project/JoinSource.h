#pragma once
// External tables that a join attaches to a theme table: an Access table
// (read through libmdb), a dBase file or a delimited text file. Every source
// is read into a DbfTable whose fields carry the engine type numbers that
// the staging table STRUCTJOIN stores in TIPOCAMPO.

#include "platform/Result.h"
#include "platform/dbf/DbfTable.h"

#include <QStringList>

namespace mervola {

// Connect texts of the three kinds of source the wizard offers.
namespace JoinSourceType {
inline const QString Access = QStringLiteral("Microsoft Access");
inline const QString DbaseIV = QStringLiteral("Dbase IV;");
inline const QString Text = QStringLiteral("Text;");
}  // namespace JoinSourceType

// Engine field type numbers (the classic DAO numbering).
namespace JoinFieldType {
constexpr int Boolean = 1;
constexpr int Byte = 2;
constexpr int Integer = 3;
constexpr int Long = 4;
constexpr int Currency = 5;
constexpr int Single = 6;
constexpr int Double = 7;
constexpr int Date = 8;
constexpr int Binary = 9;
constexpr int Text = 10;
constexpr int LongBinary = 11;
constexpr int Memo = 12;
constexpr int Guid = 15;
constexpr int Decimal = 20;
}  // namespace JoinFieldType

enum class FieldFamily { Alphanumeric, Numeric, Boolean, Unknown };
FieldFamily familyOfType(int engineType);
// "Alfanumerico", "Numerico", "Booleano", "Non riconosciuto".
QString familyText(FieldFamily family);
// Families that a dBase table can hold (everything but Unknown).
inline bool isImportable(int engineType) { return familyOfType(engineType) != FieldFamily::Unknown; }
// Types whose values cannot be read at all (binary, OLE, GUID, dBase memo
// and the like), as opposed to readable values of a kind a join does not
// import (dates).
bool isUnreadableType(int engineType);

struct SourceField {
    QString name;
    int engineType = JoinFieldType::Text;
};

// A source read in full: field names and engine types, plus the values as a
// dBase table ready to be written (unknown types become text columns so the
// caller can still list them).
struct SourceTable {
    QList<SourceField> fields;
    DbfTable table;
};

// The field names of a dBase table, read from its header alone (a join
// needs the theme table's names long before its records).
QStringList dbfFieldNames(const QString &dbfPath);

// Tables of an Access database, system tables left out, in catalogue order.
Result<QStringList> accessTableNames(const QString &mdbPath);
Result<SourceTable> readAccessTable(const QString &mdbPath, const QString &table);
Result<SourceTable> readDbaseSource(const QString &dbfPath);
// A text table as spreadsheets save it: the first line names the fields;
// the separator is the most frequent of ";", tab and "," in it; values may
// be in double quotes; UTF-8 with or without BOM, else Windows-1252. A column
// whose values all read as numbers (decimal point or comma) is numeric,
// unless a value has leading zeros ("001001" is a code) or was quoted
// without need.
Result<SourceTable> readTextSource(const QString &txtPath);

// Reads `file` in `folder` as a source of `type` (the table name is used
// only for Access).
Result<SourceTable> readSource(const QString &type, const QString &folder, const QString &file, const QString &table);

}  // namespace mervola
