#pragma once
// Byte-level writer of Enhanced Metafile records. Each append* call adds one
// complete record: little-endian fields, size a multiple of four, counts
// matching the data. finish() appends EMR_EOF and patches the header's byte
// count, record count and bounds, and returns the file image.
//
// Coordinates handed to the record functions are logical units; the
// header's bounds are kept in device pixels.

#include <QByteArray>
#include <QColor>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <cstdint>
#include <vector>

namespace mervola::emf {

// Record types used here (MS-EMF 2.1.1).
enum RecordType : std::uint32_t {
    EMR_HEADER = 1,
    EMR_POLYPOLYLINE = 7,
    EMR_POLYPOLYGON = 8,
    EMR_SETWINDOWEXTEX = 9,
    EMR_SETWINDOWORGEX = 10,
    EMR_SETVIEWPORTEXTEX = 11,
    EMR_SETVIEWPORTORGEX = 12,
    EMR_EOF = 14,
    EMR_SETMAPMODE = 17,
    EMR_SETBKMODE = 18,
    EMR_SETPOLYFILLMODE = 19,
    EMR_SETTEXTALIGN = 22,
    EMR_SETTEXTCOLOR = 24,
    EMR_INTERSECTCLIPRECT = 30,
    EMR_SAVEDC = 33,
    EMR_RESTOREDC = 34,
    EMR_SELECTOBJECT = 37,
    EMR_CREATEPEN = 38,
    EMR_CREATEBRUSHINDIRECT = 39,
    EMR_DELETEOBJECT = 40,
    EMR_EXTCREATEFONTINDIRECTW = 82,
    EMR_EXTTEXTOUTW = 84,
    EMR_POLYLINE16 = 87,
    EMR_POLYPOLYLINE16 = 90,
    EMR_POLYPOLYGON16 = 91,
};

constexpr std::uint32_t kSignature = 0x464D4520;  // " EMF"
constexpr std::uint32_t kHeaderSize = 108;        // header with both extensions, before the description

// Stock objects selected with the high bit set.
constexpr std::uint32_t kNullBrush = 0x80000005;
constexpr std::uint32_t kNullPen = 0x80000008;

enum MapMode : std::uint32_t { MM_TEXT = 1, MM_ANISOTROPIC = 8 };
enum PolyFillMode : std::uint32_t { ALTERNATE = 1, WINDING = 2 };
enum BrushStyle : std::uint32_t { BS_SOLID = 0, BS_NULL = 1, BS_HATCHED = 2 };
enum HatchStyle : std::uint32_t {
    HS_HORIZONTAL = 0,
    HS_VERTICAL = 1,
    HS_FDIAGONAL = 2,
    HS_BDIAGONAL = 3,
    HS_CROSS = 4,
    HS_DIAGCROSS = 5
};
enum PenStyle : std::uint32_t { PS_SOLID = 0, PS_DASH = 1, PS_DOT = 2, PS_DASHDOT = 3, PS_DASHDOTDOT = 4, PS_NULL = 5 };
constexpr std::uint32_t TRANSPARENT_BK = 1;
constexpr std::uint32_t TA_BASELINE = 24;

struct LogFont {
    std::int32_t height = 0;      // negative: character (em) height in logical units
    std::int32_t escapement = 0;  // tenths of a degree, counter-clockwise
    std::int32_t weight = 400;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QString faceName;  // at most 31 characters are kept

    bool operator==(const LogFont &) const = default;
};

// Colour as a COLORREF (0x00BBGGRR).
std::uint32_t colorRef(const QColor &c);

class RecordWriter {
public:
    // `pixels`: picture size in device pixels; `dpi`: pixels per inch, which
    // fixes the frame in 0.01 mm; `description`: application and title.
    RecordWriter(QSize pixels, double dpi, const QString &description);

    void appendMapMode(std::uint32_t mode);
    void appendWindowExt(QSize ext) { appendSize(EMR_SETWINDOWEXTEX, ext); }
    void appendWindowOrg(QPoint org) { appendPointRecord(EMR_SETWINDOWORGEX, org); }
    void appendViewportExt(QSize ext) { appendSize(EMR_SETVIEWPORTEXTEX, ext); }
    void appendViewportOrg(QPoint org) { appendPointRecord(EMR_SETVIEWPORTORGEX, org); }
    void appendBkMode(std::uint32_t mode) { appendValue(EMR_SETBKMODE, mode); }
    void appendPolyFillMode(std::uint32_t mode) { appendValue(EMR_SETPOLYFILLMODE, mode); }
    void appendTextAlign(std::uint32_t align) { appendValue(EMR_SETTEXTALIGN, align); }
    void appendTextColor(std::uint32_t colorRef) { appendValue(EMR_SETTEXTCOLOR, colorRef); }
    void appendIntersectClipRect(const QRect &logical);
    void appendSaveDC();
    void appendRestoreDC();

    // Object records; `handle` is an index 1 .. handleCount - 1.
    void appendCreatePen(std::uint32_t handle, std::uint32_t style, std::int32_t width, std::uint32_t colorRef);
    void appendCreateBrush(std::uint32_t handle, std::uint32_t style, std::uint32_t colorRef, std::uint32_t hatch);
    void appendCreateFont(std::uint32_t handle, const LogFont &font);
    void appendSelectObject(std::uint32_t handle) { appendValue(EMR_SELECTOBJECT, handle); }
    void appendDeleteObject(std::uint32_t handle) { appendValue(EMR_DELETEOBJECT, handle); }

    // Several polygons (or polylines) in one record; 16-bit points when every
    // coordinate fits, 32-bit otherwise. `deviceBounds` is in pixels.
    void appendPolyPolygon(const std::vector<std::vector<QPoint>> &polys, const QRect &deviceBounds);
    void appendPolyPolyline(const std::vector<std::vector<QPoint>> &lines, const QRect &deviceBounds);
    void appendPolyline16(const std::vector<QPoint> &points, const QRect &deviceBounds);
    // Text with its baseline-left reference point and one advance per UTF-16
    // unit, all in logical units.
    void appendExtTextOut(QPoint reference, const QString &text, const std::vector<std::int32_t> &advances);

    // Ends the metafile; `handleCount` includes the reserved index 0.
    QByteArray finish(std::uint16_t handleCount);

    std::uint32_t recordCount() const { return m_records; }

private:
    void begin(std::uint32_t type);
    void end();
    void u16(std::uint16_t v);
    void u32(std::uint32_t v);
    void i32(std::int32_t v) { u32(std::uint32_t(v)); }
    void f32(float v);
    void rect(const QRect &r);
    void pad();
    void patch32(int offset, std::uint32_t v);
    void appendValue(std::uint32_t type, std::uint32_t value);
    void appendSize(std::uint32_t type, QSize s);
    void appendPointRecord(std::uint32_t type, QPoint p);
    void appendPoly(std::uint32_t type16, std::uint32_t type32, const std::vector<std::vector<QPoint>> &polys,
                    const QRect &deviceBounds);

    QByteArray m_data;
    int m_recordStart = -1;
    std::uint32_t m_records = 0;
    QSize m_pixels;
};

}  // namespace mervola::emf
