#include "print/MapPage.h"

#include "platform/NumberText.h"

#include "map/MapRenderer.h"
#include "print/MapPageParts.h"

#include <QDate>
#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <cmath>

namespace mervola {

using namespace mappage;

namespace {

// Page sizes in page millimetres (the unit is one millimetre of an A4 sheet
// scaled to the page's shorter side).
constexpr double kMarginMm = 10;
constexpr double kGapMm = 4;
constexpr double kBottomMm = 16;
constexpr double kTextFontMm = 3.6;
constexpr double kDateFontMm = 3.0;
constexpr double kScaleFontMm = 3.4;
constexpr double kPortraitLegendShare = 0.4;
constexpr double kLandscapeLegendShare = 0.32;
constexpr double kMinLegendFactor = 0.55;

double deviceDpi(const QPaintDevice *device)
{
    if (!device)
        return 96;
    const int dpi = device->logicalDpiX();
    return dpi > 0 ? dpi : 96;
}

map::MapRect printedExtent(const MapPageContent &pageContent)
{
    return pageContent.extent.isEmpty() ? pageContent.model.fullExtent() : pageContent.extent;
}

// The largest rectangle with the extent's shape inside `area`, centred.
QRectF fitShape(const QRectF &area, const map::MapRect &extent)
{
    if (extent.isEmpty() || area.isEmpty())
        return area;
    const double shape = extent.width() / extent.height();
    // Whole device units on whole positions, so that the map transform fits
    // the frame exactly; one unit is kept for rounding the position.
    const double aw = std::max(1.0, area.width() - 1), ah = std::max(1.0, area.height() - 1);
    double w = aw, h = w / shape;
    if (h > ah) {
        h = ah;
        w = h * shape;
    }
    w = std::max(1.0, std::floor(w));
    h = std::max(1.0, std::floor(h));
    return QRectF(std::ceil(area.left() + (area.width() - w) / 2), std::ceil(area.top() + (area.height() - h) / 2),
                  w, h);
}

double textHeight(const QString &text, const QFont &font, double width, const QPaintDevice *device)
{
    const QFontMetricsF fm(font, const_cast<QPaintDevice *>(device));
    return fm.boundingRect(QRectF(0, 0, width, 1e6), Qt::AlignHCenter | Qt::TextWordWrap, text).height();
}

// Legend size factor: 1, or smaller when the legend would take more than
// its share of the page.
struct LegendFit {
    double factor = 1;
    int columns = 1;
    QSizeF size;
};

LegendFit fitPortraitLegend(const std::vector<LegendLine> &lines, const QRectF &middle, double unit, double dpi,
                            const QPaintDevice *device)
{
    LegendFit fit;
    const double maxH = middle.height() * kPortraitLegendShare;
    for (double f = 1; f >= kMinLegendFactor - 1e-9; f -= 0.05) {
        const double colW = legendColumnWidth(lines, unit, dpi, device, f);
        const double gap = kColumnGapMm * unit * f;
        const int maxCols = std::max(1, int((middle.width() + gap) / (colW + gap)));
        // The fewest columns that fit the legend's share of the page.
        int cols = 1;
        double h = legendHeightFor(lines, 1, unit, f);
        while (h > maxH && cols < maxCols)
            h = legendHeightFor(lines, ++cols, unit, f);
        fit = {f, cols, QSizeF(std::min(middle.width(), cols * colW + (cols - 1) * gap), h)};
        if (h <= maxH)
            break;
    }
    fit.size.setHeight(std::min(fit.size.height(), maxH));
    return fit;
}

LegendFit fitLandscapeLegend(const std::vector<LegendLine> &lines, const QRectF &middle, double unit, double dpi,
                             const QPaintDevice *device)
{
    LegendFit fit;
    const double maxW = middle.width() * kLandscapeLegendShare;
    for (double f = 1; f >= kMinLegendFactor - 1e-9; f -= 0.05) {
        const double colW = legendColumnWidth(lines, unit, dpi, device, f);
        const double gap = kColumnGapMm * unit * f;
        const int cols = legendColumnsFor(lines, middle.height(), unit, f);
        const double w = cols * colW + (cols - 1) * gap;
        fit = {f, cols, QSizeF(w, cols > 1 ? middle.height() : legendHeightFor(lines, 1, unit, f))};
        if (w <= maxW)
            break;
    }
    fit.size.setWidth(std::min(fit.size.width(), maxW));
    return fit;
}

}  // namespace

bool hasVisibleTheme(const map::MapModel &model)
{
    for (const map::MapLayer &layer : model.layers())
        if (layer.visible)
            return true;
    return false;
}

double pageScale(double extentWidth, double printedWidthPx, double dpi)
{
    if (extentWidth <= 0 || printedWidthPx <= 0 || dpi <= 0)
        return 0;
    // Paper width in metres: pixels / dots per inch * 0.0254 m per inch.
    return std::floor(extentWidth / (printedWidthPx / dpi * 0.0254));
}

double printedScale(const MapPageContent &pageContent, const QSizeF &pageSize)
{
    // The layout is worked out on an A4 sheet of the page's shape at a fixed
    // resolution, so that the number does not follow the rounding of frame
    // sizes and font metrics to the pixels of each device: the preview, the
    // PDF and the printer print the same scale.
    constexpr double kReferenceDpi = 300;
    const double shortSide = std::min(pageSize.width(), pageSize.height());
    if (!(shortSide > 0))
        return 0;
    const double f = 210 / 25.4 * kReferenceDpi / shortSide;
    QImage reference(1, 1, QImage::Format_ARGB32_Premultiplied);
    const int dpm = int(std::lround(kReferenceDpi / 0.0254));
    reference.setDotsPerMeterX(dpm);
    reference.setDotsPerMeterY(dpm);
    const MapPageLayout l =
        layoutMapPage(QRectF(0, 0, pageSize.width() * f, pageSize.height() * f), pageContent, &reference);
    const QSize frame(int(l.mapFrame.width()), int(l.mapFrame.height()));
    const map::MapTransform t(printedExtent(pageContent), frame);
    return t.isValid() ? pageScale(t.extent().width(), frame.width(), kReferenceDpi) : 0;
}

QString scaleText(double denominator)
{
    return QStringLiteral("Scala 1:") + groupDigits(qint64(std::max(0.0, denominator)));
}

double roundBarLength(double maxMetres)
{
    if (!(maxMetres > 0))
        return 0;
    const double power = std::pow(10.0, std::floor(std::log10(maxMetres)));
    for (double step : {5.0, 2.0, 1.0})
        if (step * power <= maxMetres * (1 + 1e-9))
            return step * power;
    return power;
}

QString barLengthText(double metres)
{
    if (metres < 1000)
        return QString::number(qint64(std::llround(metres))) + QStringLiteral(" m");
    QString km = QString::number(metres / 1000.0, 'g', 12);
    km.replace(QLatin1Char('.'), QLatin1Char(','));
    return km + QStringLiteral(" km");
}

QString defaultDateText() { return QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy")); }

MapPageLayout layoutMapPage(const QRectF &pageRect, const MapPageContent &pageContent, const QPaintDevice *device)
{
    MapPageLayout l;
    l.page = pageRect;
    l.dpi = deviceDpi(device);
    l.unit = std::min(pageRect.width(), pageRect.height()) / 210.0;
    const double u = l.unit;
    l.content = pageRect.adjusted(kMarginMm * u, kMarginMm * u, -kMarginMm * u, -kMarginMm * u);
    const QRectF &c = l.content;

    const QFont titleFont = pageFont(pageContent.titleFont, pageContent.titlePointSize * 25.4 / 72, u, l.dpi, true);
    const double titleH = pageContent.title.trimmed().isEmpty() ? 0 : textHeight(pageContent.title, titleFont, c.width(), device);
    l.title = QRectF(c.left(), c.top(), c.width(), titleH);

    l.bottom = QRectF(c.left(), c.bottom() - kBottomMm * u, c.width(), kBottomMm * u);
    double middleBottom = l.bottom.top() - kGapMm * u;
    if (!pageContent.freeText.trimmed().isEmpty()) {
        const QFont f = pageFont(pageContent.textFont, kTextFontMm, u, l.dpi);
        const double h = std::min(textHeight(pageContent.freeText, f, c.width(), device), c.height() * 0.25);
        l.freeText = QRectF(c.left(), middleBottom - h, c.width(), h);
        middleBottom = l.freeText.top() - kGapMm * u;
    }
    const double middleTop = titleH > 0 ? l.title.bottom() + kGapMm * u : c.top();
    const QRectF middle(c.left(), middleTop, c.width(), std::max(0.0, middleBottom - middleTop));

    const map::MapRect extent = printedExtent(pageContent);
    const auto lines = legendLines(pageContent.legend, pageContent.legendFit);
    const bool landscape = pageRect.width() > pageRect.height();
    l.mapArea = middle;
    if (!lines.empty()) {
        if (landscape) {
            const LegendFit fit = fitLandscapeLegend(lines, middle, u, l.dpi, device);
            l.legendFactor = fit.factor;
            l.mapArea.setRight(middle.right() - fit.size.width() - kGapMm * u);
            l.mapFrame = fitShape(l.mapArea, extent);
            // Beside the frame, from its top when the columns fit below it.
            const double top = fit.size.height() <= middle.bottom() - l.mapFrame.top() ? l.mapFrame.top()
                                                                                      : middle.top();
            l.legend = QRectF(l.mapFrame.right() + kGapMm * u, top, fit.size.width(), middle.bottom() - top);
            // Map and legend together, centred across the page.
            const double group = l.legend.right() - l.mapFrame.left();
            const double left = middle.left() + (middle.width() - group) / 2;
            const double shift = std::floor(std::max(0.0, left - l.mapFrame.left()));
            l.mapFrame.translate(shift, 0);
            l.mapArea.translate(shift, 0);
            l.legend.translate(shift, 0);
        } else {
            const LegendFit fit = fitPortraitLegend(lines, middle, u, l.dpi, device);
            l.legendFactor = fit.factor;
            l.mapArea.setBottom(middle.bottom() - fit.size.height() - kGapMm * u);
            l.mapFrame = fitShape(l.mapArea, extent);
            // Map and legend together, centred in the room between title and
            // bottom band.
            const double group = l.mapFrame.height() + kGapMm * u + fit.size.height();
            const double shift = std::floor(std::max(0.0, (middle.height() - group) / 2));
            l.mapFrame.moveTop(middle.top() + shift);
            l.mapArea.moveTop(middle.top() + shift);
            l.legend = QRectF(c.left(), l.mapFrame.bottom() + kGapMm * u, c.width(), fit.size.height());
        }
    } else {
        l.mapFrame = fitShape(l.mapArea, extent);
    }

    // Bottom band: scale text and bar on the left, the north arrow in the
    // middle, the date on the right.
    const QRectF &b = l.bottom;
    l.scaleText = QRectF(b.left(), b.top(), b.width() * 0.4, 5 * u);
    l.scaleBar = QRectF(b.left(), l.scaleText.bottom(), b.width() * 0.4, b.bottom() - l.scaleText.bottom());
    l.northArrow = QRectF(b.center().x() - b.height() / 2, b.top(), b.height(), b.height());
    l.date = QRectF(b.right() - b.width() * 0.3, b.bottom() - 6 * u, b.width() * 0.3, 6 * u);
    return l;
}

void paintMapPage(QPainter &painter, const QRectF &pageRect, const MapPageContent &pageContent)
{
    const MapPageLayout l = layoutMapPage(pageRect, pageContent, painter.device());
    const double u = l.unit;
    painter.save();
    painter.fillRect(pageRect, Qt::white);
    painter.setRenderHint(QPainter::TextAntialiasing, true);

    if (!l.title.isEmpty()) {
        painter.setFont(pageFont(pageContent.titleFont, pageContent.titlePointSize * 25.4 / 72, u, l.dpi, true));
        painter.setPen(Qt::black);
        painter.drawText(l.title, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, pageContent.title);
    }

    // The map, clipped to its frame.
    const QSize frameSize(int(l.mapFrame.width()), int(l.mapFrame.height()));
    const map::MapTransform transform(printedExtent(pageContent), frameSize);
    if (transform.isValid()) {
        painter.save();
        painter.setClipRect(l.mapFrame);
        painter.translate(l.mapFrame.topLeft());
        map::RenderOptions options;
        options.bands = 1;
        map::MapRenderer::paint(painter, pageContent.model, transform, options);
        painter.restore();
    }
    QPen framePen(Qt::black);
    framePen.setWidthF(std::max(1.0, 0.3 * u));
    framePen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(framePen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(l.mapFrame);

    if (!l.legend.isEmpty()) {
        paintLegend(painter, l.legend, legendLines(pageContent.legend, pageContent.legendFit), u, l.dpi,
                    l.legendFactor);
    }

    if (!l.freeText.isEmpty()) {
        painter.setFont(pageFont(pageContent.textFont, kTextFontMm, u, l.dpi));
        painter.setPen(Qt::black);
        painter.drawText(l.freeText, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, pageContent.freeText);
    }

    if (transform.isValid()) {
        const double upp = transform.unitsPerPixel();
        const double metres = roundBarLength(l.scaleBar.width() * 0.8 * upp);
        paintScaleBar(painter, l.scaleBar, metres, metres / upp, u, l.dpi);
        painter.setFont(pageFont(QStringLiteral("Arial"), kScaleFontMm, u, l.dpi));
        painter.setPen(Qt::black);
        painter.drawText(l.scaleText, Qt::AlignLeft | Qt::AlignVCenter,
                         scaleText(printedScale(pageContent, pageRect.size())));
    }
    paintNorthArrow(painter, l.northArrow, u, l.dpi);
    if (!pageContent.dateText.isEmpty()) {
        painter.setFont(pageFont(QStringLiteral("Arial"), kDateFontMm, u, l.dpi));
        painter.setPen(Qt::black);
        painter.drawText(l.date, Qt::AlignRight | Qt::AlignBottom, pageContent.dateText);
    }
    painter.restore();
}

QImage renderMapPage(const MapPageContent &pageContent, QSize size, double dpi)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    const int dpm = int(std::lround(dpi / 0.0254));
    image.setDotsPerMeterX(dpm);
    image.setDotsPerMeterY(dpm);
    image.fill(Qt::white);
    QPainter p(&image);
    paintMapPage(p, QRectF(QPointF(0, 0), QSizeF(size)), pageContent);
    return image;
}

Status writeMapPagePdf(const MapPageContent &pageContent, const QString &path)
{
    // QSaveFile writes a new file beside `path` and renames it over `path`
    // only on commit; an existing file stays as it was until then.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Status::fail(QStringLiteral("Impossibile scrivere il file %1: %2").arg(path, file.errorString()));
    {
        QPdfWriter pdf(&file);
        pdf.setResolution(300);
        pdf.setTitle(pageContent.title);
        pdf.setCreator(QStringLiteral("Mervola"));
        pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), pageContent.orientation, QMarginsF(0, 0, 0, 0)));
        QPainter painter;
        if (!painter.begin(&pdf)) {
            file.cancelWriting();
            return Status::fail(QStringLiteral("Impossibile creare il documento PDF %1.").arg(path));
        }
        paintMapPage(painter, QRectF(pdf.pageLayout().paintRectPixels(pdf.resolution())), pageContent);
        painter.end();
    }
    if (!file.commit())
        return Status::fail(QStringLiteral("Impossibile scrivere il file %1: %2").arg(path, file.errorString()));
    return Status::success();
}

}  // namespace mervola
