#include "map/emf/Hatch.h"

#include <algorithm>
#include <cmath>

namespace mervola::emf {

namespace {

// Each family is the set of lines v = const, points along a line ordered by
// u; to() and from() convert between device (x, y) and (u, v).
struct Frame {
    HatchLines family;

    QPointF to(QPointF p) const
    {
        switch (family) {
        case HatchLines::Horizontal: return {p.x(), p.y()};
        case HatchLines::Vertical: return {p.y(), p.x()};
        case HatchLines::ForwardDiagonal: return {p.x() + p.y(), p.x() - p.y()};  // "\" lines
        case HatchLines::BackwardDiagonal: return {p.x() - p.y(), p.x() + p.y()}; // "/" lines
        }
        return p;
    }
    QPointF from(double u, double v) const
    {
        switch (family) {
        case HatchLines::Horizontal: return {u, v};
        case HatchLines::Vertical: return {v, u};
        case HatchLines::ForwardDiagonal: return {(u + v) / 2, (u - v) / 2};
        case HatchLines::BackwardDiagonal: return {(u + v) / 2, (v - u) / 2};
        }
        return {u, v};
    }
    // Horizontal and vertical lines run through pixel centres.
    double offset() const
    {
        return family == HatchLines::Horizontal || family == HatchLines::Vertical ? 0.5 : 0;
    }
};

struct Crossing {
    double u;
    int direction;  // +1 where the edge goes up in v, -1 down
};

}  // namespace

std::vector<HatchLines> hatchFamilies(Qt::BrushStyle style)
{
    switch (style) {
    case Qt::HorPattern: return {HatchLines::Horizontal};
    case Qt::VerPattern: return {HatchLines::Vertical};
    case Qt::CrossPattern: return {HatchLines::Horizontal, HatchLines::Vertical};
    case Qt::FDiagPattern: return {HatchLines::ForwardDiagonal};
    case Qt::BDiagPattern: return {HatchLines::BackwardDiagonal};
    case Qt::DiagCrossPattern: return {HatchLines::ForwardDiagonal, HatchLines::BackwardDiagonal};
    default: return {};
    }
}

std::vector<QLineF> hatchSegments(const QList<QPolygonF> &rings, Qt::FillRule rule, HatchLines family,
                                  double spacing)
{
    std::vector<QLineF> out;
    if (spacing <= 0)
        return out;
    const Frame frame{family};
    double vMin = INFINITY, vMax = -INFINITY;
    for (const QPolygonF &ring : rings)
        for (const QPointF &p : ring) {
            const double v = frame.to(p).y();
            vMin = std::min(vMin, v);
            vMax = std::max(vMax, v);
        }
    if (!(vMin <= vMax))
        return out;
    // Line k is v = (first + k) * spacing + offset.
    const double off = frame.offset();
    const long first = long(std::ceil((vMin - off) / spacing));
    const long last = long(std::floor((vMax - off) / spacing));
    if (last < first)
        return out;
    std::vector<std::vector<Crossing>> lines(std::size_t(last - first + 1));

    for (const QPolygonF &ring : rings) {
        const int n = int(ring.size());
        for (int i = 0; i < n; ++i) {
            const QPointF a = frame.to(ring.at(i)), b = frame.to(ring.at((i + 1) % n));
            if (a.y() == b.y())
                continue;
            const bool up = b.y() > a.y();
            const QPointF lo = up ? a : b, hi = up ? b : a;
            // Lines with lo.v <= v < hi.v cross this edge (half-open, so a
            // vertex shared by two edges counts once).
            const long k0 = std::max(first, long(std::ceil((lo.y() - off) / spacing)));
            long k1 = std::min(last, long(std::floor((hi.y() - off) / spacing)));
            if (k1 >= k0 && k1 * spacing + off >= hi.y())
                --k1;
            for (long k = k0; k <= k1; ++k) {
                const double v = k * spacing + off;
                const double t = (v - lo.y()) / (hi.y() - lo.y());
                lines[std::size_t(k - first)].push_back({lo.x() + t * (hi.x() - lo.x()), up ? 1 : -1});
            }
        }
    }

    for (std::size_t k = 0; k < lines.size(); ++k) {
        std::vector<Crossing> &c = lines[k];
        if (c.size() < 2)
            continue;
        std::sort(c.begin(), c.end(), [](const Crossing &x, const Crossing &y) { return x.u < y.u; });
        const double v = (first + long(k)) * spacing + off;
        // Runs of inside intervals become one segment each.
        int winding = 0;
        double start = 0;
        bool wasInside = false;
        for (std::size_t i = 0; i < c.size(); ++i) {
            winding += c[i].direction;
            const bool inside = rule == Qt::OddEvenFill ? (i % 2 == 0) : winding != 0;
            if (inside && !wasInside)
                start = c[i].u;
            else if (!inside && wasInside && c[i].u > start)
                out.emplace_back(frame.from(start, v), frame.from(c[i].u, v));
            wasInside = inside;
        }
    }
    return out;
}

}  // namespace mervola::emf
