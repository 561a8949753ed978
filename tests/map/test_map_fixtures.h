#pragma once
// Tiny generated layers shared by the map tests. Map units 0..100.
//
//   f0  square 0..40 x 0..40 with a hole 10..30   Label "VALLE D'AOSTA"  VAL 5
//   f1  two squares 60..100 x 0..40 and 60..100   Label "Piemonte"       VAL 15
//       x 60..100 (one multipolygon)
//   f2  square 0..40 x 60..100                    Label "LOMBARDIA"      VAL 25
//   f3  square 45..55 x 45..55                    Label ""               VAL missing

#include "map/MapModel.h"

#include <cmath>
#include <memory>

namespace mervola::test {

inline std::vector<double> squareRing(double x0, double y0, double x1, double y1)
{
    return {x0, y0, x0, y1, x1, y1, x1, y0, x0, y0};
}

inline std::shared_ptr<map::LayerData> fixturePolygons()
{
    auto d = std::make_shared<map::LayerData>();
    d->kind = map::GeometryKind::Polygon;
    auto ring = [&](std::vector<double> r) { d->addRing(r.data(), r.size() / 2); };
    d->beginFeature();
    ring(squareRing(0, 0, 40, 40));
    ring(squareRing(10, 10, 30, 30));
    d->endFeature();
    d->beginFeature();
    ring(squareRing(60, 0, 100, 40));
    ring(squareRing(60, 60, 100, 100));
    d->endFeature();
    d->beginFeature();
    ring(squareRing(0, 60, 40, 100));
    d->endFeature();
    d->beginFeature();
    ring(squareRing(45, 45, 55, 55));
    d->endFeature();
    d->finish();

    map::Column label;
    label.name = QStringLiteral("Label");
    label.texts = {QStringLiteral("VALLE D'AOSTA"), QStringLiteral("Piemonte"), QStringLiteral("LOMBARDIA"), QString()};
    label.isNull = {0, 0, 0, 0};
    map::Column val;
    val.name = QStringLiteral("VAL");
    val.type = map::ColumnType::Real;
    val.numbers = {5, 15, 25, std::nan("")};
    val.isNull = {0, 0, 0, 1};
    d->columns = {label, val};
    return d;
}

inline map::MapLayer makeLayer(const QString &name, map::LayerDataPtr data)
{
    map::MapLayer l;
    l.name = name;
    l.data = std::move(data);
    return l;
}

}  // namespace mervola::test
