#include "data/ui/FrmGraficoCharts.h"

#include <QAreaSeries>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QFont>
#include <QGuiApplication>
#include <QLineSeries>
#include <QLocale>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPieSeries>
#include <QPieSlice>
#include <QValueAxis>
#include <QWidget>

#ifdef MERVOLA_HAVE_DATAVIS
#include <QtDataVisualization/Q3DBars>
#include <QtDataVisualization/Q3DTheme>
#include <QtDataVisualization/QBar3DSeries>
#include <QtDataVisualization/QBarDataProxy>
#include <QtDataVisualization/QCategory3DAxis>
#include <QtDataVisualization/QValue3DAxis>
#endif

namespace mervola
{

namespace
{

QFont labelFont()
{
    return QFont(QStringLiteral("Arial"), 8);
}

// Distinct colours for the elements of a pie (the theme's own are shades of one blue).
const QList<QColor> &elementColours()
{
    static const QList<QColor> colours{QColor(0x20, 0x9f, 0xdf), QColor(0x99, 0xca, 0x53), QColor(0xf6, 0xa6, 0x25),
                                       QColor(0x6d, 0x5f, 0xd5), QColor(0xbf, 0x59, 0x3e), QColor(0x2e, 0x8b, 0x57),
                                       QColor(0xd6, 0x3a, 0x8a), QColor(0x80, 0x80, 0x80), QColor(0xe0, 0xc0, 0x20),
                                       QColor(0x30, 0x50, 0x90)};
    return colours;
}

QStringList pointLabels(const ChartSeries &s, LabelFormat format)
{
    QStringList out;
    for (const ChartPoint &p : s.points)
        out << chartPointLabel(p, s, format);
    return out;
}

// Lowest and highest value with zero included, so bars and areas rise from 0.
std::pair<double, double> valueSpan(const ChartSeries &s)
{
    double lo = 0, hi = 0;
    for (const ChartPoint &p : s.points)
        if (p.value) {
            lo = std::min(lo, *p.value);
            hi = std::max(hi, *p.value);
        }
    if (lo == hi)
        hi = lo + 1;
    const double pad = (hi - lo) * 0.05;
    return {lo < 0 ? lo - pad : lo, hi + pad};
}

void addAxes(QChart *chart, const QList<QAbstractSeries *> &series, const ChartSeries &s, LabelFormat format,
             bool categories)
{
    auto *y = new QValueAxis;
    const auto [lo, hi] = valueSpan(s);
    y->setRange(lo, hi);
    y->setTitleText(s.caption);
    y->setLabelFormat(QStringLiteral("%.0f"));
    y->setLabelsFont(labelFont());
    y->applyNiceNumbers();
    chart->addAxis(y, Qt::AlignLeft);
    for (QAbstractSeries *part : series)
        part->attachAxis(y);
    if (!categories)
        return;
    auto *x = new QBarCategoryAxis;
    x->append(pointLabels(s, format));
    x->setLabelsFont(labelFont());
    if (s.points.size() > 2)
        x->setLabelsAngle(-90); // element names are long: upright they keep their whole text
    chart->addAxis(x, Qt::AlignBottom);
    for (QAbstractSeries *part : series)
        part->attachAxis(x);
}

QChart *barChart(const ChartSeries &s, LabelFormat format)
{
    auto *chart = new QChart;
    auto *series = new QBarSeries;
    // One set per element, as one column per selected row: each has its colour and legend entry.
    const QStringList labels = pointLabels(s, format);
    for (int i = 0; i < s.points.size(); ++i) {
        auto *set = new QBarSet(labels[i]);
        if (s.points[i].value) // a null value is left empty, not drawn as 0
            set->append(*s.points[i].value);
        series->append(set);
    }
    chart->addSeries(series);
    addAxes(chart, {series}, s, format, false);
    auto *x = new QBarCategoryAxis;
    x->append(s.caption);
    x->setLabelsFont(labelFont());
    chart->addAxis(x, Qt::AlignBottom);
    series->attachAxis(x);
    chart->legend()->setAlignment(Qt::AlignRight);
    chart->legend()->setFont(labelFont());
    return chart;
}

// Lines, areas and steps across the elements, x = position in the
// selection. A null value is left empty: the line breaks there, so each
// run of values is a series of its own.
QList<QLineSeries *> lineRuns(const ChartSeries &s, bool stepped)
{
    QList<QLineSeries *> runs;
    QLineSeries *line = nullptr;
    for (int i = 0; i < s.points.size(); ++i) {
        if (!s.points[i].value) {
            line = nullptr;
            continue;
        }
        if (!line) {
            line = new QLineSeries;
            line->setName(s.caption);
            runs << line;
        }
        const double v = *s.points[i].value;
        if (stepped) {
            line->append(i - 0.5, v);
            line->append(i + 0.5, v);
        } else {
            line->append(i, v);
        }
    }
    return runs;
}

QChart *xyChart(const ChartSeries &s, ChartKind kind, LabelFormat format)
{
    auto *chart = new QChart;
    QList<QAbstractSeries *> parts;
    const QColor colour = elementColours().front();
    for (QLineSeries *line : lineRuns(s, kind == ChartKind::Step)) {
        if (kind == ChartKind::Areas) {
            auto *area = new QAreaSeries(line);
            area->setName(s.caption);
            area->setColor(colour);
            parts << area;
        } else {
            line->setPointsVisible(kind == ChartKind::Lines || line->count() == 1);
            line->setColor(colour);
            parts << line;
        }
    }
    // The axes need a series even when every value is null.
    if (parts.isEmpty())
        parts << new QLineSeries;
    for (QAbstractSeries *part : parts)
        chart->addSeries(part);
    addAxes(chart, parts, s, format, true);
    chart->legend()->hide();
    return chart;
}

QChart *pieChart(const ChartSeries &s, LabelFormat format)
{
    auto *chart = new QChart;
    auto *pie = new QPieSeries;
    pie->setPieSize(0.6);
    for (int i = 0; i < s.points.size(); ++i) {
        const ChartPoint &p = s.points[i];
        if (!p.value)
            continue; // a null value has no slice
        auto *slice = pie->append(chartPointLabel(p, s, format), *p.value);
        slice->setLabelVisible(true);
        slice->setLabelFont(labelFont());
        slice->setColor(elementColours()[i % elementColours().size()]);
    }
    chart->addSeries(pie);
    // The slices' labels name the elements: no legend, so they have the whole width.
    chart->legend()->hide();
    return chart;
}

} // namespace

QChart *buildFlatChart(const ChartSeries &series, ChartKind kind, LabelFormat format)
{
    QChart *chart = nullptr;
    switch (kind) {
    case ChartKind::Bars:
        chart = barChart(series, format);
        break;
    case ChartKind::Lines:
    case ChartKind::Areas:
    case ChartKind::Step:
        chart = xyChart(series, kind, format);
        break;
    case ChartKind::Pie:
        chart = pieChart(series, format);
        break;
    }
    chart->setTitle(series.caption);
    chart->setAnimationOptions(QChart::NoAnimation);
    // Axis numbers with the decimal comma, as the labels.
    chart->setLocalizeNumbers(true);
    chart->setLocale(QLocale(QLocale::Italian, QLocale::Italy));
    return chart;
}

bool solidChartsAvailable()
{
#ifdef MERVOLA_HAVE_DATAVIS
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("offscreen") || platform == QLatin1String("minimal"))
        return false;
    QOpenGLContext context;
    if (!context.create())
        return false;
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    return surface.isValid() && context.makeCurrent(&surface) && (context.doneCurrent(), true);
#else
    return false;
#endif
}

QWidget *buildSolidChart(const ChartSeries &s, ChartKind kind, LabelFormat format, QWidget *parent)
{
#ifdef MERVOLA_HAVE_DATAVIS
    if (!solidChartsAvailable())
        return nullptr;
    auto *bars = new Q3DBars;
    auto *series = new QBar3DSeries;
    // Each solid type is a bar shape: blocks for bars, cylinders for lines,
    // pyramids for areas, touching flat blocks for steps.
    switch (kind) {
    case ChartKind::Lines:
        series->setMesh(QAbstract3DSeries::MeshCylinder);
        break;
    case ChartKind::Areas:
        series->setMesh(QAbstract3DSeries::MeshPyramid);
        break;
    case ChartKind::Step:
        series->setMesh(QAbstract3DSeries::MeshBar);
        bars->setBarSpacing(QSizeF(0.0, 0.0));
        break;
    default:
        series->setMesh(QAbstract3DSeries::MeshBevelBar);
        break;
    }
    QBarDataRow *row = new QBarDataRow;
    for (const ChartPoint &p : s.points) // a null value stands as an empty bar of height 0
        row->append(QBarDataItem(p.value ? float(*p.value) : 0.0f));
    series->dataProxy()->addRow(row, s.caption);
    series->dataProxy()->setColumnLabels(pointLabels(s, format));
    series->setItemLabelFormat(QStringLiteral("@colLabel"));
    bars->addSeries(series);
    bars->columnAxis()->setLabelAutoRotation(30);
    bars->valueAxis()->setTitle(s.caption);
    bars->valueAxis()->setTitleVisible(true);
    bars->activeTheme()->setFont(QFont(QStringLiteral("Arial"), 24));
    QWidget *container = QWidget::createWindowContainer(bars, parent);
    container->setMinimumSize(400, 300);
    return container;
#else
    Q_UNUSED(s);
    Q_UNUSED(kind);
    Q_UNUSED(format);
    Q_UNUSED(parent);
    return nullptr;
#endif
}

} // namespace mervola
