#pragma once
// Builds an atlas home (dati/, italia/, originali/, supporto/, mervola.html)
// from the real source folder or from the generated demo sources. The home is
// assembled in a sibling folder and moved into place only when complete, so
// a failed build leaves an existing home untouched.

#include "atlas/SourceData.h"
#include "atlas/SourceTable.h"
#include "platform/Result.h"

#include <functional>
#include <optional>

namespace mervola::atlas {

struct AtlasBuildOptions {
    QString sources;     // folder with comuni_attributi.csv, capoluoghi.csv, boundaries/
    QString home;        // atlas home to create or replace
    QString membership;  // optional CSV: ISTAT code, community code, name
};

using Progress = std::function<void(QString)>;

Status buildAtlas(const AtlasBuildOptions &options, Progress progress = {});
Status buildDemoAtlas(const QString &home, Progress progress = {});

// The common path of both: sources in lon/lat -> complete home.
Status buildAtlasFromSources(AtlasSources sources, const QString &home, const std::optional<SourceTable> &membership,
                             bool demo, const Progress &progress);

}  // namespace mervola::atlas
