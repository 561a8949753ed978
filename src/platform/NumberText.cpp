#include "platform/NumberText.h"

#include <QRegularExpression>
#include <charconv>
#include <cmath>

namespace mervola {

QString groupDigits(qint64 value)
{
    const bool negative = value < 0;
    const QString digits = QString::number(negative ? -value : value);
    QString out;
    for (int i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            out += QLatin1Char('.');
        out += digits[i];
    }
    return negative ? QLatin1Char('-') + out : out;
}

QString decimalText(double value)
{
    if (!std::isfinite(value))
        return QString();
    if (value == 0)
        return QStringLiteral("0");
    char buf[400];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
    QString text = QString::fromLatin1(buf, int(r.ptr - buf));
    text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

QString decimalText(double value, int decimals)
{
    if (!std::isfinite(value))
        return QString();
    char buf[400];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, std::max(0, decimals));
    QString text = QString::fromLatin1(buf, int(r.ptr - buf));
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

QString decimalCommaText(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*-?\\d+\\.\\d+\\s*$"));
    if (!number.match(text).hasMatch())
        return text;
    QString out = text;
    out.replace(QLatin1Char('.'), QLatin1Char(','));
    return out;
}

}  // namespace mervola
