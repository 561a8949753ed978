#pragma once
// The printed map page: a plain description of what goes on the page (title,
// free text, date, orientation, the map and the legend of its visible
// themes) and the painter that composes it on any device: a printer, a PDF
// writer or an image.
//
// Page layout, from top to bottom: the title, the map in a frame that keeps
// the extent's shape (with the legend beside it on a landscape page and
// below it on a portrait page), the free text, then a bottom band with the
// scale bar and "Scala 1:N" on the left, the north arrow and the date on the
// right. All sizes are proportional to the page, so a preview, an image and
// a 1200 dpi PDF look alike.

#include "platform/Result.h"
#include "map/MapModel.h"

#include <QColor>
#include <QPageLayout>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

class QPainter;
class QPaintDevice;

namespace mervola {

struct MapPageClass {
    QColor fill;
    QColor outline;
    QString label;
    int count = -1;  // number of elements, -1 when unknown
};

// One theme in the page's legend.
struct MapPageTheme {
    QString alias;
    int geometryKind = 2;  // 0 point, 1 line, 2 polygon
    QColor fill;           // swatch of an unclassified theme
    QColor outline;
    bool outlined = true;
    bool visible = true;  // hidden themes are left out of the page's legend
    std::vector<MapPageClass> classes;
};

struct MapPageContent {
    QString title = QStringLiteral("Mervola");
    QString titleFont = QStringLiteral("Arial");
    double titlePointSize = 20;
    QString freeText;  // optional, under the map
    QString textFont = QStringLiteral("Arial");
    QString dateText;  // printed at the bottom right
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    map::MapModel model;  // a copy: printing never touches the window's map
    map::MapRect extent;
    std::vector<MapPageTheme> legend;  // in legend order, top first
};

// Where each part of the page goes, in device coordinates of the page.
struct MapPageLayout {
    QRectF page;       // the printable rectangle passed in
    QRectF content;    // page less margins
    QRectF title;
    QRectF mapArea;    // room given to the map
    QRectF mapFrame;   // the framed map, with the extent's shape, inside mapArea
    QRectF legend;     // empty when no theme is listed
    QRectF freeText;   // empty without free text
    QRectF bottom;     // band with scale, north arrow and date
    QRectF scaleBar;
    QRectF scaleText;
    QRectF northArrow;
    QRectF date;
    double unit = 1;   // device units of one page millimetre (page width / paper width)
    double dpi = 96;
    double legendFactor = 1;  // legend text size, below 1 when it was shrunk to fit
};

// True when at least one layer of the map is visible.
bool hasVisibleTheme(const map::MapModel &model);

// The legend of a map's layers (top layer first) with the colours of their
// renderers; class labels are "lower - upper" for class breaks and the
// value for a value map; counts come from the layer's data. `aliasOf` maps a
// layer name to its shown name (the layer name when not given).
std::vector<MapPageTheme> legendFromModel(const map::MapModel &model,
                                          const std::function<QString(const QString &)> &aliasOf = {});

// Denominator of the page scale: the map's extent width over the width of
// the printed map in metres of paper; 0 when either is not positive.
double pageScale(double extentWidth, double printedWidthPx, double dpi);
// "Scala 1:" + the denominator with "." every three digits.
QString scaleText(double denominator);
// A round scale bar length in metres (1, 2 or 5 times a power of ten), the
// largest not above `maxMetres`; 0 when maxMetres is not positive.
double roundBarLength(double maxMetres);
// A bar length as printed: "500 m", "2 km", "1,5 km".
QString barLengthText(double metres);

// Computes the layout of the page for `pageContent` on `device` (whose resolution
// gives the paper size of `pageRect`).
MapPageLayout layoutMapPage(const QRectF &pageRect, const MapPageContent &pageContent, const QPaintDevice *device);

// Paints the whole page inside `pageRect` of the painter's device.
void paintMapPage(QPainter &painter, const QRectF &pageRect, const MapPageContent &pageContent);

// The page as an image of `size` pixels at `dpi` (white background).
QImage renderMapPage(const MapPageContent &pageContent, QSize size, double dpi = 96);

// Writes the page as an A4 PDF to `path`: a new file beside it is written
// and renamed over `path` only when complete, so a failed write leaves an
// existing file as it was.
Status writeMapPagePdf(const MapPageContent &pageContent, const QString &path);

// The default date text of the page: today's date as dd/MM/yyyy.
QString defaultDateText();

}  // namespace mervola
