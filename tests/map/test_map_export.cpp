// Export of the map picture: every format is written, readable by what
// reads that format, chosen by the extension whatever its case; an unknown
// extension or an unwritable place is an Italian error and writes nothing.
#include "map/MapExport.h"
#include "test_map_fixtures.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::map;

namespace {

MapModel fixtureModel()
{
    MapModel m;
    MapLayer l = test::makeLayer(QStringLiteral("comuni"), test::fixturePolygons());
    Symbol red;
    red.color = 255;  // red + 256 * green + 65536 * blue
    l.renderer = SimpleRenderer{red};
    m.addLayer(std::move(l));
    return m;
}

}  // namespace

class TestMapExport : public QObject {
    Q_OBJECT
private slots:
    void formatFollowsTheExtension_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("format");  // -1: none
        QTest::newRow("bmp") << "mappa.bmp" << int(ExportFormat::Bmp);
        QTest::newRow("upper EMF") << "MAPPA.EMF" << int(ExportFormat::Emf);
        QTest::newRow("mixed Png") << "a.b/mappa.Png" << int(ExportFormat::Png);
        QTest::newRow("svg") << "mappa.svg" << int(ExportFormat::Svg);
        QTest::newRow("pdf") << "/tmp/x/mappa.pdf" << int(ExportFormat::Pdf);
        QTest::newRow("jpg") << "mappa.jpg" << -1;
        QTest::newRow("no extension") << "mappa" << -1;
        QTest::newRow("extension only in folder") << "cartella.bmp/mappa" << -1;
    }
    void formatFollowsTheExtension()
    {
        QFETCH(QString, name);
        QFETCH(int, format);
        const auto f = exportFormatFor(name);
        QCOMPARE(f ? int(*f) : -1, format);
    }

    void everyFormatIsWrittenAndReadable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("bmp") << "mappa.bmp";
        QTest::newRow("BMP") << "MAPPA.BMP";
        QTest::newRow("png") << "mappa.png";
        QTest::newRow("emf") << "mappa.emf";
        QTest::newRow("svg") << "mappa.svg";
        QTest::newRow("pdf") << "mappa.Pdf";
    }
    void everyFormatIsWrittenAndReadable()
    {
        QFETCH(QString, name);
        QTemporaryDir dir;
        const QString path = dir.filePath(name);
        const MapModel model = fixtureModel();
        const Status s = exportMap(model, model.extent(), QSize(120, 100), path);
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        switch (*exportFormatFor(path)) {
        case ExportFormat::Bmp:
        case ExportFormat::Png: {
            QVERIFY(bytes.startsWith(path.endsWith(QLatin1String("png")) ? "\x89PNG" : "BM"));
            const QImage img(path);
            QCOMPARE(img.size(), QSize(120, 100));
            // Map (20, 60) lies in the red square f2 0..40 x 60..100, which the
            // 120 x 100 picture shows from x = 10 on.
            QCOMPARE(img.pixelColor(10 + 20, 100 - 80), QColor(255, 0, 0));
            QCOMPARE(img.pixelColor(10 + 20, 100 - 20), QColor(Qt::white));  // the hole of f0
            break;
        }
        case ExportFormat::Emf: QCOMPARE(bytes.mid(40, 4), QByteArray(" EMF")); break;
        case ExportFormat::Svg:
            QVERIFY(bytes.left(200).contains("<svg"));
            QVERIFY(bytes.contains("</svg>"));
            break;
        case ExportFormat::Pdf:
            QVERIFY(bytes.startsWith("%PDF"));
            QVERIFY(bytes.trimmed().endsWith("%%EOF"));
            break;
        }
        // Only the target is left in the folder: the temporary file is gone.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{name});
    }

    void failuresAreItalianAndWriteNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("messageStart");
        QTest::newRow("unknown extension") << "mappa.jpg" << "Formato del file mappa.jpg non riconosciuto";
        QTest::newRow("missing folder") << "manca/mappa.emf" << "Impossibile scrivere il file";
        QTest::newRow("missing folder bmp") << "manca/mappa.bmp" << "Impossibile scrivere il file";
    }
    void failuresAreItalianAndWriteNothing()
    {
        QFETCH(QString, name);
        QFETCH(QString, messageStart);
        QTemporaryDir dir;
        const MapModel model = fixtureModel();
        const Status s = exportMap(model, model.extent(), QSize(50, 50), dir.filePath(name));
        QVERIFY(!s.ok());
        QVERIFY2(s.errorMessage().startsWith(messageStart), qPrintable(s.errorMessage()));
        QVERIFY(QDir(dir.path()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot).isEmpty());
    }

    void anExistingFileIsReplacedWhole()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("mappa.emf"));
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(1 << 20, 'x'));  // larger than the new picture
        old.close();
        const MapModel model = fixtureModel();
        QVERIFY(exportMap(model, model.extent(), QSize(50, 50), path).ok());
        QFile now(path);
        QVERIFY(now.open(QIODevice::ReadOnly));
        const QByteArray bytes = now.readAll();
        QVERIFY(bytes.size() < (1 << 20));
        QCOMPARE(bytes.mid(40, 4), QByteArray(" EMF"));
    }
};

QTEST_MAIN(TestMapExport)
#include "test_map_export.moc"
