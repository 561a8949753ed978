// Text tables as spreadsheets save them: comma, semicolon or tab between
// values, UTF-8 with or without BOM (else Windows-1252/Latin-1), CR LF or LF
// line ends, values in double quotes that may hold the separator, quotes
// and line breaks. A column is numeric when every value reads as a number
// with a decimal point or an Italian decimal comma; a code written with
// leading zeros ("001001") keeps its column text.
#include "project/JoinSource.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>

#include <charconv>
#include <cmath>

namespace mervola
{

namespace
{

struct Cell {
    QString text;
    bool quoted = false;
};
using Record = QList<Cell>;

QString decodeText(const QByteArray &bytes, QString *encoding)
{
    const bool bom = bytes.startsWith("\xEF\xBB\xBF");
    const QByteArray body = bom ? bytes.mid(3) : bytes;
    QString text = QString::fromUtf8(body);
    if (text.toUtf8() == body) {
        *encoding = QStringLiteral("UTF-8");
        return text;
    }
    QStringDecoder cp1252("windows-1252");
    if (cp1252.isValid()) {
        text = cp1252.decode(body);
        if (!cp1252.hasError()) {
            *encoding = QStringLiteral("CP1252");
            return text;
        }
    }
    *encoding = QStringLiteral("ISO-8859-1");
    return QString::fromLatin1(body);
}

// The separator of the header line: the most frequent of ";", tab and ","
// outside quotes (";" first on a tie, as Italian spreadsheets write it).
QChar separatorOf(const QString &text)
{
    int counts[3] = {0, 0, 0};
    const QChar seps[3] = {QLatin1Char(';'), QLatin1Char('\t'), QLatin1Char(',')};
    bool quoted = false;
    for (QChar c : text) {
        if (c == QLatin1Char('"'))
            quoted = !quoted;
        else if (!quoted && (c == QLatin1Char('\n') || c == QLatin1Char('\r')))
            break;
        else if (!quoted)
            for (int i = 0; i < 3; ++i)
                counts[i] += c == seps[i];
    }
    int best = 0;
    for (int i = 1; i < 3; ++i)
        if (counts[i] > counts[best])
            best = i;
    return seps[best];
}

// One cell from `i` on: an unquoted cell is taken in one piece; a quoted
// one may hold separators, doubled quotes and line breaks. `i` ends on the
// separator or line end that closes the cell (or past the text).
Cell readCell(const QString &text, qsizetype &i, QChar sep)
{
    const qsizetype n = text.size();
    Cell cell;
    qsizetype start = i;
    while (start < n && text[start] != sep && text[start] != QLatin1Char('\n') && text[start].isSpace())
        ++start;
    if (start < n && text[start] == QLatin1Char('"')) {
        cell.quoted = true;
        qsizetype j = start + 1;
        while (j < n) {
            const qsizetype quote = text.indexOf(QLatin1Char('"'), j);
            if (quote < 0) {
                cell.text += QStringView(text).mid(j);
                j = n;
                break;
            }
            cell.text += QStringView(text).mid(j, quote - j);
            if (quote + 1 < n && text[quote + 1] == QLatin1Char('"')) {
                cell.text += QLatin1Char('"');
                j = quote + 2;
            } else {
                j = quote + 1;
                break;
            }
        }
        while (j < n && text[j] != sep && text[j] != QLatin1Char('\n'))
            ++j;  // anything after the closing quote is dropped
        i = j;
        cell.text = cell.text.trimmed();
        return cell;
    }
    qsizetype j = start;
    while (j < n && text[j] != sep && text[j] != QLatin1Char('\n'))
        ++j;
    i = j;
    cell.text = QStringView(text).mid(start, j - start).trimmed().toString();
    return cell;
}

std::vector<Record> parseRecords(const QString &text, QChar sep)
{
    std::vector<Record> records;
    const qsizetype n = text.size();
    qsizetype i = 0;
    qsizetype width = 8;
    while (i < n) {
        Record record;
        record.reserve(width);
        bool any = false;
        for (;;) {
            Cell cell = readCell(text, i, sep);
            any = any || cell.quoted || !cell.text.isEmpty();
            record << std::move(cell);
            if (i < n && text[i] == sep) {
                any = true;
                ++i;
                continue;
            }
            ++i;  // past the line end
            break;
        }
        if (any) {
            width = record.size();
            records.push_back(std::move(record));
        }
    }
    return records;
}

int digitRun(const QString &v, int i)
{
    int j = i;
    while (j < v.size() && v[j].unicode() >= '0' && v[j].unicode() <= '9')
        ++j;
    return j - i;
}

// "94,79", "-0.5", "1.234,56", "12", "1,5E3" as a number; codes with leading
// zeros ("001001", "00") and anything else are not numbers.
bool readNumber(const QString &v, double *out, int *decimals)
{
    const int n = int(v.size());
    if (n == 0 || n > 60)
        return false;
    char buf[64];
    int len = 0;
    int i = 0;
    if (v[0] == QLatin1Char('+') || v[0] == QLatin1Char('-'))
        buf[len++] = char(v[i++].unicode());
    const int intDigits = digitRun(v, i);
    if (intDigits == 0 || (intDigits > 1 && v[i] == QLatin1Char('0')))
        return false;
    // Every character of `v` gives at most one of `buf`, so `buf` never
    // fills; the bound is kept anyway.
    const auto copyDigits = [&](int from, int count) {
        for (int k = 0; k < count && len < int(sizeof buf); ++k)
            buf[len++] = char(v[from + k].unicode());
    };
    copyDigits(i, intDigits);
    i += intDigits;
    int dec = 0;
    // Italian thousands points before a decimal comma: 1.234.567,89
    if (intDigits <= 3 && i < n && v[i] == QLatin1Char('.') && digitRun(v, i + 1) == 3) {
        int j = i;
        const int mark = len;
        while (j < n && v[j] == QLatin1Char('.') && digitRun(v, j + 1) == 3) {
            copyDigits(j + 1, 3);
            j += 4;
        }
        const int fraction = j < n && v[j] == QLatin1Char(',') ? digitRun(v, j + 1) : 0;
        if (fraction > 0 && j + 1 + fraction == n) {
            buf[len++] = '.';
            copyDigits(j + 1, fraction);
            dec = fraction;
            i = n;
        } else {
            len = mark;  // not grouped: "1.234" is one point two three four
        }
    }
    if (i < n && (v[i] == QLatin1Char('.') || v[i] == QLatin1Char(','))) {
        dec = digitRun(v, i + 1);
        buf[len++] = '.';
        copyDigits(i + 1, dec);
        i += 1 + dec;
    }
    if (i < n && (v[i] == QLatin1Char('e') || v[i] == QLatin1Char('E'))) {
        buf[len++] = 'e';
        int j = i + 1;
        if (j < n && (v[j] == QLatin1Char('+') || v[j] == QLatin1Char('-')))
            buf[len++] = char(v[j++].unicode());
        const int exponent = digitRun(v, j);
        if (exponent == 0)
            return false;
        copyDigits(j, exponent);
        i = j + exponent;
        dec = 15;
    }
    if (i != n)
        return false;
    double d = 0;
    const char *first = buf[0] == '+' ? buf + 1 : buf;
    const auto r = std::from_chars(first, buf + len, d);
    if (r.ec != std::errc() || r.ptr != buf + len || !std::isfinite(d))
        return false;
    *out = d;
    *decimals = std::min(dec, 15);
    return true;
}

// A quoted cell that did not need its quotes for the separator was saved
// as text on purpose.
bool quotedAsText(const Cell &cell, QChar sep)
{
    return cell.quoted && !cell.text.contains(sep);
}

QString uniqueName(QString name, int column, const QStringList &taken)
{
    if (name.isEmpty())
        name = QStringLiteral("CAMPO%1").arg(column + 1);
    QString candidate = name;
    for (int n = 2; taken.contains(candidate, Qt::CaseInsensitive); ++n)
        candidate = name + QStringLiteral("_%1").arg(n);
    return candidate;
}

} // namespace

Result<SourceTable> readTextSource(const QString &txtPath)
{
    QFile file(txtPath);
    if (!file.open(QIODevice::ReadOnly))
        return Result<SourceTable>::fail(QStringLiteral("Impossibile leggere il file di origine."), 3061);
    QString encoding;
    const QString text = decodeText(file.readAll(), &encoding);
    const QChar sep = separatorOf(text);
    std::vector<Record> records = parseRecords(text, sep);
    if (records.empty())
        return Result<SourceTable>::fail(QStringLiteral("Impossibile leggere il file di origine."), 3061);

    Record header = records.front();
    records.erase(records.begin());
    // Trailing columns without a name or a value (a row of ";;;" endings).
    while (header.size() > 1 && header.last().text.trimmed().isEmpty() &&
           std::all_of(records.cbegin(), records.cend(), [&](const Record &r) {
               return r.size() < header.size() || r[header.size() - 1].text.trimmed().isEmpty();
           }))
        header.removeLast();

    SourceTable out;
    out.table.encoding = encoding;
    const int n = int(header.size());
    QStringList names;
    for (int c = 0; c < n; ++c)
        names << uniqueName(header[c].text.trimmed(), c, names);
    out.table.rows.assign(records.size(), std::vector<QVariant>(size_t(n)));
    for (int c = 0; c < n; ++c) {
        bool numeric = true, integral = true, any = false;
        int width = 1, decimals = 0, digits = 1;
        std::vector<double> numbers(records.size(), 0.0);
        for (size_t r = 0; r < records.size(); ++r) {
            if (c >= records[r].size())
                continue;
            const Cell &cell = records[r][c];
            const QString &v = cell.text;
            width = std::max(width, int(v.size()));
            if (v.isEmpty() || !numeric)
                continue;
            any = true;
            int dec = 0;
            if (quotedAsText(cell, sep) || !readNumber(v, &numbers[r], &dec)) {
                numeric = false;
                continue;
            }
            decimals = std::max(decimals, dec);
            integral = integral && dec == 0 && std::fabs(numbers[r]) < 2147483648.0;
            digits = std::max(digits, int(QString::number(std::floor(std::fabs(numbers[r])), 'f', 0).size()));
        }
        numeric = numeric && any;
        const int type = !numeric ? JoinFieldType::Text : integral ? JoinFieldType::Long : JoinFieldType::Double;
        out.fields << SourceField{names[c], type};
        DbfField f{names[c], DbfType::Text, std::min(width, kDbfMaxTextWidth), 0};
        if (numeric) {
            f.type = DbfType::Numeric;
            f.decimals = integral ? 0 : std::clamp(decimals, 0, std::max(0, kDbfMaxNumericWidth - digits - 2));
            f.width = std::min(kDbfMaxNumericWidth, digits + 1 + (f.decimals > 0 ? f.decimals + 1 : 0));
        }
        out.table.fields << f;
        for (size_t r = 0; r < records.size(); ++r) {
            if (c >= records[r].size())
                continue;
            const QString &v = records[r][c].text;
            if (v.isEmpty())
                continue;
            QVariant &cell = out.table.rows[r][size_t(c)];
            if (!numeric)
                cell = v;
            else if (integral)
                cell = qlonglong(std::llround(numbers[r]));
            else
                cell = numbers[r];
        }
    }
    return out;
}

} // namespace mervola
