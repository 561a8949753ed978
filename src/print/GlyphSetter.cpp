#include "print/GlyphSetter.h"

#include <QGlyphRun>
#include <QPainter>

namespace mervola
{

GlyphSetter::GlyphSetter(const QFont &font)
    : m_font(QRawFont::fromFont(font)), m_glyph(kLimit, 0), m_advance(kLimit, 0), m_known(kLimit, false)
{
}

void GlyphSetter::lookUp(char16_t c)
{
    m_known[c] = true;
    const QChar ch(c);
    quint32 glyph = 0;
    int count = 1;
    if (!m_font.glyphIndexesForChars(&ch, 1, &glyph, &count) || count != 1 || glyph == 0)
        return;
    QPointF advance;
    if (!m_font.advancesForGlyphIndexes(&glyph, &advance, 1))
        return;
    m_glyph[c] = glyph;
    m_advance[c] = advance.x();
}

bool GlyphSetter::add(const QString &text, QPointF origin)
{
    if (!m_font.isValid())
        return false;
    const qsizetype start = m_glyphs.size();
    double x = origin.x();
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (c >= 0x20 && c < kLimit && !m_known[c])
            lookUp(c);
        if (c < 0x20 || c >= kLimit || m_glyph[c] == 0) {
            m_glyphs.resize(start);
            m_positions.resize(start);
            return false;
        }
        m_glyphs.append(m_glyph[c]);
        m_positions.append(QPointF(x, origin.y()));
        x += m_advance[c];
    }
    return true;
}

void GlyphSetter::flush(QPainter &painter)
{
    if (m_glyphs.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(m_font);
    run.setGlyphIndexes(m_glyphs);
    run.setPositions(m_positions);
    painter.drawGlyphRun(QPointF(0, 0), run);
    m_glyphs.clear();
    m_positions.clear();
}

} // namespace mervola
