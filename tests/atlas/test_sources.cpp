// Reading the source formats (quantized TopoJSON with shared arcs, CSV) and
// finding what the sources lack.
#include "atlas/SourceGaps.h"
#include "atlas/SourceTable.h"
#include "atlas/TopoJsonReader.h"

#include <QtTest>
#include <set>

using namespace mervola::atlas;

namespace {

// Two unit squares side by side sharing arc 1 (x = 1), a third feature
// without geometry. Arcs are quantized and delta-encoded, scale 0.5.
const char *kTopology = R"({"type":"Topology",
 "transform":{"scale":[0.5,0.5],"translate":[10,40]},
 "arcs":[[[2,0],[-2,0],[0,2],[2,0]], [[2,2],[0,-2]], [[2,2],[2,0],[0,-2],[-2,0]]],
 "objects":{"comuni":{"type":"GeometryCollection","geometries":[
   {"type":"Polygon","arcs":[[0,1]],"properties":{"com_istat_code":"001001","name":"Ovest"}},
   {"type":"MultiPolygon","arcs":[[[-2,2]]],"properties":{"com_istat_code":"001002","name":"Est"}},
   {"type":null,"properties":{"com_istat_code":"001003","name":"Vuoto"}}]}}})";

constexpr double kCell = 700;  // metres: one cell is 0.49 km²

Ring rectangle(double x0, double y0, double x1, double y1)
{
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}, {x0, y0}};
}

Ring cells(int c0, int r0, int c1, int r1)
{
    return rectangle(c0 * kCell, r0 * kCell, (c1 + 1) * kCell, (r1 + 1) * kCell);
}

void addMunicipality(AtlasModel &m, const QString &name, const QString &region, MultiPolygon shape)
{
    SourceMunicipality c;
    c.code = QStringLiteral("%1").arg(m.sources.comuni.size() + 1, 6, 10, QLatin1Char('0'));
    c.name = name;
    c.provinceName = QStringLiteral("Prova");
    c.regionCode = region;
    c.shape = std::move(shape);
    m.comuniGeometry.push_back(toOgr(c.shape));
    m.sources.comuni.push_back(std::move(c));
}

void addRegion(AtlasModel &m, const QString &code, Polygon outline)
{
    m.sources.regioni.push_back({code, code, {}, {}, {outline}});
    m.regioniGeometry.push_back(toOgr({outline}));
}

// An 8 x 6 grid of municipalities of region 01 with cells left out: a
// 2-cell gap (0.98 km², reported), a 1-cell gap (0.49 km², too small), a
// 2-cell enclave of region 02, and a municipality of 4 x 3 cells around a
// 2-cell hole of its own (a foreign state).
AtlasModel gridWithGaps()
{
    const std::set<std::pair<int, int>> empty = {{1, 1}, {2, 1}, {5, 1}, {1, 3}, {2, 3}};
    AtlasModel m;
    for (int c = 0; c < 8; ++c)
        for (int r = 0; r < 6; ++r)
            if (!empty.count({c, r}) && !(c >= 4 && r >= 2 && r <= 4))
                addMunicipality(m, QStringLiteral("C%1%2").arg(c).arg(r), QStringLiteral("01"), {{cells(c, r, c, r)}});
    addMunicipality(m, QStringLiteral("Enclave"), QStringLiteral("02"), {{cells(1, 3, 2, 3)}});
    addMunicipality(m, QStringLiteral("Ospite"), QStringLiteral("01"), {{cells(4, 2, 7, 4), cells(5, 3, 6, 3)}});
    addMunicipality(m, QStringLiteral("Senza confini"), QStringLiteral("01"), {});
    addRegion(m, QStringLiteral("01"), {cells(0, 0, 7, 5)});
    addRegion(m, QStringLiteral("02"), {cells(1, 3, 2, 3)});
    return m;
}

}  // namespace

class TestSources : public QObject {
    Q_OBJECT
private slots:
    void topologyDecodesRingsAndAdjacency()
    {
        auto layer = parseTopoJson(QByteArray(kTopology), QStringLiteral("comuni"));
        QVERIFY2(layer.ok(), qPrintable(layer.errorMessage()));
        QCOMPARE(layer->features.size(), size_t(3));
        const Ring &west = layer->features[0].shape.at(0).at(0);
        const Ring expectedWest = {{11, 40}, {10, 40}, {10, 41}, {11, 41}, {11, 40}};
        QCOMPARE(west, expectedWest);
        // The eastern square starts with the shared arc reversed (upwards).
        const Ring &east = layer->features[1].shape.at(0).at(0);
        const Ring expectedEast = {{11, 40}, {11, 41}, {12, 41}, {12, 40}, {11, 40}};
        QCOMPARE(east, expectedEast);
        QVERIFY(layer->features[2].shape.empty());
        QCOMPARE(layer->features[2].properties.value("name").toString(), QStringLiteral("Vuoto"));

        const auto adjacency = layer->adjacency();
        QCOMPARE(adjacency[0], std::vector<int>{1});
        QCOMPARE(adjacency[1], std::vector<int>{0});
        QVERIFY(adjacency[2].empty());
    }

    void topologyErrors_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("object");
        QTest::newRow("not json") << QByteArray("{") << "comuni";
        QTest::newRow("not a topology") << QByteArray(R"({"type":"FeatureCollection"})") << "comuni";
        QTest::newRow("missing object") << QByteArray(kTopology) << "province";
    }
    void topologyErrors()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, object);
        QVERIFY(!parseTopoJson(json, object).ok());
    }

    void csvFields_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("secondRow");
        QTest::newRow("plain") << "a,b,c\n1,2,3\n4,5,6\n" << QStringList{"4", "5", "6"};
        QTest::newRow("crlf and missing last line end") << "a,b,c\r\n1,2,3\r\n4,,6" << QStringList{"4", "", "6"};
        QTest::newRow("quoted comma and quote") << "a,b,c\n1,2,3\n\"x,y\",\"say \"\"hi\"\"\",z\n"
                                                << QStringList{"x,y", "say \"hi\"", "z"};
        QTest::newRow("short row padded") << "a,b,c\n1,2,3\n7\n" << QStringList{"7", "", ""};
        QTest::newRow("empty lines skipped") << "a,b,c\n\n1,2,3\n\n8,9,10\n" << QStringList{"8", "9", "10"};
    }
    void csvFields()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, secondRow);
        const SourceTable t = parseCsv(text);
        QCOMPARE(t.header, (QStringList{"a", "b", "c"}));
        QCOMPARE(t.rows.size(), size_t(2));
        QCOMPARE(t.rows[1], secondRow);
        QCOMPARE(t.column(QStringLiteral("B")), 1);
        QCOMPARE(t.record(1).value(QStringLiteral("c")), secondRow[2]);
    }

    void gapsInsideARegionAreReported()
    {
        const QStringList notes = sourceGapNotes(gridWithGaps());
        const QStringList expected = {
            QStringLiteral("Comune senza geometria (il record resta, fuori da ogni comunità montana): Senza confini "
                           "(000034), provincia di Prova"),
            QStringLiteral("Area non coperta da alcun comune in PIEMONTE (provincia di Prova): 1,0 km² fra C00, C01, "
                           "C02, C10, C12, C20, C22, C30, C31, C32")};
        QCOMPARE(notes, expected);
    }
};

QTEST_APPLESS_MAIN(TestSources)
#include "test_sources.moc"
