// The atlas of the whole of Italy built by mervola-cli from the real sources
// (once per build tree, see TestSupport): counts, region labels, community
// themes, the membership rule of the communities and the builder's report of
// what the sources lack.
#include "support/TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
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
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia-intera"));
        QVERIFY(test::copyRealAtlas(home));
        const QStringList log = test::realAtlasBuildLog().split(QLatin1Char('\n'));
        const QString time = log.filter(QStringLiteral("Tempo: ")).value(0);
        qInfo("%s", qPrintable(time));
        QVERIFY2(time.mid(7).section(QLatin1Char(' '), 0, 0).toDouble() < 60, qPrintable(time));

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

        // What the sources lack, found in the data and printed by the builder.
        const int gapsAt = int(log.indexOf(QStringLiteral("Lacune dei dati di origine:")));
        QVERIFY2(gapsAt >= 0, qPrintable(log.join('\n')));
        const QStringList gaps = log.mid(gapsAt + 1, 3);
        QCOMPARE(gaps.value(0), QStringLiteral("  Comune senza geometria (il record resta, fuori da ogni comunità "
                                               "montana): Miagliano (096034), provincia di Biella"));
        QCOMPARE(gaps.value(1), QStringLiteral("  Area non coperta da alcun comune in PIEMONTE (province di Asti e "
                                               "Torino): 10,9 km² fra Aramengo, Brozolo, Brusasco, Casalborgone, "
                                               "Cavagnolo, Cocconato, Lauriano"));
        QCOMPARE(gaps.value(2), QStringLiteral("  Area non coperta da alcun comune in LOMBARDIA (provincia di Varese): "
                                               "7,8 km² fra Besozzo, Biandronno, Brebbia, Gavirate, Travedona-Monate"));
        QVERIFY2(!log.value(gapsAt + 4).startsWith(QLatin1String("  ")), qPrintable(log.value(gapsAt + 4)));
        QVERIFY(test::readFile(home + QStringLiteral("/mervola.html")).contains("Miagliano (096034)"));

        // No provincial capital and no town of more than 40,000 inhabitants
        // belongs to a community; Rome left "Comunità montana Roma 2".
        auto sql = [&](const QString &statement) {
            QString out, err;
            const int rc = test::runProgram(QStringLiteral(MERVOLA_CLI),
                                            {QStringLiteral("sql"), QStringLiteral("--folder"), home + "/italia", statement},
                                            &out, &err);
            return rc == 0 ? out.split('\n').value(1).trimmed() : QStringLiteral("errore: ") + err;
        };
        QCOMPARE(sql(QStringLiteral("SELECT COUNT(*) FROM comuni WHERE PROG_MONT <> '' AND ([_02010] > 40000 OR "
                                    "COD_ISTAT IN (SELECT COD_ISTAT FROM citta))")),
                 QStringLiteral("0"));
        QCOMPARE(sql(QStringLiteral("SELECT COUNT(*) FROM citta")), QStringLiteral("109"));
        QCOMPARE(sql(QStringLiteral("SELECT PROG_MONT FROM comuni WHERE COD_ISTAT = '058091'")), QString());
        QVERIFY(sql(QStringLiteral("SELECT MAX(I010) FROM commont")).toDouble() < 400000);

        // Five regular intervals of the communities' population spread them
        // over the classes instead of one giant and all the rest.
        QString json;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("classify"), QStringLiteral("--home"), home, QStringLiteral("--theme"),
                                   QStringLiteral("commont"), QStringLiteral("--field"), QStringLiteral("I010"),
                                   QStringLiteral("--method"), QStringLiteral("regolari"), QStringLiteral("--classes"),
                                   QStringLiteral("5")},
                                  &json),
                 0);
        const QJsonArray classes = QJsonDocument::fromJson(json.toUtf8())["classes"].toArray();
        QCOMPARE(classes.size(), 5);
        int total = 0;
        for (const QJsonValue &c : classes)
            total += c["count"].toInt();
        const int first = classes[0]["count"].toInt();
        QVERIFY2(first * 100 < total * 75, qPrintable(QStringLiteral("%1 di %2").arg(first).arg(total)));
    }
};

QTEST_GUILESS_MAIN(TestRealAtlas)
#include "test_realatlas.moc"
