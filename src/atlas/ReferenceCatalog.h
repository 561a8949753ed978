#pragma once
// Fills the reference database of a new atlas home: STRUTTURE (one row per
// field of every theme table), ALIASTEMI, CATEGORIE, INDICATORI and one table
// per category ("01", "02" ...) with the mountain communities' indicator
// values keyed by PROG_MONT.

#include "atlas/AtlasModel.h"
#include "atlas/ThemeTables.h"

namespace mervola::atlas {

Status writeReferenceDb(const QString &path, const std::vector<ThemeTable> &themes, const AtlasModel &model);

}  // namespace mervola::atlas
