#include "classify/ColumnReader.h"

#include <QFileInfo>
#include <gdal.h>
#include <ogr_api.h>

#include <memory>

namespace mervola::classify {

namespace {
struct DatasetCloser {
    void operator()(void *ds) const { GDALClose(ds); }
};
struct FeatureDestroyer {
    void operator()(void *f) const { OGR_F_Destroy(static_cast<OGRFeatureH>(f)); }
};
}  // namespace

Result<FieldColumn> readFieldColumn(const QString &dbfPath, const QString &field)
{
    if (!QFileInfo::exists(dbfPath))
        return Result<FieldColumn>::fail(QStringLiteral("Tabella non trovata: %1").arg(dbfPath));
    GDALAllRegister();
    std::unique_ptr<void, DatasetCloser> ds(
        GDALOpenEx(dbfPath.toUtf8().constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
    if (!ds)
        return Result<FieldColumn>::fail(QStringLiteral("Impossibile aprire la tabella %1").arg(dbfPath));
    OGRLayerH layer = GDALDatasetGetLayer(ds.get(), 0);
    if (!layer)
        return Result<FieldColumn>::fail(QStringLiteral("Impossibile aprire la tabella %1").arg(dbfPath));
    OGRFeatureDefnH defn = OGR_L_GetLayerDefn(layer);
    int index = -1;
    for (int i = 0; i < OGR_FD_GetFieldCount(defn); ++i) {
        const QString name = QString::fromUtf8(OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(defn, i)));
        if (name.compare(field, Qt::CaseInsensitive) == 0) {
            index = i;
            break;
        }
    }
    if (index < 0)
        return Result<FieldColumn>::fail(QStringLiteral("Campo inesistente: %1").arg(field));
    const OGRFieldType type = OGR_Fld_GetType(OGR_FD_GetFieldDefn(defn, index));
    FieldColumn col;
    col.name = QString::fromUtf8(OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(defn, index)));
    col.numeric = type == OFTInteger || type == OFTInteger64 || type == OFTReal;
    OGR_L_ResetReading(layer);
    while (OGRFeatureH raw = OGR_L_GetNextFeature(layer)) {
        std::unique_ptr<void, FeatureDestroyer> f(raw);
        const bool set = OGR_F_IsFieldSetAndNotNull(raw, index);
        if (col.numeric) {
            col.numbers.push_back(set ? OGR_F_GetFieldAsDouble(raw, index) : FieldColumn::null());
        } else {
            col.texts << (set ? QString::fromUtf8(OGR_F_GetFieldAsString(raw, index)).trimmed() : QString());
        }
    }
    return col;
}

FieldColumn columnFromVariants(const QString &name, const QList<QVariant> &values)
{
    FieldColumn col;
    col.name = name;
    for (const QVariant &v : values) {
        if (v.isNull())
            continue;
        const int id = v.typeId();
        if (id != QMetaType::Int && id != QMetaType::LongLong && id != QMetaType::Double && id != QMetaType::UInt
            && id != QMetaType::ULongLong && id != QMetaType::Float) {
            col.numeric = false;
            break;
        }
    }
    for (const QVariant &v : values) {
        if (col.numeric)
            col.numbers.push_back(v.isNull() ? FieldColumn::null() : v.toDouble());
        else
            col.texts << (v.isNull() ? QString() : v.toString());
    }
    return col;
}

}  // namespace mervola::classify
