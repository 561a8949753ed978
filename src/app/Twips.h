#pragma once
// Twips, the unit of the window layout's constants: 1440 per inch at the
// screen's logical DPI.

#include <cmath>

namespace mervola {

constexpr double kTwipsPerInch = 1440.0;

inline int twipsToPixels(double twips, double dpi) { return int(std::lround(twips * dpi / kTwipsPerInch)); }
inline double pixelsToTwips(double pixels, double dpi) { return pixels * kTwipsPerInch / dpi; }

// Layout constants of the main window, in twips.
constexpr double kMinWindowWidthTwips = 10000;
constexpr double kMinWindowHeightTwips = 8000;
constexpr double kMinDividerTwips = 3795;
constexpr double kDividerOffsetTwips = 50;
constexpr double kCoolBarMarginTwips = 200;
constexpr double kScaleFrameRightTwips = 300;
constexpr double kBottomFreeTwips = 400;

// Divider position for a drag to `mouseTwips`: 50 twips left of the mouse,
// never left of 3795 twips.
inline double dividerPositionTwips(double mouseTwips)
{
    const double p = mouseTwips - kDividerOffsetTwips;
    return p < kMinDividerTwips ? kMinDividerTwips : p;
}

}  // namespace mervola
