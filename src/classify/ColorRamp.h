#pragma once
// Colour ramps of the classification window: the eight predefined ramps, the
// even RGB ramp between two colours and the inversion of the class symbols.

#include "classify/ClassRange.h"

#include <QString>
#include <cstdint>
#include <vector>

namespace mervola::classify {

using ColorValue = std::int32_t;  // red + 256 * green + 65536 * blue

struct RampDef {
    QString name;  // item text of cboRamp
    ColorValue start;
    ColorValue end;
};

// The ramps in the order the ramp list is filled.
const std::vector<RampDef> &predefinedRamps();
// Index of a ramp by its item text; -1 when none matches.
int rampIndexOf(const QString &name);

constexpr ColorValue rgbValue(int r, int g, int b) { return r + 256 * g + 65536 * b; }
inline int redOf(ColorValue c) { return c & 0xFF; }
inline int greenOf(ColorValue c) { return (c >> 8) & 0xFF; }
inline int blueOf(ColorValue c) { return (c >> 16) & 0xFF; }

// n colours from start to end in even steps per channel, both ends included.
// One colour is the end colour (the single class is first and last, and the
// end is written last).
std::vector<ColorValue> rampColors(ColorValue start, ColorValue end, int n);

// ColorRamp: recolours the classes from the first class's colour to the last
// class's colour.
void ColorRamp(std::vector<ClassRange> &classes);
// Choosing a ramp: writes its ends into the first and last class, resets
// style to 0 and outline to on for every class, then ramps. An unknown index
// keeps the current ends. Nothing happens without classes.
void applyRamp(std::vector<ClassRange> &classes, int rampIndex);
// cmdRamp: resets style 0 and outline on per class and re-applies the ramp
// between the current end colours.
void cmdRamp(std::vector<ClassRange> &classes);
// cmdInvertiColori: reverses the colours, styles, sizes, outline flags and
// outline colours of the classes; limits and labels stay.
void cmdInvertiColori(std::vector<ClassRange> &classes);

}  // namespace mervola::classify
