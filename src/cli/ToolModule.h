#pragma once
// The sub-commands that need GDAL (building the atlas, SQL on dBase tables,
// classifying a theme, joining a user's table) live in the module mervola-cli-tools.so, loaded only
// when one of them runs: `mervola-cli render` starts without GDAL and the
// hundred libraries it brings. The module sits beside the executable, or in
// ../lib/mervola/ from it.

#include "map/LayerData.h"

#include <QStringList>

namespace mervola::cli
{

// Entry points the module exports (C names, looked up at run time).
inline constexpr char kToolEntry[] = "mervola_cli_tool";
inline constexpr char kLayerEntry[] = "mervola_cli_read_layer";
using ToolEntry = int (*)(const char *name, const QStringList *args);
using LayerEntry = void (*)(const QString *path, Result<map::LayerDataPtr> *out);

// Runs sub-command `name` of the module; an Italian error when the module
// cannot be loaded.
int runTool(const char *name, const QStringList &args);

// Foreign layer reader of the command line: reads through GDAL in the module.
Result<map::LayerDataPtr> readLayerThroughTools(const QString &path);

} // namespace mervola::cli
