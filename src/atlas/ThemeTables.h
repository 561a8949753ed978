#pragma once
// The theme tables of the atlas home with their display aliases and the
// aliases of their fields: regioni, province, citta, comuni and comu_NN,
// commont and cmont_NN (no cmont for the region without communities).

#include "atlas/AtlasModel.h"
#include "atlas/ShapefileWriter.h"

namespace mervola::atlas {

struct ThemeTable {
    QString alias;  // display name of the theme (ALIASTEMI)
    ShapeLayer layer;
    QStringList fieldAliases;  // one per field
    QStringList keyFields;     // fields a join may use
};

// Fields of the tables, shared by the writer, the catalogue and the tests.
std::vector<AtlasField> municipalityFields();
std::vector<AtlasField> communityFields();

// Every theme table, in the order they are written; region codes come from
// the model's regions.
std::vector<ThemeTable> buildThemeTables(const AtlasModel &model);

// True for numeric indicator fields ("_" + code or "I" + three digits).
bool isIndicatorField(const QString &field);

}  // namespace mervola::atlas
