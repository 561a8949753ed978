#include "map/emf/EmfRecords.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace mervola::emf {

namespace {

bool fits16(const std::vector<std::vector<QPoint>> &polys)
{
    constexpr int lo = std::numeric_limits<std::int16_t>::min(), hi = std::numeric_limits<std::int16_t>::max();
    for (const auto &poly : polys)
        for (const QPoint &p : poly)
            if (p.x() < lo || p.x() > hi || p.y() < lo || p.y() > hi)
                return false;
    return true;
}

}  // namespace

std::uint32_t colorRef(const QColor &c)
{
    const QColor rgb = c.toRgb();
    return std::uint32_t(rgb.red()) | std::uint32_t(rgb.green()) << 8 | std::uint32_t(rgb.blue()) << 16;
}

RecordWriter::RecordWriter(QSize pixels, double dpi, const QString &description) : m_pixels(pixels)
{
    const int w = std::max(1, pixels.width()), h = std::max(1, pixels.height());
    const double mmPerPixel = 25.4 / dpi;
    // Description: strings separated and ended by NUL, plus a final NUL.
    QString desc = description;
    desc.replace(QLatin1Char('\n'), QChar(0));
    desc.append(QChar(0)).append(QChar(0));

    begin(EMR_HEADER);
    rect(QRect(0, 0, w, h));                                                   // bounds, device pixels
    rect(QRect(0, 0, int(std::lround(w * mmPerPixel * 100)) + 1,               // frame, 0.01 mm
               int(std::lround(h * mmPerPixel * 100)) + 1));
    u32(kSignature);
    u32(0x00010000);                                                           // version
    u32(0);                                                                    // bytes: patched
    u32(0);                                                                    // records: patched
    u16(0);                                                                    // handles: patched
    u16(0);                                                                    // reserved
    u32(std::uint32_t(desc.size()));                                           // nDescription (characters)
    u32(kHeaderSize);                                                          // offDescription
    u32(0);                                                                    // nPalEntries
    i32(w);                                                                    // reference device, pixels
    i32(h);
    i32(std::max(1, int(std::lround(w * mmPerPixel))));                        // ... and millimetres
    i32(std::max(1, int(std::lround(h * mmPerPixel))));
    u32(0);                                                                    // cbPixelFormat
    u32(0);                                                                    // offPixelFormat
    u32(0);                                                                    // bOpenGL
    i32(int(std::lround(w * mmPerPixel * 1000)));                              // micrometres
    i32(int(std::lround(h * mmPerPixel * 1000)));
    for (QChar ch : desc)
        u16(ch.unicode());
    end();
}

void RecordWriter::begin(std::uint32_t type)
{
    m_recordStart = int(m_data.size());
    u32(type);
    u32(0);  // size, set by end()
}

void RecordWriter::end()
{
    pad();
    patch32(m_recordStart + 4, std::uint32_t(m_data.size() - m_recordStart));
    m_recordStart = -1;
    ++m_records;
}

void RecordWriter::u16(std::uint16_t v)
{
    const char b[2] = {char(v & 0xff), char(v >> 8)};
    m_data.append(b, 2);
}

void RecordWriter::u32(std::uint32_t v)
{
    const char b[4] = {char(v & 0xff), char((v >> 8) & 0xff), char((v >> 16) & 0xff), char(v >> 24)};
    m_data.append(b, 4);
}

void RecordWriter::f32(float v)
{
    std::uint32_t bits;
    std::memcpy(&bits, &v, 4);
    u32(bits);
}

// RECTL: left, top, right, bottom, inclusive.
void RecordWriter::rect(const QRect &r)
{
    i32(r.left());
    i32(r.top());
    i32(r.left() + r.width() - 1);
    i32(r.top() + r.height() - 1);
}

void RecordWriter::pad()
{
    while (m_data.size() % 4)
        m_data.append('\0');
}

void RecordWriter::patch32(int offset, std::uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        m_data[offset + i] = char((v >> (8 * i)) & 0xff);
}

void RecordWriter::appendValue(std::uint32_t type, std::uint32_t value)
{
    begin(type);
    u32(value);
    end();
}

void RecordWriter::appendSize(std::uint32_t type, QSize s)
{
    begin(type);
    i32(s.width());
    i32(s.height());
    end();
}

void RecordWriter::appendPointRecord(std::uint32_t type, QPoint p)
{
    begin(type);
    i32(p.x());
    i32(p.y());
    end();
}

void RecordWriter::appendMapMode(std::uint32_t mode) { appendValue(EMR_SETMAPMODE, mode); }

void RecordWriter::appendIntersectClipRect(const QRect &r)
{
    // The clip rectangle is exclusive of its bottom-right edge.
    begin(EMR_INTERSECTCLIPRECT);
    i32(r.left());
    i32(r.top());
    i32(r.left() + r.width());
    i32(r.top() + r.height());
    end();
}

void RecordWriter::appendSaveDC()
{
    begin(EMR_SAVEDC);
    end();
}

void RecordWriter::appendRestoreDC()
{
    begin(EMR_RESTOREDC);
    i32(-1);
    end();
}

void RecordWriter::appendCreatePen(std::uint32_t handle, std::uint32_t style, std::int32_t width,
                                   std::uint32_t color)
{
    begin(EMR_CREATEPEN);
    u32(handle);
    u32(style);
    i32(width);  // POINTL: x is the width, y unused
    i32(0);
    u32(color);
    end();
}

void RecordWriter::appendCreateBrush(std::uint32_t handle, std::uint32_t style, std::uint32_t color,
                                     std::uint32_t hatch)
{
    begin(EMR_CREATEBRUSHINDIRECT);
    u32(handle);
    u32(style);
    u32(color);
    u32(hatch);
    end();
}

void RecordWriter::appendCreateFont(std::uint32_t handle, const LogFont &f)
{
    begin(EMR_EXTCREATEFONTINDIRECTW);
    u32(handle);
    // LogFont (92 bytes)
    i32(f.height);
    i32(0);  // width: default aspect
    i32(f.escapement);
    i32(f.escapement);  // orientation follows the escapement
    i32(f.weight);
    const char flags[8] = {char(f.italic), char(f.underline), char(f.strikeOut),
                           1,  // DEFAULT_CHARSET
                           0,  // OUT_DEFAULT_PRECIS
                           0,  // CLIP_DEFAULT_PRECIS
                           4,  // ANTIALIASED_QUALITY
                           0}; // DEFAULT_PITCH | FF_DONTCARE
    m_data.append(flags, 8);
    const QString face = f.faceName.left(31);
    for (int i = 0; i < 32; ++i)
        u16(i < face.size() ? face.at(i).unicode() : 0);
    // Rest of a LogFontPanose: full name, style, version, style size, match,
    // reserved, vendor id, culture, panose and padding; all zero.
    m_data.append(QByteArray(320 - 92, '\0'));
    end();
}

void RecordWriter::appendPoly(std::uint32_t type16, std::uint32_t type32,
                              const std::vector<std::vector<QPoint>> &polys, const QRect &deviceBounds)
{
    std::uint32_t total = 0, count = 0;
    for (const auto &p : polys)
        if (!p.empty()) {
            total += std::uint32_t(p.size());
            ++count;
        }
    if (count == 0)
        return;
    const bool small = fits16(polys);
    begin(small ? type16 : type32);
    rect(deviceBounds);
    u32(count);
    u32(total);
    for (const auto &p : polys)
        if (!p.empty())
            u32(std::uint32_t(p.size()));
    for (const auto &poly : polys)
        for (const QPoint &pt : poly) {
            if (small) {
                u16(std::uint16_t(std::int16_t(pt.x())));
                u16(std::uint16_t(std::int16_t(pt.y())));
            } else {
                i32(pt.x());
                i32(pt.y());
            }
        }
    end();
}

void RecordWriter::appendPolyPolygon(const std::vector<std::vector<QPoint>> &polys, const QRect &deviceBounds)
{
    appendPoly(EMR_POLYPOLYGON16, EMR_POLYPOLYGON, polys, deviceBounds);
}

void RecordWriter::appendPolyPolyline(const std::vector<std::vector<QPoint>> &lines, const QRect &deviceBounds)
{
    appendPoly(EMR_POLYPOLYLINE16, EMR_POLYPOLYLINE, lines, deviceBounds);
}

void RecordWriter::appendPolyline16(const std::vector<QPoint> &points, const QRect &deviceBounds)
{
    if (points.empty())
        return;
    begin(EMR_POLYLINE16);
    rect(deviceBounds);
    u32(std::uint32_t(points.size()));
    for (const QPoint &pt : points) {
        u16(std::uint16_t(std::int16_t(std::clamp(pt.x(), -32768, 32767))));
        u16(std::uint16_t(std::int16_t(std::clamp(pt.y(), -32768, 32767))));
    }
    end();
}

void RecordWriter::appendExtTextOut(QPoint reference, const QString &text, const std::vector<std::int32_t> &advances)
{
    if (text.isEmpty())
        return;
    constexpr std::uint32_t kStringOffset = 76;  // fixed part of EMR_EXTTEXTOUTW
    const std::uint32_t chars = std::uint32_t(text.size());
    const std::uint32_t stringBytes = (chars * 2 + 3) & ~3u;
    begin(EMR_EXTTEXTOUTW);
    rect(QRect(0, 0, 0, 0));  // bounds not computed: (0, 0, -1, -1)
    u32(1);                   // GM_COMPATIBLE
    f32(0);                   // exScale
    f32(0);                   // eyScale
    i32(reference.x());
    i32(reference.y());
    u32(chars);
    u32(kStringOffset);
    u32(0);                   // options
    rect(QRect(0, 0, 0, 0));  // no clipping/opaquing rectangle
    u32(kStringOffset + stringBytes);
    for (QChar ch : text)
        u16(ch.unicode());
    pad();
    for (std::uint32_t i = 0; i < chars; ++i)
        i32(i < advances.size() ? advances[i] : 0);
    end();
}

QByteArray RecordWriter::finish(std::uint16_t handleCount)
{
    begin(EMR_EOF);
    u32(0);   // nPalEntries
    u32(16);  // offPalEntries
    u32(20);  // SizeLast: size of this record
    end();
    patch32(48, std::uint32_t(m_data.size()));
    patch32(52, m_records);
    m_data[56] = char(handleCount & 0xff);
    m_data[57] = char(handleCount >> 8);
    return m_data;
}

}  // namespace mervola::emf
