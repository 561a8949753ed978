#pragma once
// Finding an element of a theme by its name.

#include "platform/Result.h"

#include <QStringList>

namespace mervola {

inline const QString kNothingToSearch = QStringLiteral("Non ci sono elementi su cui effettuare la ricerca");

// The distinct non-null names (Label) of a theme's table, read with
// "Select distinct Label from " + table over the table's folder, in
// alphabetical order (Italian collation: case and accents do not split
// the order).
Result<QStringList> distinctLabels(const QString &folder, const QString &table);
// A name folded for matching what the user types: lower case, accents
// dropped, apostrophes and dashes as blanks ("Forlì" -> "forli").
QString foldedName(const QString &name);
// The names whose folded form contains the folded text, in list order.
QStringList matchingNames(const QStringList &names, const QString &typed);
// The name the user means by `typed`: the name itself, else the only name
// equal to it once folded ("Forli" -> "Forlì"), else `typed` unchanged.
QString resolveName(const QStringList &names, const QString &typed);
// "Label = '" + name with apostrophes doubled + "'".
QString labelExpression(const QString &name);
// "Cerca in..." + the theme name cut before " (".
QString searchCaption(const QString &themeName);

}  // namespace mervola
