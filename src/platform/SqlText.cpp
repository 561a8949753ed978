#include "platform/SqlText.h"

#include <QRegularExpression>

namespace mervola {

QString sqlEscape(const QString &value)
{
    QString v = value;
    v.replace(QLatin1Char('\''), QStringLiteral("''"));
    return v;
}

QString sqlQuote(const QString &value) { return QLatin1Char('\'') + sqlEscape(value) + QLatin1Char('\''); }

QString displayNameToTableName(const QString &displayName)
{
    const int i = displayName.indexOf(QStringLiteral(" ("));
    return i < 0 ? displayName : displayName.left(i);
}

bool isSingleCondition(const QString &condition)
{
    QChar closing;  // the character that ends the literal or bracket we are in
    int depth = 0;
    for (qsizetype i = 0; i < condition.size(); ++i) {
        const QChar c = condition[i];
        const QChar next = i + 1 < condition.size() ? condition[i + 1] : QChar();
        if (!closing.isNull()) {
            if (c == closing && (closing == QLatin1Char(']') || next != closing))
                closing = QChar();
            else if (c == closing)
                ++i;  // a doubled quote inside the literal
            continue;
        }
        switch (c.unicode()) {
        case '\'': closing = QLatin1Char('\''); break;
        case '"': closing = QLatin1Char('"'); break;
        case '[': closing = QLatin1Char(']'); break;
        case ';': return false;
        case '-':
            if (next == QLatin1Char('-'))
                return false;
            break;
        case '/':
            if (next == QLatin1Char('*'))
                return false;
            break;
        case '(': ++depth; break;
        case ')':
            if (--depth < 0)
                return false;
            break;
        default: break;
        }
    }
    return closing.isNull() && depth == 0;
}

namespace {

bool isWordChar(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

// Replaces whole words outside literals; `code` holds the statement with
// literals masked so that positions stay aligned with `out`.
void replaceWord(QString &out, QString &code, const QString &word, const QString &with)
{
    int from = 0;
    while (true) {
        const int i = code.indexOf(word, from, Qt::CaseInsensitive);
        if (i < 0)
            return;
        const int end = i + int(word.size());
        const bool startOk = i == 0 || !isWordChar(code[i - 1]);
        const bool endOk = end >= code.size() || !isWordChar(code[end]);
        if (startOk && endOk) {
            out.replace(i, word.size(), with);
            code.replace(i, word.size(), with);
            from = i + int(with.size());
        } else {
            from = end;
        }
    }
}

// Masks the text of '...' literals, "..." literals and [...] names with
// blanks-free placeholders ('#') so that keyword searches skip them.
QString maskLiterals(const QString &sql)
{
    QString code = sql;
    int i = 0;
    while (i < code.size()) {
        const QChar c = code[i];
        QChar close;
        if (c == QLatin1Char('\''))
            close = QLatin1Char('\'');
        else if (c == QLatin1Char('"'))
            close = QLatin1Char('"');
        else if (c == QLatin1Char('['))
            close = QLatin1Char(']');
        if (close.isNull()) {
            ++i;
            continue;
        }
        int j = i + 1;
        while (j < code.size()) {
            if (code[j] == close) {
                if (close != QLatin1Char(']') && j + 1 < code.size() && code[j + 1] == close) {
                    code[j] = QLatin1Char('#');
                    code[j + 1] = QLatin1Char('#');
                    j += 2;
                    continue;
                }
                break;
            }
            code[j] = QLatin1Char('#');
            ++j;
        }
        i = j + 1;
    }
    return code;
}

}  // namespace

QString translateJetSql(const QString &sql)
{
    QString out = sql;
    QString code = maskLiterals(out);

    static const QRegularExpression deleteStar(QStringLiteral("\\bDELETE\\s+\\*\\s*FROM\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
    for (auto m = deleteStar.match(code); m.hasMatch(); m = deleteStar.match(code)) {
        out.replace(m.capturedStart(), m.capturedLength(), QStringLiteral("DELETE FROM"));
        code.replace(m.capturedStart(), m.capturedLength(), QStringLiteral("DELETE FROM"));
    }
    replaceWord(out, code, QStringLiteral("True"), QStringLiteral("-1"));
    replaceWord(out, code, QStringLiteral("False"), QStringLiteral("0"));
    replaceWord(out, code, QStringLiteral("Yes"), QStringLiteral("-1"));
    replaceWord(out, code, QStringLiteral("No"), QStringLiteral("0"));

    // Jet joins text with "&"; SQLite uses "||".
    for (int i = code.indexOf(QLatin1Char('&')); i >= 0; i = code.indexOf(QLatin1Char('&'), i + 2)) {
        out.replace(i, 1, QStringLiteral("||"));
        code.replace(i, 1, QStringLiteral("||"));
    }

    static const QRegularExpression top(QStringLiteral("^(\\s*SELECT\\s+(?:DISTINCT\\s+)?)TOP\\s+(\\d+)\\s+"),
                                        QRegularExpression::CaseInsensitiveOption);
    const auto m = top.match(code);
    if (m.hasMatch()) {
        const QString n = m.captured(2);
        out.replace(m.capturedStart(), m.capturedLength(), m.captured(1));
        QString tail = out.trimmed();
        const bool semi = tail.endsWith(QLatin1Char(';'));
        if (semi)
            tail.chop(1);
        out = tail + QStringLiteral(" LIMIT ") + n + (semi ? QStringLiteral(";") : QString());
    }
    return out;
}

}  // namespace mervola
