#include "platform/NumberText.h"

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

}  // namespace mervola
