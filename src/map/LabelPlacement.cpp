#include "map/LabelPlacement.h"

#include <QFontMetricsF>
#include <QTransform>
#include <algorithm>
#include <iterator>

namespace mervola::map
{

namespace
{

// Coarse occupancy grid for the collision tests.
class LabelSpace
{
public:
    explicit LabelSpace(QSize device)
        : m_cols(std::max(1, device.width() / kCell + 1)), m_rows(std::max(1, device.height() / kCell + 1)),
          m_cells(std::size_t(m_cols * m_rows))
    {
    }

    bool isFree(const QRectF &r) const
    {
        const int c0 = cell(r.left(), m_cols), c1 = cell(r.right(), m_cols);
        const int r0 = cell(r.top(), m_rows), r1 = cell(r.bottom(), m_rows);
        for (int y = r0; y <= r1; ++y)
            for (int x = c0; x <= c1; ++x)
                for (const QRectF &o : m_cells[std::size_t(y * m_cols + x)])
                    if (o.intersects(r))
                        return false;
        return true;
    }

    void take(const QRectF &r)
    {
        const int c0 = cell(r.left(), m_cols), c1 = cell(r.right(), m_cols);
        const int r0 = cell(r.top(), m_rows), r1 = cell(r.bottom(), m_rows);
        for (int y = r0; y <= r1; ++y)
            for (int x = c0; x <= c1; ++x)
                m_cells[std::size_t(y * m_cols + x)].push_back(r);
    }

private:
    static constexpr int kCell = 64;
    static int cell(double v, int n) { return std::clamp(int(v) / kCell, 0, n - 1); }
    int m_cols, m_rows;
    std::vector<std::vector<QRectF>> m_cells;
};

struct Candidate {
    PlacedLabel label;
    QSizeF size;     // the unrotated text box
    double area = 0; // size of the element, for the order of placement
};

// The room a label takes with its centre at `centre`.
QRectF roomAt(const Candidate &c, QPointF centre)
{
    QRectF box(QPointF(), c.size);
    box.moveCenter(centre);
    if (c.label.rotation == 0)
        return box;
    QTransform rot;
    rot.translate(centre.x(), centre.y()).rotate(-c.label.rotation).translate(-centre.x(), -centre.y());
    return rot.mapRect(box);
}

} // namespace

std::vector<PlacedLabel> placeLabels(const MapModel &model, const MapTransform &t, QPaintDevice *device)
{
    std::vector<PlacedLabel> placed;
    if (!t.isValid())
        return placed;
    const MapRect &view = t.extent();
    std::vector<Candidate> candidates;
    for (int li = 0; li < model.layerCount(); ++li) {
        const MapLayer &layer = model.layer(li);
        if (!layer.visible || !layer.data || !layer.labels.enabled())
            continue;
        const LayerData &d = *layer.data;
        const Column *c = d.column(layer.labels.field);
        if (!c)
            continue;
        QFont font(layer.labels.fontFamily);
        font.setPointSizeF(std::max(1.0, layer.labels.height));
        const QFontMetricsF fm = device ? QFontMetricsF(font, device) : QFontMetricsF(font);
        for (int f = 0; f < d.featureCount(); ++f) {
            const Box &b = d.boxes[std::size_t(f)];
            if (!b.intersects(view))
                continue;
            const QString text = c->text(f);
            if (text.isEmpty())
                continue;
            Candidate cand;
            cand.label.layer = li;
            cand.label.feature = f;
            cand.label.text = text;
            cand.label.anchor = t.toDevice(labelPoint(d, f));
            cand.label.rotation = layer.labels.rotation;
            cand.label.font = font;
            cand.label.color = colorFromValue(layer.labels.color);
            cand.size = fm.boundingRect(text).size();
            cand.area = (b.maxX - b.minX) * (b.maxY - b.minY);
            candidates.push_back(std::move(cand));
        }
    }
    // Larger elements first; among equals the upper layer, then file order.
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate &a, const Candidate &b) { return a.area > b.area; });

    LabelSpace space(t.deviceSize());
    for (Candidate &c : candidates) {
        const double gap = 2;
        const double dx = c.size.width() / 2 + gap, dy = c.size.height() / 2 + gap;
        // Centred, then beside the anchor; a rotated label stays centred.
        const QPointF offsets[] = {{0, 0},    {dx, 0},    {-dx, 0}, {0, -dy}, {0, dy},
                                   {dx, -dy}, {-dx, -dy}, {dx, dy}, {-dx, dy}};
        const int tries = c.label.rotation == 0 ? int(std::size(offsets)) : 1;
        for (int i = 0; i < tries; ++i) {
            const QPointF centre = c.label.anchor + offsets[i];
            const QRectF room = roomAt(c, centre);
            if (!space.isFree(room))
                continue;
            space.take(room);
            c.label.centre = centre;
            c.label.box = room;
            placed.push_back(std::move(c.label));
            break;
        }
    }
    return placed;
}

} // namespace mervola::map
