#pragma once
// Reading Jet statements aimed at a folder of dBase tables: which tables
// they name, which table they write, and the SQLite text that runs them.

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace mervola::dbfsql
{

struct Token {
    enum Kind { Word, Identifier, String, Number, Symbol };
    Kind kind;
    int start;
    int length;
    QString text; // identifiers without their [ ] or " ", words as written

    bool isWord(const char *w) const
    {
        return kind == Word && text.compare(QLatin1String(w), Qt::CaseInsensitive) == 0;
    }
    bool isName() const { return kind == Word || kind == Identifier; }
    int end() const { return start + length; }
};

// Splits a statement into tokens; comments are dropped.
QList<Token> tokenize(const QString &sql);

enum class Kind { Select, SelectInto, Insert, Update, Delete, DropTable, Other };

struct Statement {
    Kind kind = Kind::Other;
    QString sql;          // SQLite text to run (the INTO clause of SELECT ... INTO removed)
    QString target;       // the table that is written, created or dropped
    QString targetFolder; // SELECT ... INTO [dBase IV;DATABASE=folder].[name]: that folder
    QStringList names;    // every name in the statement (candidate table names)
};

// Translates the Jet dialect, rewrites "name.dbf" references to tables of the
// folder (isTable tells which names are tables), folds "SELECT *,*" into
// "SELECT *", turns Jet LIKE wildcards (* ?) into SQLite's (% _) and finds
// the statement's kind and target.
Statement analyze(const QString &jetSql, const std::function<bool(const QString &)> &isTable);

// Encloses in brackets table names that begin with a digit (FROM 01 -> FROM [01]).
QString bracketNumericTableNames(const QString &sql);

// Field names for a new dBase table from result column names: at most ten
// characters, unique without regard to case (a repeated LABEL becomes
// LABEL_1), expressions named Expr1000, Expr1001 ... as Jet names them.
QStringList dbaseFieldNames(const QStringList &columnNames);

} // namespace mervola::dbfsql
