#include "classify/ui/HistogramWidget.h"

#include "classify/ColorRamp.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace mervola::classify {

namespace {
QColor toQColor(ColorValue c) { return QColor(redOf(c), greenOf(c), blueOf(c)); }
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

void HistogramWidget::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), palette().base());
    const QRectF plot = QRectF(rect()).adjusted(36, 8, -8, -22);
    p.setPen(palette().text().color());
    if (m_values.empty()) {
        p.drawText(rect(), Qt::AlignCenter, QStringLiteral("Nessun valore numerico"));
        return;
    }
    const double lo = m_values.front();
    const double hi = m_values.back();
    const double span = hi > lo ? hi - lo : 1.0;
    const int bins = std::clamp(int(std::sqrt(double(m_values.size()))) * 2, 5, 60);
    std::vector<int> counts(size_t(bins), 0);
    for (double v : m_values)
        ++counts[size_t(std::min(bins - 1, int((v - lo) / span * bins)))];
    const int top = std::max(1, *std::max_element(counts.begin(), counts.end()));
    auto xOf = [&](double v) { return plot.left() + (v - lo) / span * plot.width(); };

    auto classColor = [&](double v) -> QColor {
        for (const ClassRange &c : m_classes)
            if (m_unique ? std::abs(v - c.upper) < span / bins / 2 : v <= c.upper)
                return toQColor(c.fillColor);
        return palette().mid().color();
    };
    const double barW = plot.width() / bins;
    for (int i = 0; i < bins; ++i) {
        const double h = plot.height() * counts[size_t(i)] / top;
        const QRectF bar(plot.left() + i * barW, plot.bottom() - h, barW, h);
        p.fillRect(bar.adjusted(0.5, 0, -0.5, 0), classColor(lo + (i + 0.5) * span / bins));
        p.setPen(QColor(90, 90, 90));
        p.drawRect(bar.adjusted(0.5, 0, -0.5, 0));
    }
    // Class limits: a line at every break but the last (the maximum).
    if (!m_unique) {
        QPen pen(QColor(200, 0, 0), 1.5, Qt::DashLine);
        p.setPen(pen);
        for (size_t k = 0; k + 1 < m_classes.size(); ++k) {
            const double x = xOf(std::clamp(m_classes[k].upper, lo, hi));
            p.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        }
    }
    p.setPen(palette().text().color());
    p.drawLine(plot.bottomLeft(), plot.bottomRight());
    p.drawLine(plot.bottomLeft(), plot.topLeft());
    const QFontMetrics fm(font());
    p.drawText(QRectF(plot.left(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignLeft, formatLimit(lo));
    p.drawText(QRectF(plot.center().x(), plot.bottom() + 2, plot.width() / 2, 18), Qt::AlignRight, formatLimit(hi));
    p.drawText(QRectF(0, plot.top() - 2, plot.left() - 4, fm.height()), Qt::AlignRight, QString::number(top));
    p.drawText(QRectF(0, plot.bottom() - fm.height(), plot.left() - 4, fm.height()), Qt::AlignRight,
               QStringLiteral("0"));
}

}  // namespace mervola::classify
