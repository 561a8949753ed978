#include "classify/ColorRamp.h"

#include <algorithm>
#include <cmath>

namespace mervola::classify {

const std::vector<RampDef> &predefinedRamps()
{
    static const std::vector<RampDef> ramps = {
        {QStringLiteral("Rosso monocromatico"), 14671871, 255},
        {QStringLiteral("Giallo monocromatico"), 14809854, 29062},
        {QStringLiteral("Blu monocromatico"), 16768991, 16711680},
        {QStringLiteral("Verde monocromatico"), 14676959, 39936},
        {QStringLiteral("Marrone monocromatico"), 14806782, 15494},
        {QStringLiteral("Ciano monocromatico"), 16711393, 10131968},
        {QStringLiteral("Viola monocromatico"), 16701434, 6488156},
        {QStringLiteral("Da giallo a blu"), 65535, 8519693},
    };
    return ramps;
}

int rampIndexOf(const QString &name)
{
    const auto &r = predefinedRamps();
    for (size_t i = 0; i < r.size(); ++i)
        if (r[i].name == name)
            return int(i);
    return -1;
}

std::vector<ColorValue> rampColors(ColorValue start, ColorValue end, int n)
{
    std::vector<ColorValue> out;
    if (n <= 0)
        return out;
    if (n == 1)
        return {end};
    out.reserve(size_t(n));
    auto channel = [n](int a, int b, int i) {
        return int(std::lround(a + double(b - a) * i / double(n - 1)));
    };
    for (int i = 0; i < n; ++i)
        out.push_back(rgbValue(channel(redOf(start), redOf(end), i), channel(greenOf(start), greenOf(end), i),
                               channel(blueOf(start), blueOf(end), i)));
    return out;
}

void ColorRamp(std::vector<ClassRange> &classes)
{
    if (classes.empty())
        return;
    const auto colors = rampColors(classes.front().fillColor, classes.back().fillColor, int(classes.size()));
    for (size_t i = 0; i < classes.size(); ++i)
        classes[i].fillColor = colors[i];
}

static void resetSymbols(std::vector<ClassRange> &classes)
{
    for (ClassRange &c : classes) {
        c.style = 0;
        c.outline = true;
    }
}

void applyRamp(std::vector<ClassRange> &classes, int rampIndex)
{
    if (classes.empty())
        return;
    const auto &ramps = predefinedRamps();
    if (rampIndex >= 0 && rampIndex < int(ramps.size())) {
        // Start first, end last: with one class the end colour wins.
        classes.front().fillColor = ramps[size_t(rampIndex)].start;
        classes.back().fillColor = ramps[size_t(rampIndex)].end;
    }
    ColorRamp(classes);
    resetSymbols(classes);
}

void cmdRamp(std::vector<ClassRange> &classes)
{
    resetSymbols(classes);
    ColorRamp(classes);
}

void cmdInvertiColori(std::vector<ClassRange> &classes)
{
    const size_t n = classes.size();
    for (size_t i = 0; i < n / 2; ++i) {
        ClassRange &a = classes[i];
        ClassRange &b = classes[n - 1 - i];
        std::swap(a.fillColor, b.fillColor);
        std::swap(a.style, b.style);
        std::swap(a.size, b.size);
        std::swap(a.outline, b.outline);
        std::swap(a.outlineColor, b.outlineColor);
    }
}

}  // namespace mervola::classify
