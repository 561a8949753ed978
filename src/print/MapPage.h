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

#include "platform/Legend.h"
#include "platform/Result.h"
#include "map/MapModel.h"

#include <QColor>
#include <QPageLayout>
#include <QRectF>
#include <QString>
#include <vector>

class QPainter;
class QPaintDevice;

namespace mervola {

// The page's legend is the legend panel's, line for line; hidden themes
// are left out of it.
using MapPageClass = LegendClass;
using MapPageTheme = LegendEntry;

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
    bool legendFit = false;           // print each theme's fit line under its classes
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

// Denominator of the page scale: the map's extent width over the width of
// the printed map in metres of paper; 0 when either is not positive.
double pageScale(double extentWidth, double printedWidthPx, double dpi);
// The scale printed on a page of `pageSize` (any unit; only its shape
// counts): the page's map frame measured on an A4 sheet, the same on the
// preview, a PDF and the printer.
double printedScale(const MapPageContent &pageContent, const QSizeF &pageSize);
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
