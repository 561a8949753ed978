#include "classify/ClassRange.h"

namespace mervola::classify {

QString formatLimit(double value)
{
    if (value == 0)
        value = 0;  // no "-0"
    QString s = QString::number(value, 'g', 15);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    return s;
}

bool parseLimit(const QString &text, double *value)
{
    QString t = text.trimmed();
    if (t.isEmpty())
        return false;
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (ok && value)
        *value = v;
    return ok;
}

QString rangeText(double lower, double upper)
{
    return formatLimit(lower) + QStringLiteral(" - ") + formatLimit(upper);
}

bool parseRangeText(const QString &text, double *lower, double *upper)
{
    // The separator is " - " with blanks, so "-5 - -2" splits correctly.
    const int at = text.indexOf(QStringLiteral(" - "));
    if (at < 0)
        return false;
    return parseLimit(text.left(at), lower) && parseLimit(text.mid(at + 3), upper);
}

}  // namespace mervola::classify
