#include "app/Scale.h"

#include <cmath>

namespace mervola {

double currentScale(double extentWidth, double mapWidthTwips)
{
    const double paper = mapWidthTwips / 1440.0 * 0.025;
    if (paper <= 0)
        return 0;
    return std::floor(extentWidth / paper);
}

QString groupDigits(qint64 value)
{
    const bool negative = value < 0;
    const QString digits = QString::number(negative ? -value : value);
    QString out;
    for (int i = 0; i < digits.size(); ++i) {
        const int fromRight = int(digits.size()) - i;
        if (i > 0 && fromRight % 3 == 0)
            out += QLatin1Char('.');
        out += digits[i];
    }
    return negative ? QLatin1Char('-') + out : out;
}

double parseScale(const QString &text)
{
    QString t = text.trimmed();
    t.remove(QLatin1Char('.'));
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double v = t.toDouble(&ok);
    return ok ? v : 0;
}

bool isScaleCharacter(QChar c) { return c.isDigit() || c == QLatin1Char(',') || c == QLatin1Char('.'); }

}  // namespace mervola
