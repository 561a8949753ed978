// Writing a dBase table: GDAL writes a complete file in a private folder
// beside the destination, which then replaces the old .dbf/.cpg by rename.

#include "platform/dbf/DbfGdal.h"
#include "platform/dbf/DbfTable.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cmath>
#include <filesystem>
#include <ogrsf_frmts.h>

namespace mervola {

using namespace dbfdetail;

namespace {

std::unique_ptr<OGRFieldDefn> ogrField(const DbfField &f)
{
    const QByteArray name = f.name.toUtf8();
    OGRFieldType type = OFTString;
    int width = f.width;
    int precision = 0;
    switch (f.type) {
    case DbfType::Text: break;
    case DbfType::Numeric:
    case DbfType::Float:
        precision = f.decimals;
        if (f.decimals > 0 || f.type == DbfType::Float || width > 18)
            type = OFTReal;
        else
            type = width <= 9 ? OFTInteger : OFTInteger64;
        break;
    case DbfType::Logical: width = 1; break;  // header type patched to 'L' afterwards
    case DbfType::Date:
        type = OFTDate;
        width = 8;
        break;
    }
    auto fd = std::make_unique<OGRFieldDefn>(name.constData(), type);
    fd->SetWidth(width);
    fd->SetPrecision(precision);
    return fd;
}

bool logicalOf(const QVariant &v)
{
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed().toUpper();
        return s.startsWith(QLatin1Char('T')) || s.startsWith(QLatin1Char('Y')) || s.startsWith(QLatin1Char('S'))
               || (!s.isEmpty() && s != QLatin1String("0") && !s.startsWith(QLatin1Char('F'))
                   && !s.startsWith(QLatin1Char('N')));
    }
    return v.toDouble() != 0.0;
}

void setCell(OGRFeature &feature, int i, const DbfField &f, const QVariant &v)
{
    if (v.isNull()) {
        feature.SetFieldNull(i);
        return;
    }
    switch (f.type) {
    case DbfType::Text: feature.SetField(i, v.toString().toUtf8().constData()); break;
    case DbfType::Numeric:
    case DbfType::Float:
        if (f.type == DbfType::Numeric && f.decimals == 0) {
            if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::QString)
                feature.SetField(i, GIntBig(std::llround(v.toDouble())));
            else
                feature.SetField(i, GIntBig(v.toLongLong()));
        } else {
            feature.SetField(i, v.toDouble());
        }
        break;
    case DbfType::Logical: feature.SetField(i, logicalOf(v) ? "T" : "F"); break;
    case DbfType::Date: {
        const QDate d = v.typeId() == QMetaType::QDate ? v.toDate() : QDate::fromString(v.toString(), Qt::ISODate);
        feature.SetField(i, d.year(), d.month(), d.day());
        break;
    }
    }
}

// GDAL has no logical or float field of its own in dBase files: restore the
// declared type letter in the field descriptors.
bool patchHeaderTypes(const QString &dbfPath, const QList<DbfField> &fields)
{
    bool needed = false;
    for (const DbfField &f : fields)
        needed = needed || f.type == DbfType::Logical || f.type == DbfType::Float;
    if (!needed)
        return true;
    QFile file(dbfPath);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    for (int i = 0; i < fields.size(); ++i) {
        const char letter = fields[i].type == DbfType::Logical ? 'L' : fields[i].type == DbfType::Float ? 'F' : 0;
        if (!letter)
            continue;
        if (!file.seek(32 + 32 * qint64(i) + 11) || file.write(&letter, 1) != 1)
            return false;
    }
    return true;
}

Status writeTemporary(const QString &tmpPath, const DbfTable &table)
{
    ensureGdal();
    GdalErrorScope errors;
    GDALDriver *driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!driver)
        return Status::fail(QStringLiteral("Il driver dBase di GDAL non è disponibile."));
    GDALDatasetUniquePtr ds(driver->Create(tmpPath.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds)
        return Status::fail(QStringLiteral("Impossibile creare la tabella %1. %2").arg(tmpPath, errors.lastMessage()));
    const QByteArray encodingOption = "ENCODING=" + table.encoding.toUtf8();
    const char *options[] = {encodingOption.constData(), nullptr};
    const QByteArray layerName = QFileInfo(tmpPath).completeBaseName().toUtf8();
    OGRLayer *layer = ds->CreateLayer(layerName.constData(), nullptr, wkbNone, const_cast<char **>(options));
    if (!layer)
        return Status::fail(QStringLiteral("Impossibile creare la tabella %1. %2").arg(tmpPath, errors.lastMessage()));
    for (const DbfField &f : table.fields) {
        const auto fd = ogrField(f);
        if (layer->CreateField(fd.get(), FALSE) != OGRERR_NONE)
            return Status::fail(QStringLiteral("Impossibile creare il campo %1. %2").arg(f.name, errors.lastMessage()));
    }
    OGRFeature feature(layer->GetLayerDefn());
    const int n = table.columnCount();
    for (const auto &row : table.rows) {
        for (int i = 0; i < n; ++i)
            setCell(feature, i, table.fields[i], row[size_t(i)]);
        feature.SetFID(OGRNullFID);
        if (layer->CreateFeature(&feature) != OGRERR_NONE)
            return Status::fail(QStringLiteral("Errore nella scrittura della tabella. %1").arg(errors.lastMessage()));
    }
    ds.reset();  // flushes and closes the files
    if (!patchHeaderTypes(tmpPath, table.fields))
        return Status::fail(QStringLiteral("Errore nella scrittura della tabella %1.").arg(tmpPath));
    return {};
}

bool replaceFile(const QString &from, const QString &to)
{
    std::error_code ec;
    std::filesystem::rename(std::filesystem::path(from.toStdString()), std::filesystem::path(to.toStdString()), ec);
    return !ec;
}

}  // namespace

Status writeDbf(const QString &path, const DbfTable &table)
{
    if (auto s = validateDbf(table); !s)
        return s;
    const QFileInfo dest(path);
    QTemporaryDir work(dest.absolutePath() + QStringLiteral("/.mervola-dbf-XXXXXX"));
    if (!work.isValid())
        return Status::fail(QStringLiteral("Impossibile scrivere nella cartella %1.").arg(dest.absolutePath()));
    const QString tmpDbf = work.path() + QStringLiteral("/tabella.dbf");
    if (auto s = writeTemporary(tmpDbf, table); !s)
        return s;
    if (!replaceFile(tmpDbf, dest.absoluteFilePath()))
        return Status::fail(QStringLiteral("Impossibile sostituire la tabella %1.").arg(path));
    const QString tmpCpg = work.path() + QStringLiteral("/tabella.cpg");
    const QString cpg = cpgPathFor(dest.absoluteFilePath());
    if (QFileInfo::exists(tmpCpg)) {
        if (!replaceFile(tmpCpg, cpg))
            return Status::fail(QStringLiteral("Impossibile scrivere la codifica della tabella %1.").arg(path));
    } else if (QFileInfo::exists(cpg)) {
        QFile::remove(cpg);  // a stale code page would misread the new file
    }
    return {};
}

}  // namespace mervola
