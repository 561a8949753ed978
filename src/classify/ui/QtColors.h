#pragma once
// The classification's colour values as Qt colours and back.

#include "classify/ColorRamp.h"

#include <QColor>

namespace mervola::classify {

inline QColor toQColor(ColorValue c) { return QColor(redOf(c), greenOf(c), blueOf(c)); }
inline ColorValue fromQColor(const QColor &c) { return rgbValue(c.red(), c.green(), c.blue()); }

}  // namespace mervola::classify
