#include "map/PngWriter.h"

#include "map/Parallel.h"

#include <QIODevice>
#include <algorithm>
#include <vector>
#include <zlib.h>

namespace mervola::map
{

namespace
{

constexpr int kMinRowsPerSlice = 64;
constexpr std::uint8_t kFilterUp = 2;
constexpr std::uint8_t kColourRgb = 2, kColourRgba = 6;
// zlib stream header: deflate with a 32 KiB window, fastest level.
constexpr char kZlibHeader[2] = {0x78, 0x01};

// One run of rows compressed on its own: raw deflate data that the next
// slice continues (all but the last end with a byte-aligned sync flush),
// with the Adler-32 sum and the length of the filtered bytes it holds.
struct Slice {
    int firstRow = 0;
    int rows = 0;
    std::vector<uchar> data;
    uLong adler = 0;
    uLong length = 0;
};

// Row y as PNG samples: R, G, B (and straight alpha).
void samples(const QImage &image, int y, bool alpha, uchar *out)
{
    const auto *p = reinterpret_cast<const QRgb *>(image.constScanLine(y));
    const int w = image.width();
    if (alpha) {
        for (int x = 0; x < w; ++x, out += 4) {
            out[0] = uchar(qRed(p[x]));
            out[1] = uchar(qGreen(p[x]));
            out[2] = uchar(qBlue(p[x]));
            out[3] = uchar(qAlpha(p[x]));
        }
    } else {
        for (int x = 0; x < w; ++x, out += 3) {
            out[0] = uchar(qRed(p[x]));
            out[1] = uchar(qGreen(p[x]));
            out[2] = uchar(qBlue(p[x]));
        }
    }
}

void compressSlice(const QImage &image, bool alpha, bool last, Slice &s)
{
    const std::size_t rowBytes = std::size_t(image.width()) * (alpha ? 4 : 3);
    std::vector<uchar> above(rowBytes, 0), row(rowBytes), filtered(rowBytes + 1);
    // The "up" filter reaches into the slice above: filtering does not
    // depend on how the compressed stream is cut.
    if (s.firstRow > 0)
        samples(image, s.firstRow - 1, alpha, above.data());
    z_stream z{};
    deflateInit2(&z, 1, Z_DEFLATED, -15, 8, Z_RLE);
    s.data.resize(std::max<std::size_t>(64 * 1024, rowBytes * std::size_t(s.rows) / 16));
    s.adler = adler32(0, nullptr, 0);
    auto feed = [&](const uchar *in, std::size_t n, int flush) {
        z.next_in = const_cast<uchar *>(in);
        z.avail_in = uInt(n);
        do {
            if (s.data.size() - z.total_out < 1024)
                s.data.resize(s.data.size() * 2);
            z.next_out = s.data.data() + z.total_out;
            z.avail_out = uInt(s.data.size() - z.total_out);
            deflate(&z, flush);
        } while (z.avail_in > 0 || z.avail_out == 0);
    };
    filtered[0] = kFilterUp;
    for (int y = s.firstRow; y < s.firstRow + s.rows; ++y) {
        samples(image, y, alpha, row.data());
        for (std::size_t i = 0; i < rowBytes; ++i)
            filtered[i + 1] = uchar(row[i] - above[i]);
        feed(filtered.data(), filtered.size(), Z_NO_FLUSH);
        s.adler = adler32(s.adler, filtered.data(), uInt(filtered.size()));
        std::swap(above, row);
    }
    s.length = uLong(filtered.size()) * uLong(s.rows);
    feed(nullptr, 0, last ? Z_FINISH : Z_SYNC_FLUSH);
    s.data.resize(z.total_out);
    deflateEnd(&z);
}

void put32(QByteArray &out, quint32 v)
{
    const char b[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
    out.append(b, 4);
}

// Appends a chunk whose data is the concatenation of `parts`.
void chunk(QByteArray &out, const char type[4], std::initializer_list<QByteArrayView> parts)
{
    qsizetype length = 0;
    for (QByteArrayView p : parts)
        length += p.size();
    put32(out, quint32(length));
    out.append(type, 4);
    uLong crc = crc32(0, reinterpret_cast<const Bytef *>(type), 4);
    for (QByteArrayView p : parts) {
        if (p.isEmpty())
            continue; // crc32() of no data would restart the sum
        out.append(p);
        crc = crc32(crc, reinterpret_cast<const Bytef *>(p.data()), uInt(p.size()));
    }
    put32(out, quint32(crc));
}

bool allOpaque(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *p = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(p[x]) != 255)
                return false;
    }
    return true;
}

} // namespace

QByteArray encodePng(const QImage &image)
{
    if (image.isNull())
        return {};
    QImage src = image;
    bool alpha = false;
    if (src.format() != QImage::Format_RGB32) {
        if (src.format() != QImage::Format_ARGB32 && src.format() != QImage::Format_ARGB32_Premultiplied)
            src = src.convertToFormat(src.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        alpha = src.hasAlphaChannel() && !allOpaque(src);
        if (alpha)
            src = src.convertToFormat(QImage::Format_ARGB32); // straight alpha, as PNG stores it
    }

    const int h = src.height();
    const int count = std::clamp(h / kMinRowsPerSlice, 1, parallelPieces());
    std::vector<Slice> slices(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        slices[std::size_t(i)].firstRow = int(qint64(h) * i / count);
        slices[std::size_t(i)].rows = int(qint64(h) * (i + 1) / count) - slices[std::size_t(i)].firstRow;
    }
    runInParallel(count, [&](int i) { compressSlice(src, alpha, i + 1 == count, slices[std::size_t(i)]); });

    uLong adler = slices[0].adler;
    for (std::size_t i = 1; i < slices.size(); ++i)
        adler = adler32_combine(adler, slices[i].adler, z_off_t(slices[i].length));
    QByteArray trailer;
    put32(trailer, quint32(adler));

    QByteArray out;
    qsizetype total = 64;
    for (const Slice &s : slices)
        total += qsizetype(s.data.size()) + 12;
    out.reserve(total);
    out.append("\x89PNG\r\n\x1a\n", 8);
    QByteArray header;
    put32(header, quint32(src.width()));
    put32(header, quint32(h));
    const char rest[5] = {8, char(alpha ? kColourRgba : kColourRgb), 0, 0, 0};
    header.append(rest, 5);
    chunk(out, "IHDR", {header});
    for (std::size_t i = 0; i < slices.size(); ++i) {
        const QByteArrayView data(slices[i].data.data(), qsizetype(slices[i].data.size()));
        const QByteArrayView first = i == 0 ? QByteArrayView(kZlibHeader, 2) : QByteArrayView();
        const QByteArrayView end = i + 1 == slices.size() ? QByteArrayView(trailer) : QByteArrayView();
        chunk(out, "IDAT", {first, data, end});
    }
    chunk(out, "IEND", {});
    return out;
}

bool writePng(const QImage &image, QIODevice &out)
{
    const QByteArray bytes = encodePng(image);
    return !bytes.isEmpty() && out.write(bytes) == bytes.size();
}

} // namespace mervola::map
