#include "map/GridIndex.h"

#include <algorithm>
#include <cmath>

namespace mervola::map {

GridIndex::GridIndex(const LayerData &layer) : m_layer(layer)
{
    const int n = layer.featureCount();
    const MapRect e = layer.extent;
    // About one feature per cell on average, at most 512 x 512 cells.
    const int side = std::clamp(int(std::sqrt(double(std::max(n, 1)))), 1, 512);
    m_nx = m_ny = side;
    m_x0 = e.left();
    m_y0 = e.bottom();
    m_cw = e.width() > 0 ? e.width() / m_nx : 1;
    m_ch = e.height() > 0 ? e.height() / m_ny : 1;

    std::vector<std::uint32_t> counts(std::size_t(m_nx) * m_ny + 1, 0);
    auto forCells = [&](const Box &b, auto fn) {
        for (int cy = cellY(b.minY); cy <= cellY(b.maxY); ++cy)
            for (int cx = cellX(b.minX); cx <= cellX(b.maxX); ++cx)
                fn(std::size_t(cy) * m_nx + cx);
    };
    for (int f = 0; f < n; ++f)
        forCells(layer.boxes[f], [&](std::size_t c) { ++counts[c + 1]; });
    for (std::size_t c = 1; c < counts.size(); ++c)
        counts[c] += counts[c - 1];
    m_cellStart = counts;
    m_items.resize(counts.back());
    for (int f = 0; f < n; ++f)
        forCells(layer.boxes[f], [&](std::size_t c) { m_items[counts[c]++] = f; });
}

int GridIndex::cellX(double x) const { return std::clamp(int(std::floor((x - m_x0) / m_cw)), 0, m_nx - 1); }
int GridIndex::cellY(double y) const { return std::clamp(int(std::floor((y - m_y0) / m_ch)), 0, m_ny - 1); }

std::vector<int> GridIndex::query(QPointF p, double tolerance) const
{
    std::vector<int> out;
    const MapRect probe(p.x() - tolerance, p.y() + tolerance, p.x() + tolerance, p.y() - tolerance);
    if (!probe.intersects(m_layer.extent))
        return out;
    for (int cy = cellY(probe.bottom()); cy <= cellY(probe.top()); ++cy)
        for (int cx = cellX(probe.left()); cx <= cellX(probe.right()); ++cx) {
            const std::size_t c = std::size_t(cy) * m_nx + cx;
            for (std::uint32_t i = m_cellStart[c]; i < m_cellStart[c + 1]; ++i)
                if (m_layer.boxes[m_items[i]].intersects(probe))
                    out.push_back(m_items[i]);
        }
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

}  // namespace mervola::map
