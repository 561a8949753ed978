#pragma once
// Writes the map picture to a file: a Windows bitmap or PNG from the
// rendered image, a vector Enhanced Metafile, SVG or PDF from the same
// painting code the screen uses. The format follows the file's extension
// (case-insensitive). The file is written beside the target under a
// temporary name and renamed over it only when complete, so a failed export
// leaves an existing file untouched.

#include "platform/Result.h"
#include "map/MapModel.h"
#include "map/MapRenderer.h"

#include <QSize>
#include <QString>
#include <optional>

namespace mervola::map {

enum class ExportFormat { Bmp, Emf, Png, Svg, Pdf };

// The format named by the path's extension; nullopt when not one of ours.
std::optional<ExportFormat> exportFormatFor(const QString &path);

// Draws `extent` (fitted to `pixels`, as on screen) and writes it to `path`.
// Vector formats measure the picture at 96 dots per inch.
Status exportMap(const MapModel &model, const MapRect &extent, QSize pixels, const QString &path,
                 const RenderOptions &options = {});

// Saves an already rendered picture as .bmp (24 bits) or .png through a
// temporary file.
Status saveImageFile(const QImage &image, const QString &path);

// The Italian messages of a failed export.
QString unsupportedFormatMessage(const QString &path);
QString writeFailedMessage(const QString &path);

}  // namespace mervola::map
