#include "atlas/ShapefileWriter.h"

#include "atlas/Geometry.h"

#include <QDir>
#include <QFile>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

namespace mervola::atlas {

namespace {

void removeExisting(const QString &folder, const QString &name)
{
    for (const char *ext : {".shp", ".shx", ".dbf", ".prj", ".cpg", ".qix"})
        QFile::remove(folder + QLatin1Char('/') + name + QLatin1String(ext));
}

}  // namespace

Status writeShapefile(const QString &folder, const ShapeLayer &layer)
{
    GDALAllRegister();
    GDALDriver *driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!driver)
        return Status::fail(QStringLiteral("Driver ESRI Shapefile non disponibile."));
    QDir().mkpath(folder);
    removeExisting(folder, layer.name);
    const QString ext = layer.kind == ShapeKind::None ? QStringLiteral(".dbf") : QStringLiteral(".shp");
    const QByteArray path = (folder + QLatin1Char('/') + layer.name + ext).toUtf8();
    std::unique_ptr<GDALDataset> ds(driver->Create(path.constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds)
        return Status::fail(QStringLiteral("Impossibile creare %1.").arg(QString::fromUtf8(path)));

    OGRSpatialReference srs;
    srs.importFromEPSG(kAtlasEpsg);
    const OGRwkbGeometryType type = layer.kind == ShapeKind::Polygon ? wkbPolygon
                                    : layer.kind == ShapeKind::Point ? wkbPoint
                                                                     : wkbNone;
    const char *options[] = {"ENCODING=UTF-8", "DBF_DATE_LAST_UPDATE=2023-06-30", "SPATIAL_INDEX=NO", nullptr};
    OGRLayer *out = ds->CreateLayer(layer.name.toUtf8().constData(), type == wkbNone ? nullptr : &srs, type,
                                    const_cast<char **>(options));
    if (!out)
        return Status::fail(QStringLiteral("Impossibile creare lo strato %1.").arg(layer.name));

    for (const AtlasField &f : layer.fields) {
        const OGRFieldType t = f.type == AtlasField::Type::Text      ? OFTString
                               : f.type == AtlasField::Type::Integer ? OFTInteger
                                                                    : OFTReal;
        OGRFieldDefn def(f.name.toUtf8().constData(), t);
        def.SetWidth(f.width);
        def.SetPrecision(f.precision);
        if (out->CreateField(&def) != OGRERR_NONE)
            return Status::fail(QStringLiteral("Impossibile creare il campo %1 in %2.").arg(f.name, layer.name));
    }

    for (const ShapeRecord &r : layer.records) {
        OGRFeature feature(out->GetLayerDefn());
        for (size_t i = 0; i < layer.fields.size() && i < r.values.size(); ++i) {
            const QVariant &v = r.values[i];
            const int idx = static_cast<int>(i);
            if (v.isNull()) {
                feature.SetFieldNull(idx);
                continue;
            }
            switch (layer.fields[i].type) {
            case AtlasField::Type::Text:
                feature.SetField(idx, v.toString().toUtf8().constData());
                break;
            case AtlasField::Type::Integer:
                feature.SetField(idx, v.toInt());
                break;
            case AtlasField::Type::Real:
                feature.SetField(idx, v.toDouble());
                break;
            }
        }
        if (r.geometry && type != wkbNone)
            feature.SetGeometry(r.geometry);
        if (out->CreateFeature(&feature) != OGRERR_NONE)
            return Status::fail(QStringLiteral("Impossibile scrivere un elemento in %1.").arg(layer.name));
    }
    CPLErrorReset();
    ds.reset();  // closing writes the headers
    if (CPLGetLastErrorType() >= CE_Failure)
        return Status::fail(QStringLiteral("Impossibile completare la scrittura di %1.").arg(layer.name));
    return {};
}

}  // namespace mervola::atlas
