#pragma once
// Numbers written the way the program shows them: the decimal comma
// everywhere a user reads a number.

#include <QString>

namespace mervola {

// "." after every third digit from the right: 1234567 -> "1.234.567".
QString groupDigits(qint64 value);

// The shortest text that reads back as the same number, in plain notation
// with the decimal comma and no grouping: 13.1462 -> "13,1462", 2562 -> "2562".
QString decimalText(double value);

// Rounded to at most `decimals` places, trailing zeros dropped, decimal
// comma, no grouping: (87.1456256625, 2) -> "87,15"; never "-0".
QString decimalText(double value, int decimals);

// A number text as written in a file or by the database ("130.1434",
// "125.00000") shown with the decimal comma; other text is returned as it is.
QString decimalCommaText(const QString &text);

}  // namespace mervola
