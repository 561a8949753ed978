#include "cli/RenderCommand.h"

#include "app/ProjectView.h"
#include "cli/Commands.h"
#include "map/MapExport.h"
#include "map/MapRenderer.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cstdio>

namespace mervola::cli {

namespace {

constexpr std::int32_t kComuniFill = 16776960;
constexpr std::int32_t kCommontFill = 56320;
constexpr std::int32_t kBlack = 0x02000000;

map::Symbol fillSymbol(std::int32_t fill, bool transparent = false)
{
    map::Symbol s;
    s.symbolType = map::SymbolType::Fill;
    s.color = fill;
    s.outlineColor = kBlack;
    s.style = transparent ? 1 : 0;
    return s;
}

QSize parseSize(const QString &text)
{
    static const QRegularExpression re(QStringLiteral(R"(^(\d{1,5})[xX](\d{1,5})$)"));
    const auto m = re.match(text);
    if (!m.hasMatch())
        return {};
    const QSize s(m.captured(1).toInt(), m.captured(2).toInt());
    return s.width() > 0 && s.height() > 0 && s.width() <= 20000 && s.height() <= 20000 ? s : QSize();
}

}  // namespace

Status loadDefaultAtlas(const AtlasHome &home, map::MapModel &model)
{
    struct Theme {
        const char *name;
        std::int32_t fill;
        bool transparent;
    };
    // Added bottom first: each new layer goes on top.
    const Theme themes[] = {{"comuni", kComuniFill, false}, {"commont", kCommontFill, false}, {"regioni", 0, true}};
    for (const Theme &t : themes) {
        const QString name = QString::fromLatin1(t.name);
        const QString path = resolveCaseInsensitive(home.italia(), name + QStringLiteral(".shp"));
        if (!QFileInfo::exists(path))
            continue;
        auto layer = model.addShapefile(path, name);
        if (!layer)
            return layer.error();
        (*layer)->renderer = map::SimpleRenderer{fillSymbol(t.fill, t.transparent)};
    }
    if (model.layerCount() == 0)
        return Status::fail(QStringLiteral("Nessun tema trovato in %1").arg(home.italia()));
    model.setExtent(model.fullExtent());
    return {};
}

Status writePicture(const QImage &image, const QString &path) { return map::saveImageFile(image, path); }

int cmdRender(const QStringList &args)
{
    const QString out = option(args, QStringLiteral("--out"));
    if (out.isEmpty())
        return fail(QStringLiteral("manca --out FILE"));
    // The extension of --out picks the format: bmp, emf, png, svg or pdf.
    if (!map::exportFormatFor(out))
        return fail(map::unsupportedFormatMessage(out));
    QSize size(1600, 1200);
    if (const QString s = option(args, QStringLiteral("--size")); !s.isEmpty()) {
        size = parseSize(s);
        if (!size.isValid())
            return fail(QStringLiteral("dimensione non valida: %1 (atteso LARGHEZZAxALTEZZA)").arg(s));
    }
    // MERVOLA_TRACE=1 prints the time of each step on stderr.
    QElapsedTimer clock;
    clock.start();
    const bool trace = qEnvironmentVariableIsSet("MERVOLA_TRACE");
    auto step = [&](const char *name) {
        if (trace)
            std::fprintf(stderr, "%s %.1f ms\n", name, double(clock.nsecsElapsed()) / 1e6);
    };
    const AtlasHome home = AtlasHome::locate(option(args, QStringLiteral("--home")));
    map::MapModel model;
    const QString project = option(args, QStringLiteral("--project"));
    Status loaded;
    if (!project.isEmpty())
        loaded = loadProjectView(project, home, model);
    else if (QFileInfo::exists(home.defaultProject()))
        loaded = loadProjectView(home.defaultProject(), home, model);
    else
        loaded = loadDefaultAtlas(home, model);
    if (!loaded)
        return fail(loaded.errorMessage());
    step("progetto");

    map::RenderOptions options;
    // Labels and the vector formats draw text; a bitmap without labels is
    // drawn without the GUI application and its font set-up.
    options.labels = std::any_of(model.layers().begin(), model.layers().end(), [](const map::MapLayer &l) {
        return l.visible && l.data && l.labels.enabled();
    });
    const bool bitmap = *map::exportFormatFor(out) == map::ExportFormat::Png ||
                        *map::exportFormatFor(out) == map::ExportFormat::Bmp;
    if (options.labels || !bitmap)
        ensureGuiApplication();
    Status written;
    if (bitmap) {
        const QImage picture = map::MapRenderer::renderImage(model, model.extent(), size, options);
        step("disegno");
        written = writePicture(picture, out);
    } else {
        written = map::exportMap(model, model.extent(), size, out, options);
    }
    if (!written)
        return fail(written.errorMessage());
    step("scrittura");
    return 0;
}

}  // namespace mervola::cli
