#pragma once
// Paints a MapModel on any QPainter: the map widget, the command line, image
// export and printing all go through here.
//
// Per layer, the features whose box meets the visible area are converted to
// device coordinates (vertices closer than half a pixel to the previous one
// are dropped), gathered into one path per symbol, each path filled once,
// then the outlines stroked. Once every layer is drawn, the selected
// features of all layers are painted over them in the selection colour;
// labels go on last.

#include "map/MapModel.h"
#include "map/MapTransform.h"

#include <QColor>
#include <QImage>
#include <QRect>

class QPainter;

namespace mervola::map {

struct RenderOptions {
    QColor background = Qt::white;
    QColor selectionColor = QColor(255, 255, 0);
    bool antialias = true;
    bool labels = true;
    bool selection = true; // paint the selected features over the layers
    int bands = 0;         // 0: two bands per available core
};

class MapRenderer {
public:
    // Paints layers and labels on `painter`, whose device is transform's
    // device size (the caller may have scaled or translated the painter).
    static void paint(QPainter &painter, const MapModel &model, const MapTransform &transform,
                      const RenderOptions &options = {});

    // Renders into a new image of `size` showing `extent` fitted to it. The
    // layers are drawn in horizontal bands on parallel threads, each band a
    // QImage over its own rows of the result; labels follow on the whole.
    static QImage renderImage(const MapModel &model, const MapRect &extent, QSize size,
                              const RenderOptions &options = {});

    // Paints only the layers (no labels, no background), culled to the
    // device rectangle `deviceClip` of the transform.
    static void paintLayers(QPainter &painter, const MapModel &model, const MapTransform &transform,
                            const QRect &deviceClip, const RenderOptions &options);
    static void paintLabels(QPainter &painter, const MapModel &model, const MapTransform &transform);
    // The selected features of every layer (the top of the picture, below
    // the labels only).
    static void paintSelections(QPainter &painter, const MapModel &model, const MapTransform &transform,
                                const RenderOptions &options);
};

}  // namespace mervola::map
