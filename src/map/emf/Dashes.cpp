#include "map/emf/Dashes.h"

#include <cmath>

namespace mervola::emf {

std::vector<std::vector<QPoint>> dashPolylines(const std::vector<std::vector<QPoint>> &lines,
                                               const QVector<double> &pattern)
{
    double total = 0;
    for (double d : pattern)
        total += std::max(0.0, d);
    if (pattern.size() < 2 || !(total > 0))
        return lines;

    std::vector<std::vector<QPoint>> out;
    for (const std::vector<QPoint> &line : lines) {
        int index = 0;
        double left = std::max(0.0, pattern[0]);  // what remains of the current dash or gap
        std::vector<QPoint> dash;
        for (std::size_t i = 0; i + 1 < line.size(); ++i) {
            const QPointF a = line[i], b = line[i + 1];
            const double length = std::hypot(b.x() - a.x(), b.y() - a.y());
            double at = 0;
            while (at < length) {
                const bool on = index % 2 == 0;
                const double step = std::min(left, length - at);
                if (on) {
                    const QPointF from = a + (b - a) * (at / length), to = a + (b - a) * ((at + step) / length);
                    if (dash.empty())
                        dash.push_back(from.toPoint());
                    dash.push_back(to.toPoint());
                }
                at += step;
                left -= step;
                if (left <= 0) {
                    if (on && dash.size() > 1)
                        out.push_back(std::move(dash));
                    dash.clear();
                    index = (index + 1) % int(pattern.size());
                    left = std::max(0.0, pattern[index]);
                }
            }
        }
        if (dash.size() > 1)
            out.push_back(std::move(dash));
    }
    return out;
}

}  // namespace mervola::emf
