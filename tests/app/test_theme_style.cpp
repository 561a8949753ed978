// Theme settings turned into map renderers and labels.
#include "app/ThemeStyle.h"

#include <QtTest>

using namespace mervola;

namespace {

ThemeSettings classified(const QString &type, const QStringList &values)
{
    ThemeSettings s = readThemeSettings(ProfileFile::fromText(QStringLiteral("[t]\nSIMBOLO=2^0^0^56320^33554432^\n"
                                                                             "VISIBILE=1\nOUTLINE=1\n")),
                                        QStringLiteral("t"));
    s.classificationType = type;
    s.campo.field = QStringLiteral("_01001");
    int color = 100;
    for (const QString &v : values) {
        ClassItem c;
        c.value = v;
        c.fillColor = color++;
        c.label = v;
        s.classes << c;
    }
    s.raw[size_t(ThemeKey::Classificazione)] = formatClassItems(s.classes);
    return s;
}

}  // namespace

class TestThemeStyle : public QObject {
    Q_OBJECT
private slots:
    void unclassifiedThemeKeepsItsSymbol()
    {
        const ThemeSettings s = readThemeSettings(
            ProfileFile::fromText(QStringLiteral("[comuni]\nSIMBOLO=2^0^1^16776960^33554432^\nOUTLINE=0\n"
                                                 "TIPOCLASSIFICAZIONE=0\nCLASSIFICAZIONE=0\n")),
            QStringLiteral("comuni"));
        const map::Renderer r = rendererFromSettings(s);
        const auto *simple = std::get_if<map::SimpleRenderer>(&r);
        QVERIFY(simple);
        QCOMPARE(simple->symbol.color, 16776960);
        QCOMPARE(simple->symbol.style, 1);
        QVERIFY(!simple->symbol.outline);
    }

    void classRangesBecomeBreaks_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<QList<double>>("uppers");
        QTest::newRow("plain") << QStringList{"0 - 10", "10,1 - 25,5", "25,6 - 100"} << QList<double>{10, 25.5, 100};
        QTest::newRow("negative lower") << QStringList{"-5 - -1", "-0,9 - 3"} << QList<double>{-1, 3};
        QTest::newRow("dot decimals") << QStringList{"0.5 - 1.5", "1.6 - 3.7"} << QList<double>{1.5, 3.7};
    }
    void classRangesBecomeBreaks()
    {
        QFETCH(QStringList, values);
        QFETCH(QList<double>, uppers);
        const map::Renderer r = rendererFromSettings(classified(QStringLiteral("QUANTILE"), values));
        const auto *cb = std::get_if<map::ClassBreaksRenderer>(&r);
        QVERIFY(cb);
        QCOMPARE(cb->field, QStringLiteral("_01001"));
        QCOMPARE(cb->breakCount(), uppers.size());
        for (int i = 0; i < uppers.size(); ++i) {
            QCOMPARE(cb->breakValue(i), uppers[i]);
            QCOMPARE(cb->symbol(i).color, 100 + i);
        }
    }

    void uniqueValuesBecomeValueMap()
    {
        const map::Renderer r = rendererFromSettings(classified(QStringLiteral("UNICO"), {"T", "P", "NM"}));
        const auto *vm = std::get_if<map::ValueMapRenderer>(&r);
        QVERIFY(vm);
        QCOMPARE(vm->valueCount(), 3);
        QCOMPARE(vm->value(2), QStringLiteral("NM"));
    }

    void unreadableClassFallsBackToSymbol()
    {
        const map::Renderer r = rendererFromSettings(classified(QStringLiteral("QUANTILE"), {"abc"}));
        QVERIFY(std::holds_alternative<map::SimpleRenderer>(r));
    }

    void labelSettingsRoundTrip()
    {
        QVERIFY(!LabelSettings::parse(QStringLiteral("*")).on());
        QCOMPARE(LabelSettings::parse(QStringLiteral("Label")).field, QStringLiteral("Label"));
        LabelSettings l = LabelSettings::parse(QStringLiteral("DejaVu Sans^45^12^255^Label^"));
        QCOMPARE(l.font, QStringLiteral("DejaVu Sans"));
        QCOMPARE(l.rotation, 45);
        QCOMPARE(l.height, 12.0);
        QCOMPARE(l.color, 255);
        QVERIFY(l.on());
        QCOMPARE(LabelSettings::parse(l.format()).format(), l.format());
        QVERIFY(!LabelSettings::parse(QStringLiteral("Arial^0^8^0^dummy^")).on());
    }

    void classCountsFollowTheRenderer()
    {
        auto data = std::make_shared<map::LayerData>();
        map::Column col;
        col.name = QStringLiteral("V");
        col.type = map::ColumnType::Real;
        for (double v : {1.0, 2.0, 3.0, 10.0, std::nan("")}) {
            const double sq[] = {0, 0, 1, 0, 1, 1, 0, 0};
            data->beginFeature();
            data->addRing(sq, 4);
            data->endFeature();
            col.numbers.push_back(v);
            col.isNull.push_back(std::isnan(v));
        }
        data->columns.push_back(col);
        data->finish();
        map::MapLayer layer;
        layer.data = data;
        map::ClassBreaksRenderer cb;
        cb.field = QStringLiteral("v");
        cb.setBreakCount(2);
        cb.setBreak(0, 2);
        cb.setBreak(1, 10);
        layer.renderer = cb;
        QCOMPARE(classCounts(layer), (std::vector<int>{2, 2}));
    }
};

QTEST_GUILESS_MAIN(TestThemeStyle)
#include "test_theme_style.moc"
