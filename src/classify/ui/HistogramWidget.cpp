#include "classify/ui/HistogramWidget.h"

#include "classify/ui/QtColors.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace mervola::classify {

namespace {

double axisOf(double v, bool logarithmic) { return histogramAxis(v, logarithmic); }

}  // namespace

HistogramWidget::HistogramWidget(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("picIstogramma"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void HistogramWidget::setData(std::vector<double> values, const std::vector<ClassRange> &classes, bool uniqueValues)
{
    std::sort(values.begin(), values.end());
    m_values = std::move(values);
    m_classes = classes;
    m_unique = uniqueValues;
    update();
}

void HistogramWidget::setLogarithmic(bool on)
{
    m_log = on;
    update();
}

std::vector<HistogramBin> HistogramWidget::bars() const
{
    if (m_unique)
        return {};
    return classAlignedBins(m_values, m_classes, m_log && logarithmicAxisUseful(m_values), 40);
}

void HistogramWidget::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), palette().base());
    const QRectF plot = QRectF(rect()).adjusted(12, 8, -8, -22);
    p.setPen(palette().text().color());
    if (m_values.empty()) {
        p.drawText(rect(), Qt::AlignCenter, QStringLiteral("Nessun valore numerico"));
        return;
    }
    if (m_unique) {
        paintUnique(p, plot);
        return;
    }
    const bool log = m_log && logarithmicAxisUseful(m_values);
    const std::vector<HistogramBin> bins = bars();
    const double lo = axisOf(m_values.front(), log);
    const double hi = axisOf(m_values.back(), log);
    const double span = hi > lo ? hi - lo : 1.0;
    auto xOf = [&](double v) { return plot.left() + (axisOf(v, log) - lo) / span * plot.width(); };
    // Heights are densities along the axis.
    auto density = [&](const HistogramBin &b) {
        const double w = axisOf(b.to, log) - axisOf(b.from, log);
        return w > 0 ? b.count / w : double(b.count);
    };
    double top = 0;
    for (const HistogramBin &b : bins)
        top = std::max(top, density(b));
    for (const HistogramBin &b : bins) {
        const double h = top > 0 ? plot.height() * density(b) / top : 0;
        const double x0 = hi > lo ? xOf(b.from) : plot.left();
        const double x1 = hi > lo ? xOf(b.to) : plot.right();
        const QRectF bar(x0, plot.bottom() - h, x1 - x0, h);
        const QColor fill =
            b.classIndex >= 0 ? toQColor(m_classes[size_t(b.classIndex)].fillColor) : palette().mid().color();
        p.fillRect(bar, fill);
        p.setPen(QColor(90, 90, 90));
        p.drawRect(bar);
    }
    // Class limits: a line at every break but the last (the maximum).
    QPen pen(QColor(200, 0, 0), 1.5, Qt::DashLine);
    p.setPen(pen);
    for (size_t k = 0; k + 1 < m_classes.size(); ++k) {
        if (log && m_classes[k].upper <= 0)
            continue;
        const double x = xOf(std::clamp(m_classes[k].upper, m_values.front(), m_values.back()));
        p.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    p.setPen(palette().text().color());
    p.drawLine(plot.bottomLeft(), plot.bottomRight());
    p.drawText(QRectF(plot.left(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignLeft,
               formatLimit(m_values.front()));
    p.drawText(QRectF(plot.center().x(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignRight,
               formatLimit(m_values.back()));
    if (log) { // ticks at the powers of ten between the ends
        for (double e = std::ceil(lo); e <= std::floor(hi); e += 1) {
            const double x = plot.left() + (e - lo) / span * plot.width();
            p.drawLine(QPointF(x, plot.bottom()), QPointF(x, plot.bottom() + 4));
            if (x - plot.left() > 40 && plot.right() - x > 60)
                p.drawText(QRectF(x - 40, plot.bottom() + 2, 80, 18), Qt::AlignHCenter, formatLimit(std::pow(10.0, e)));
        }
    }
}

void HistogramWidget::paintUnique(QPainter &p, const QRectF &plot)
{
    // Unique values: even bins, each coloured by the value class nearest.
    const double lo = m_values.front();
    const double hi = m_values.back();
    const double span = hi > lo ? hi - lo : 1.0;
    const int bins = std::clamp(int(std::sqrt(double(m_values.size()))) * 2, 5, 60);
    std::vector<int> counts(size_t(bins), 0);
    for (double v : m_values)
        ++counts[size_t(std::min(bins - 1, int((v - lo) / span * bins)))];
    const int top = std::max(1, *std::max_element(counts.begin(), counts.end()));
    const double barW = plot.width() / bins;
    for (int i = 0; i < bins; ++i) {
        const double h = plot.height() * counts[size_t(i)] / top;
        const QRectF bar(plot.left() + i * barW, plot.bottom() - h, barW, h);
        const double mid = lo + (i + 0.5) * span / bins;
        QColor fill = palette().mid().color();
        for (const ClassRange &c : m_classes)
            if (std::abs(mid - c.upper) < span / bins / 2) {
                fill = toQColor(c.fillColor);
                break;
            }
        p.fillRect(bar.adjusted(0.5, 0, -0.5, 0), fill);
        p.setPen(QColor(90, 90, 90));
        p.drawRect(bar.adjusted(0.5, 0, -0.5, 0));
    }
    p.setPen(palette().text().color());
    p.drawLine(plot.bottomLeft(), plot.bottomRight());
    p.drawText(QRectF(plot.left(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignLeft, formatLimit(lo));
    p.drawText(QRectF(plot.center().x(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignRight, formatLimit(hi));
}

}  // namespace mervola::classify
