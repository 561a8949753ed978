#include "classify/ColumnReader.h"

#include "platform/dbf/DbfTable.h"

#include <QFileInfo>

namespace mervola::classify {

Result<FieldColumn> readFieldColumn(const QString &dbfPath, const QString &field)
{
    if (!QFileInfo::exists(dbfPath))
        return Result<FieldColumn>::fail(QStringLiteral("Tabella non trovata: %1").arg(dbfPath));
    Result<DbfTable> table = readDbf(dbfPath);
    if (!table)
        return Result<FieldColumn>::fail(table.errorMessage(), table.error().code);
    const int index = table->fieldIndex(field);
    if (index < 0)
        return Result<FieldColumn>::fail(QStringLiteral("Campo inesistente: %1").arg(field));
    const DbfField &def = table->fields[index];
    FieldColumn col;
    col.name = def.name;
    col.numeric = def.type == DbfType::Numeric || def.type == DbfType::Float;
    if (col.numeric)
        col.numbers.reserve(table->rowCount());
    for (const auto &row : table->rows) {
        const QVariant &v = row[size_t(index)];
        if (col.numeric)
            col.numbers.push_back(v.isNull() ? FieldColumn::null() : v.toDouble());
        else
            col.texts << (v.isNull() ? QString() : v.toString().trimmed());
    }
    return col;
}

FieldColumn columnFromVariants(const QString &name, const QList<QVariant> &values)
{
    FieldColumn col;
    col.name = name;
    for (const QVariant &v : values) {
        if (v.isNull())
            continue;
        const int id = v.typeId();
        if (id != QMetaType::Int && id != QMetaType::LongLong && id != QMetaType::Double && id != QMetaType::UInt
            && id != QMetaType::ULongLong && id != QMetaType::Float) {
            col.numeric = false;
            break;
        }
    }
    for (const QVariant &v : values) {
        if (col.numeric)
            col.numbers.push_back(v.isNull() ? FieldColumn::null() : v.toDouble());
        else
            col.texts << (v.isNull() ? QString() : v.toString());
    }
    return col;
}

}  // namespace mervola::classify
