#include "cli/RenderCommand.h"

#include "app/ProjectView.h"
#include "cli/Commands.h"
#include "map/MapExport.h"
#include "map/MapRenderer.h"
#include "platform/Profile.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
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

// The region themes for a headless render, taken as the region box takes
// them but without writing into the atlas home: the theme's shapefile is
// copied with its pristine table into a scratch folder, and its settings are
// the project's section of that theme, else the pristine settings file
// (what opening the project leaves in supporto/).
class PristineRegionThemes {
public:
    PristineRegionThemes(AtlasHome home, const ProjectContent &project) : m_home(std::move(home))
    {
        for (const auto &section : project.themes)
            m_sections.insert(section.name.toLower(), section.lines.join(QLatin1Char('\n')));
    }

    Result<RegionTheme> operator()(const QString &theme)
    {
        if (!m_scratch.isValid())
            return Result<RegionTheme>::fail(QStringLiteral("Impossibile creare una cartella temporanea."));
        const QString folder = m_scratch.path() + QLatin1Char('/') + theme;
        QDir().mkpath(folder);
        const QStringList parts = QDir(m_home.italia()).entryList({theme + QStringLiteral(".*")}, QDir::Files);
        for (const QString &part : parts) {
            QString from = m_home.italia() + QLatin1Char('/') + part;
            const QString suffix = QFileInfo(part).suffix().toLower();
            if (suffix == QLatin1String("dbf")) {
                const QString pristine = resolveCaseInsensitive(m_home.originali(), theme + QStringLiteral(".dbf"));
                if (QFileInfo::exists(pristine))
                    from = pristine;
            }
            const QString to = folder + QLatin1Char('/') + theme + QLatin1Char('.') + suffix;
            QFile::remove(to);
            if (!QFile::copy(from, to))
                return Result<RegionTheme>::fail(QStringLiteral("Impossibile copiare %1.").arg(from));
        }
        RegionTheme t;
        t.shapefile = folder + QLatin1Char('/') + theme + QStringLiteral(".shp");
        const auto section = m_sections.constFind(theme.toLower());
        if (section != m_sections.constEnd()) {
            t.settings = readThemeSettings(ProfileFile::fromText(*section), theme);
        } else {
            const QString ini = resolveCaseInsensitive(m_home.originali(), theme + QStringLiteral(".ini"));
            if (QFileInfo(ini).isFile())
                t.settings = readThemeSettingsFile(ini, theme);
        }
        return t;
    }

private:
    AtlasHome m_home;
    QHash<QString, QString> m_sections;
    QTemporaryDir m_scratch;
};

struct RenderJob {
    RegionEntry region;
    QString path;
};

// Draws each job's region on the project's map, one file each, with a line
// per map on stdout.
int renderRegions(map::MapModel &model, const AtlasHome &home, const ProjectContent &project,
                  const std::vector<RenderJob> &jobs, QSize size, const map::RenderOptions &options)
{
    PristineRegionThemes source(home, project);
    AppState state;
    int done = 0;
    for (const RenderJob &job : jobs) {
        auto switched = switchRegion(model, home, job.region, state, std::ref(source));
        if (!switched)
            return fail(switched.errorMessage());
        const map::MapRect extent = switched->extent.value_or(model.extent());
        if (Status s = map::exportMap(model, extent, size, job.path, options); !s)
            return fail(s.errorMessage());
        if (jobs.size() > 1) {
            std::printf("Carta %d/%d: %s -> %s\n", ++done, int(jobs.size()), job.region.text.toUtf8().constData(),
                        QDir::toNativeSeparators(job.path).toUtf8().constData());
            std::fflush(stdout);
        }
    }
    return kExitOk;
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

std::optional<RegionEntry> regionByArgument(const QString &argument)
{
    const QString wanted = argument.trimmed();
    bool isNumber = false;
    const int number = wanted.toInt(&isNumber);
    for (const RegionEntry &r : regionEntries()) {
        if (isNumber ? r.code.toInt() == number : r.text.compare(wanted, Qt::CaseInsensitive) == 0)
            return r;
    }
    return std::nullopt;
}

QString regionFileName(const RegionEntry &region, const QString &extension)
{
    static const QRegularExpression other(QStringLiteral("[^a-z0-9]+"));
    QString name = region.code == QLatin1String("00") ? QStringLiteral("italia") : region.text.toLower();
    name.replace(other, QStringLiteral("_"));
    return region.code + QLatin1Char('_') + name + QLatin1Char('.') + extension;
}

int cmdRender(const QStringList &args)
{
    const QString out = option(args, QStringLiteral("--out"));
    const QString regionArg = option(args, QStringLiteral("--region"));
    const QString allDir = option(args, QStringLiteral("--all-regions"));
    if (flag(args, QStringLiteral("--all-regions")) && allDir.isEmpty())
        return usageError(QStringLiteral("manca la cartella dopo --all-regions"));
    if (flag(args, QStringLiteral("--region")) && regionArg.isEmpty())
        return usageError(QStringLiteral("manca la regione dopo --region"));
    if (!allDir.isEmpty() && (!out.isEmpty() || !regionArg.isEmpty()))
        return usageError(QStringLiteral("--all-regions non si usa con --out o --region"));
    if (allDir.isEmpty() && out.isEmpty())
        return usageError(QStringLiteral("manca --out FILE (oppure --all-regions DIR)"));

    // The extension picks the format: bmp, emf, png, svg or pdf.
    const QString format = option(args, QStringLiteral("--format")).toLower();
    const QString extension = allDir.isEmpty()   ? QFileInfo(out).suffix()
                              : format.isEmpty() ? QStringLiteral("png")
                                                 : format;
    const QString probe = allDir.isEmpty() ? out : QStringLiteral("carta.") + extension;
    if (!map::exportFormatFor(probe))
        return usageError(map::unsupportedFormatMessage(probe));
    QSize size(1600, 1200);
    if (const QString s = option(args, QStringLiteral("--size")); !s.isEmpty()) {
        size = parseSize(s);
        if (!size.isValid())
            return usageError(QStringLiteral("dimensione non valida: %1 (atteso LARGHEZZAxALTEZZA)").arg(s));
    }
    std::vector<RenderJob> jobs;
    if (!allDir.isEmpty()) {
        std::vector<RegionEntry> byCode = regionEntries();
        std::sort(byCode.begin(), byCode.end(), [](const auto &a, const auto &b) { return a.code < b.code; });
        for (const RegionEntry &r : byCode)
            jobs.push_back({r, QDir(allDir).filePath(regionFileName(r, extension))});
    } else if (!regionArg.isEmpty()) {
        const auto region = regionByArgument(regionArg);
        if (!region)
            return usageError(
                QStringLiteral("regione sconosciuta: %1 (indicare un codice da 00 a 20 o il nome della regione)")
                    .arg(regionArg));
        jobs.push_back({*region, out});
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
    QString project = option(args, QStringLiteral("--project"));
    if (project.isEmpty() && QFileInfo::exists(home.defaultProject()))
        project = home.defaultProject();
    map::MapModel model;
    ProjectContent content;
    Status loaded;
    if (!project.isEmpty()) {
        loaded = loadProjectView(project, home, model);
        // Only region maps need the project's sections again (their themes'
        // settings); a single map is drawn without reading the file twice.
        if (!jobs.empty())
            if (auto parsed = readProjectFile(project))
                content = *parsed;
    } else {
        loaded = loadDefaultAtlas(home, model);
    }
    if (!loaded)
        return fail(loaded.errorMessage());
    step("progetto");

    map::RenderOptions options;
    // Labels and the vector formats draw text; a bitmap without labels is
    // drawn without the GUI application and its font set-up. Region maps
    // bring the region's own themes, so they always get one.
    options.labels = std::any_of(model.layers().begin(), model.layers().end(), [](const map::MapLayer &l) {
        return l.visible && l.data && l.labels.enabled();
    });
    if (!jobs.empty()) {
        ensureGuiApplication();
        options.labels = true;
        if (!allDir.isEmpty() && !QDir().mkpath(allDir))
            return fail(QStringLiteral("Impossibile creare la cartella %1.").arg(allDir));
        return renderRegions(model, home, content, jobs, size, options);
    }
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
    return kExitOk;
}

}  // namespace mervola::cli
