#include "map/LayerData.h"

#include "map/GridIndex.h"
#include "map/ShapefileReader.h"

#include <QFileInfo>
#include <cmath>
#include <limits>

namespace mervola::map {

namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

QString Column::text(int f) const
{
    if (isNull[f])
        return {};
    if (type == ColumnType::Text)
        return texts[f];
    return QString::number(numbers[f], 'g', 15);
}

double Column::number(int f) const
{
    if (isNull[f])
        return kNoNumber;
    if (type != ColumnType::Text)
        return numbers[f];
    bool ok = false;
    const double v = texts[f].trimmed().toDouble(&ok);
    return ok ? v : kNoNumber;
}

QVariant Column::value(int f) const
{
    if (isNull[f])
        return {};
    switch (type) {
    case ColumnType::Text: return texts[f];
    case ColumnType::Integer: return qlonglong(numbers[f]);
    case ColumnType::Real: return numbers[f];
    }
    return {};
}

LayerData::LayerData() = default;
LayerData::~LayerData() = default;

int LayerData::columnIndex(const QString &name) const
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

const Column *LayerData::column(const QString &name) const
{
    const int i = columnIndex(name);
    return i < 0 ? nullptr : &columns[std::size_t(i)];
}

MapRect LayerData::featureExtent(int f) const
{
    const Box &b = boxes[std::size_t(f)];
    return MapRect(b.minX, b.maxY, b.maxX, b.minY);
}

void LayerData::beginFeature() {}

void LayerData::addRing(const double *pairs, std::size_t n)
{
    xy.insert(xy.end(), pairs, pairs + 2 * n);
    ringStart.push_back(std::uint32_t(xy.size() / 2));
}

void LayerData::endFeature()
{
    const std::uint32_t firstRing = featureRing.back();
    const std::uint32_t endRing = std::uint32_t(ringStart.size() - 1);
    featureRing.push_back(endRing);
    Box b{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (std::size_t i = ringStart[firstRing]; i < ringStart[endRing]; ++i) {
        b.minX = std::min(b.minX, xy[2 * i]);
        b.maxX = std::max(b.maxX, xy[2 * i]);
        b.minY = std::min(b.minY, xy[2 * i + 1]);
        b.maxY = std::max(b.maxY, xy[2 * i + 1]);
    }
    boxes.push_back(b);
}

void LayerData::finish()
{
    bool any = false;
    for (const Box &b : boxes) {
        if (!(b.minX <= b.maxX))
            continue;  // feature without geometry
        const MapRect r(b.minX, b.maxY, b.maxX, b.minY);
        extent = any ? extent.united(r) : r;
        any = true;
    }
}

std::vector<int> LayerData::candidatesAt(QPointF p, double tolerance) const
{
    std::call_once(m_gridOnce, [this] { m_grid = std::make_unique<GridIndex>(*this); });
    return m_grid->query(p, tolerance);
}

namespace {

ForeignLayerReader &foreignReader()
{
    static ForeignLayerReader reader = nullptr;
    return reader;
}

}  // namespace

void setForeignLayerReader(ForeignLayerReader reader) { foreignReader() = reader; }

Result<std::shared_ptr<const LayerData>> LayerData::loadShapefile(const QString &path)
{
    auto direct = readShapefile(path);
    if (direct)
        return std::shared_ptr<const LayerData>(std::move(*direct));
    if (direct.error().code != kReadUnsupported)
        return direct.error();
    if (!foreignReader())
        return Error{QStringLiteral("Impossibile aprire il tema %1: %2").arg(QFileInfo(path).fileName(), direct.errorMessage())};
    return foreignReader()(path);
}

}  // namespace mervola::map
