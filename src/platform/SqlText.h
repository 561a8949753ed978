#pragma once
// Text helpers for SQL built by concatenation, as the program's statements are.

#include <QString>

namespace mervola {

// Doubles every apostrophe (the value still needs its enclosing apostrophes).
QString sqlEscape(const QString &value);
// Encloses a text value in apostrophes with inner apostrophes doubled.
QString sqlQuote(const QString &value);
// A theme's display name cut before " (" ("comuni (collegata con dati esterni)"
// -> "comuni"), as used for table and search names.
QString displayNameToTableName(const QString &displayName);

// A user's condition is one expression: no ";" and no comment ("--", "/*")
// outside quoted text and brackets, no quote left open, and parentheses that
// close in order, so that it can neither end the statement it is put into
// nor hide what the program appends after it (the sort order).
bool isSingleCondition(const QString &condition);

// Rewrites Jet-only syntax so that SQLite runs the statement:
// "DELETE * FROM" -> "DELETE FROM", the keywords True/False/Yes/No -> -1/0,
// "SELECT TOP n ..." -> "... LIMIT n", "&" concatenation -> "||".
// Text inside apostrophes, quotes and brackets is left alone.
QString translateJetSql(const QString &sql);

}  // namespace mervola
