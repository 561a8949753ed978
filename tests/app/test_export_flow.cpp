// The "Esporta mappa" command: the dialog title and filter handed to the file
// chooser, the conversion of the "|" filter to Qt's form, and the overwrite
// question that must come before any existing file is touched.
#include "app/ExportFlow.h"
#include "platform/Messages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

using namespace mervola;

namespace {

map::MapModel squareModel()
{
    auto d = std::make_shared<map::LayerData>();
    d->kind = map::GeometryKind::Polygon;
    const double ring[] = {0, 0, 0, 10, 10, 10, 10, 0, 0, 0};
    d->beginFeature();
    d->addRing(ring, 5);
    d->endFeature();
    d->finish();
    map::MapModel m;
    map::MapLayer layer;
    layer.name = QStringLiteral("regioni");
    layer.data = d;
    m.addLayer(std::move(layer));
    return m;
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

}  // namespace

class TestExportFlow : public QObject {
    Q_OBJECT
private slots:
    void filterKeepsTheClassicTextAndAddsTheNewFormats()
    {
        QCOMPARE(exportFilter(), QStringLiteral("Formato bmp (*.bmp)|*.bmp|Formato emf(*.emf)|*.emf|"
                                                "Formato png (*.png)|*.png|Formato svg (*.svg)|*.svg|"
                                                "Formato pdf (*.pdf)|*.pdf"));
    }

    void commonDialogFilterBecomesQtFilter_data()
    {
        QTest::addColumn<QString>("vb");
        QTest::addColumn<QString>("qt");
        QTest::newRow("classic pair") << "Formato bmp (*.bmp)|*.bmp|Formato emf(*.emf)|*.emf"
                                      << "Formato bmp (*.bmp);;Formato emf(*.emf)";
        QTest::newRow("description without pattern") << "Tabelle dBase|*.dbf" << "Tabelle dBase (*.dbf)";
        QTest::newRow("several patterns") << "Immagini|*.bmp;*.png" << "Immagini (*.bmp *.png)";
        QTest::newRow("other pattern in parentheses") << "Formato (vecchio)|*.old" << "Formato (vecchio) (*.old)";
        QTest::newRow("dangling description") << "Formato dbf (*.dbf)|*.dbf|Avanzo" << "Formato dbf (*.dbf)";
        QTest::newRow("empty") << "" << "";
    }
    void commonDialogFilterBecomesQtFilter()
    {
        QFETCH(QString, vb);
        QFETCH(QString, qt);
        QCOMPARE(toQtFileFilter(vb), qt);
    }

    void chooserGetsTitleAndFilter()
    {
        QString title, filter;
        const Status s = runExportCommand(squareModel(), squareModel().extent(), QSize(20, 20),
                                          [&](QString t, QString f, QString *) {
                                              title = t;
                                              filter = f;
                                              return QString();
                                          });
        QVERIFY(s.ok());
        QCOMPARE(title, QStringLiteral("Esporta mappa"));
        QCOMPARE(filter, QStringLiteral("Formato bmp (*.bmp);;Formato emf(*.emf);;Formato png (*.png);;"
                                        "Formato svg (*.svg);;Formato pdf (*.pdf)"));
    }

    // What happens for a chosen name, whether the file is already there, and
    // the answer given to the question.
    void overwriteNeedsConsent_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("exists");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("writtenAs");
        QTest::newRow("cancelled chooser") << "" << false << int(MsgAnswer::Ok) << false << false << "";
        QTest::newRow("new file, no question") << "mappa.emf" << false << int(MsgAnswer::Ok) << false << true
                                               << "mappa.emf";
        QTest::newRow("existing, cancel keeps it") << "mappa.bmp" << true << int(MsgAnswer::Cancel) << true
                                                   << false << "mappa.bmp";
        QTest::newRow("existing, ok replaces it") << "mappa.png" << true << int(MsgAnswer::Ok) << true << true
                                                  << "mappa.png";
        QTest::newRow("no extension gets bmp") << "mappa" << false << int(MsgAnswer::Ok) << false << true
                                               << "mappa.bmp";
    }
    void overwriteNeedsConsent()
    {
        QFETCH(QString, name);
        QFETCH(bool, exists);
        QFETCH(int, answer);
        QFETCH(bool, asked);
        QFETCH(bool, written);
        QFETCH(QString, writtenAs);
        QTemporaryDir dir;
        const QString chosen = name.isEmpty() ? QString() : dir.filePath(name);
        const QString target = writtenAs.isEmpty() ? QString() : dir.filePath(writtenAs);
        const QByteArray old("vecchio contenuto");
        if (exists)
            write(target, old);

        MessageRecorder recorder;
        recorder.script(MsgAnswer(answer));
        const map::MapModel model = squareModel();
        const Status s =
            runExportCommand(model, model.extent(), QSize(40, 30), [&](QString, QString, QString *) { return chosen; });
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));

        QCOMPARE(recorder.entries().size(), asked ? 1 : 0);
        if (asked) {
            QCOMPARE(recorder.entries().first().style, 49);
            QCOMPARE(recorder.entries().first().title, QStringLiteral("Mervola"));
            QCOMPARE(recorder.entries().first().text,
                     QStringLiteral("Il file ") + target + QStringLiteral(" è già esistente. Sostituire il file?"));
        }
        if (target.isEmpty()) {
            QVERIFY(QDir(dir.path()).isEmpty());
        } else if (written) {
            QVERIFY(QFile::exists(target));
            QVERIFY(contents(target) != old);
        } else {
            QCOMPARE(contents(target), exists ? old : QByteArray());
        }
    }

    void failedExportIsReturnedNotShown()
    {
        // An existing file of a format we do not write: no question, no change.
        QTemporaryDir dir;
        write(dir.filePath(QStringLiteral("mappa.gif")), "GIF89a");
        MessageRecorder recorder;
        const map::MapModel model = squareModel();
        const Status s = runExportCommand(model, model.extent(), QSize(40, 30), [&](QString, QString, QString *) {
            return dir.filePath(QStringLiteral("mappa.gif"));
        });
        QVERIFY(!s.ok());
        QVERIFY(s.errorMessage().contains(QStringLiteral("mappa.gif")));
        QVERIFY(recorder.entries().isEmpty());
        QCOMPARE(contents(dir.filePath(QStringLiteral("mappa.gif"))), QByteArray("GIF89a"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mappa.gif")});
    }
};

QTEST_MAIN(TestExportFlow)
#include "test_export_flow.moc"
