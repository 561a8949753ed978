// Reading the source formats: quantized TopoJSON with shared arcs, and CSV.
#include "atlas/SourceTable.h"
#include "atlas/TopoJsonReader.h"

#include <QtTest>

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
};

QTEST_APPLESS_MAIN(TestSources)
#include "test_sources.moc"
