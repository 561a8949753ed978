#pragma once
// Numbers written the way the program shows them.

#include <QString>

namespace mervola {

// "." after every third digit from the right: 1234567 -> "1.234.567".
QString groupDigits(qint64 value);

}  // namespace mervola
