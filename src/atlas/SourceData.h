#pragma once
// The source data of an atlas in memory, independent of where it came from
// (the real ISTAT/openpolis files or the generated demo): municipalities with
// their attribute row and lon/lat outline, regions, provinces, capitals.

#include <QHash>
#include <QString>
#include <QStringList>
#include <array>
#include <vector>

namespace mervola::atlas {

using Point2 = std::array<double, 2>;       // x, y (lon, lat before projection)
using Ring = std::vector<Point2>;           // closed: first point == last point
using Polygon = std::vector<Ring>;          // outer ring, then holes
using MultiPolygon = std::vector<Polygon>;  // empty = null geometry

struct SourceMunicipality {
    QString code;          // 6-digit ISTAT code
    QString name;
    QString provinceCode;  // 3 digits
    QString provinceName;
    QString regionCode;    // 2 digits
    QHash<QString, QString> attributes;  // columns of comuni_attributi.csv, empty = missing
    MultiPolygon shape;
    std::vector<int> neighbours;  // indexes into AtlasSources::comuni sharing a boundary
};

struct SourceArea {
    QString code;        // region: 2 digits; province: 3 digits
    QString name;
    QString regionCode;  // provinces only
    QString acronym;     // provinces only
    MultiPolygon shape;
};

struct AtlasSources {
    std::vector<SourceMunicipality> comuni;
    std::vector<SourceArea> regioni;
    std::vector<SourceArea> province;
    QStringList capitalCodes;  // ISTAT codes of the provincial capitals present in comuni
    QStringList notes;         // data fixes applied while reading, for the build log
};

}  // namespace mervola::atlas
