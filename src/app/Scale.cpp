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
