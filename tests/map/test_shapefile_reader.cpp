// The direct shapefile and dBase reader against GDAL on the real atlas, its
// hand-over of foreign files to GDAL, and damaged files.
#include "map/ShapefileReader.h"
#include "map/gdal/GdalLayerReader.h"
#include "platform/dbf/TableCheck.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <ogrsf_frmts.h>

using namespace mervola;
using namespace mervola::map;

namespace
{

using Ring = std::vector<double>;

// The rings of a feature as coordinate lists, sorted: GDAL regroups the
// rings of a multi-part polygon (outer rings with their holes), the direct
// reader keeps file order; both draw and hit-test the same with even-odd.
std::vector<Ring> ringsOf(const LayerData &d, int f)
{
    std::vector<Ring> rings;
    for (std::uint32_t r = d.featureRing[std::size_t(f)]; r < d.featureRing[std::size_t(f) + 1]; ++r)
        rings.emplace_back(d.xy.begin() + 2 * d.ringStart[r], d.xy.begin() + 2 * d.ringStart[r + 1]);
    std::sort(rings.begin(), rings.end());
    return rings;
}

bool sameNumber(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

// Every coordinate, box and attribute of `a` equal to `b`; the first
// difference as text, empty when none.
QString difference(const LayerData &a, const LayerData &b)
{
    if (a.kind != b.kind)
        return QStringLiteral("tipo di geometria");
    if (a.featureCount() != b.featureCount())
        return QStringLiteral("numero di elementi %1 / %2").arg(a.featureCount()).arg(b.featureCount());
    if (!(a.extent == b.extent))
        return QStringLiteral("estensione");
    for (int f = 0; f < a.featureCount(); ++f) {
        if (ringsOf(a, f) != ringsOf(b, f))
            return QStringLiteral("geometria dell'elemento %1").arg(f);
        const Box &x = a.boxes[std::size_t(f)], &y = b.boxes[std::size_t(f)];
        if (!sameNumber(x.minX, y.minX) || !sameNumber(x.maxY, y.maxY) || x.maxX != y.maxX || x.minY != y.minY)
            return QStringLiteral("riquadro dell'elemento %1").arg(f);
    }
    if (a.columns.size() != b.columns.size())
        return QStringLiteral("numero di campi");
    for (std::size_t c = 0; c < a.columns.size(); ++c) {
        const Column &p = a.columns[c], &q = b.columns[c];
        if (p.name != q.name || p.type != q.type || p.width != q.width || p.precision != q.precision)
            return QStringLiteral("definizione del campo %1").arg(q.name);
        for (int f = 0; f < a.featureCount(); ++f) {
            const bool same = p.isNull[std::size_t(f)] == q.isNull[std::size_t(f)] &&
                              (p.isNumeric() ? sameNumber(p.numbers[std::size_t(f)], q.numbers[std::size_t(f)])
                                             : p.texts[std::size_t(f)] == q.texts[std::size_t(f)]);
            if (!same)
                return QStringLiteral("campo %1, elemento %2: %3 / %4").arg(q.name).arg(f).arg(p.text(f), q.text(f));
        }
    }
    return {};
}

void cut(const QString &path, qint64 size)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.resize(size));
}

void patch(const QString &path, qint64 at, QByteArray bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.seek(at));
    QCOMPARE(f.write(bytes), bytes.size());
}

// A small shapefile written by GDAL with a date field, which only GDAL reads.
void writeDatedShapefile(const QString &path)
{
    GDALAllRegister();
    GDALDriver *drv = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    GDALDataset *ds = drv->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr);
    QVERIFY(ds);
    OGRLayer *layer = ds->CreateLayer("date", nullptr, wkbPolygon, nullptr);
    OGRFieldDefn day("GIORNO", OFTDate);
    layer->CreateField(&day);
    OGRFeature f(layer->GetLayerDefn());
    OGRGeometry *g = nullptr;
    OGRGeometryFactory::createFromWkt("POLYGON ((0 0,0 10,10 10,10 0,0 0))", nullptr, &g);
    f.SetGeometryDirectly(g);
    f.SetField(0, 2022, 12, 31);
    QCOMPARE(layer->CreateFeature(&f), OGRERR_NONE);
    GDALClose(ds);
}

} // namespace

class TestShapefileReader : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_italia;

    // A fresh copy of one theme's files under a new folder.
    QString copyTheme(const QString &name, const QString &folder)
    {
        const QString dir = m_dir.filePath(folder);
        QDir().mkpath(dir);
        for (const char *ext : {".shp", ".shx", ".dbf", ".cpg"})
            QFile::copy(m_italia + name + QLatin1String(ext), dir + QLatin1Char('/') + name + QLatin1String(ext));
        return dir + QLatin1Char('/') + name;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("home"))));
        m_italia = m_dir.filePath(QStringLiteral("home/italia/"));
    }

    void readsEveryAtlasThemeAsGdalDoes()
    {
        const QStringList themes = QDir(m_italia).entryList({QStringLiteral("*.shp")}, QDir::Files, QDir::Name);
        QVERIFY(themes.size() > 40);
        for (const QString &shp : themes) {
            const QString path = m_italia + shp;
            auto direct = readShapefile(path);
            QVERIFY2(direct.ok(), qPrintable(shp + QLatin1String(": ") + direct.errorMessage()));
            auto gdal = readLayerWithGdal(path);
            QVERIFY2(gdal.ok(), qPrintable(shp));
            const QString diff = difference(**direct, **gdal);
            QVERIFY2(diff.isEmpty(), qPrintable(shp + QLatin1String(": ") + diff));
        }
        // The municipalities in full: 7,899 polygons with their indicators.
        auto comuni = readShapefile(m_italia + QStringLiteral("comuni.shp"));
        QCOMPARE((*comuni)->featureCount(), 7899);
        QVERIFY((*comuni)->column(QStringLiteral("_02010")));
    }

    void deletedRecordsAreSkippedAsGdalDoes()
    {
        const QString base = copyTheme(QStringLiteral("regioni"), QStringLiteral("cancellati"));
        QFile dbf(base + QStringLiteral(".dbf"));
        QVERIFY(dbf.open(QIODevice::ReadOnly));
        const QByteArray header = dbf.read(12);
        const int headerLength = uchar(header[8]) | uchar(header[9]) << 8;
        const int recordLength = uchar(header[10]) | uchar(header[11]) << 8;
        dbf.close();
        patch(base + QStringLiteral(".dbf"), headerLength + 2 * recordLength, "*");
        auto direct = readShapefile(base + QStringLiteral(".shp"));
        QVERIFY(direct.ok());
        QCOMPARE((*direct)->featureCount(), 19);
        QCOMPARE(difference(**direct, **readLayerWithGdal(base + QStringLiteral(".shp"))), QString());
    }

    void foreignFilesGoToGdal()
    {
        const QString dated = m_dir.filePath(QStringLiteral("date.shp"));
        writeDatedShapefile(dated);
        auto direct = readShapefile(dated);
        QVERIFY(!direct.ok());
        QCOMPARE(direct.error().code, int(kReadUnsupported));
        // Loading a layer hands it to GDAL, linked into this program.
        auto loaded = LayerData::loadShapefile(dated);
        QVERIFY2(loaded.ok(), qPrintable(loaded.errorMessage()));
        QCOMPARE((*loaded)->column(QStringLiteral("GIORNO"))->text(0), QStringLiteral("2022/12/31"));

        // A code page other than UTF-8 or ISO-8859-1 too.
        const QString base = copyTheme(QStringLiteral("regioni"), QStringLiteral("cp1252"));
        QVERIFY(test::writeFile(base + QStringLiteral(".cpg"), "1252\n"));
        QCOMPARE(readShapefile(base + QStringLiteral(".shp")).error().code, int(kReadUnsupported));
        QVERIFY(LayerData::loadShapefile(base + QStringLiteral(".shp")).ok());
    }

    void damagedFilesAreClearErrors_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("damage");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        enum { Cut, CutMidRecord, Header, Missing, Offset, OffsetInHeader };
        // Cut files and headers: the program's own damage check.
        QTest::newRow("shp cut mid-record") << "shp" << int(CutMidRecord) << int(kDamagedFile)
                                            << "Il file comuni.shp è danneggiato: il file è troncato.";
        QTest::newRow("shp bad header") << "shp" << int(Header) << int(kDamagedFile)
                                        << "Il file comuni.shp è danneggiato: l'intestazione è incompleta.";
        QTest::newRow("shx shorter than a header") << "shx" << int(Cut) << int(kDamagedFile)
                                                   << "Il file comuni.shx è danneggiato: l'intestazione è incompleta.";
        QTest::newRow("shx missing") << "shx" << int(Missing) << int(kDamagedFile) << "Manca il file comuni.shx.";
        QTest::newRow("dbf cut mid-record")
            << "dbf" << int(CutMidRecord) << int(kDamagedFile)
            << "Il file comuni.dbf è danneggiato: contiene 7.898 record completi su 7.899.";
        QTest::newRow("dbf bad header")
            << "dbf" << int(Header) << int(kDamagedFile)
            << "Il file comuni.dbf è danneggiato: l'intestazione della tabella è incompleta.";
        // Whole files whose index points outside the shapes.
        QTest::newRow("shx offset past the end")
            << "shx" << int(Offset) << int(kReadTruncated)
            << "Il file comuni.shp è troncato: l'elemento 1 supera la fine del file.";
        QTest::newRow("shx offset into the header")
            << "shx" << int(OffsetInHeader) << int(kReadMalformed)
            << "Il file comuni.shx è danneggiato: l'elemento 1 non è leggibile.";
    }

    void damagedFilesAreClearErrors()
    {
        QFETCH(QString, file);
        QFETCH(int, damage);
        QFETCH(int, code);
        QFETCH(QString, message);
        const QString base = copyTheme(QStringLiteral("comuni"), QString::fromLatin1(QTest::currentDataTag()));
        const QString path = base + QLatin1Char('.') + file;
        const qint64 size = QFileInfo(path).size();
        switch (damage) {
        case 0:
            cut(path, 20);
            break;
        case 1:
            cut(path, size - 3);
            break;
        case 2:
            // A dBase header shorter than its own first part; a shapefile
            // without its file code.
            if (file == QLatin1String("dbf"))
                patch(path, 8, QByteArray("\x10\x00", 2));
            else
                patch(path, 0, QByteArray("\xff\xff\xff\xff", 4));
            break;
        case 3:
            QVERIFY(QFile::remove(path));
            break;
        case 4:
            patch(path, 100, QByteArray("\x7f\xff\xff\x00", 4));
            break;
        case 5:
            patch(path, 100, QByteArray("\x00\x00\x00\x10", 4));
            break;
        }
        auto read = readShapefile(base + QStringLiteral(".shp"));
        QVERIFY(!read.ok());
        QCOMPARE(read.error().code, code);
        QCOMPARE(read.errorMessage(), message);
        // Loading the layer gives the same message, never a partial layer.
        QCOMPARE(LayerData::loadShapefile(base + QStringLiteral(".shp")).errorMessage(), message);
    }

    void recordCountsMustAgree()
    {
        const QString base = copyTheme(QStringLiteral("regioni"), QStringLiteral("conteggi"));
        patch(base + QStringLiteral(".dbf"), 4, QByteArray("\x13\x00\x00\x00", 4)); // 19 records declared
        QCOMPARE(readShapefile(base + QStringLiteral(".shp")).errorMessage(),
                 QStringLiteral("Il file regioni.dbf è danneggiato: contiene 19 record per 20 elementi."));
        // Without its table a shapefile still draws, without attributes.
        QVERIFY(QFile::remove(base + QStringLiteral(".dbf")));
        auto bare = readShapefile(base + QStringLiteral(".shp"));
        QVERIFY(bare.ok());
        QCOMPARE((*bare)->featureCount(), 20);
        QVERIFY((*bare)->columns.empty());
    }
};

QTEST_GUILESS_MAIN(TestShapefileReader)
#include "test_shapefile_reader.moc"
