#include "platform/dbf/DbfSql.h"

#include "platform/SqlText.h"

#include <QSet>

namespace mervola::dbfsql
{

namespace
{

bool isIdentStart(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char('$');
}
bool isIdentChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('$');
}

// Span of a quoted run starting at i (close char doubled inside = escape).
int quotedEnd(const QString &s, int i, QChar close, bool doubling)
{
    int j = i + 1;
    while (j < s.size()) {
        if (s[j] == close) {
            if (doubling && j + 1 < s.size() && s[j + 1] == close) {
                j += 2;
                continue;
            }
            return j + 1;
        }
        ++j;
    }
    return int(s.size());
}

QString unquote(const QString &s, int start, int end, QChar close)
{
    const bool closed = end - start >= 2 && s[end - 1] == close;
    QString inner = s.mid(start + 1, closed ? end - start - 2 : end - start - 1);
    if (close != QLatin1Char(']'))
        inner.replace(QString(2, close), QString(close));
    return inner;
}

} // namespace

QList<Token> tokenize(const QString &sql)
{
    QList<Token> out;
    int i = 0;
    const int n = int(sql.size());
    while (i < n) {
        const QChar c = sql[i];
        if (c.isSpace()) {
            ++i;
        } else if (c == QLatin1Char('-') && i + 1 < n && sql[i + 1] == QLatin1Char('-')) {
            while (i < n && sql[i] != QLatin1Char('\n'))
                ++i;
        } else if (c == QLatin1Char('/') && i + 1 < n && sql[i + 1] == QLatin1Char('*')) {
            const int e = int(sql.indexOf(QStringLiteral("*/"), i + 2));
            i = e < 0 ? n : e + 2;
        } else if (c == QLatin1Char('\'')) {
            const int e = quotedEnd(sql, i, c, true);
            out.append({Token::String, i, e - i, sql.mid(i, e - i)});
            i = e;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('[') || c == QLatin1Char('`')) {
            const QChar close = c == QLatin1Char('[') ? QLatin1Char(']') : c;
            const int e = quotedEnd(sql, i, close, close != QLatin1Char(']'));
            out.append({Token::Identifier, i, e - i, unquote(sql, i, e, close)});
            i = e;
        } else if (c.isDigit() || (c == QLatin1Char('.') && i + 1 < n && sql[i + 1].isDigit())) {
            int e = i;
            while (e < n && (isIdentChar(sql[e]) || sql[e] == QLatin1Char('.')))
                ++e;
            out.append({Token::Number, i, e - i, sql.mid(i, e - i)});
            i = e;
        } else if (isIdentStart(c)) {
            int e = i;
            while (e < n && isIdentChar(sql[e]))
                ++e;
            out.append({Token::Word, i, e - i, sql.mid(i, e - i)});
            i = e;
        } else {
            out.append({Token::Symbol, i, 1, QString(c)});
            ++i;
        }
    }
    return out;
}

namespace
{

// Replaces the text between two offsets.
void splice(QString &sql, int start, int end, const QString &with)
{
    sql.replace(start, end - start, with);
}

// "comuni.dbf" and "[comuni.dbf]" name the table comuni of the folder.
QString stripDbfSuffixes(QString sql, const std::function<bool(const QString &)> &isTable)
{
    const QList<Token> t = tokenize(sql);
    for (int k = int(t.size()) - 1; k >= 0; --k) {
        if (t[k].kind == Token::Identifier && t[k].text.endsWith(QLatin1String(".dbf"), Qt::CaseInsensitive)) {
            const QString base = t[k].text.chopped(4);
            if (isTable(base))
                splice(sql, t[k].start, t[k].end(), QLatin1Char('[') + base + QLatin1Char(']'));
        } else if (k >= 2 && t[k].isWord("dbf") && t[k - 1].text == QLatin1String(".") && t[k - 2].isName() &&
                   t[k - 1].start == t[k - 2].end() && t[k].start == t[k - 1].end() && isTable(t[k - 2].text)) {
            splice(sql, t[k - 1].start, t[k].end(), QString());
            k -= 2;
        }
    }
    return sql;
}

// Jet reads "SELECT *,* FROM a LEFT JOIN b" as every column of both tables once.
QString foldRepeatedStar(QString sql)
{
    const QList<Token> t = tokenize(sql);
    int k = 1;
    if (t.size() > 1 && t[k].isWord("DISTINCT"))
        ++k;
    if (t.isEmpty() || !t[0].isWord("SELECT") || k >= t.size() || t[k].text != QLatin1String("*"))
        return sql;
    int last = k;
    while (last + 2 < t.size() && t[last + 1].text == QLatin1String(",") && t[last + 2].text == QLatin1String("*"))
        last += 2;
    if (last > k)
        splice(sql, t[k].end(), t[last].end(), QString());
    return sql;
}

// Jet's LIKE wildcards * and ? are SQLite's % and _.
QString likeWildcards(QString sql)
{
    const QList<Token> t = tokenize(sql);
    for (int k = int(t.size()) - 2; k >= 0; --k) {
        if (!t[k].isWord("LIKE") || t[k + 1].kind != Token::String)
            continue;
        QString pattern = t[k + 1].text;
        for (int i = 1; i + 1 < pattern.size(); ++i) {
            if (pattern[i] == QLatin1Char('*'))
                pattern[i] = QLatin1Char('%');
            else if (pattern[i] == QLatin1Char('?'))
                pattern[i] = QLatin1Char('_');
        }
        splice(sql, t[k + 1].start, t[k + 1].end(), pattern);
    }
    return sql;
}

// "[dBase IV;DATABASE=folder]" -> folder; empty for anything else.
QString externalDatabaseFolder(const QString &connect)
{
    const int i = int(connect.indexOf(QLatin1String("DATABASE="), 0, Qt::CaseInsensitive));
    return i < 0 ? QString() : connect.mid(i + 9).section(QLatin1Char(';'), 0, 0).trimmed();
}

// Position of the top-level INTO of a SELECT, -1 when none.
int topLevelInto(const QList<Token> &t)
{
    int depth = 0;
    for (int k = 1; k < t.size(); ++k) {
        if (t[k].text == QLatin1String("("))
            ++depth;
        else if (t[k].text == QLatin1String(")"))
            --depth;
        else if (depth == 0 && t[k].isWord("INTO"))
            return k;
        else if (depth == 0 && t[k].isWord("FROM"))
            return -1;
    }
    return -1;
}

} // namespace

Statement analyze(const QString &jetSql, const std::function<bool(const QString &)> &isTable)
{
    Statement st;
    QString sql = translateJetSql(jetSql).trimmed();
    while (sql.endsWith(QLatin1Char(';')))
        sql = sql.chopped(1).trimmed();
    sql = likeWildcards(foldRepeatedStar(stripDbfSuffixes(sql, isTable)));

    const QList<Token> t = tokenize(sql);
    for (const Token &tok : t)
        if (tok.isName())
            st.names.append(tok.text);
    const auto nameAt = [&](int k) { return k < t.size() && t[k].isName() ? t[k].text : QString(); };

    if (t.isEmpty()) {
        st.kind = Kind::Other;
    } else if (t[0].isWord("SELECT")) {
        const int into = topLevelInto(t);
        if (into > 0 && into + 1 < t.size() && t[into + 1].isName()) {
            st.kind = Kind::SelectInto;
            int last = into + 1;
            st.target = t[last].text;
            // INTO [dBase IV;DATABASE=folder].[name] writes into another folder
            if (last + 2 < t.size() && t[last + 1].text == QLatin1String(".") && t[last + 2].isName()) {
                st.targetFolder = externalDatabaseFolder(st.target);
                st.target = t[last + 2].text;
                last += 2;
            }
            splice(sql, t[into].start, t[last].end(), QString());
        } else {
            st.kind = Kind::Select;
        }
    } else if (t[0].isWord("INSERT") && t.size() > 2 && t[1].isWord("INTO")) {
        st.kind = Kind::Insert;
        st.target = nameAt(2);
    } else if (t[0].isWord("UPDATE")) {
        st.kind = Kind::Update;
        st.target = nameAt(1);
    } else if (t[0].isWord("DELETE") && t.size() > 1 && t[1].isWord("FROM")) {
        st.kind = Kind::Delete;
        st.target = nameAt(2);
    } else if (t[0].isWord("DROP") && t.size() > 1 && t[1].isWord("TABLE")) {
        st.kind = Kind::DropTable;
        st.target = nameAt(2);
    }
    st.sql = sql;
    return st;
}

QString bracketNumericTableNames(const QString &sql)
{
    QString out = sql;
    const QList<Token> t = tokenize(sql);
    for (int k = int(t.size()) - 1; k >= 1; --k) {
        const Token &prev = t[k - 1];
        const bool afterTableKeyword = prev.isWord("FROM") || prev.isWord("JOIN") || prev.isWord("INTO") ||
                                       prev.isWord("UPDATE") || prev.isWord("TABLE");
        if (afterTableKeyword && t[k].kind == Token::Number)
            splice(out, t[k].start, t[k].end(), QLatin1Char('[') + t[k].text + QLatin1Char(']'));
    }
    return out;
}

QStringList dbaseFieldNames(const QStringList &columnNames)
{
    QStringList out;
    QSet<QString> used;
    int expr = 1000;
    for (const QString &raw : columnNames) {
        bool plain = !raw.isEmpty() && isIdentStart(raw[0]) && raw[0] != QLatin1Char('$');
        for (QChar c : raw)
            plain = plain && (c.isLetterOrNumber() || c == QLatin1Char('_'));
        QString name = plain ? raw.left(10) : QStringLiteral("Expr%1").arg(expr++);
        for (int n = 1; used.contains(name.toUpper()); ++n) {
            const QString suffix = QStringLiteral("_%1").arg(n);
            name = (plain ? raw : QStringLiteral("Expr")).left(10 - int(suffix.size())) + suffix;
        }
        used.insert(name.toUpper());
        out.append(name);
    }
    return out;
}

} // namespace mervola::dbfsql
