#include "map/MapExport.h"

#include "map/PngWriter.h"
#include "map/emf/EmfDevice.h"
#include "platform/FileReplace.h"

#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <functional>

namespace mervola::map {

namespace {

constexpr double kVectorDpi = 96;

// Paints the whole picture (background, layers, labels) on a device whose
// painter coordinates span `pixels`.
void paintPicture(QPainter &painter, const MapModel &model, const MapRect &extent, QSize pixels,
                  const RenderOptions &options)
{
    painter.fillRect(QRect(QPoint(0, 0), pixels), options.background);
    MapRenderer::paint(painter, model, MapTransform(extent, pixels), options);
}

// Writes a picture file the way every file of the user is written: into
// "<path>.new", flushed to the disk, then renamed over `path`. A picture
// that fails half-way leaves the old file as it was; a process killed
// half-way leaves at most "<path>.new", which the next export to the same
// file (and, in the atlas home, the next start) removes. The writer returns
// false when the picture could not be written.
using PictureWriter = std::function<bool(QFile &file)>;

Status writePicture(const QString &path, const PictureWriter &write)
{
    return replaceFile(path, [&](const QString &temp) -> Status {
        QFile file(temp);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || !write(file))
            return Status::fail(writeFailedMessage(path));
        return flushToDisk(file, path);
    });
}

bool writeEmf(const MapModel &model, const MapRect &extent, QSize pixels, QFile &file,
              const RenderOptions &options)
{
    emf::EmfDevice device(pixels, kVectorDpi);
    QPainter painter(&device);
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    const QByteArray bytes = device.data();
    return !bytes.isEmpty() && file.write(bytes) == bytes.size();
}

bool writeSvg(const MapModel &model, const MapRect &extent, QSize pixels, QFile &file,
              const RenderOptions &options)
{
    QSvgGenerator svg;
    svg.setOutputDevice(&file);
    svg.setSize(pixels);
    svg.setViewBox(QRect(QPoint(0, 0), pixels));
    svg.setResolution(int(kVectorDpi));
    svg.setTitle(QStringLiteral("Mappa"));
    svg.setDescription(QStringLiteral("Mervola"));
    QPainter painter;
    if (!painter.begin(&svg))
        return false;
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    return true;
}

bool writePdf(const MapModel &model, const MapRect &extent, QSize pixels, QFile &file,
              const RenderOptions &options)
{
    // One page the size of the picture at 96 dpi, no margins.
    QPdfWriter pdf(&file);
    pdf.setCreator(QStringLiteral("Mervola"));
    pdf.setTitle(QStringLiteral("Mappa"));
    pdf.setResolution(int(kVectorDpi));
    pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
    pdf.setPageSize(QPageSize(QSizeF(pixels) * 25.4 / kVectorDpi, QPageSize::Millimeter, QString(),
                              QPageSize::ExactMatch));
    QPainter painter;
    if (!painter.begin(&pdf))
        return false;
    // The page measures whole points; scale the picture onto it exactly.
    painter.scale(double(pdf.width()) / pixels.width(), double(pdf.height()) / pixels.height());
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    return true;
}

}  // namespace

QString unsupportedFormatMessage(const QString &path)
{
    return QStringLiteral("Formato del file %1 non riconosciuto: usare l'estensione .bmp, .emf, .png, .svg o .pdf.")
        .arg(QFileInfo(path).fileName());
}

QString writeFailedMessage(const QString &path)
{
    return QStringLiteral("Impossibile scrivere il file %1.").arg(path);
}

std::optional<ExportFormat> exportFormatFor(const QString &path)
{
    const QString ext = QFileInfo(path).suffix().toLower();
    if (ext == QLatin1String("bmp"))
        return ExportFormat::Bmp;
    if (ext == QLatin1String("emf"))
        return ExportFormat::Emf;
    if (ext == QLatin1String("png"))
        return ExportFormat::Png;
    if (ext == QLatin1String("svg"))
        return ExportFormat::Svg;
    if (ext == QLatin1String("pdf"))
        return ExportFormat::Pdf;
    return std::nullopt;
}

Status saveImageFile(const QImage &image, const QString &path)
{
    const auto format = exportFormatFor(path);
    if (format != ExportFormat::Bmp && format != ExportFormat::Png)
        return Status::fail(unsupportedFormatMessage(path));
    if (image.isNull())
        return Status::fail(writeFailedMessage(path));
    return writePicture(path, [&](QFile &file) {
        // A bitmap has no alpha channel: 24 bits per pixel.
        return format == ExportFormat::Bmp ? image.convertToFormat(QImage::Format_RGB888).save(&file, "BMP")
                                           : writePng(image, file);
    });
}

Status exportMap(const MapModel &model, const MapRect &extent, QSize pixels, const QString &path,
                 const RenderOptions &options)
{
    const auto format = exportFormatFor(path);
    if (!format)
        return Status::fail(unsupportedFormatMessage(path));
    if (pixels.width() <= 0 || pixels.height() <= 0)
        return Status::fail(writeFailedMessage(path));
    if (*format == ExportFormat::Bmp || *format == ExportFormat::Png)
        return saveImageFile(MapRenderer::renderImage(model, extent, pixels, options), path);

    return writePicture(path, [&](QFile &file) {
        switch (*format) {
        case ExportFormat::Emf: return writeEmf(model, extent, pixels, file, options);
        case ExportFormat::Svg: return writeSvg(model, extent, pixels, file, options);
        case ExportFormat::Pdf: return writePdf(model, extent, pixels, file, options);
        default: return false;
        }
    });
}

}  // namespace mervola::map
