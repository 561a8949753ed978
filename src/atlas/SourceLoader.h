#pragma once
// Reads the real source folder (comuni_attributi.csv, capoluoghi.csv and the
// openpolis TopoJSON boundaries) into AtlasSources, fixing the known problems:
// names come from the attribute table (three are mis-encoded in the
// boundaries), a municipality without geometry is kept as a record, and
// capitals whose 2019 code changed are matched by name.

#include "atlas/SourceData.h"
#include "platform/Result.h"

namespace mervola::atlas {

Result<AtlasSources> loadSources(const QString &folder);

}  // namespace mervola::atlas
