#pragma once
// Geometry helpers of the builder: projection from lon/lat (WGS84) to
// WGS84 / UTM 32N (EPSG:32632, metres), conversion to OGR geometries,
// dissolve of members into one outline.

#include "atlas/SourceData.h"
#include "platform/Result.h"

#include <memory>
#include <ogr_geometry.h>

class OGRCoordinateTransformation;

namespace mervola::atlas {

constexpr int kAtlasEpsg = 32632;

class Projector {
public:
    static Result<std::shared_ptr<Projector>> create();
    ~Projector();
    // Projects every point in place; false when a point cannot be projected.
    bool project(MultiPolygon &shape) const;
    bool project(Point2 &p) const;

private:
    Projector() = default;
    OGRCoordinateTransformation *m_ct = nullptr;
};

using GeometryPtr = std::unique_ptr<OGRGeometry>;

// A (multi)polygon geometry; nullptr for an empty shape.
GeometryPtr toOgr(const MultiPolygon &shape);
// The union of the members' outlines (their shared boundaries disappear);
// nullptr when no member has a geometry.
GeometryPtr dissolve(const std::vector<const OGRGeometry *> &members);
// A point inside the geometry (for capitals); nullptr for an empty geometry.
GeometryPtr pointOnSurface(const OGRGeometry *geometry);
// Mean of the outer-ring vertices' x, a cheap west-to-east key.
double meanX(const MultiPolygon &shape);

struct Extent {
    double xmin = 0, ymin = 0, xmax = 0, ymax = 0;
    bool valid = false;
    void add(const OGRGeometry *g);
};

}  // namespace mervola::atlas
