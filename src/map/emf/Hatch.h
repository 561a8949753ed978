#pragma once
// Hatch fills as line segments. Not every metafile reader draws GDI hatched
// brushes (some fill them solid), so hatched areas are written as the hatch
// lines themselves, cut to the shape: one line every `spacing` pixels,
// aligned on the device origin like a GDI hatch.

#include <QLineF>
#include <QList>
#include <QPolygonF>
#include <optional>
#include <vector>

namespace mervola::emf {

// Line families of the hatch brushes.
enum class HatchLines { Horizontal, Vertical, ForwardDiagonal, BackwardDiagonal };

// The families a Qt pattern brush is made of (cross patterns give two);
// empty for a brush that is not a hatch.
std::vector<HatchLines> hatchFamilies(Qt::BrushStyle style);

// Segments of the family's lines inside the rings (device pixels), by the
// even-odd or the winding rule.
std::vector<QLineF> hatchSegments(const QList<QPolygonF> &rings, Qt::FillRule rule, HatchLines family,
                                  double spacing = 8);

}  // namespace mervola::emf
