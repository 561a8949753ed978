#pragma once
// A PNG encoder made for maps: flat colour areas and thin outlines.
//
// Each row is written with the "up" filter (the difference from the row
// above: zero wherever the colour carries on downwards) and compressed by
// zlib's run-length strategy, which turns those runs into a few bytes at a
// fraction of the cost of the default search. The rows are cut into one
// slice per core, compressed in parallel, and the slices joined into the
// single zlib stream the format requires. The result is an ordinary 8-bit
// RGB PNG (RGBA when the picture has transparent pixels) that every viewer
// opens.

#include <QByteArray>
#include <QImage>

class QIODevice;

namespace mervola::map
{

// The PNG file of `image`; empty for a null image.
QByteArray encodePng(const QImage &image);

// Writes encodePng(image) to `out`; false when the device refuses the bytes.
bool writePng(const QImage &image, QIODevice &out);

} // namespace mervola::map
