// What the information tool collects and how the window writes values.
#include "atlas/AtlasBuilder.h"
#include "data/ElementInfo.h"

#include <QtTest>

using namespace mervola;

namespace {

// A square layer of one feature with the given text columns.
map::MapLayer square(const QString &name, const QList<QPair<QString, QString>> &columns, bool visible = true)
{
    auto data = std::make_shared<map::LayerData>();
    const double sq[] = {0, 0, 10, 0, 10, 10, 0, 10, 0, 0};
    data->beginFeature();
    data->addRing(sq, 5);
    data->endFeature();
    for (const auto &[field, value] : columns) {
        map::Column c;
        c.name = field;
        c.texts = {value};
        c.isNull = {0};
        data->columns.push_back(c);
    }
    data->finish();
    map::MapLayer layer;
    layer.name = name;
    layer.data = data;
    layer.visible = visible;
    return layer;
}

}  // namespace

class TestElementInfo : public QObject {
    Q_OBJECT
private slots:
    void everyVisibleThemeUnderTheClickIsListed()
    {
        map::MapModel model;
        model.addLayer(square(QStringLiteral("regioni"), {{"Label", "PIEMONTE"}}));
        model.addLayer(square(QStringLiteral("nascosto"), {{"Label", "x"}}, false));
        model.addLayer(square(QStringLiteral("comuni"), {{"Label", "Torino"}, {"DUMMY", "?"}, {"_01001", "125.00000"}}));
        model.addLayer(square(QStringLiteral("commont"), {{"Label", "CM 1"}, {"PROG_MONT", "00101"}}));
        const auto found = collectElements(model, QPointF(5, 5), 0.1, [](const QString &, const QString &f) {
            return f == QLatin1String("_01001") ? QStringLiteral("Superficie") : QString();
        });
        QCOMPARE(found.size(), 3);
        QCOMPARE(found[0].theme, QStringLiteral("commont"));
        QCOMPARE(found[0].progMont, QStringLiteral("00101"));
        QCOMPARE(found[1].fields.size(), 2);  // DUMMY is never shown
        QCOMPARE(found[1].fields[1], (QPair<QString, QString>{"Superficie", "125"}));
        QVERIFY(collectElements(model, QPointF(50, 50), 0.1).isEmpty());
    }

    void valuesAndCodes()
    {
        QCOMPARE(infoValueText(QStringLiteral("125.00000")), QStringLiteral("125"));
        QCOMPARE(infoValueText(QStringLiteral("3,00000")), QStringLiteral("3"));
        QCOMPARE(infoValueText(QStringLiteral("12.5")), QStringLiteral("12.5"));
        QCOMPARE(categoryCodeOf(7), QStringLiteral("07"));
        QCOMPARE(categoryCodeOf(12), QStringLiteral("12"));
        QVERIFY(isCommunityLayer(QStringLiteral("CMONT_02")) && isCommunityLayer(QStringLiteral("commont")));
        QVERIFY(!isCommunityLayer(QStringLiteral("comuni")));
    }

    void categoryRowOfACommunity()
    {
        QTemporaryDir dir;
        QVERIFY(atlas::buildDemoAtlas(dir.path()).ok());
        const ReferenceDb db(AtlasHome(dir.path()));
        auto codes = db.query(QStringLiteral("SELECT PROG_MONT FROM 02"));
        QVERIFY2(codes.ok() && !codes->rows.empty(), qPrintable(codes.errorMessage()));
        const QString prog = codes->rows.front().front().toString();
        auto row = categoryRow(db, QStringLiteral("02"), prog);
        QVERIFY2(row.ok(), qPrintable(row.errorMessage()));
        QVERIFY(!row->isEmpty());
        QVERIFY(categoryRow(db, QStringLiteral("02"), QStringLiteral("nessuna")).value().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestElementInfo)
#include "test_element_info.moc"
