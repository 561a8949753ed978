#include "map/MapExport.h"

#include "map/PngWriter.h"
#include "map/emf/EmfDevice.h"
#include "platform/KillPoint.h"

#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

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

// Opens a temporary file beside `path`; commit() renames it into place.
// QSaveFile's temporary file has no name on Linux (O_TMPFILE) until it is
// committed, so a process killed while it writes leaves nothing behind in
// the user's folder, which no start-up sweep would visit.
Status openTarget(QSaveFile &file)
{
    if (!file.open(QIODevice::WriteOnly))
        return Status::fail(writeFailedMessage(file.fileName()));
    return {};
}

Status commit(QSaveFile &file)
{
    killPoint();
    if (!file.commit())
        return Status::fail(writeFailedMessage(file.fileName()));
    killPoint();
    return {};
}

Status writeEmf(const MapModel &model, const MapRect &extent, QSize pixels, QSaveFile &file,
                const RenderOptions &options)
{
    emf::EmfDevice device(pixels, kVectorDpi);
    QPainter painter(&device);
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    const QByteArray bytes = device.data();
    if (bytes.isEmpty() || file.write(bytes) != bytes.size())
        return Status::fail(writeFailedMessage(file.fileName()));
    return {};
}

Status writeSvg(const MapModel &model, const MapRect &extent, QSize pixels, QSaveFile &file,
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
        return Status::fail(writeFailedMessage(file.fileName()));
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    return {};
}

Status writePdf(const MapModel &model, const MapRect &extent, QSize pixels, QSaveFile &file,
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
        return Status::fail(writeFailedMessage(file.fileName()));
    // The page measures whole points; scale the picture onto it exactly.
    painter.scale(double(pdf.width()) / pixels.width(), double(pdf.height()) / pixels.height());
    paintPicture(painter, model, extent, pixels, options);
    painter.end();
    return {};
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
    QSaveFile file(path);
    if (Status s = openTarget(file); !s)
        return s;
    // A bitmap has no alpha channel: 24 bits per pixel.
    const bool written = format == ExportFormat::Bmp ? image.convertToFormat(QImage::Format_RGB888).save(&file, "BMP")
                                                     : writePng(image, file);
    if (!written)
        return Status::fail(writeFailedMessage(path));
    return commit(file);
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

    QSaveFile file(path);
    if (Status s = openTarget(file); !s)
        return s;
    Status written;
    switch (*format) {
    case ExportFormat::Emf: written = writeEmf(model, extent, pixels, file, options); break;
    case ExportFormat::Svg: written = writeSvg(model, extent, pixels, file, options); break;
    case ExportFormat::Pdf: written = writePdf(model, extent, pixels, file, options); break;
    default: break;
    }
    if (!written)
        return written;  // the temporary file is discarded with `file`
    return commit(file);
}

}  // namespace mervola::map
