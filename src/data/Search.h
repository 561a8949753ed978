#pragma once
// Finding an element of a theme by its name.

#include "platform/Result.h"

#include <QStringList>

namespace mervola {

inline const QString kNothingToSearch = QStringLiteral("Non ci sono elementi su cui effettuare la ricerca");

// The distinct non-null names (Label) of a theme's table, read with
// "Select distinct Label from " + table over the table's folder.
Result<QStringList> distinctLabels(const QString &folder, const QString &table);
// "Label = '" + name with apostrophes doubled + "'".
QString labelExpression(const QString &name);
// "Cerca in..." + the theme name cut before " (".
QString searchCaption(const QString &themeName);

}  // namespace mervola
