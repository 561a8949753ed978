#pragma once
// A generated page: one polygon theme of four vertical stripes over a
// 200 km x 100 km extent, classified by VAL (1..4) into four colours.

#include "print/MapPage.h"

#include <memory>

namespace mervola::test {

inline const std::int32_t kStripeColors[4] = {255, 65280, 16711680, 65535};  // red, green, blue, yellow

inline map::LayerDataPtr stripes(double width = 200000, double height = 100000)
{
    auto d = std::make_shared<map::LayerData>();
    d->kind = map::GeometryKind::Polygon;
    for (int i = 0; i < 4; ++i) {
        const double x0 = width * i / 4, x1 = width * (i + 1) / 4;
        const double ring[] = {x0, 0, x0, height, x1, height, x1, 0, x0, 0};
        d->beginFeature();
        d->addRing(ring, 5);
        d->endFeature();
    }
    d->finish();
    map::Column val;
    val.name = QStringLiteral("VAL");
    val.type = map::ColumnType::Real;
    val.numbers = {1, 2, 3, 4};
    val.isNull = {0, 0, 0, 0};
    d->columns = {val};
    return d;
}

inline MapPageContent stripePage(QPageLayout::Orientation orientation, double width = 200000, double height = 100000)
{
    MapPageContent pageContent;
    pageContent.title = QStringLiteral("Comunità montane");
    pageContent.dateText = QStringLiteral("21/11/2026");
    pageContent.orientation = orientation;
    map::MapLayer layer;
    layer.name = QStringLiteral("commont");
    layer.data = stripes(width, height);
    std::vector<map::ClassRange> classes;
    for (int i = 0; i < 4; ++i) {
        map::ClassRange c;
        c.lower = i;
        c.upper = i + 1;
        c.color = kStripeColors[i];
        classes.push_back(c);
    }
    layer.renderer = map::ClassBreaksRenderer::fromClasses(QStringLiteral("VAL"), classes);
    pageContent.model.addLayer(layer);
    pageContent.extent = map::MapRect(0, height, width, 0);
    LegendEntry legend;
    legend.layerName = layer.name;
    legend.alias = QStringLiteral("Comunità montane");
    for (int i = 0; i < 4; ++i)
        legend.classes.push_back({map::colorFromValue(kStripeColors[i]), Qt::black,
                                  QStringLiteral("%1 - %2").arg(i).arg(i + 1), 1});
    pageContent.legend = {legend};
    return pageContent;
}

}  // namespace mervola::test
