#pragma once
// Reading one field of a theme's dBase table into a FieldColumn.

#include "classify/FieldColumn.h"
#include "platform/Result.h"

#include <QVariant>

namespace mervola::classify {

// The column `field` (case-insensitive) of the .dbf at `dbfPath`.
Result<FieldColumn> readFieldColumn(const QString &dbfPath, const QString &field);

// A column from loose values (null QVariant = Null); numeric when every
// non-null value is a number.
FieldColumn columnFromVariants(const QString &name, const QList<QVariant> &values);

}  // namespace mervola::classify
