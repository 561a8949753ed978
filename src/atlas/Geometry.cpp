#include "atlas/Geometry.h"

#include <ogr_geometry.h>
#include <cpl_error.h>
#include <ogr_spatialref.h>

namespace mervola::atlas {

Result<std::shared_ptr<Projector>> Projector::create()
{
    OGRSpatialReference wgs84, utm;
    wgs84.importFromEPSG(4326);
    wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    utm.importFromEPSG(kAtlasEpsg);
    utm.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    std::shared_ptr<Projector> p(new Projector);
    p->m_ct = OGRCreateCoordinateTransformation(&wgs84, &utm);
    if (!p->m_ct)
        return Result<std::shared_ptr<Projector>>::fail(
            QStringLiteral("Impossibile creare la trasformazione di coordinate verso EPSG:%1.").arg(kAtlasEpsg));
    return p;
}

Projector::~Projector() { OGRCoordinateTransformation::DestroyCT(m_ct); }

bool Projector::project(Point2 &p) const { return m_ct->Transform(1, &p[0], &p[1]); }

bool Projector::project(MultiPolygon &shape) const
{
    std::vector<double> xs, ys;
    for (Polygon &poly : shape)
        for (Ring &ring : poly) {
            xs.resize(ring.size());
            ys.resize(ring.size());
            for (size_t i = 0; i < ring.size(); ++i) {
                xs[i] = ring[i][0];
                ys[i] = ring[i][1];
            }
            if (!m_ct->Transform(xs.size(), xs.data(), ys.data()))
                return false;
            for (size_t i = 0; i < ring.size(); ++i)
                ring[i] = {xs[i], ys[i]};
        }
    return true;
}

GeometryPtr toOgr(const MultiPolygon &shape)
{
    if (shape.empty())
        return nullptr;
    auto makePolygon = [](const Polygon &poly) {
        auto p = std::make_unique<OGRPolygon>();
        for (const Ring &ring : poly) {
            auto r = std::make_unique<OGRLinearRing>();
            r->setNumPoints(static_cast<int>(ring.size()), FALSE);
            for (size_t i = 0; i < ring.size(); ++i)
                r->setPoint(static_cast<int>(i), ring[i][0], ring[i][1]);
            p->addRingDirectly(r.release());
        }
        return p;
    };
    if (shape.size() == 1)
        return makePolygon(shape.front());
    auto mp = std::make_unique<OGRMultiPolygon>();
    for (const Polygon &poly : shape)
        mp->addGeometryDirectly(makePolygon(poly).release());
    return mp;
}

namespace {

// GEOS reports the reason of invalidity as a GDAL warning; the repair below
// makes it noise.
bool isValidQuietly(const OGRGeometry *g)
{
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const bool valid = g->IsValid();
    CPLPopErrorHandler();
    return valid;
}

// Adds the polygons of g to out; a polygon that GEOS finds invalid (a
// simplified source outline crossing itself) is repaired first.
void addPolygons(const OGRGeometry *g, OGRMultiPolygon &out, bool repair)
{
    const OGRwkbGeometryType t = wkbFlatten(g->getGeometryType());
    if (t == wkbPolygon) {
        if (repair && !isValidQuietly(g)) {
            if (GeometryPtr fixed{g->MakeValid()}; fixed && !fixed->IsEmpty()) {
                addPolygons(fixed.get(), out, false);
                return;
            }
        }
        out.addGeometry(g);
    } else if (t == wkbMultiPolygon || t == wkbGeometryCollection) {
        for (const OGRGeometry *part : *g->toGeometryCollection())
            addPolygons(part, out, repair);
    }
}

}  // namespace

GeometryPtr dissolve(const std::vector<const OGRGeometry *> &members)
{
    OGRMultiPolygon all;
    for (const OGRGeometry *g : members)
        if (g)
            addPolygons(g, all, true);
    if (all.IsEmpty())
        return nullptr;
    GeometryPtr merged(all.UnionCascaded());
    if (merged && !merged->IsEmpty())
        return merged;
    // GEOS refused: keep the members' outlines undissolved.
    return GeometryPtr(all.clone());
}

GeometryPtr pointOnSurface(const OGRGeometry *geometry)
{
    if (!geometry || geometry->IsEmpty())
        return nullptr;
    auto point = std::make_unique<OGRPoint>();
    const OGRwkbGeometryType t = wkbFlatten(geometry->getGeometryType());
    OGRErr err = OGRERR_FAILURE;
    if (t == wkbPolygon)
        err = geometry->toPolygon()->PointOnSurface(point.get());
    else if (t == wkbMultiPolygon)
        err = geometry->toMultiPolygon()->PointOnSurface(point.get());
    if (err != OGRERR_NONE && geometry->Centroid(point.get()) != OGRERR_NONE)
        return nullptr;
    return point;
}

double meanX(const MultiPolygon &shape)
{
    double sum = 0;
    size_t n = 0;
    for (const Polygon &poly : shape)
        if (!poly.empty())
            for (const Point2 &p : poly.front()) {
                sum += p[0];
                ++n;
            }
    return n ? sum / static_cast<double>(n) : 0;
}

void Extent::add(const OGRGeometry *g)
{
    if (!g || g->IsEmpty())
        return;
    OGREnvelope e;
    g->getEnvelope(&e);
    if (!valid) {
        xmin = e.MinX, ymin = e.MinY, xmax = e.MaxX, ymax = e.MaxY;
        valid = true;
        return;
    }
    xmin = std::min(xmin, e.MinX);
    ymin = std::min(ymin, e.MinY);
    xmax = std::max(xmax, e.MaxX);
    ymax = std::max(ymax, e.MaxY);
}

}  // namespace mervola::atlas
