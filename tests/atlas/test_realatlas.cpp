// One build of the whole of Italy from the real sources (skipped when they
// are not beside the checkout): counts, region labels, community themes.
#include "atlas/AtlasBuilder.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

using namespace mervola;

namespace {

QStringList labels(const QString &path, int *count)
{
    QStringList out;
    *count = -1;
    GDALAllRegister();
    std::unique_ptr<GDALDataset> ds(
        GDALDataset::Open(path.toUtf8().constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
    if (!ds)
        return out;
    OGRLayer *layer = ds->GetLayer(0);
    *count = static_cast<int>(layer->GetFeatureCount());
    const int label = layer->GetLayerDefn()->GetFieldIndex("Label");
    for (auto &f : *layer)
        out << QString::fromUtf8(f->GetFieldAsString(label));
    return out;
}

}  // namespace

class TestRealAtlas : public QObject {
    Q_OBJECT
private slots:
    void wholeItalyBuildsWithTheExpectedThemes()
    {
        const QString sources = test::atlasSourceDir();
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia-intera"));
        QElapsedTimer timer;
        timer.start();
        const Status s = atlas::buildAtlas({sources, home, {}});
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        qInfo("Tempo di costruzione: %lld ms", static_cast<long long>(timer.elapsed()));
        QVERIFY(timer.elapsed() < 60000);

        int count = 0;
        const QStringList regions = labels(home + QStringLiteral("/italia/regioni.shp"), &count);
        QCOMPARE(count, 20);
        const QStringList expected = {"PIEMONTE", "VALLE D'AOSTA", "LOMBARDIA", "TRENTINO ALTO ADIGE", "VENETO",
                                      "FRIULI VENEZIA GIULIA", "LIGURIA", "EMILIA ROMAGNA", "TOSCANA", "UMBRIA",
                                      "MARCHE", "LAZIO", "ABRUZZO", "MOLISE", "CAMPANIA", "PUGLIA", "BASILICATA",
                                      "CALABRIA", "SICILIA", "SARDEGNA"};
        QCOMPARE(regions, expected);
        labels(home + QStringLiteral("/italia/province.shp"), &count);
        QCOMPARE(count, 107);
        const QStringList comuni = labels(home + QStringLiteral("/italia/comuni.shp"), &count);
        QCOMPARE(count, 7899);
        QVERIFY(comuni.contains(QStringLiteral("Duino Aurisina-Devin Nabrežina")));
        QVERIFY(comuni.contains(QStringLiteral("Miagliano")));  // kept without geometry
        labels(home + QStringLiteral("/italia/commont.shp"), &count);
        QVERIFY(count > 100);

        int perRegion = 0;
        for (int r = 1; r <= 20; ++r) {
            const QString nn = QStringLiteral("%1").arg(r, 2, 10, QLatin1Char('0'));
            int n = 0;
            labels(home + QStringLiteral("/italia/comu_") + nn + QStringLiteral(".shp"), &n);
            QVERIFY2(n > 0, qPrintable(nn));
            perRegion += n;
            const bool hasCommunities = QFile::exists(home + QStringLiteral("/italia/cmont_") + nn + QStringLiteral(".shp"));
            QCOMPARE(hasCommunities, r != 19);
        }
        QCOMPARE(perRegion, 7899);
    }
};

QTEST_GUILESS_MAIN(TestRealAtlas)
#include "test_realatlas.moc"
