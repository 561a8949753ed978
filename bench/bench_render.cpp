// Rendering speed of the all-Italy map: layer load time and a full redraw of
// the municipalities (classed on a numeric field) with the mountain
// communities and regions over them, at 1600 x 1200.
//
//   MERVOLA_BENCH_HOME=/path/to/atlas-home ./bench_render
#include "classify/ColorRamp.h"
#include "map/MapRenderer.h"

#include <QGuiApplication>
#include <QPainter>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>

using namespace mervola::map;

namespace {

QString homeItalia()
{
    const QByteArray home = qgetenv("MERVOLA_BENCH_HOME");
    return QString::fromLocal8Bit(home) + QStringLiteral("/italia/");
}

LayerDataPtr load(const QString &name)
{
    auto r = LayerData::loadShapefile(homeItalia() + name + QStringLiteral(".shp"));
    return r ? *r : nullptr;
}

// A numeric column to classify on: the first numeric one, else none.
QString numericField(const LayerData &d)
{
    for (const Column &c : d.columns)
        if (c.isNumeric())
            return c.name;
    return {};
}

const MapModel &italyModel()
{
    static const MapModel model = [] {
        MapModel m;
        for (const char *name : {"comuni", "commont", "regioni"}) {
            LayerDataPtr d = load(QString::fromLatin1(name));
            if (!d)
                continue;
            MapLayer l;
            l.name = QString::fromLatin1(name);
            l.data = d;
            if (l.name == QLatin1String("comuni")) {
                std::vector<ClassRange> classes;
                for (int i = 1; i <= 20; ++i)
                    classes.push_back({double(i - 1), double(i), QString(), 0, 0x02000000});
                const auto colors = mervola::classify::rampColors(65535, 8519693, int(classes.size()));
                for (std::size_t i = 0; i < classes.size(); ++i)
                    classes[i].color = colors[i];
                auto r = ClassBreaksRenderer::fromClasses(numericField(*d), classes);
                l.renderer = r;
            } else if (l.name == QLatin1String("commont")) {
                Symbol s;
                s.color = 56320;
                l.renderer = SimpleRenderer{s};
            } else {
                l.renderer = SimpleRenderer{ClassBreaksRenderer::transparentSymbol()};
            }
            m.addLayer(std::move(l));
        }
        m.setExtent(m.fullExtent());
        return m;
    }();
    return model;
}

std::size_t vertexCount(const MapModel &m)
{
    std::size_t n = 0;
    for (const MapLayer &l : m.layers())
        n += l.data->xy.size() / 2;
    return n;
}

void BM_LoadComuni(benchmark::State &state)
{
    for (auto _ : state) {
        LayerDataPtr d = load(QStringLiteral("comuni"));
        if (!d) {
            state.SkipWithError("comuni.shp non trovato");
            return;
        }
        benchmark::DoNotOptimize(d.get());
    }
}

void renderBench(benchmark::State &state, RenderOptions options)
{
    const MapModel &m = italyModel();
    if (m.layerCount() == 0) {
        state.SkipWithError("nessun tema in $MERVOLA_BENCH_HOME/italia");
        return;
    }
    for (auto _ : state) {
        QImage img = MapRenderer::renderImage(m, m.extent(), QSize(1600, 1200), options);
        benchmark::DoNotOptimize(img.constBits());
    }
    state.counters["vertici"] = double(vertexCount(m));
}

// Argument: number of bands (0 = the renderer's default).
void BM_RenderItaly(benchmark::State &state)
{
    RenderOptions o;
    o.bands = int(state.range(0));
    renderBench(state, o);
}

void BM_RenderItalyNoAntialias(benchmark::State &state)
{
    RenderOptions o;
    o.antialias = false;
    renderBench(state, o);
}

// A selection of `count` municipalities spread over Italy.
MapModel withSelection(int count)
{
    MapModel m = italyModel();
    if (MapLayer *comuni = m.find(QStringLiteral("comuni")); comuni && comuni->data) {
        const int n = comuni->data->featureCount();
        for (int i = 0; i < count && i < n; ++i)
            comuni->selection.push_back(int(std::int64_t(i) * n / count));
    }
    return m;
}

// Redraw after the table's selection changed, as the map widget does it:
// the picture of the layers is kept, the highlight and labels go on again
// (limit: 30 ms). Argument: selected municipalities.
void BM_HighlightRedraw(benchmark::State &state)
{
    const MapModel m = withSelection(int(state.range(0)));
    if (m.layerCount() == 0) {
        state.SkipWithError("nessun tema in $MERVOLA_BENCH_HOME/italia");
        return;
    }
    RenderOptions layersOnly;
    layersOnly.selection = false;
    layersOnly.labels = false;
    const QSize size(1600, 1200);
    const QImage layers = MapRenderer::renderImage(m, m.extent(), size, layersOnly);
    const MapTransform t(m.extent(), size);
    for (auto _ : state) {
        QImage picture = layers;
        QPainter p(&picture);
        MapRenderer::paintSelections(p, m, t, RenderOptions{});
        MapRenderer::paintLabels(p, m, t);
        p.end();
        benchmark::DoNotOptimize(picture.constBits());
    }
}

// The same change drawn by a whole new picture.
void BM_HighlightFullRender(benchmark::State &state)
{
    const MapModel m = withSelection(int(state.range(0)));
    for (auto _ : state) {
        QImage img = MapRenderer::renderImage(m, m.extent(), QSize(1600, 1200));
        benchmark::DoNotOptimize(img.constBits());
    }
}

}  // namespace

BENCHMARK(BM_HighlightRedraw)
    ->Arg(50)
    ->Arg(3000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_HighlightFullRender)
    ->Arg(50)
    ->Arg(3000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_LoadComuni)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_RenderItaly)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Repetitions(11)->ReportAggregatesOnly(true);
BENCHMARK(BM_RenderItalyNoAntialias)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly(true);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("MERVOLA_BENCH_HOME")) {
        std::fprintf(stderr, "Impostare MERVOLA_BENCH_HOME sulla cartella dell'atlante\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
