// The PNG encoder: files that Qt's decoder (libpng) and an independent
// decoder written here read back to the same pixels.
#include "map/PngWriter.h"

#include <QPainter>
#include <QtTest>
#include <zlib.h>

using namespace mervola::map;

namespace
{

quint32 be32(const uchar *p)
{
    return quint32(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3];
}

int paeth(int a, int b, int c)
{
    const int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
    return pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
}

// A decoder of 8-bit RGB and RGBA files that shares nothing with the
// encoder but zlib's inflate: chunk CRCs checked, IDAT joined, every filter
// type undone. A null image when anything is wrong.
QImage decodeIndependently(const QByteArray &png)
{
    const auto *p = reinterpret_cast<const uchar *>(png.constData());
    if (png.size() < 8 || png.left(8) != QByteArray("\x89PNG\r\n\x1a\n", 8))
        return {};
    qsizetype at = 8;
    QByteArray idat;
    int w = 0, h = 0, channels = 0;
    bool ended = false;
    while (at + 12 <= png.size() && !ended) {
        const quint32 len = be32(p + at);
        const QByteArray type = png.mid(at + 4, 4);
        if (at + 12 + qsizetype(len) > png.size())
            return {};
        if (crc32(0, p + at + 4, len + 4) != be32(p + at + 8 + len))
            return {};
        const uchar *data = p + at + 8;
        if (type == "IHDR") {
            w = int(be32(data));
            h = int(be32(data + 4));
            if (data[8] != 8 || (data[9] != 2 && data[9] != 6) || data[12] != 0)
                return {};
            channels = data[9] == 2 ? 3 : 4;
        } else if (type == "IDAT") {
            idat.append(reinterpret_cast<const char *>(data), len);
        } else if (type == "IEND") {
            ended = true;
        }
        at += 12 + len;
    }
    if (!ended || w <= 0 || h <= 0)
        return {};
    const qsizetype stride = qsizetype(w) * channels;
    QByteArray raw(h * (stride + 1), Qt::Uninitialized);
    uLongf rawLen = uLongf(raw.size());
    if (uncompress(reinterpret_cast<Bytef *>(raw.data()), &rawLen, reinterpret_cast<const Bytef *>(idat.constData()),
                   uLong(idat.size())) != Z_OK ||
        rawLen != uLongf(raw.size()))
        return {};
    QImage out(w, h, channels == 4 ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    std::vector<int> prev(static_cast<std::size_t>(stride), 0), cur(static_cast<std::size_t>(stride));
    for (int y = 0; y < h; ++y) {
        const auto *row = reinterpret_cast<const uchar *>(raw.constData()) + y * (stride + 1);
        for (qsizetype i = 0; i < stride; ++i) {
            const int a = i >= channels ? cur[std::size_t(i - channels)] : 0, b = prev[std::size_t(i)];
            const int c = i >= channels ? prev[std::size_t(i - channels)] : 0;
            const int predictors[5] = {0, a, b, (a + b) / 2, paeth(a, b, c)};
            if (row[0] > 4)
                return {};
            cur[std::size_t(i)] = (row[1 + i] + predictors[row[0]]) & 0xff;
        }
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const int *s = &cur[std::size_t(x * channels)];
            line[x] = qRgba(s[0], s[1], s[2], channels == 4 ? s[3] : 255);
        }
        std::swap(prev, cur);
    }
    return out;
}

// A map-like picture: flat areas, anti-aliased outlines, many colours.
QImage mapLike(QSize size, QImage::Format format, QColor background)
{
    QImage img(size, format);
    img.fill(background);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < 40; ++i) {
        p.setBrush(QColor::fromHsv((i * 37) % 360, 200, 230, 160 + i));
        p.setPen(QPen(Qt::black, 0.6));
        p.drawEllipse(QPointF((i * 53) % size.width(), (i * 29) % size.height()), 5 + i, 3 + i % 7);
    }
    return img;
}

} // namespace

class TestPngWriter : public QObject
{
    Q_OBJECT
private slots:
    void decodesToTheSamePixels_data()
    {
        QTest::addColumn<QImage>("image");
        QTest::newRow("1600x1200 map, several slices") << mapLike({1600, 1200}, QImage::Format_RGB32, Qt::white);
        QTest::newRow("odd size, rows not a multiple of the slices")
            << mapLike({331, 197}, QImage::Format_ARGB32_Premultiplied, Qt::white);
        QTest::newRow("fewer rows than a slice") << mapLike({300, 5}, QImage::Format_RGB32, Qt::white);
        QTest::newRow("one pixel") << mapLike({1, 1}, QImage::Format_RGB32, Qt::red);
        QTest::newRow("another format") << mapLike({120, 90}, QImage::Format_RGB888, Qt::white);
    }

    void decodesToTheSamePixels()
    {
        QFETCH(QImage, image);
        const QByteArray png = encodePng(image);
        const QImage expected = image.convertToFormat(QImage::Format_RGB32);
        // An opaque picture is stored as RGB, three bytes a pixel.
        QCOMPARE(png.at(8 + 8 + 9), char(2));
        QImage byQt;
        QVERIFY(byQt.loadFromData(png, "PNG"));
        QCOMPARE(byQt.convertToFormat(QImage::Format_RGB32), expected);
        QCOMPARE(decodeIndependently(png), expected);
    }

    void keepsTransparency()
    {
        // A transparent background: straight (not premultiplied) alpha.
        const QImage image = mapLike({200, 150}, QImage::Format_ARGB32_Premultiplied, Qt::transparent);
        const QByteArray png = encodePng(image);
        QCOMPARE(png.at(8 + 8 + 9), char(6));
        const QImage expected = image.convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(decodeIndependently(png), expected);
        QImage byQt;
        QVERIFY(byQt.loadFromData(png, "PNG"));
        QCOMPARE(byQt.convertToFormat(QImage::Format_ARGB32), expected);
    }

    void nullImageGivesNothing() { QVERIFY(encodePng(QImage()).isEmpty()); }
};

QTEST_GUILESS_MAIN(TestPngWriter)
#include "test_png_writer.moc"
