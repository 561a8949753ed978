// Entry points of the mervola-cli-tools module (see ToolModule.h).
#include "cli/Commands.h"
#include "cli/ToolModule.h"
#include "map/gdal/GdalLayerReader.h"

#include <cstring>

namespace
{

struct Tool {
    const char *name;
    int (*fn)(const QStringList &);
};

constexpr Tool kTools[] = {
    {"build-atlas", mervola::cli::cmdBuildAtlas},
    {"sql", mervola::cli::cmdSql},
    {"classify", mervola::cli::cmdClassify},
    {"join", mervola::cli::cmdJoin},
    {"unjoin", mervola::cli::cmdUnjoin},
};

} // namespace

extern "C" __attribute__((visibility("default"))) int mervola_cli_tool(const char *name, const QStringList *args)
{
    for (const Tool &t : kTools)
        if (std::strcmp(t.name, name) == 0)
            return t.fn(*args);
    return mervola::cli::fail(QStringLiteral("comando sconosciuto: %1").arg(QLatin1String(name)));
}

extern "C" __attribute__((visibility("default"))) void
mervola_cli_read_layer(const QString *path, mervola::Result<mervola::map::LayerDataPtr> *out)
{
    *out = mervola::map::readLayerWithGdal(*path);
}

// The declarations must match the types the executable calls through.
static_assert(std::is_same_v<decltype(&mervola_cli_tool), mervola::cli::ToolEntry>);
static_assert(std::is_same_v<decltype(&mervola_cli_read_layer), mervola::cli::LayerEntry>);
