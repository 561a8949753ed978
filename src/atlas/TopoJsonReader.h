#pragma once
// Reads a quantized TopoJSON file: one named object (a GeometryCollection of
// Polygon / MultiPolygon / null geometries) decoded into lon/lat rings, with
// the neighbours of every feature found from the arcs that two features share.

#include "atlas/SourceData.h"
#include "platform/Result.h"

#include <QJsonObject>

namespace mervola::atlas {

struct TopoFeature {
    QJsonObject properties;
    MultiPolygon shape;
    std::vector<int> arcs;  // arc numbers used (non-negative), sorted, unique
};

struct TopoLayer {
    std::vector<TopoFeature> features;
    // For each feature, the sorted indexes of the features sharing an arc with it.
    std::vector<std::vector<int>> adjacency() const;
};

Result<TopoLayer> readTopoJson(const QString &path, const QString &objectName);
Result<TopoLayer> parseTopoJson(const QByteArray &json, const QString &objectName);

}  // namespace mervola::atlas
