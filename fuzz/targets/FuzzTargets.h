#pragma once
// Entry functions of the fuzz targets: each takes one input as bytes, feeds
// it to a reader of outside files the way the program does, and returns 0.
// A crash, a sanitizer report or a leak is a finding; a refused input is not.

#include <QString>

#include <cstddef>
#include <cstdint>

namespace mervola::fuzz
{

using Entry = int (*)(const std::uint8_t *data, std::size_t size);

int fuzzSettings(const std::uint8_t *data, std::size_t size);   // a theme settings file
int fuzzProject(const std::uint8_t *data, std::size_t size);    // a project (.rlx)
int fuzzReport(const std::uint8_t *data, std::size_t size);     // a report definition (.vrd)
int fuzzDbase(const std::uint8_t *data, std::size_t size);      // byte 0: the .cpg; then the .dbf
int fuzzTextSource(const std::uint8_t *data, std::size_t size); // a text/CSV join source
int fuzzAccess(const std::uint8_t *data, std::size_t size);     // an Access database, read in this process
int fuzzTopoJson(const std::uint8_t *data, std::size_t size);   // the builder's TopoJSON
int fuzzCondition(const std::uint8_t *data, std::size_t size);  // a user's query condition (UTF-8)
int fuzzShapefile(const std::uint8_t *data, std::size_t size);  // .shp, .shx and .dbf in one input (FuzzTables.cpp)

// The Access input read as the program reads it: through the helper process.
int replayAccess(const std::uint8_t *data, std::size_t size);

struct Target {
    const char *name; // folder of its inputs under corpus/ and regressions/
    Entry fuzz;       // what the fuzzer runs
    Entry replay;     // what the replay test runs (the same, but for Access)
};

inline constexpr Target kTargets[] = {
    {"settings", fuzzSettings, fuzzSettings},
    {"project", fuzzProject, fuzzProject},
    {"report", fuzzReport, fuzzReport},
    {"dbase", fuzzDbase, fuzzDbase},
    {"textsource", fuzzTextSource, fuzzTextSource},
    {"access", fuzzAccess, replayAccess},
    {"topojson", fuzzTopoJson, fuzzTopoJson},
    {"condition", fuzzCondition, fuzzCondition},
    {"shapefile", fuzzShapefile, fuzzShapefile},
};

const Target *findTarget(const char *name);

// Writes the bytes to file `name` of this process's scratch folder and
// returns its path (readers of paths get their input this way).
QString scratchFile(const QString &name, const std::uint8_t *data, std::size_t size);
QString scratchFolder();

} // namespace mervola::fuzz
