#pragma once
// Scale arithmetic of the scale box.

#include "platform/NumberText.h"

#include <QString>

namespace mervola {

constexpr double kMinScale = 1600;          // smallest scale denominator a zoom may reach
constexpr double kMinExtentWidth = 258.34;  // narrowest extent, in map units

// Denominator: integer part of extent width / (map width in twips / 1440 * 0.025).
double currentScale(double extentWidth, double mapWidthTwips);
// Reads a typed scale: "." separators removed, "," as decimal comma; 0 when not a number.
double parseScale(const QString &text);
// Only digits, "," and "." may be typed into the scale box.
bool isScaleCharacter(QChar c);

}  // namespace mervola
