#pragma once
// Pieces shared by the map page's layout and painting: page-relative fonts
// and the legend's flow into columns.

#include "print/MapPage.h"

#include <QFont>
#include <QSizeF>

namespace mervola::mappage {

// A font whose glyphs are `mm` page millimetres high on any device: the point
// size is corrected for the device resolution and the page's unit.
QFont pageFont(const QString &family, double mm, double unit, double dpi, bool bold = false);

// One line of the legend: a theme heading or a swatch with its text.
struct LegendLine {
    bool heading = false;
    QString text;
    QColor fill;
    QColor outline;
    bool outlined = true;
    int geometryKind = 2;
    bool note = false; // a line of text without swatch (the fit of the classes)
};

// The legend's lines; `withFit` adds each classified theme's fit line.
std::vector<LegendLine> legendLines(const std::vector<MapPageTheme> &themes, bool withFit = false);

// Sizes of the legend at factor 1, in page millimetres.
constexpr double kHeadingMm = 6.5;
constexpr double kItemMm = 5.0;
constexpr double kHeadingFontMm = 3.6;
constexpr double kItemFontMm = 3.0;
constexpr double kSwatchWmm = 6.0;
constexpr double kSwatchHmm = 3.6;
constexpr double kColumnGapMm = 5.0;

// Width of the widest line, in device units, at factor `factor`.
double legendColumnWidth(const std::vector<LegendLine> &lines, double unit, double dpi, const QPaintDevice *device,
                         double factor);
// Number of columns the lines need when their columns are `height` high.
int legendColumnsFor(const std::vector<LegendLine> &lines, double height, double unit, double factor);
// Height of the lines flowed into `columns` columns (the tallest column).
double legendHeightFor(const std::vector<LegendLine> &lines, int columns, double unit, double factor);

// Paints the lines flowed top to bottom into columns of `rect`.
void paintLegend(QPainter &painter, const QRectF &rect, const std::vector<LegendLine> &lines, double unit,
                 double dpi, double factor);

// The north arrow inside `rect`; the scale bar of `metres` over `barPx`
// device units at the left of `rect`.
void paintNorthArrow(QPainter &painter, const QRectF &rect, double unit, double dpi);
void paintScaleBar(QPainter &painter, const QRectF &rect, double metres, double barPx, double unit, double dpi);

}  // namespace mervola::mappage
