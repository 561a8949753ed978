// mervola-cli render runs without GDAL in the process: the executable does
// not link it, and themes the direct reader leaves aside are read through
// the tools module, loaded only for them. Damaged themes stop the render
// with an Italian message.
#include "support/TestSupport.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>
#include <ogrsf_frmts.h>

using namespace mervola;

namespace {

// One theme in red with black outlines, from `folder`.
QByteArray projectFor(const QString &folder, const QString &theme)
{
    return QStringLiteral("[RLX]\nEXTENT=0^0^100^100^\n[%2]\nWORKSPACE=%1/\nBASE=%2.shp^%2^\n"
                          "SIMBOLO=2^0^0^255^33554432^\nLABEL=*\nTIPOCLASSIFICAZIONE=0\nCAMPO=0^0^0^0^\n"
                          "CLASSIFICAZIONE=0\nOUTLINE=1\nVISIBILE=1\n")
        .arg(folder, theme)
        .toUtf8();
}

int redPixels(const QImage &img)
{
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            n += (img.pixel(x, y) & 0xFFFFFF) == 0xFF0000;
    return n;
}

}  // namespace

class TestRenderLink : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    int render(const QString &project, const QString &out, QString *err)
    {
        return test::runProgram(QStringLiteral(MERVOLA_CLI),
                                {QStringLiteral("render"), QStringLiteral("--home"), m_dir.path(),
                                 QStringLiteral("--project"), project, QStringLiteral("--size"),
                                 QStringLiteral("200x200"), QStringLiteral("--out"), out},
                                nullptr, err);
    }

private slots:
    void executableDoesNotLinkGdal()
    {
        QString out;
        QCOMPARE(test::runProgram(QStringLiteral("ldd"), {QStringLiteral(MERVOLA_CLI)}, &out), 0);
        QVERIFY(out.contains(QLatin1String("libQt6Gui")));
        QVERIFY2(!out.contains(QLatin1String("libgdal")), qPrintable(out));
        QVERIFY(QFileInfo::exists(QFileInfo(QStringLiteral(MERVOLA_CLI)).path() + QStringLiteral("/mervola-cli-tools.so")));
    }

    void foreignThemeIsReadThroughTheModule()
    {
        // A date field: only GDAL reads this table.
        const QString folder = m_dir.filePath(QStringLiteral("estero"));
        QDir().mkpath(folder);
        GDALAllRegister();
        GDALDriver *drv = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
        GDALDataset *ds = drv->Create((folder + QStringLiteral("/date.shp")).toUtf8().constData(), 0, 0, 0,
                                      GDT_Unknown, nullptr);
        QVERIFY(ds);
        OGRLayer *layer = ds->CreateLayer("date", nullptr, wkbPolygon, nullptr);
        OGRFieldDefn day("GIORNO", OFTDate);
        layer->CreateField(&day);
        OGRFeature f(layer->GetLayerDefn());
        OGRGeometry *g = nullptr;
        OGRGeometryFactory::createFromWkt("POLYGON ((10 10,10 90,90 90,90 10,10 10))", nullptr, &g);
        f.SetGeometryDirectly(g);
        f.SetField(0, 2022, 12, 31);
        QCOMPARE(layer->CreateFeature(&f), OGRERR_NONE);
        GDALClose(ds);

        const QString project = m_dir.filePath(QStringLiteral("estero.rlx"));
        QVERIFY(test::writeFile(project, projectFor(folder, QStringLiteral("date"))));
        const QString out = m_dir.filePath(QStringLiteral("estero.png"));
        QString err;
        QVERIFY2(render(project, out, &err) == 0, qPrintable(err));
        QVERIFY(redPixels(QImage(out)) > 20000);
    }

    void damagedThemeStopsTheRender()
    {
        const QString folder = m_dir.filePath(QStringLiteral("danneggiato"));
        QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("reale"))));
        QDir().mkpath(folder);
        for (const char *ext : {".shp", ".shx", ".dbf", ".cpg"})
            QVERIFY(QFile::copy(m_dir.filePath(QStringLiteral("reale/italia/regioni")) + QLatin1String(ext),
                                folder + QStringLiteral("/regioni") + QLatin1String(ext)));
        QFile dbf(folder + QStringLiteral("/regioni.dbf"));
        QVERIFY(dbf.open(QIODevice::ReadWrite));
        QVERIFY(dbf.resize(dbf.size() - 10));  // the last record cut in the middle
        dbf.close();
        const QString project = m_dir.filePath(QStringLiteral("danneggiato.rlx"));
        QVERIFY(test::writeFile(project, projectFor(folder, QStringLiteral("regioni"))));
        const QString out = m_dir.filePath(QStringLiteral("danneggiato.png"));
        QString err;
        QCOMPARE(render(project, out, &err), 2);
        QCOMPARE(err.trimmed(),
                 QStringLiteral("mervola-cli: Il file regioni.dbf è troncato: dichiara 20 record ma ne contiene 19."));
        QVERIFY(!QFile::exists(out));
    }
};

QTEST_GUILESS_MAIN(TestRenderLink)
#include "test_render_link.moc"
