#pragma once
// Uniform grid over a layer's feature boxes, for hit tests.

#include "map/LayerData.h"

#include <vector>

namespace mervola::map {

class GridIndex {
public:
    explicit GridIndex(const LayerData &layer);
    // Features whose box meets the rectangle around p.
    std::vector<int> query(QPointF p, double tolerance) const;

private:
    int cellX(double x) const;
    int cellY(double y) const;
    const LayerData &m_layer;
    double m_x0 = 0, m_y0 = 0, m_cw = 1, m_ch = 1;
    int m_nx = 1, m_ny = 1;
    std::vector<std::uint32_t> m_cellStart;  // CSR layout: features of cell c are
    std::vector<int> m_items;                // m_items[m_cellStart[c] .. m_cellStart[c+1])
};

}  // namespace mervola::map
