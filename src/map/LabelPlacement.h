#pragma once
// Where the labels of the map go, so that no two overlap. The labels of the
// larger elements are placed first, centred on their anchor; a label that
// would cover one already placed tries eight positions around its anchor
// (right, left, above, below, then the corners) and is left out when none is
// free. The screen, every export and the printed page use this placement.

#include "map/MapModel.h"
#include "map/MapTransform.h"

#include <QColor>
#include <QFont>
#include <QRectF>
#include <vector>

class QPaintDevice;

namespace mervola::map
{

struct PlacedLabel {
    int layer = 0; // index in the model
    int feature = 0;
    QString text;
    QPointF anchor;      // the element's label point, in device units
    QPointF centre;      // centre of the text as drawn
    QRectF box;          // the room the label takes (rotated labels: its bounds)
    double rotation = 0; // degrees, counter-clockwise
    QFont font;
    QColor color;
};

// The labels of every visible labelled layer in the view of `transform`,
// measured with the fonts of `device` (nullptr: the screen).
std::vector<PlacedLabel> placeLabels(const MapModel &model, const MapTransform &transform, QPaintDevice *device);

} // namespace mervola::map
