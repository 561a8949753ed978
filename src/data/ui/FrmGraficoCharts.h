#pragma once
// Building the chart of a series: Qt Charts for the flat types (step drawn as
// a stepped line), Qt DataVisualization bars for the solid ones.

#include "data/ChartData.h"

class QChart;
class QWidget;

namespace mervola
{

// A flat chart of the series; labels joined "Label: value" in `format`.
QChart *buildFlatChart(const ChartSeries &series, ChartKind kind, LabelFormat format);

// True when the system can draw three-dimensional graphics (an OpenGL
// context can be made on a real display).
bool solidChartsAvailable();

// A three-dimensional bar view of the series inside a widget; nullptr when
// three-dimensional graphics are not available.
QWidget *buildSolidChart(const ChartSeries &series, ChartKind kind, LabelFormat format, QWidget *parent);

} // namespace mervola
