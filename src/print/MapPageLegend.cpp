// The legend of the printed page: the themes' lines, their flow into
// columns, the swatches.

#include "print/MapPageParts.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace mervola::mappage {

QFont pageFont(const QString &family, double mm, double unit, double dpi, bool bold)
{
    QFont f(family);
    // Point size such that the em is `mm` page millimetres: mm * unit device
    // units, and a point is dpi / 72 device units.
    f.setPointSizeF(std::max(0.5, mm * unit * 72.0 / std::max(1.0, dpi)));
    f.setBold(bold);
    return f;
}

std::vector<LegendLine> legendLines(const std::vector<MapPageTheme> &themes, bool withFit)
{
    std::vector<LegendLine> lines;
    for (const MapPageTheme &t : themes) {
        if (!t.visible)
            continue;
        LegendLine head;
        head.heading = true;
        head.text = t.alias;
        if (t.classes.empty()) {
            // An unclassified theme: its own swatch beside its name.
            head.fill = t.fill;
            head.outline = t.outline;
            head.outlined = t.outlined;
            head.geometryKind = t.geometryKind;
            lines.push_back(head);
            continue;
        }
        lines.push_back(head);
        for (const MapPageClass &c : t.classes) {
            LegendLine l;
            l.text = legendClassText(c);
            l.fill = c.fill;
            l.outline = c.outline;
            l.outlined = true;
            l.geometryKind = t.geometryKind;
            lines.push_back(l);
        }
        if (withFit && !t.fitText.isEmpty()) {
            LegendLine note;
            note.text = t.fitText;
            note.note = true;
            lines.push_back(note);
        }
    }
    return lines;
}

namespace {

bool hasSwatch(const LegendLine &l) { return !l.note && (!l.heading || l.fill.isValid()); }

double lineHeight(const LegendLine &l, double unit, double factor)
{
    return (l.heading ? kHeadingMm : kItemMm) * unit * factor;
}

void paintSwatch(QPainter &p, const QRectF &r, const LegendLine &l, double unit)
{
    QPen pen(l.outlined ? l.outline : Qt::transparent);
    pen.setWidthF(std::max(1.0, 0.15 * unit));
    p.setPen(pen);
    p.setBrush(l.fill.isValid() ? QBrush(l.fill) : QBrush(Qt::NoBrush));
    switch (l.geometryKind) {
    case 0: {
        const double d = std::min(r.width(), r.height()) * 0.8;
        p.drawEllipse(QRectF(r.center().x() - d / 2, r.center().y() - d / 2, d, d));
        break;
    }
    case 1: {
        QPen line(l.fill.isValid() ? l.fill : l.outline);
        line.setWidthF(std::max(1.0, 0.5 * unit));
        p.setPen(line);
        p.drawLine(QPointF(r.left(), r.center().y()), QPointF(r.right(), r.center().y()));
        break;
    }
    default:
        p.drawRect(r);
    }
}

}  // namespace

double legendColumnWidth(const std::vector<LegendLine> &lines, double unit, double dpi, const QPaintDevice *device,
                         double factor)
{
    const QFontMetricsF head(pageFont(QStringLiteral("Arial"), kHeadingFontMm * factor, unit, dpi, true),
                             const_cast<QPaintDevice *>(device));
    const QFontMetricsF item(pageFont(QStringLiteral("Arial"), kItemFontMm * factor, unit, dpi),
                             const_cast<QPaintDevice *>(device));
    const double swatch = (kSwatchWmm + 2) * unit * factor;
    double w = 0;
    for (const LegendLine &l : lines) {
        const double text = (l.heading ? head : item).horizontalAdvance(l.text);
        w = std::max(w, text + (hasSwatch(l) ? swatch : 0));
    }
    return std::ceil(w + unit * factor);
}

int legendColumnsFor(const std::vector<LegendLine> &lines, double height, double unit, double factor)
{
    int columns = lines.empty() ? 0 : 1;
    double y = 0;
    for (const LegendLine &l : lines) {
        const double h = lineHeight(l, unit, factor);
        if (y > 0 && y + h > height) {
            ++columns;
            y = 0;
        }
        y += h;
    }
    return columns;
}

double legendHeightFor(const std::vector<LegendLine> &lines, int columns, double unit, double factor)
{
    double total = 0;
    double tallest = 0;
    for (const LegendLine &l : lines) {
        total += lineHeight(l, unit, factor);
        tallest = std::max(tallest, lineHeight(l, unit, factor));
    }
    if (columns <= 1)
        return total;
    // Smallest column height that the flow fits into `columns` columns.
    double lo = std::max(tallest, total / columns), hi = total;
    for (int i = 0; i < 30 && hi - lo > 0.5; ++i) {
        const double mid = (lo + hi) / 2;
        if (legendColumnsFor(lines, mid, unit, factor) <= columns)
            hi = mid;
        else
            lo = mid;
    }
    return hi;
}

void paintLegend(QPainter &p, const QRectF &rect, const std::vector<LegendLine> &lines, double unit, double dpi,
                 double factor)
{
    if (lines.empty() || rect.isEmpty())
        return;
    p.save();
    // A millimetre of slack so that swatch outlines on the edge stay whole.
    p.setClipRect(rect.adjusted(-unit, -unit, unit, unit));
    const QFont head = pageFont(QStringLiteral("Arial"), kHeadingFontMm * factor, unit, dpi, true);
    const QFont item = pageFont(QStringLiteral("Arial"), kItemFontMm * factor, unit, dpi);
    const double colWidth = legendColumnWidth(lines, unit, dpi, p.device(), factor);
    double x = rect.left(), y = rect.top();
    for (const LegendLine &l : lines) {
        const double h = lineHeight(l, unit, factor);
        if (y > rect.top() && y + h > rect.bottom() + 0.5) {
            x += colWidth + kColumnGapMm * unit * factor;
            y = rect.top();
        }
        double textLeft = x;
        if (hasSwatch(l)) {
            const QRectF sw(x, y + (h - kSwatchHmm * unit * factor) / 2, kSwatchWmm * unit * factor,
                            kSwatchHmm * unit * factor);
            paintSwatch(p, sw, l, unit);
            textLeft = sw.right() + 2 * unit * factor;
        }
        p.setFont(l.heading ? head : item);
        p.setPen(Qt::black);
        p.drawText(QRectF(textLeft, y, rect.right() - textLeft, h), Qt::AlignLeft | Qt::AlignVCenter, l.text);
        y += h;
    }
    p.restore();
}

void paintNorthArrow(QPainter &p, const QRectF &rect, double unit, double dpi)
{
    p.save();
    const double s = std::min(rect.width(), rect.height());
    const QRectF sq(rect.center().x() - s / 2, rect.center().y() - s / 2, s, s);
    const double letter = s * 0.3;
    p.setFont(pageFont(QStringLiteral("Arial"), letter / unit, unit, dpi, true));
    p.setPen(Qt::black);
    p.drawText(QRectF(sq.left(), sq.top(), s, letter * 1.1), Qt::AlignCenter, QStringLiteral("N"));
    const double top = sq.top() + letter * 1.15, bottom = sq.bottom();
    const double cx = sq.center().x(), half = s * 0.22;
    const double notch = bottom - (bottom - top) * 0.25;
    QPainterPath left, right;
    left.moveTo(cx, top);
    left.lineTo(cx - half, bottom);
    left.lineTo(cx, notch);
    left.closeSubpath();
    right.moveTo(cx, top);
    right.lineTo(cx + half, bottom);
    right.lineTo(cx, notch);
    right.closeSubpath();
    QPen pen(Qt::black);
    pen.setWidthF(std::max(1.0, 0.2 * unit));
    pen.setJoinStyle(Qt::MiterJoin);
    p.setPen(pen);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setBrush(Qt::black);
    p.drawPath(left);
    p.setBrush(Qt::white);
    p.drawPath(right);
    p.restore();
}

void paintScaleBar(QPainter &p, const QRectF &rect, double metres, double barPx, double unit, double dpi)
{
    if (metres <= 0 || barPx <= 0)
        return;
    p.save();
    const double barH = 1.6 * unit;
    const QRectF bar(rect.left(), rect.top() + unit, barPx, barH);
    // Four alternating segments, as on topographic maps.
    QPen pen(Qt::black);
    pen.setWidthF(std::max(1.0, 0.2 * unit));
    p.setPen(pen);
    for (int i = 0; i < 4; ++i) {
        p.setBrush(i % 2 == 0 ? Qt::black : Qt::white);
        p.drawRect(QRectF(bar.left() + bar.width() * i / 4, bar.top(), bar.width() / 4, bar.height()));
    }
    p.setFont(pageFont(QStringLiteral("Arial"), 2.8, unit, dpi));
    const double textTop = bar.bottom() + 0.5 * unit;
    const double textH = rect.bottom() - textTop;
    p.drawText(QRectF(bar.left() - 10 * unit, textTop, 20 * unit, textH), Qt::AlignHCenter | Qt::AlignTop,
               QStringLiteral("0"));
    p.drawText(QRectF(bar.right() - 15 * unit, textTop, 30 * unit, textH), Qt::AlignHCenter | Qt::AlignTop,
               barLengthText(metres));
    p.restore();
}

}  // namespace mervola::mappage
