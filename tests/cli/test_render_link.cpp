// mervola-cli render runs without GDAL in the process: the executable does
// not link it, and themes the direct reader leaves aside are read through
// the tools module, loaded only for them. Damaged themes stop the render
// with an Italian message.
#include "support/TestSupport.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>

using namespace mervola;

namespace
{

// One theme in red with black outlines, from `folder`, over the extent of Italy.
QByteArray projectFor(const QString &folder, const QString &theme)
{
    return QStringLiteral("[RLX]\nEXTENT=313323^3933845^1312015^5220293^\n[%2]\nWORKSPACE=%1/\nBASE=%2.shp^%2^\n"
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

} // namespace

class TestRenderLink : public QObject
{
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

    // The regions with `changed` applied to a copy of their files.
    QString regionsCopy(const QString &name, const std::function<void(const QString &base)> &changed)
    {
        const QString folder = m_dir.filePath(name);
        QDir().mkpath(folder);
        for (const char *ext : {".shp", ".shx", ".dbf", ".cpg"})
            QFile::copy(m_dir.filePath(QStringLiteral("reale/italia/regioni")) + QLatin1String(ext),
                        folder + QStringLiteral("/regioni") + QLatin1String(ext));
        changed(folder + QStringLiteral("/regioni"));
        const QString project = m_dir.filePath(name + QStringLiteral(".rlx"));
        test::writeFile(project, projectFor(folder, QStringLiteral("regioni")));
        return project;
    }

private slots:
    void executableDoesNotLinkGdal()
    {
#ifdef __SANITIZE_ADDRESS__
        // AddressSanitizer registers every global of a compile batch from
        // the batch's constructor, so the linker keeps them all: the shipped
        // executable's links are judged in the optimised build.
        QSKIP("links judged in the optimised build");
#endif
        QString out;
        QCOMPARE(test::runProgram(QStringLiteral("ldd"), {QStringLiteral(MERVOLA_CLI)}, &out), 0);
        QVERIFY(out.contains(QLatin1String("libQt6Gui")));
        QVERIFY2(!out.contains(QLatin1String("libgdal")), qPrintable(out));
        QVERIFY(
            QFileInfo::exists(QFileInfo(QStringLiteral(MERVOLA_CLI)).path() + QStringLiteral("/mervola-cli-tools.so")));
    }

    void initTestCase() { QVERIFY(test::copyRealAtlas(m_dir.filePath(QStringLiteral("reale")))); }

    void foreignThemeIsReadThroughTheModule()
    {
        // A code page only GDAL reads.
        const QString project = regionsCopy(QStringLiteral("estero"), [](const QString &base) {
            test::writeFile(base + QStringLiteral(".cpg"), "1252\n");
        });
        const QString out = m_dir.filePath(QStringLiteral("estero.png"));
        QString err;
        QVERIFY2(render(project, out, &err) == 0, qPrintable(err));
        QVERIFY(redPixels(QImage(out)) > 5000);
    }

    void vectorPictureWithoutSessionIsQuiet()
    {
        // A PDF needs the GUI application, which a run from cron or ssh
        // starts without a runtime folder: no warning may reach stderr.
        const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
        qunsetenv("XDG_RUNTIME_DIR");
        const QString project = regionsCopy(QStringLiteral("vettoriale"), [](const QString &) {});
        const QString out = m_dir.filePath(QStringLiteral("vettoriale.pdf"));
        QString err;
        const int code = render(project, out, &err);
        if (!saved.isEmpty())
            qputenv("XDG_RUNTIME_DIR", saved);
        QCOMPARE(code, 0);
        QCOMPARE(err, QString());
        QVERIFY(QFileInfo(out).size() > 1000);
    }

    void damagedThemeStopsTheRender()
    {
        // The last record of the table cut in the middle.
        const QString project = regionsCopy(QStringLiteral("danneggiato"), [](const QString &base) {
            QFile dbf(base + QStringLiteral(".dbf"));
            dbf.open(QIODevice::ReadWrite);
            dbf.resize(dbf.size() - 10);
        });
        const QString out = m_dir.filePath(QStringLiteral("danneggiato.png"));
        QString err;
        QCOMPARE(render(project, out, &err), 1);  // the operation failed
        QCOMPARE(err.trimmed(),
                 QStringLiteral("mervola-cli: Il file regioni.dbf è danneggiato: contiene 19 record completi su 20."));
        QVERIFY(!QFile::exists(out));
    }
};

QTEST_GUILESS_MAIN(TestRenderLink)
#include "test_render_link.moc"
