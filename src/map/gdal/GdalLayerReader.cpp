#include "map/gdal/GdalLayerReader.h"

#include <QFileInfo>
#include <gdal_priv.h>
#include <limits>
#include <mutex>
#include <ogrsf_frmts.h>

namespace mervola::map
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void registerGdalOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

struct GdalCloser {
    void operator()(GDALDataset *d) const { GDALClose(d); }
};

void appendCurve(LayerData &d, const OGRSimpleCurve *curve, std::vector<double> &scratch)
{
    const int n = curve->getNumPoints();
    scratch.resize(std::size_t(n) * 2);
    for (int i = 0; i < n; ++i) {
        scratch[2 * i] = curve->getX(i);
        scratch[2 * i + 1] = curve->getY(i);
    }
    d.addRing(scratch.data(), std::size_t(n));
}

void appendGeometry(LayerData &d, const OGRGeometry *g, std::vector<double> &scratch)
{
    if (!g || g->IsEmpty())
        return;
    switch (wkbFlatten(g->getGeometryType())) {
    case wkbPoint: {
        const auto *p = g->toPoint();
        const double xy[2] = {p->getX(), p->getY()};
        d.addRing(xy, 1);
        break;
    }
    case wkbLineString:
        appendCurve(d, g->toLineString(), scratch);
        break;
    case wkbPolygon: {
        const auto *poly = g->toPolygon();
        for (const OGRLinearRing *ring : *poly)
            appendCurve(d, ring, scratch);
        break;
    }
    case wkbMultiPoint:
    case wkbMultiLineString:
    case wkbMultiPolygon:
    case wkbGeometryCollection:
        for (const OGRGeometry *part : *g->toGeometryCollection())
            appendGeometry(d, part, scratch);
        break;
    default: {
        // Curved or other exotic types: read their linear approximation.
        std::unique_ptr<OGRGeometry> lin(g->getLinearGeometry());
        if (lin && wkbFlatten(lin->getGeometryType()) != wkbFlatten(g->getGeometryType()))
            appendGeometry(d, lin.get(), scratch);
        break;
    }
    }
}

GeometryKind kindOf(OGRwkbGeometryType t)
{
    switch (wkbFlatten(t)) {
    case wkbPoint:
    case wkbMultiPoint:
        return GeometryKind::Point;
    case wkbLineString:
    case wkbMultiLineString:
        return GeometryKind::Line;
    default:
        return GeometryKind::Polygon;
    }
}

// Every program linking this library reads foreign layers through GDAL.
const bool registered = [] {
    setForeignLayerReader(&readLayerWithGdal);
    return true;
}();

} // namespace

Result<LayerDataPtr> readLayerWithGdal(const QString &path)
{
    registerGdalOnce();
    std::unique_ptr<GDALDataset, GdalCloser> ds(static_cast<GDALDataset *>(
        GDALOpenEx(QFile::encodeName(path).constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr)));
    if (!ds || ds->GetLayerCount() < 1)
        return Error{QStringLiteral("Impossibile aprire il tema %1").arg(QFileInfo(path).fileName())};
    OGRLayer *layer = ds->GetLayer(0);
    auto d = std::make_shared<LayerData>();
    d->sourcePath = path;
    d->kind = kindOf(layer->GetGeomType());

    OGRFeatureDefn *defn = layer->GetLayerDefn();
    const int nf = defn->GetFieldCount();
    for (int i = 0; i < nf; ++i) {
        OGRFieldDefn *fd = defn->GetFieldDefn(i);
        Column c;
        c.name = QString::fromUtf8(fd->GetNameRef());
        c.width = fd->GetWidth();
        c.precision = fd->GetPrecision();
        switch (fd->GetType()) {
        case OFTInteger:
        case OFTInteger64:
            c.type = ColumnType::Integer;
            break;
        case OFTReal:
            c.type = ColumnType::Real;
            break;
        default:
            c.type = ColumnType::Text;
            break;
        }
        d->columns.push_back(std::move(c));
    }
    const GIntBig count = layer->GetFeatureCount(TRUE);
    if (count > 0) {
        for (Column &c : d->columns) {
            if (c.isNumeric())
                c.numbers.reserve(std::size_t(count));
            else
                c.texts.reserve(std::size_t(count));
            c.isNull.reserve(std::size_t(count));
        }
        d->boxes.reserve(std::size_t(count));
    }

    std::vector<double> scratch;
    layer->ResetReading();
    for (auto &feature : *layer) {
        d->beginFeature();
        appendGeometry(*d, feature->GetGeometryRef(), scratch);
        d->endFeature();
        for (int i = 0; i < nf; ++i) {
            Column &c = d->columns[std::size_t(i)];
            const bool isNull = !feature->IsFieldSetAndNotNull(i);
            c.isNull.push_back(isNull ? 1 : 0);
            if (c.isNumeric())
                c.numbers.push_back(isNull ? kNaN : feature->GetFieldAsDouble(i));
            else
                c.texts.push_back(isNull ? QString() : QString::fromUtf8(feature->GetFieldAsString(i)));
        }
    }
    d->finish();
    return std::shared_ptr<const LayerData>(std::move(d));
}

} // namespace mervola::map
