// mervola-cli render draws the default project or a given project file,
// with the project's classes, without writing into the atlas home; with
// --region and --all-regions, the maps of the regions as the region box
// shows them.
#include "map/LayerData.h"
#include "map/MapTransform.h"
#include "support/TestSupport.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QtTest>

using namespace mervola;

namespace {

int countColour(const QImage &img, QRgb colour)
{
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            n += (img.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF);
    return n;
}

const QRgb kMunicipalityCyan = qRgb(0, 255, 255);  // pristine comu_NN fill
const QRgb kCommunityGreen = qRgb(0, 220, 0);      // pristine cmont_NN fill

// The default project with every municipality of all Italy in one red class.
QString redProject(const QString &home)
{
    QString text = QString::fromUtf8(test::readFile(home + QStringLiteral("/supporto/default.rlx")));
    const int at = text.indexOf(QStringLiteral("[comuni]"));
    const int tipo = text.indexOf(QStringLiteral("TIPOCLASSIFICAZIONE=0"), at);
    const int campo = text.indexOf(QStringLiteral("CAMPO="), at);
    const int cls = text.indexOf(QStringLiteral("\nCLASSIFICAZIONE=0"), at) + 1;
    if (at < 0 || tipo < 0 || campo < tipo || cls < campo)
        return {};
    text.replace(cls, QStringLiteral("CLASSIFICAZIONE=0").size(),
                 QStringLiteral("CLASSIFICAZIONE=0^-1000000000 - 1000000000^0^255^tutti^0^1^|"));
    const int campoEnd = text.indexOf(QLatin1Char('\n'), campo);
    text.replace(campo, campoEnd - campo, QStringLiteral("CAMPO=_01001^1^0^0^"));
    text.replace(tipo, QStringLiteral("TIPOCLASSIFICAZIONE=0").size(), QStringLiteral("TIPOCLASSIFICAZIONE=QUANTILE"));
    return text;
}

// Pixels of the municipality and community colours outside and inside a
// region's outline (widened by 3 pixels for the two sources' different
// simplification), the map showing the region's box enlarged 1.2 times.
struct RegionPixels {
    int inside = 0, outside = 0, community = 0;
};
RegionPixels regionPixels(const QImage &img, const map::LayerData &regions, const QString &code)
{
    RegionPixels out;
    const map::Column *cod = regions.column(QStringLiteral("COD_REG"));
    int feature = -1;
    for (int f = 0; f < regions.featureCount(); ++f)
        if (cod->text(f) == code)
            feature = f;
    if (feature < 0)
        return out;
    const map::MapTransform t(regions.featureExtent(feature).scaled(1.2), img.size());
    QPainterPath outline;
    outline.setFillRule(Qt::OddEvenFill);
    for (std::uint32_t r = regions.featureRing[size_t(feature)]; r < regions.featureRing[size_t(feature) + 1]; ++r) {
        QPolygonF ring;
        for (std::uint32_t v = regions.ringStart[r]; v < regions.ringStart[r + 1]; ++v)
            ring << t.toDevice(QPointF(regions.xy[2 * v], regions.xy[2 * v + 1]));
        outline.addPolygon(ring);
    }
    QImage mask(img.size(), QImage::Format_RGB32);
    mask.fill(Qt::black);
    QPainter p(&mask);
    p.setPen(QPen(Qt::white, 7));
    p.setBrush(Qt::white);
    p.drawPath(outline);
    p.end();
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            const QRgb c = img.pixel(x, y) & 0xFFFFFF;
            const bool drawn = c == (kMunicipalityCyan & 0xFFFFFF) || c == (kCommunityGreen & 0xFFFFFF);
            if (!drawn)
                continue;
            (mask.pixel(x, y) & 0xFFFFFF ? out.inside : out.outside) += 1;
            out.community += c == (kCommunityGreen & 0xFFFFFF);
        }
    return out;
}

QStringList filesWithTimes(const QString &dir)
{
    QStringList out;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        out << it.filePath() + QString::number(it.fileInfo().lastModified().toMSecsSinceEpoch());
    }
    out.sort();
    return out;
}

}  // namespace

class TestRenderCli : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

    int render(const QStringList &extra, const QString &out, QString *err = nullptr)
    {
        return test::runProgram(QStringLiteral(MERVOLA_CLI),
                                QStringList{QStringLiteral("render"), QStringLiteral("--home"), m_home,
                                            QStringLiteral("--size"), QStringLiteral("400x300"),
                                            QStringLiteral("--out"), out} + extra,
                                nullptr, err);
    }

private slots:
    void initTestCase()
    {
        m_home = m_dir.path() + QStringLiteral("/home");
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("build-atlas"), QStringLiteral("--demo"), QStringLiteral("--home"), m_home}),
                 0);
    }

    void projectClassesAreDrawn()
    {
        const QString plain = m_dir.path() + QStringLiteral("/plain.png");
        const auto before = filesWithTimes(m_home);
        QCOMPARE(render({}, plain), 0);
        QCOMPARE(filesWithTimes(m_home), before);
        const QImage a(plain);
        QCOMPARE(a.size(), QSize(400, 300));
        const QRgb red = qRgb(255, 0, 0);
        QCOMPARE(countColour(a, red), 0);

        const QString text = redProject(m_home);
        QVERIFY(!text.isEmpty());
        const QString project = m_dir.path() + QStringLiteral("/rosso.rlx");
        QVERIFY(test::writeFile(project, text.toUtf8()));
        const QString classified = m_dir.path() + QStringLiteral("/rosso.png");
        QString err;
        QVERIFY2(render({QStringLiteral("--project"), project}, classified, &err) == 0, qPrintable(err));
        QVERIFY(countColour(QImage(classified), red) > 100);
    }

    void badInputIsRefusedInItalian()
    {
        QString err;
        QVERIFY(render({QStringLiteral("--project"), m_dir.path() + QStringLiteral("/manca.rlx")},
                       m_dir.path() + QStringLiteral("/x.png"), &err) != 0);
        QVERIFY(err.contains(QStringLiteral("Impossibile")));
        QVERIFY(render({}, m_dir.path() + QStringLiteral("/x.jpg"), &err) != 0);
        QVERIFY(!QFile::exists(m_dir.path() + QStringLiteral("/x.jpg")));

        // Command-line mistakes exit with 2, failed work with 1.
        QCOMPARE(render({QStringLiteral("--region"), QStringLiteral("21")}, m_dir.path() + QStringLiteral("/r.png"), &err),
                 2);
        QVERIFY2(err.contains(QStringLiteral("regione sconosciuta: 21")), qPrintable(err));
        QCOMPARE(render({QStringLiteral("--all-regions"), m_dir.path()}, m_dir.path() + QStringLiteral("/r.png"), &err), 2);
        QCOMPARE(render({QStringLiteral("--project"), m_dir.path() + QStringLiteral("/manca.rlx")},
                        m_dir.path() + QStringLiteral("/x.png"), &err),
                 1);

        // A text file is no project, even one holding a project's lines.
        const QString text = m_dir.path() + QStringLiteral("/progetto.txt");
        QVERIFY(QFile::copy(m_home + QStringLiteral("/supporto/default.rlx"), text));
        const QString out = m_dir.path() + QStringLiteral("/t.png");
        QCOMPARE(render({QStringLiteral("--project"), text}, out, &err), 1);
        QCOMPARE(err, QStringLiteral("mervola-cli: L'estensione del file di progetto non è corretta.\n"));
        QVERIFY(!QFile::exists(out));
    }

    // A table cut short is named, never drawn in part.
    void damagedTableIsRefused()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia"));
        QVERIFY(test::copyRealAtlas(home));
        const QString dbf = home + QStringLiteral("/italia/comuni.dbf");
        const QByteArray whole = test::readFile(dbf);
        QVERIFY(test::writeFile(dbf, whole.left(whole.size() / 2)));
        // Whole records left: (half the file - header) / record length.
        const auto le16 = [&](int at) { return int(uchar(whole[at])) | int(uchar(whole[at + 1])) << 8; };
        const int complete = int((whole.size() / 2 - le16(8)) / le16(10));
        const QString out = dir.filePath(QStringLiteral("mappa.png"));
        QString err;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("render"), QStringLiteral("--home"), home, QStringLiteral("--out"), out},
                                  nullptr, &err),
                  1);
        QCOMPARE(err, QStringLiteral("mervola-cli: Il file comuni.dbf è danneggiato: contiene %1 record completi su 7.899.\n")
                          .arg(QLocale(QLocale::Italian).toString(complete)));
        QVERIFY(!QFile::exists(out));
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("sql"), QStringLiteral("--folder"), home + QStringLiteral("/italia"),
                                   QStringLiteral("SELECT COUNT(*) FROM comuni")},
                                  nullptr, &err),
                 1);
        QVERIFY2(err.contains(QStringLiteral("Il file comuni.dbf è danneggiato")), qPrintable(err));
    }

    void everyRegionOfTheRealAtlasShowsOnlyItsOwnThemes()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia"));
        QVERIFY(test::copyRealAtlas(home));
        const QString project = dir.filePath(QStringLiteral("classificato.rlx"));
        QVERIFY(test::writeFile(project, redProject(home).toUtf8()));
        const QString maps = dir.filePath(QStringLiteral("carte"));
        const auto before = filesWithTimes(home);

        QElapsedTimer clock;
        clock.start();
        QString out, err;
        const int rc = test::runProgram(QStringLiteral(MERVOLA_CLI),
                                        {QStringLiteral("render"), QStringLiteral("--home"), home,
                                         QStringLiteral("--project"), project, QStringLiteral("--size"),
                                         QStringLiteral("800x600"), QStringLiteral("--all-regions"), maps},
                                        &out, &err);
        QVERIFY2(rc == 0, qPrintable(err));
        qInfo("21 carte in %lld ms", static_cast<long long>(clock.elapsed()));
        QCOMPARE(filesWithTimes(home), before);

        const QStringList lines = out.trimmed().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 21);
        QCOMPARE(lines.first(), QStringLiteral("Carta 1/21: <Tutta l'Italia> -> ") + maps + QStringLiteral("/00_italia.png"));
        QCOMPARE(lines.at(2), QStringLiteral("Carta 3/21: VALLE D'AOSTA -> ") + maps + QStringLiteral("/02_valle_d_aosta.png"));
        const QStringList files = QDir(maps).entryList(QDir::Files, QDir::Name);
        QCOMPARE(files.size(), 21);
        QCOMPARE(files.first(), QStringLiteral("00_italia.png"));
        QCOMPARE(files.at(6), QStringLiteral("06_friuli_venezia_giulia.png"));
        QCOMPARE(files.last(), QStringLiteral("20_sardegna.png"));

        // All Italy carries the project's class: every municipality red.
        const QImage italy(maps + QStringLiteral("/00_italia.png"));
        QCOMPARE(italy.size(), QSize(800, 600));
        QVERIFY(countColour(italy, qRgb(255, 0, 0)) > 2000);
        QCOMPARE(countColour(italy, kMunicipalityCyan), 0);

        auto regions = map::LayerData::loadShapefile(home + QStringLiteral("/italia/regioni.shp"));
        QVERIFY(regions.ok());
        for (int r = 1; r < files.size(); ++r) {
            const QString code = files.at(r).left(2);
            const RegionPixels px = regionPixels(QImage(maps + QLatin1Char('/') + files.at(r)), **regions, code);
            const QString what = QStringLiteral("%1: %2 dentro, %3 fuori, %4 comunità")
                                     .arg(files.at(r)).arg(px.inside).arg(px.outside).arg(px.community);
            QVERIFY2(px.inside > 20000, qPrintable(what));
            QVERIFY2(px.outside * 100 < px.inside, qPrintable(what));
            QVERIFY2(code == QLatin1String("19") ? px.community == 0 : px.community > 500, qPrintable(what));
        }
    }

    void oneRegionByNameOrCode()
    {
        QString err;
        const QString byName = m_dir.path() + QStringLiteral("/aosta.svg");
        QVERIFY2(render({QStringLiteral("--region"), QStringLiteral("valle d'aosta")}, byName, &err) == 0, qPrintable(err));
        const QString byCode = m_dir.path() + QStringLiteral("/aosta-2.svg");
        QVERIFY2(render({QStringLiteral("--region"), QStringLiteral("2")}, byCode, &err) == 0, qPrintable(err));
        QCOMPARE(test::readFile(byName), test::readFile(byCode));
        QVERIFY(test::readFile(byName).startsWith("<?xml"));
    }
};

QTEST_GUILESS_MAIN(TestRenderCli)
#include "test_render_cli.moc"
