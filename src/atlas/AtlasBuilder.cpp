#include "atlas/AtlasBuilder.h"

#include "atlas/AtlasModel.h"
#include "atlas/DemoAtlas.h"
#include "atlas/HelpPage.h"
#include "atlas/HomeFiles.h"
#include "atlas/ReferenceCatalog.h"
#include "atlas/SourceLoader.h"
#include "atlas/ThemeTables.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace mervola::atlas {

namespace {

Status fail(const QString &text) { return Status::fail(text); }

Status copyFile(const QString &from, const QString &to)
{
    QFile::remove(to);
    if (!QFile::copy(from, to))
        return fail(QStringLiteral("Impossibile copiare %1 in %2.").arg(from, to));
    return {};
}

Status writeText(const QString &path, const QString &text)
{
    QFile f(path);
    const QByteArray bytes = text.toUtf8();
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(bytes) != bytes.size())
        return fail(QStringLiteral("Impossibile scrivere il file %1.").arg(path));
    return {};
}

// Refuses to replace a folder that holds something other than an atlas.
Status checkTarget(const QString &home)
{
    QDir dir(home);
    if (!dir.exists() || dir.isEmpty())
        return {};
    if (QFileInfo::exists(home + QStringLiteral("/dati/mervola.sqlite")))
        return {};
    return fail(QStringLiteral("La cartella %1 non è vuota e non contiene un atlante: scegliere un'altra cartella.")
                    .arg(home));
}

// Moves the finished staging folder into place; the old home goes only
// after the new one is there.
Status swapIntoPlace(const QString &staging, const QString &home)
{
    const QString old = home + QStringLiteral(".old-build");
    QDir(old).removeRecursively();
    const bool hadHome = QDir(home).exists();
    if (hadHome && !QDir().rename(home, old))
        return fail(QStringLiteral("Impossibile sostituire la cartella %1.").arg(home));
    if (!QDir().rename(staging, home)) {
        if (hadHome)
            QDir().rename(old, home);
        return fail(QStringLiteral("Impossibile spostare l'atlante in %1.").arg(home));
    }
    if (hadHome)
        QDir(old).removeRecursively();
    return {};
}

Status writeTables(const QString &root, const std::vector<ThemeTable> &themes, const Progress &progress)
{
    const QString italia = root + QStringLiteral("/italia");
    const QString originali = root + QStringLiteral("/originali");
    for (const ThemeTable &t : themes) {
        if (progress)
            progress(QStringLiteral("Scrittura di %1").arg(t.layer.name));
        if (auto s = writeShapefile(italia, t.layer); !s)
            return s;
        if (auto s = copyFile(italia + QLatin1Char('/') + t.layer.name + QStringLiteral(".dbf"),
                              originali + QLatin1Char('/') + t.layer.name + QStringLiteral(".dbf"));
            !s)
            return s;
    }
    // The pristine all-Italy community table, restored with commont.
    for (const ThemeTable &t : themes)
        if (t.layer.name == QLatin1String("commont")) {
            ShapeLayer base = t.layer;
            base.name = QStringLiteral("combase");
            base.kind = ShapeKind::None;
            if (auto s = writeShapefile(italia, base); !s)
                return s;
            return copyFile(italia + QStringLiteral("/combase.dbf"), originali + QStringLiteral("/combase.dbf"));
        }
    return {};
}

}  // namespace

Status buildAtlasFromSources(AtlasSources sources, const QString &homeArg, const std::optional<SourceTable> &membership,
                             bool demo, const Progress &progress)
{
    if (homeArg.isEmpty())
        return fail(QStringLiteral("Cartella dell'atlante non indicata."));
    const QString home = QFileInfo(homeArg).absoluteFilePath();
    if (auto s = checkTarget(home); !s)
        return s;
    const QString staging = home + QStringLiteral(".new-build");
    QDir(staging).removeRecursively();
    for (const char *sub : {"dati", "italia", "originali", "supporto"})
        if (!QDir().mkpath(staging + QLatin1Char('/') + QLatin1String(sub)))
            return fail(QStringLiteral("Impossibile creare la cartella %1.").arg(staging));

    auto model = buildModel(std::move(sources), membership, progress);
    if (!model) {
        QDir(staging).removeRecursively();
        return model.error();
    }
    const std::vector<ThemeTable> themes = buildThemeTables(*model);
    Extent extent;
    for (const GeometryPtr &g : model->regioniGeometry)
        extent.add(g.get());
    if (!extent.valid)
        for (const GeometryPtr &g : model->comuniGeometry)
            extent.add(g.get());

    QStringList regionCodes;
    for (const SourceArea &r : model->sources.regioni)
        regionCodes << r.code;

    Status s = writeTables(staging, themes, progress);
    if (s) {
        if (progress)
            progress(QStringLiteral("Database di riferimento"));
        s = writeReferenceDb(staging + QStringLiteral("/dati/mervola.sqlite"), themes, *model);
    }
    if (s)
        s = writeHomeFiles(staging, home, extent, regionCodes);
    if (s)
        s = writeText(staging + QStringLiteral("/mervola.html"), helpPageHtml(*model, demo));
    if (s)
        s = swapIntoPlace(staging, home);
    if (!s) {
        QDir(staging).removeRecursively();
        return s;
    }
    if (progress) {
        for (const QString &n : model->notes)
            progress(QStringLiteral("Nota: ") + n);
        if (!model->gaps.isEmpty()) {
            progress(QStringLiteral("Lacune dei dati di origine:"));
            for (const QString &g : model->gaps)
                progress(QStringLiteral("  ") + g);
        }
        progress(QStringLiteral("Atlante creato in %1: %2 comuni, %3 comunità montane.")
                     .arg(home)
                     .arg(model->sources.comuni.size())
                     .arg(model->communities.size()));
    }
    return {};
}

Status buildAtlas(const AtlasBuildOptions &options, Progress progress)
{
    if (progress)
        progress(QStringLiteral("Lettura dei dati di origine da %1").arg(options.sources));
    auto sources = loadSources(options.sources);
    if (!sources)
        return sources.error();
    std::optional<SourceTable> membership;
    if (!options.membership.isEmpty()) {
        auto table = readCsv(options.membership);
        if (!table)
            return table.error();
        membership = std::move(*table);
    }
    return buildAtlasFromSources(std::move(*sources), options.home, membership, false, progress);
}

Status buildDemoAtlas(const QString &home, Progress progress)
{
    return buildAtlasFromSources(demoSources(), home, std::nullopt, true, progress);
}

}  // namespace mervola::atlas
