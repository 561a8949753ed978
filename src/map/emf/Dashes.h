#pragma once
// Dashed lines as their dashes. A GDI pen wider than one pixel draws solid
// whatever its style, so wide dashed strokes are written as the solid
// pieces of the dash pattern.

#include <QPoint>
#include <QVector>
#include <vector>

namespace mervola::emf {

// Cuts each polyline into its dashes. `pattern` alternates dash and gap
// lengths in the polylines' units and restarts at each polyline.
std::vector<std::vector<QPoint>> dashPolylines(const std::vector<std::vector<QPoint>> &lines,
                                               const QVector<double> &pattern);

}  // namespace mervola::emf
