// mervola-cli build-atlas: builds an atlas home from the real source folder
// or, with --demo, the small synthetic atlas used by the tests.
#include "atlas/AtlasBuilder.h"
#include "cli/Commands.h"

#include <QElapsedTimer>
#include <cstdio>

namespace mervola::cli {

int cmdBuildAtlas(const QStringList &args)
{
    const QString home = option(args, QStringLiteral("--home"));
    if (home.isEmpty())
        return usageError(QStringLiteral("indicare la cartella dell'atlante con --home"));
    auto progress = [](const QString &text) { std::fprintf(stdout, "%s\n", text.toUtf8().constData()); };
    QElapsedTimer timer;
    timer.start();
    Status s;
    if (flag(args, QStringLiteral("--demo"))) {
        s = atlas::buildDemoAtlas(home, progress);
    } else {
        atlas::AtlasBuildOptions options;
        options.sources = option(args, QStringLiteral("--sources"));
        options.home = home;
        options.membership = option(args, QStringLiteral("--membership"));
        if (options.sources.isEmpty())
            return usageError(QStringLiteral("indicare la cartella dei dati di origine con --sources, oppure --demo"));
        s = atlas::buildAtlas(options, progress);
    }
    if (!s)
        return fail(s.errorMessage());
    std::fprintf(stdout, "Tempo: %.1f s\n", static_cast<double>(timer.elapsed()) / 1000.0);
    return 0;
}

}  // namespace mervola::cli
