#pragma once
// The rules of the class limits editor (frmModFlx), apart from its widgets:
// which keys the boxes accept and how the two limits are checked when the
// user leaves a box.

#include <QString>

namespace mervola::classify {

// True for the characters "0123456789,." (compared upper-cased) and backspace.
bool limitKeyAllowed(QChar c);

struct LimitCheck {
    bool ok = false;
    QString message;     // the refusal to show when !ok
    QString upperText;   // the upper box after leaving the lower box
};

// Leaving the lower box. When the initial lower text was a whole number (no
// "," and no "."), the upper box becomes the integer part of the new lower
// limit + 1; otherwise it stays `upperText`.
LimitCheck checkLowerLimit(const QString &lowerText, const QString &initialLowerText, const QString &upperText);
// Leaving the upper box: refused when empty or smaller than the lower limit.
LimitCheck checkUpperLimit(const QString &upperText, const QString &lowerText);

}  // namespace mervola::classify
