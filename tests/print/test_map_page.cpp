// The printed map page: scale arithmetic, layout and the painted page.
#include "platform/NumberText.h"
#include "print/MapPage.h"
#include "test_map_page_fixture.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

// A4 at 96 dpi.
const QSize kPortrait(794, 1123);
const QSize kLandscape(1123, 794);

bool hasInk(const QImage &img, const QRectF &r)
{
    const QRect box = r.toAlignedRect().intersected(img.rect());
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            if (qGray(img.pixel(x, y)) < 128)
                return true;
    return false;
}

bool hasColor(const QImage &img, const QRectF &r, QColor c)
{
    const QRect box = r.toAlignedRect().intersected(img.rect());
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x) {
            const QColor p = img.pixelColor(x, y);
            if (std::abs(p.red() - c.red()) < 8 && std::abs(p.green() - c.green()) < 8
                && std::abs(p.blue() - c.blue()) < 8)
                return true;
        }
    return false;
}

bool allWhite(const QImage &img, const QRectF &r)
{
    const QRect box = r.toAlignedRect().intersected(img.rect());
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            if (img.pixel(x, y) != qRgb(255, 255, 255))
                return false;
    return true;
}

MapPageLayout layoutFor(const MapPageContent &pageContent, QSize size)
{
    QImage device(1, 1, QImage::Format_ARGB32);
    device.setDotsPerMeterX(int(96 / 0.0254 + 0.5));
    device.setDotsPerMeterY(int(96 / 0.0254 + 0.5));
    return layoutMapPage(QRectF(QPointF(0, 0), QSizeF(size)), pageContent, &device);
}

}  // namespace

class TestMapPage : public QObject {
    Q_OBJECT
private slots:
    void scaleOfThePrintedMap_data()
    {
        QTest::addColumn<double>("extentWidth");
        QTest::addColumn<double>("widthPx");
        QTest::addColumn<double>("dpi");
        QTest::addColumn<QString>("text");
        // 100 mm of paper (393.7 px at 100 dpi) showing 100 km: 1:1.000.000.
        QTest::newRow("1:1.000.000") << 100000.0 << 393.7007874 << 100.0 << "Scala 1:1.000.000";
        QTest::newRow("same paper at 300 dpi") << 100000.0 << 1181.1023622 << 300.0 << "Scala 1:1.000.000";
        QTest::newRow("integer part") << 1234.9 << 1000.0 << 25.4 << "Scala 1:1.234";
        QTest::newRow("below a thousand") << 500.0 << 1000.0 << 25.4 << "Scala 1:500";
        QTest::newRow("all Italy on A4") << 1300000.0 << 680.0 << 96.0 << "Scala 1:7.225.567";
        QTest::newRow("no paper") << 1000.0 << 0.0 << 96.0 << "Scala 1:0";
    }
    void scaleOfThePrintedMap()
    {
        QFETCH(double, extentWidth);
        QFETCH(double, widthPx);
        QFETCH(double, dpi);
        QFETCH(QString, text);
        QCOMPARE(scaleText(pageScale(extentWidth, widthPx, dpi)), text);
    }

    void scaleBarLengthsAreRound_data()
    {
        QTest::addColumn<double>("maxMetres");
        QTest::addColumn<double>("metres");
        QTest::addColumn<QString>("text");
        QTest::newRow("exact power") << 1000.0 << 1000.0 << "1 km";
        QTest::newRow("two") << 3999.0 << 2000.0 << "2 km";
        QTest::newRow("five") << 7300.0 << 5000.0 << "5 km";
        QTest::newRow("metres") << 999.0 << 500.0 << "500 m";
        QTest::newRow("large") << 260000.0 << 200000.0 << "200 km";
        QTest::newRow("nothing") << 0.0 << 0.0 << "0 m";
    }
    void scaleBarLengthsAreRound()
    {
        QFETCH(double, maxMetres);
        QFETCH(double, metres);
        QFETCH(QString, text);
        QCOMPARE(roundBarLength(maxMetres), metres);
        QCOMPARE(barLengthText(metres), text);
    }

    void kilometresWithADecimalComma() { QCOMPARE(barLengthText(1500), QStringLiteral("1,5 km")); }

    void thousandsGrouping_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("short") << qint64(999) << "999";
        QTest::newRow("four") << qint64(1000) << "1.000";
        QTest::newRow("seven") << qint64(1234567) << "1.234.567";
        QTest::newRow("negative") << qint64(-25000) << "-25.000";
    }
    void thousandsGrouping()
    {
        QFETCH(qint64, value);
        QFETCH(QString, text);
        QCOMPARE(groupDigits(value), text);
    }

    void visibleThemes()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Portrait);
        QVERIFY(hasVisibleTheme(pageContent.model));
        pageContent.model.layer(0).visible = false;
        QVERIFY(!hasVisibleTheme(pageContent.model));
        QVERIFY(!hasVisibleTheme(map::MapModel()));
    }

    void layoutKeepsTheExtentShape_data()
    {
        QTest::addColumn<bool>("landscape");
        QTest::addColumn<double>("extentW");
        QTest::addColumn<double>("extentH");
        QTest::newRow("portrait, wide map") << false << 200000.0 << 100000.0;
        QTest::newRow("portrait, tall map") << false << 100000.0 << 300000.0;
        QTest::newRow("landscape, wide map") << true << 200000.0 << 100000.0;
        QTest::newRow("landscape, tall map") << true << 100000.0 << 300000.0;
    }
    void layoutKeepsTheExtentShape()
    {
        QFETCH(bool, landscape);
        QFETCH(double, extentW);
        QFETCH(double, extentH);
        const auto o = landscape ? QPageLayout::Landscape : QPageLayout::Portrait;
        const MapPageContent pageContent = stripePage(o, extentW, extentH);
        const MapPageLayout l = layoutFor(pageContent, landscape ? kLandscape : kPortrait);
        QVERIFY(!l.mapFrame.isEmpty());
        QVERIFY(std::abs(l.mapFrame.width() / l.mapFrame.height() - extentW / extentH) < 0.02);
        QVERIFY(l.content.contains(l.mapFrame));
        QVERIFY(l.mapArea.contains(l.mapFrame));
        // Title above the map, the bottom band below everything.
        QVERIFY(l.title.bottom() <= l.mapFrame.top());
        QVERIFY(l.mapFrame.bottom() <= l.bottom.top());
        QVERIFY(l.legend.bottom() <= l.bottom.top() + 0.5);
        QVERIFY(!l.mapFrame.intersects(l.legend));
        if (landscape)
            QVERIFY(l.legend.left() >= l.mapFrame.right());  // legend beside the map
        else
            QVERIFY(l.legend.top() >= l.mapFrame.bottom());  // legend under the map
        QVERIFY(l.content.contains(l.legend.adjusted(1, 1, -1, -1)));
    }

    void freeTextSitsBetweenMapAndBottom()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Portrait);
        const MapPageLayout without = layoutFor(pageContent, kPortrait);
        QVERIFY(without.freeText.isEmpty());
        pageContent.freeText = QStringLiteral("Fonte: ISTAT, censimento 2021.\nElaborazione Mervola.");
        const MapPageLayout l = layoutFor(pageContent, kPortrait);
        QVERIFY(!l.freeText.isEmpty());
        QVERIFY(l.freeText.top() >= l.legend.bottom());
        QVERIFY(l.freeText.bottom() <= l.bottom.top());
        QVERIFY(l.mapFrame.height() <= without.mapFrame.height());
    }

    void hiddenThemesStayOutOfTheLegend()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Landscape);
        const MapPageLayout shown = layoutFor(pageContent, kLandscape);
        MapPageTheme hidden;
        hidden.alias = QStringLiteral("Un nome di tema molto lungo che allargherebbe la legenda");
        hidden.visible = false;
        hidden.classes.assign(40, {Qt::red, Qt::black, QStringLiteral("classe"), 1});
        pageContent.legend.push_back(hidden);
        QCOMPARE(layoutFor(pageContent, kLandscape).legend, shown.legend);
        pageContent.legend.erase(pageContent.legend.begin());
        const MapPageLayout none = layoutFor(pageContent, kLandscape);
        QVERIFY(none.legend.isEmpty());
        QVERIFY(none.mapFrame.width() > shown.mapFrame.width());
    }

    void manyClassesShrinkTheLegendInsteadOfTheMap()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Portrait);
        for (int i = 0; i < 150; ++i)
            pageContent.legend[0].classes.push_back({Qt::red, Qt::black, QStringLiteral("classe %1").arg(i), i});
        const MapPageLayout l = layoutFor(pageContent, kPortrait);
        QVERIFY(l.legendFactor < 1);
        QVERIFY(l.legend.height() <= l.content.height() * 0.45);
        QVERIFY(l.mapFrame.height() > l.content.height() * 0.3);
    }

    void paintedPageShowsEachPartWhereLaidOut_data()
    {
        QTest::addColumn<bool>("landscape");
        QTest::newRow("portrait") << false;
        QTest::newRow("landscape") << true;
    }
    void paintedPageShowsEachPartWhereLaidOut()
    {
        QFETCH(bool, landscape);
        const MapPageContent pageContent = stripePage(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
        const QSize size = landscape ? kLandscape : kPortrait;
        const QImage page = renderMapPage(pageContent, size, 96);
        const MapPageLayout l = layoutFor(pageContent, size);

        // The map: each stripe's colour at the middle of its quarter of the frame.
        const QRectF f = l.mapFrame;
        for (int i = 0; i < 4; ++i) {
            const QPoint p(int(f.left() + f.width() * (i + 0.5) / 4), int(f.center().y()));
            QCOMPARE(page.pixelColor(p), map::colorFromValue(kStripeColors[i]));
        }
        // The legend shows the class swatches; nothing of the map leaks out
        // of the frame.
        for (int i = 0; i < 4; ++i)
            QVERIFY(hasColor(page, l.legend, map::colorFromValue(kStripeColors[i])));
        QVERIFY(!hasColor(page, QRectF(l.page.left(), l.title.top(), l.page.width(), f.top() - l.title.top() - 2),
                          map::colorFromValue(kStripeColors[0])));
        QVERIFY(hasInk(page, l.title));
        QVERIFY(hasInk(page, l.scaleText));
        QVERIFY(hasInk(page, l.scaleBar));
        QVERIFY(hasInk(page, l.northArrow));
        QVERIFY(hasInk(page, l.date));
        // Margins stay blank.
        QVERIFY(allWhite(page, QRectF(0, 0, size.width(), l.content.top() - 1)));
        QVERIFY(allWhite(page, QRectF(0, l.content.bottom() + 1, size.width(), size.height())));
    }

    void emptyTitleGivesTheMapMoreRoom()
    {
        MapPageContent pageContent = stripePage(QPageLayout::Landscape, 100000, 300000);
        const MapPageLayout titled = layoutFor(pageContent, kLandscape);
        pageContent.title.clear();
        const MapPageLayout bare = layoutFor(pageContent, kLandscape);
        QVERIFY(bare.title.isEmpty());
        QVERIFY(bare.mapFrame.height() > titled.mapFrame.height());
    }

    void pdfIsWrittenWholeOrNotAtAll()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("mappa.pdf"));
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));  // an older file to replace
        const MapPageContent pageContent = stripePage(QPageLayout::Landscape);
        const Status s = writeMapPagePdf(pageContent, path);
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(f.read(5) == "%PDF-");
        QVERIFY(f.size() > 1000);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mappa.pdf")});

        const Status bad = writeMapPagePdf(pageContent, dir.filePath(QStringLiteral("manca/mappa.pdf")));
        QVERIFY(!bad.ok());
        QVERIFY(!bad.errorMessage().isEmpty());
    }
};

QTEST_MAIN(TestMapPage)
#include "test_map_page.moc"
