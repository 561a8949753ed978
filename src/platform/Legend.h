#pragma once
// The legend of the map's themes as plain values: what the legend panel
// lists and what the printed page copies, line for line.

#include <QColor>
#include <QString>
#include <vector>

namespace mervola {

struct LegendClass {
    QColor fill;
    QColor outline;
    QString label;   // the class's label as the user left it
    int count = -1;  // number of elements, -1 when unknown
};

struct LegendEntry {
    QString layerName;  // the theme's layer name
    QString alias;      // shown text
    bool visible = true;
    QColor fill;        // swatch of an unclassified theme
    QColor outline;
    bool outlined = true;
    int geometryKind = 2;  // 0 point, 1 line, 2 polygon
    std::vector<LegendClass> classes;
    // A line under the classes telling how well they fit the values
    // ("Bontà dell'adattamento (GVF): 0,87"); printed when the user asks.
    QString fitText;
};

// The text of a class line: the label followed by the count in brackets
// ("Poco popolate (57)"), or the label alone when the count is unknown.
QString legendClassText(const LegendClass &c);

}  // namespace mervola
