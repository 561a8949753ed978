#pragma once
// Sets plain text straight from a font's glyph table: Latin letters, digits
// and punctuation take one glyph each, so they need no shaping. The cells of
// a table row are collected and drawn as one glyph run, which paints a report
// of thousands of rows without laying out every value on its own.

#include <QFont>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <vector>

class QPainter;

namespace mervola
{

class GlyphSetter
{
public:
    explicit GlyphSetter(const QFont &font);

    // Adds `text` with its baseline starting at `origin` (painter units).
    // False, and nothing added, when a character needs shaping or another
    // font: the caller then draws that text as usual.
    bool add(const QString &text, QPointF origin);
    // Draws what was added with the painter's pen and starts afresh.
    void flush(QPainter &painter);

private:
    // Characters below this one are set one glyph each (Basic Latin up to
    // Latin Extended-B); combining marks and other scripts are shaped.
    static constexpr char16_t kLimit = 0x250;
    void lookUp(char16_t c);

    QRawFont m_font;
    std::vector<quint32> m_glyph;  // by character; 0 = missing from the font
    std::vector<double> m_advance; // by character
    std::vector<bool> m_known;     // looked up already
    QList<quint32> m_glyphs;       // the run being collected
    QList<QPointF> m_positions;
};

} // namespace mervola
