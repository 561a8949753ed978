#include "platform/dbf/DbfTable.h"
#include "platform/dbf/TableCheck.h"

#include "platform/AtlasHome.h"
#include "platform/dbf/DbfGdal.h"

#include <QDate>
#include <QFileInfo>
#include <QStringDecoder>
#include <cmath>
#include <ogrsf_frmts.h>

namespace mervola
{

using namespace dbfdetail;

int DbfTable::fieldIndex(const QString &name) const
{
    for (int i = 0; i < fields.size(); ++i)
        if (fields[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QString cpgPathFor(const QString &dbfPath)
{
    const QFileInfo fi(dbfPath);
    return resolveCaseInsensitive(fi.path(), fi.completeBaseName() + QStringLiteral(".cpg"));
}

namespace
{

DbfType typeFromNative(char native, OGRFieldType ogrType)
{
    switch (native) {
    case 'C':
        return DbfType::Text;
    case 'N':
        return DbfType::Numeric;
    case 'F':
        return DbfType::Float;
    case 'L':
        return DbfType::Logical;
    case 'D':
        return DbfType::Date;
    default:
        break;
    }
    switch (ogrType) {
    case OFTInteger:
    case OFTInteger64:
    case OFTReal:
        return DbfType::Numeric;
    case OFTDate:
        return DbfType::Date;
    default:
        return DbfType::Text;
    }
}

QVariant logicalValue(const char *s)
{
    switch (s[0]) {
    case 'T':
    case 't':
    case 'Y':
    case 'y':
        return QVariant(true);
    case 'F':
    case 'f':
    case 'N':
    case 'n':
        return QVariant(false);
    default:
        return {}; // '?' or blank: not set
    }
}

} // namespace

Result<DbfTable> readDbf(const QString &path)
{
    const QFileInfo fi(path);
    if (!fi.isFile())
        return Result<DbfTable>::fail(QStringLiteral("Tabella dBase non trovata: %1").arg(path));
    // A cut table would open and show only part of its records.
    if (Status whole = checkDbfFile(path); !whole)
        return whole.error();
    ensureGdal();
    GdalErrorScope errors;
    const char *const drivers[] = {"ESRI Shapefile", nullptr};
    GDALDatasetUniquePtr ds(
        GDALDataset::Open(path.toUtf8().constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers, nullptr, nullptr));
    OGRLayer *layer = ds ? ds->GetLayer(0) : nullptr;
    if (!layer)
        return Result<DbfTable>::fail(
            QStringLiteral("Impossibile leggere la tabella dBase %1. %2").arg(path, errors.lastMessage()).trimmed());
    layer->SetIgnoredFields(std::vector<const char *>{"OGR_GEOMETRY", nullptr}.data());

    DbfTable table;
    // GDAL recodes text to UTF-8 when the code page is known (.cpg or language driver).
    const QString sourceEncoding = QString::fromUtf8(layer->GetMetadataItem("SOURCE_ENCODING", "SHAPEFILE"));
    const bool rawBytes = sourceEncoding.isEmpty();
    table.encoding = rawBytes ? QStringLiteral("UTF-8") : sourceEncoding;

    const QByteArray native = nativeFieldTypes(path);
    OGRFeatureDefn *defn = layer->GetLayerDefn();
    const int n = defn->GetFieldCount();
    std::vector<OGRFieldType> ogrTypes(size_t(n), OFTString);
    for (int i = 0; i < n; ++i) {
        OGRFieldDefn *fd = defn->GetFieldDefn(i);
        ogrTypes[size_t(i)] = fd->GetType();
        DbfField f;
        f.name = QString::fromUtf8(fd->GetNameRef());
        f.type = typeFromNative(i < native.size() ? native[i] : '\0', fd->GetType());
        f.width = fd->GetWidth();
        f.decimals = fd->GetPrecision();
        if (f.type == DbfType::Date)
            f.width = 8;
        else if (f.type == DbfType::Logical)
            f.width = 1;
        table.fields.append(f);
    }

    // Without a declared code page the text comes as stored: UTF-8 when every
    // value decodes as such, otherwise Latin-1 (the usual code page of old files).
    std::vector<std::pair<size_t, int>> rawCells;
    std::vector<QByteArray> rawTexts;
    bool allUtf8 = true;

    layer->ResetReading();
    for (auto &feature : *layer) {
        std::vector<QVariant> row(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            if (!feature->IsFieldSetAndNotNull(i))
                continue;
            const DbfField &f = table.fields[i];
            QVariant &cell = row[size_t(i)];
            switch (f.type) {
            case DbfType::Text:
                if (rawBytes) {
                    QByteArray bytes(feature->GetFieldAsString(i));
                    if (allUtf8) {
                        QStringDecoder dec(QStringDecoder::Utf8);
                        const QString s = dec.decode(bytes);
                        if (dec.hasError())
                            allUtf8 = false;
                        else
                            cell = s;
                    }
                    rawCells.emplace_back(table.rows.size(), i);
                    rawTexts.push_back(std::move(bytes));
                } else {
                    cell = QString::fromUtf8(feature->GetFieldAsString(i));
                }
                break;
            case DbfType::Numeric:
            case DbfType::Float:
                if (ogrTypes[size_t(i)] == OFTReal) {
                    const double v = feature->GetFieldAsDouble(i);
                    if (f.type == DbfType::Numeric && f.decimals == 0 && std::fabs(v) < 9.2e18)
                        cell = qlonglong(std::llround(v));
                    else
                        cell = v;
                } else {
                    cell = qlonglong(feature->GetFieldAsInteger64(i));
                }
                break;
            case DbfType::Logical:
                cell = logicalValue(feature->GetFieldAsString(i));
                break;
            case DbfType::Date: {
                int y = 0, m = 0, d = 0, h = 0, mi = 0, tz = 0;
                float s = 0;
                if (feature->GetFieldAsDateTime(i, &y, &m, &d, &h, &mi, &s, &tz)) {
                    const QDate date(y, m, d);
                    if (date.isValid())
                        cell = date;
                }
                break;
            }
            }
        }
        table.rows.push_back(std::move(row));
    }
    if (rawBytes && !rawTexts.empty()) {
        if (!allUtf8)
            table.encoding = QStringLiteral("ISO-8859-1");
        for (size_t k = 0; k < rawCells.size(); ++k) {
            QVariant &cell = table.rows[rawCells[k].first][size_t(rawCells[k].second)];
            cell = allUtf8 ? QString::fromUtf8(rawTexts[k]) : QString::fromLatin1(rawTexts[k]);
        }
    }
    return table;
}

namespace
{

int encodedLength(const QString &s, bool utf8)
{
    return utf8 ? int(s.toUtf8().size()) : int(s.size());
}

// Characters needed to print a number with `decimals` digits after the point.
int numericLength(double v, int decimals)
{
    const double a = std::fabs(v);
    int intDigits = a < 1.0 ? 1 : int(std::floor(std::log10(a))) + 1;
    if (a >= 1.0 && std::pow(10.0, intDigits - 1) > a) // log10 rounding near powers of ten
        --intDigits;
    return intDigits + (v < 0 ? 1 : 0) + (decimals > 0 ? decimals + 1 : 0);
}

QString fieldError(const DbfField &f, const QString &what)
{
    return QStringLiteral("Campo %1: %2").arg(f.name, what);
}

Status checkValue(const DbfField &f, const QVariant &v, bool utf8, bool latin1)
{
    switch (f.type) {
    case DbfType::Text: {
        const QString s = v.toString();
        if (encodedLength(s, utf8) > f.width)
            return Status::fail(fieldError(
                f, QStringLiteral("il valore \"%1\" supera la larghezza del campo (%2).").arg(s).arg(f.width)));
        if (latin1)
            for (QChar c : s)
                if (c.unicode() > 0xFF)
                    return Status::fail(fieldError(
                        f, QStringLiteral("il valore \"%1\" contiene caratteri non rappresentabili nella codifica "
                                          "della tabella.")
                               .arg(s)));
        return {};
    }
    case DbfType::Numeric:
    case DbfType::Float: {
        bool ok = false;
        const double d = v.toDouble(&ok);
        if (!ok || !std::isfinite(d))
            return Status::fail(fieldError(f, QStringLiteral("il valore \"%1\" non è numerico.").arg(v.toString())));
        if (numericLength(d, f.decimals) > f.width)
            return Status::fail(fieldError(
                f, QStringLiteral("il valore %1 supera la larghezza del campo (%2).").arg(v.toString()).arg(f.width)));
        return {};
    }
    case DbfType::Date: {
        const QDate d = v.typeId() == QMetaType::QDate ? v.toDate() : QDate::fromString(v.toString(), Qt::ISODate);
        if (!d.isValid())
            return Status::fail(fieldError(f, QStringLiteral("il valore \"%1\" non è una data.").arg(v.toString())));
        return {};
    }
    case DbfType::Logical:
        return {};
    }
    return {};
}

} // namespace

Status validateDbf(const DbfTable &table)
{
    if (table.fields.isEmpty())
        return Status::fail(QStringLiteral("La tabella non ha campi."));
    if (table.fields.size() > kDbfMaxFields)
        return Status::fail(QStringLiteral("Una tabella dBase non può avere più di %1 campi (ne sono richiesti %2).")
                                .arg(kDbfMaxFields)
                                .arg(table.fields.size()));
    const bool utf8 = isUtf8Encoding(table.encoding);
    const bool latin1 = isLatin1Encoding(table.encoding);
    for (int i = 0; i < table.fields.size(); ++i) {
        const DbfField &f = table.fields[i];
        if (f.name.isEmpty())
            return Status::fail(QStringLiteral("Il campo %1 non ha nome.").arg(i + 1));
        if (encodedLength(f.name, utf8) > kDbfMaxFieldNameLength)
            return Status::fail(
                QStringLiteral("Il nome del campo %1 supera i %2 caratteri ammessi in una tabella dBase.")
                    .arg(f.name)
                    .arg(kDbfMaxFieldNameLength));
        if (table.fieldIndex(f.name) != i)
            return Status::fail(QStringLiteral("Il campo %1 compare più volte nella tabella.").arg(f.name));
        const int maxWidth = f.type == DbfType::Text ? kDbfMaxTextWidth : kDbfMaxNumericWidth;
        if ((f.type == DbfType::Text || f.type == DbfType::Numeric || f.type == DbfType::Float) &&
            (f.width < 1 || f.width > maxWidth))
            return Status::fail(fieldError(f, QStringLiteral("larghezza %1 non valida.").arg(f.width)));
        if ((f.type == DbfType::Numeric || f.type == DbfType::Float) &&
            (f.decimals < 0 || (f.decimals > 0 && f.decimals > f.width - 2)))
            return Status::fail(fieldError(f, QStringLiteral("numero di decimali %1 non valido.").arg(f.decimals)));
    }
    for (const auto &row : table.rows) {
        if (row.size() != size_t(table.fields.size()))
            return Status::fail(QStringLiteral("Una riga della tabella non ha il numero di valori dei campi."));
        for (size_t c = 0; c < row.size(); ++c) {
            if (row[c].isNull())
                continue;
            if (auto s = checkValue(table.fields[int(c)], row[c], utf8, latin1); !s)
                return s;
        }
    }
    return {};
}

} // namespace mervola
