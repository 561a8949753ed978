#include "classify/LimitsEdit.h"

#include "classify/ClassRange.h"
#include "classify/ClassifyTexts.h"

#include <cmath>

namespace mervola::classify {

bool limitKeyAllowed(QChar c)
{
    static const QString allowed = QStringLiteral("0123456789,.").toUpper();
    if (c == QChar(8))
        return true;
    return allowed.contains(c.toUpper());
}

LimitCheck checkLowerLimit(const QString &lowerText, const QString &initialLowerText, const QString &upperText)
{
    LimitCheck r;
    double lower = 0;
    if (!parseLimit(lowerText, &lower)) {
        r.message = texts::kValoreNonValido;
        return r;
    }
    r.ok = true;
    r.upperText = upperText;
    const bool whole = !initialLowerText.contains(QLatin1Char(',')) && !initialLowerText.contains(QLatin1Char('.'));
    if (whole)
        r.upperText = formatLimit(std::floor(lower) + 1);
    return r;
}

LimitCheck checkUpperLimit(const QString &upperText, const QString &lowerText)
{
    LimitCheck r;
    double upper = 0, lower = 0;
    if (!parseLimit(upperText, &upper)) {
        r.message = texts::kValoreNonValido;
        return r;
    }
    if (parseLimit(lowerText, &lower) && upper < lower) {
        r.message = texts::kValoreSuperiore + lowerText.trimmed();
        return r;
    }
    r.ok = true;
    r.upperText = upperText;
    return r;
}

}  // namespace mervola::classify
