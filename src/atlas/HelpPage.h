#pragma once
// The Italian HTML help page shipped at the root of the atlas home.

#include "atlas/AtlasModel.h"

namespace mervola::atlas {

QString helpPageHtml(const AtlasModel &model, bool demo);

}  // namespace mervola::atlas
