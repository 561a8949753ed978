#include "atlas/TopoJsonReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <map>

namespace mervola::atlas {

namespace {

struct Transform {
    double sx = 1, sy = 1, tx = 0, ty = 0;
    bool quantized = false;
};

// Decodes every arc into absolute lon/lat points.
std::vector<Ring> decodeArcs(const QJsonArray &arcs, const Transform &t)
{
    std::vector<Ring> out;
    out.reserve(arcs.size());
    for (const QJsonValue &arcValue : arcs) {
        const QJsonArray pts = arcValue.toArray();
        Ring ring;
        ring.reserve(pts.size());
        double x = 0, y = 0;
        for (const QJsonValue &pv : pts) {
            const QJsonArray p = pv.toArray();
            if (t.quantized) {
                x += p.at(0).toDouble();
                y += p.at(1).toDouble();
                ring.push_back({x * t.sx + t.tx, y * t.sy + t.ty});
            } else {
                ring.push_back({p.at(0).toDouble(), p.at(1).toDouble()});
            }
        }
        out.push_back(std::move(ring));
    }
    return out;
}

// Joins the arcs of one ring; consecutive arcs share their end points.
bool buildRing(const QJsonArray &refs, const std::vector<Ring> &arcs, Ring &ring, std::vector<int> &used)
{
    for (const QJsonValue &rv : refs) {
        const int ref = rv.toInt();
        const int index = ref >= 0 ? ref : ~ref;
        if (index < 0 || index >= static_cast<int>(arcs.size()))
            return false;
        used.push_back(index);
        const Ring &arc = arcs[static_cast<size_t>(index)];
        const size_t skip = ring.empty() ? 0 : 1;
        if (ref >= 0)
            ring.insert(ring.end(), arc.begin() + static_cast<long>(std::min(skip, arc.size())), arc.end());
        else
            ring.insert(ring.end(), arc.rbegin() + static_cast<long>(std::min(skip, arc.size())), arc.rend());
    }
    if (!ring.empty() && ring.front() != ring.back())
        ring.push_back(ring.front());
    return ring.size() >= 4;
}

bool buildPolygon(const QJsonArray &rings, const std::vector<Ring> &arcs, Polygon &polygon, std::vector<int> &used)
{
    for (const QJsonValue &rv : rings) {
        Ring ring;
        if (buildRing(rv.toArray(), arcs, ring, used))
            polygon.push_back(std::move(ring));
        else if (polygon.empty())
            return false;  // no outer ring: drop the polygon
    }
    return !polygon.empty();
}

}  // namespace

std::vector<std::vector<int>> TopoLayer::adjacency() const
{
    std::map<int, std::vector<int>> users;
    for (size_t f = 0; f < features.size(); ++f)
        for (int arc : features[f].arcs)
            users[arc].push_back(static_cast<int>(f));
    std::vector<std::vector<int>> result(features.size());
    for (const auto &[arc, list] : users)
        for (int a : list)
            for (int b : list)
                if (a != b)
                    result[static_cast<size_t>(a)].push_back(b);
    for (auto &n : result) {
        std::sort(n.begin(), n.end());
        n.erase(std::unique(n.begin(), n.end()), n.end());
    }
    return result;
}

Result<TopoLayer> parseTopoJson(const QByteArray &json, const QString &objectName)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    if (doc.isNull() || doc.object().value(QStringLiteral("type")).toString() != QLatin1String("Topology"))
        return Result<TopoLayer>::fail(QStringLiteral("File TopoJSON non valido: %1").arg(error.errorString()));
    const QJsonObject root = doc.object();
    Transform t;
    const QJsonObject tr = root.value(QStringLiteral("transform")).toObject();
    if (!tr.isEmpty()) {
        const QJsonArray scale = tr.value(QStringLiteral("scale")).toArray();
        const QJsonArray translate = tr.value(QStringLiteral("translate")).toArray();
        t = {scale.at(0).toDouble(), scale.at(1).toDouble(), translate.at(0).toDouble(), translate.at(1).toDouble(),
             true};
    }
    const std::vector<Ring> arcs = decodeArcs(root.value(QStringLiteral("arcs")).toArray(), t);
    const QJsonObject object = root.value(QStringLiteral("objects")).toObject().value(objectName).toObject();
    if (object.isEmpty())
        return Result<TopoLayer>::fail(QStringLiteral("Oggetto TopoJSON mancante: %1").arg(objectName));

    TopoLayer layer;
    for (const QJsonValue &gv : object.value(QStringLiteral("geometries")).toArray()) {
        const QJsonObject g = gv.toObject();
        TopoFeature f;
        f.properties = g.value(QStringLiteral("properties")).toObject();
        const QString type = g.value(QStringLiteral("type")).toString();
        const QJsonArray parts = g.value(QStringLiteral("arcs")).toArray();
        if (type == QLatin1String("Polygon")) {
            Polygon p;
            if (buildPolygon(parts, arcs, p, f.arcs))
                f.shape.push_back(std::move(p));
        } else if (type == QLatin1String("MultiPolygon")) {
            for (const QJsonValue &pv : parts) {
                Polygon p;
                if (buildPolygon(pv.toArray(), arcs, p, f.arcs))
                    f.shape.push_back(std::move(p));
            }
        }
        std::sort(f.arcs.begin(), f.arcs.end());
        f.arcs.erase(std::unique(f.arcs.begin(), f.arcs.end()), f.arcs.end());
        layer.features.push_back(std::move(f));
    }
    return layer;
}

Result<TopoLayer> readTopoJson(const QString &path, const QString &objectName)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Result<TopoLayer>::fail(QStringLiteral("Impossibile leggere il file %1.").arg(path));
    auto layer = parseTopoJson(file.readAll(), objectName);
    if (!layer)
        return Result<TopoLayer>::fail(QStringLiteral("%1 (%2)").arg(layer.errorMessage(), path));
    return layer;
}

}  // namespace mervola::atlas
