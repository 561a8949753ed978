#include "project/JoinSource.h"

#include "platform/access/AccessFile.h"
#include "platform/dbf/DbfGdal.h"

#include <QDate>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <memory>
#include <vector>

namespace mervola {

namespace {

const QString kSourceUnreadable = QStringLiteral("Impossibile leggere il file di origine.");

int engineTypeOf(const DbfField &f)
{
    switch (f.type) {
    case DbfType::Text: return JoinFieldType::Text;
    case DbfType::Logical: return JoinFieldType::Boolean;
    case DbfType::Date: return JoinFieldType::Date;
    case DbfType::Float: return JoinFieldType::Double;
    case DbfType::Numeric: return f.decimals == 0 && f.width <= 9 ? JoinFieldType::Long : JoinFieldType::Double;
    }
    return JoinFieldType::Text;
}

DbfField dbfFieldFor(const QString &name, int type, int size)
{
    DbfField f;
    f.name = name.left(kDbfMaxFieldNameLength);
    switch (type) {
    case JoinFieldType::Boolean: f.type = DbfType::Logical; f.width = 1; break;
    case JoinFieldType::Byte:
    case JoinFieldType::Integer:
    case JoinFieldType::Long: f.type = DbfType::Numeric; f.width = 11; break;
    case JoinFieldType::Currency:
    case JoinFieldType::Single:
    case JoinFieldType::Double:
    case JoinFieldType::Decimal: f.type = DbfType::Numeric; f.width = 20; f.decimals = 6; break;
    case JoinFieldType::Date: f.type = DbfType::Date; f.width = 8; break;
    case JoinFieldType::Text: f.type = DbfType::Text; f.width = std::clamp(size, 1, kDbfMaxTextWidth); break;
    default: f.type = DbfType::Text; f.width = kDbfMaxTextWidth; break;
    }
    return f;
}

QVariant valueFor(const DbfField &f, const QString &text)
{
    if (text.isNull())
        return {};
    switch (f.type) {
    case DbfType::Logical: return QVariant(text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0);
    case DbfType::Date: return QVariant(QDate::fromString(text.left(10), Qt::ISODate));
    case DbfType::Numeric:
    case DbfType::Float: {
        bool ok = false;
        if (f.decimals == 0) {
            const qlonglong v = text.toLongLong(&ok);
            return ok ? QVariant(v) : QVariant();
        }
        const double d = text.toDouble(&ok);
        return ok ? QVariant(d) : QVariant();
    }
    case DbfType::Text: return QVariant(text.left(f.width));
    }
    return {};
}

}  // namespace

FieldFamily familyOfType(int t)
{
    switch (t) {
    case JoinFieldType::Text:
    case JoinFieldType::Memo: return FieldFamily::Alphanumeric;
    case JoinFieldType::Byte:
    case JoinFieldType::Integer:
    case JoinFieldType::Long:
    case JoinFieldType::Currency:
    case JoinFieldType::Single:
    case JoinFieldType::Double:
    case JoinFieldType::Decimal: return FieldFamily::Numeric;
    case JoinFieldType::Boolean: return FieldFamily::Boolean;
    default: return FieldFamily::Unknown;
    }
}

bool isUnreadableType(int t)
{
    switch (t) {
    case JoinFieldType::Date:
    case JoinFieldType::Memo: return false;
    default: return familyOfType(t) == FieldFamily::Unknown;
    }
}

QString familyText(FieldFamily family)
{
    switch (family) {
    case FieldFamily::Alphanumeric: return QStringLiteral("Alfanumerico");
    case FieldFamily::Numeric: return QStringLiteral("Numerico");
    case FieldFamily::Boolean: return QStringLiteral("Booleano");
    case FieldFamily::Unknown: break;
    }
    return QStringLiteral("Non riconosciuto");
}

Result<QStringList> accessTableNames(const QString &mdbPath)
{
    return readAccessTableNames(mdbPath);
}

Result<SourceTable> readAccessTable(const QString &mdbPath, const QString &tableName)
{
    auto read = readAccessRows(mdbPath, tableName);
    if (!read)
        return read.error();
    SourceTable out;
    for (const AccessColumn &col : read->columns) {
        out.fields << SourceField{col.name, col.type};
        out.table.fields << dbfFieldFor(col.name, col.type, col.size);
    }
    const int n = int(read->columns.size());
    out.table.rows.reserve(read->rows.size());
    for (const auto &values : read->rows) {
        std::vector<QVariant> row;
        row.reserve(std::size_t(n));
        for (int i = 0; i < n; ++i) {
            const QByteArray &v = values[std::size_t(i)];
            row.push_back(valueFor(out.table.fields[i], v.isNull() ? QString() : QString::fromUtf8(v)));
        }
        out.table.rows.push_back(std::move(row));
    }
    return out;
}

QStringList dbfFieldNames(const QString &dbfPath)
{
    QStringList names;
    for (const QByteArray &d : dbfdetail::fieldDescriptors(dbfPath)) {
        QByteArray name = d.left(11);
        name.truncate(int(qstrnlen(name.constData(), 11)));
        const QString utf8 = QString::fromUtf8(name);
        names << (utf8.toUtf8() == name ? utf8 : QString::fromLatin1(name));
    }
    return names;
}

Result<SourceTable> readDbaseSource(const QString &dbfPath)
{
    auto dbf = readDbf(dbfPath);
    if (!dbf)
        return Result<SourceTable>::fail(kSourceUnreadable, 3061);
    SourceTable out;
    out.table = std::move(dbf.value());
    // Memo, binary, general and the other kinds beyond dBase IV's own five
    // hold no value that can be read from the table alone.
    const QByteArray native = dbfdetail::nativeFieldTypes(dbfPath);
    for (int i = 0; i < out.table.fields.size(); ++i) {
        const char t = i < native.size() ? native[i] : 'C';
        const bool known = t == 'C' || t == 'N' || t == 'F' || t == 'L' || t == 'D';
        out.fields << SourceField{out.table.fields[i].name, known ? engineTypeOf(out.table.fields[i])
                                                                  : JoinFieldType::LongBinary};
    }
    return out;
}

Result<SourceTable> readSource(const QString &type, const QString &folder, const QString &file, const QString &table)
{
    const QString path = folder.isEmpty() ? file : folder + QLatin1Char('/') + file;
    if (type == JoinSourceType::Access)
        return readAccessTable(path, table);
    if (type == JoinSourceType::Text)
        return readTextSource(path);
    return readDbaseSource(path);
}

}  // namespace mervola
