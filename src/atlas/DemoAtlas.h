#pragma once
// A small synthetic atlas for tests and demonstrations: three regions
// (Piemonte, Valle d'Aosta, Sicilia), four provinces and 94 square
// municipalities on a lon/lat grid, with every attribute column of the real
// table. It goes through the same builder as the real data.

#include "atlas/SourceData.h"

namespace mervola::atlas {

AtlasSources demoSources();

}  // namespace mervola::atlas
