#include "project/ProjectFile.h"

#include "platform/FileReplace.h"

#include <QHash>

#include "platform/Messages.h"
#include "platform/Profile.h"
#include "project/PristineSettings.h"
#include "platform/dbf/TableCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QLocale>
#include <charconv>
#include <cmath>

namespace mervola {

namespace {

const QString kRlx = QStringLiteral("RLX");

Error malformed(const QString &detail)
{
    return Error{QStringLiteral("File di progetto non valido: %1").arg(detail)};
}

// "KEY=value" with blanks around the key ignored; nullopt for other lines.
std::optional<std::pair<QString, QString>> keyValue(const QString &line)
{
    const int eq = line.indexOf(QLatin1Char('='));
    if (eq < 0)
        return std::nullopt;
    return std::make_pair(line.left(eq).trimmed(), line.mid(eq + 1).trimmed());
}

Result<ExtentRect> parseExtent(const QString &value)
{
    const QStringList f = splitFields(value);
    if (f.size() < 4)
        return Result<ExtentRect>::fail(QStringLiteral("EXTENT incompleto"));
    double v[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        v[i] = f.at(i).trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(v[i]))
            return Result<ExtentRect>::fail(QStringLiteral("EXTENT non numerico: %1").arg(f.at(i)));
    }
    return ExtentRect{v[0], v[1], v[2], v[3]};
}

// A theme section becomes a file in supporto/: only plain names are accepted.
bool isPlainName(const QString &name)
{
    return !name.trimmed().isEmpty() && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'))
           && !name.contains(QLatin1String(".."));
}

QString sectionName(const QString &trimmedLine)
{
    const int close = trimmedLine.indexOf(QLatin1Char(']'));
    return (close < 0 ? trimmedLine.mid(1) : trimmedLine.mid(1, close - 1)).trimmed();
}

bool labelsShown(const ThemeSettings &s)
{
    return s.labelsOn() && s.labelField.compare(QLatin1String("DUMMY"), Qt::CaseInsensitive) != 0;
}

}  // namespace

bool hasProjectExtension(const QString &path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("rlx"), Qt::CaseInsensitive) == 0;
}

QString formatExtentNumber(double value)
{
    char buf[400];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
    if (r.ec != std::errc())
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    return QString::fromLatin1(buf, int(r.ptr - buf));
}

QString formatExtentLine(const ExtentRect &e)
{
    return QStringLiteral("EXTENT=")
           + joinFields({formatExtentNumber(e.xmin), formatExtentNumber(e.ymin), formatExtentNumber(e.xmax),
                         formatExtentNumber(e.ymax)});
}

QString settingsNameOfLayer(const QString &layerName)
{
    const int paren = layerName.indexOf(QLatin1Char('('));
    return paren < 0 ? layerName : layerName.left(std::max(0, paren - 1));
}

namespace {

// Builds a ProjectContent from the lines of a project, one at a time.
class ProjectParser {
public:
    Status add(const QString &raw)
    {
        const QString line = raw.trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            const QString name = sectionName(line);
            m_inRlx = name.compare(kRlx, Qt::CaseInsensitive) == 0;
            if (m_inRlx) {
                m_seenRlx = true;
                return {};
            }
            if (!isPlainName(name))
                return malformed(QStringLiteral("nome di tema non valido %1").arg(name));
            m_p.themes.append({name, {raw}});
            return {};
        }
        if (m_inRlx) {
            if (auto kv = keyValue(line)) {
                if (kv->first.compare(QLatin1String("DBFCOMMONT"), Qt::CaseInsensitive) == 0)
                    m_p.dbfCommont = splitFields(kv->second).value(0);
                else if (kv->first.compare(QLatin1String("EXTENT"), Qt::CaseInsensitive) == 0)
                    m_extent = kv->second;
            }
        } else if (!m_p.themes.isEmpty()) {
            m_p.themes.last().lines << raw;
        } else if (!line.isEmpty()) {
            return malformed(QStringLiteral("testo fuori sezione"));
        }
        return {};
    }

    Result<ProjectContent> finish()
    {
        if (!m_seenRlx)
            return malformed(QStringLiteral("sezione [RLX] mancante"));
        if (!m_extent)
            return malformed(QStringLiteral("EXTENT mancante"));
        auto e = parseExtent(*m_extent);
        if (!e)
            return malformed(e.errorMessage());
        m_p.extent = *e;
        return std::move(m_p);
    }

private:
    ProjectContent m_p;
    bool m_seenRlx = false, m_inRlx = false;
    std::optional<QString> m_extent;
};

QString decodeLine(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

}  // namespace

Result<ProjectContent> parseProject(const QString &text)
{
    ProjectParser parser;
    for (const QString &raw : splitLines(text))
        if (Status st = parser.add(raw); !st)
            return st.error();
    return parser.finish();
}

Result<ProjectContent> readProjectFile(const QString &path, const std::function<bool(double)> &progress)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return Result<ProjectContent>::fail(QStringLiteral("Impossibile leggere il file %1.").arg(path));
    const double size = std::max<qint64>(1, f.size());
    ProjectParser parser;
    bool first = true;
    int lines = 0;
    // One buffer for every line: a line is at most kProjectLineLimit bytes
    // plus the terminating zero readLine() adds.
    QByteArray buffer(kProjectLineLimit + 1, Qt::Uninitialized);
    while (!f.atEnd()) {
        qint64 n = f.readLine(buffer.data(), buffer.size());
        if (n < 0)
            break;
        // The rest of an overlong line is skipped.
        if (n > 0 && buffer.at(n - 1) != '\n') {
            char rest[4096];
            qint64 m = 0;
            do {
                m = f.readLine(rest, sizeof rest);
            } while (m > 0 && rest[m - 1] != '\n');
        }
        while (n > 0 && (buffer.at(n - 1) == '\n' || buffer.at(n - 1) == '\r'))
            --n;
        QString line = decodeLine(QByteArray::fromRawData(buffer.constData(), n));
        if (first && line.startsWith(QChar(0xFEFF)))
            line.remove(0, 1);
        first = false;
        if (Status st = parser.add(line); !st)
            return st.error();
        if (progress && ++lines % 1000 == 0 && !progress(double(f.pos()) / size))
            return Result<ProjectContent>::fail(QString(), kProjectCancelled);
    }
    return parser.finish();
}

ProjectFiles::ProjectFiles(AtlasHome home, MapHost &map) : m_home(std::move(home)), m_map(map), m_db(m_home) {}

Result<QStringList> ProjectFiles::projectLines(const QString &dbfCommont) const
{
    QStringList out;
    out << QStringLiteral("[RLX]");
    out << QStringLiteral("DBFCOMMONT=") + dbfCommont + QLatin1Char('^');
    out << formatExtentLine(m_map.extent());
    for (int i = m_map.layerCount() - 1; i >= 0; --i) {
        const QString name = settingsNameOfLayer(m_map.layerName(i));
        auto text = readTextFile(resolveCaseInsensitive(m_home.supporto(), name + QStringLiteral(".ini")));
        if (!text)
            return text.error();
        out << splitLines(*text);
    }
    return out;
}

Status ProjectFiles::save(const QString &path, const QString &dbfCommont)
{
    if (!hasProjectExtension(path)) {
        showMessage(MsgStyle::Exclamation, ProjectText::kBadExtension);
        return Status::fail(ProjectText::kBadExtension);
    }
    auto lines = projectLines(dbfCommont);
    if (!lines)
        return lines.error();
    return writeLinesReplacing(path, *lines);
}

Status ProjectFiles::open(const QString &path)
{
    if (!hasProjectExtension(path)) {
        showMessage(MsgStyle::Exclamation, ProjectText::kBadExtension);
        return Status::fail(ProjectText::kBadExtension);
    }
    m_created.clear();
    m_session.notices.clear();
    // A save of this project that was interrupted left its temporary file
    // beside it; the project itself is whole (old or new), the leftover goes.
    QFile::remove(newFilePath(path));
    Status st = openSteps(path);
    if (st)
        return st;
    // What this opening wrote goes, whether it failed or was cancelled.
    removeWrittenFiles();
    // The progress reaches its end (its window closes) before the message.
    (void)reportProgress(1.0);
    if (st.error().code != kProjectCancelled)
        showDetailedMessage(MsgStyle::Critical, ProjectText::kOpenFailed, st.errorMessage());
    // The initial project: pristine settings and the default project's themes.
    m_map.removeAllLayers();
    m_session = ProjectSession{};
    m_map.setCaption(kAppTitle);
    if (auto r = restorePristine(); !r)
        return r;
    if (auto r = restoreDefault(); !r)
        return r;
    return st;
}

bool ProjectFiles::reportProgress(double fraction) const
{
    return !m_hooks.progress || m_hooks.progress(std::clamp(fraction, 0.0, 1.0));
}

void ProjectFiles::removeWrittenFiles()
{
    for (const QString &file : std::as_const(m_created))
        QFile::remove(file);
    m_created.clear();
}

Status ProjectFiles::openSteps(const QString &path)
{
    // The whole file is read and checked before the map is touched. Reading
    // is the first fifth of the work, writing the settings files the next
    // fifth, loading the themes the rest.
    auto content = readProjectFile(path, [this](double f) { return reportProgress(f * 0.2); });
    if (!content)
        return content.error();

    m_map.removeAllLayers();
    if (auto st = clearJoinBookkeeping(); !st)
        return st;
    if (auto st = restorePristine(); !st)
        return st;

    QStringList names;
    const double sections = std::max<qsizetype>(1, content->themes.size());
    // The folder is listed once: names are matched without case.
    QHash<QString, QString> present;
    for (const QString &f : QDir(m_home.supporto()).entryList(QDir::Files))
        present.insert(f.toLower(), m_home.supporto() + QLatin1Char('/') + f);
    for (const ProjectContent::Section &s : content->themes) {
        if (!reportProgress(0.2 + 0.2 * names.size() / sections))
            return Status::fail(QString(), kProjectCancelled);
        const QString file = s.name + QStringLiteral(".ini");
        QString ini = present.value(file.toLower());
        const bool existed = !ini.isEmpty();
        if (!existed)
            ini = m_home.supporto() + QLatin1Char('/') + file;
        if (auto st = writeLinesReplacing(ini, s.lines); !st)
            return st;
        if (!existed) {
            m_created << ini;
            present.insert(file.toLower(), ini);
        }
        names << s.name;
    }

    m_map.setExtent(content->extent);

    const QString dbf = content->dbfCommont;
    if (!dbf.isEmpty()) {
        // A per-region table ends with its two-digit region code.
        const QString tail = dbf.right(2);
        const bool perRegion = !dbf.endsWith(QLatin1Char('S'), Qt::CaseInsensitive) && tail.size() == 2
                               && tail.at(0).isDigit() && tail.at(1).isDigit();
        (void)restoreCommunity(dbf, perRegion ? QStringLiteral("CMONT_") + tail : QStringLiteral("COMMONT"));
    }
    m_session.regionCode = QStringLiteral("00");
    m_session.dbfCommont = dbf;

    const bool isDefault = path.endsWith(QLatin1String("default.rlx"), Qt::CaseInsensitive);
    if (auto st = loadThemes(names, isDefault, 0.4, 1.0); !st)
        return st;
    m_map.setExtent(content->extent);
    m_map.refresh();
    m_map.setCaption(ProjectText::kCaptionPrefix + QFileInfo(QFileInfo(path).absoluteFilePath()).completeBaseName());
    return {};
}

Status ProjectFiles::restoreDefault()
{
    // The initial project is always loaded whole: a cancelled opening that
    // falls back on it must not cancel it too.
    struct NoProgress {
        std::function<bool(double)> &hook;
        std::function<bool(double)> saved = std::exchange(hook, {});
        ~NoProgress() { hook = std::move(saved); }
    } noProgress{m_hooks.progress};
    const QString path = m_home.defaultProject();
    auto text = readTextFile(path);
    if (!text)
        return text.error();
    QStringList names;
    QHash<QString, QStringList> sections;  // theme -> its lines in the project
    QString current;
    for (const QString &raw : splitLines(*text)) {
        const QString line = raw.trimmed();
        if (line.contains(QLatin1String("[RLX]"), Qt::CaseInsensitive)) {
            current.clear();
            continue;
        }
        if (!line.contains(QLatin1Char('['))) {
            if (!current.isEmpty())
                sections[current] << raw;
            continue;
        }
        const QString name = sectionName(line);
        if (!isPlainName(name))
            return malformed(QStringLiteral("nome di tema non valido %1").arg(name));
        names << name;
        current = name;
        sections[current] << raw;
    }
    m_session.regionCode = QStringLiteral("00");
    // A theme whose settings file is missing from supporto/ (originali/ had
    // none to copy) takes its settings from the default project itself.
    for (const QString &name : names) {
        const QString ini = resolveCaseInsensitive(m_home.supporto(), name + QStringLiteral(".ini"));
        if (!QFileInfo::exists(ini))
            if (auto st = writeLinesReplacing(ini, sections.value(name)); !st)
                return st;
    }

    const ProfileFile profile = ProfileFile::fromText(*text);
    const QString dbf = splitFields(profile.read(kRlx, QStringLiteral("DBFCOMMONT"))).value(0).trimmed();
    auto extent = parseExtent(profile.read(kRlx, QStringLiteral("EXTENT")));
    if (!extent)
        return malformed(extent.errorMessage());
    m_map.setExtent(*extent);
    if (!dbf.isEmpty())
        (void)restoreCommunity(dbf, QStringLiteral("commont"));
    m_session.dbfCommont = dbf;

    // Themes that could not be shown are reported after the others are on the map.
    const Status loaded = loadThemes(names, true);
    m_map.setExtent(*extent);
    m_map.refresh();
    return loaded;
}

Status ProjectFiles::clearJoinBookkeeping() const
{
    if (auto rows = m_db.query(QStringLiteral("Select * from CAMPIJOIN ")); !rows)
        return rows.error();
    return m_db.executeAll({QStringLiteral("DELETE * FROM CAMPIJOIN"), QStringLiteral("DELETE * FROM LISTAJOIN"),
                            QStringLiteral("DELETE * FROM STRUCTJOIN")});
}

Status ProjectFiles::restorePristine() const
{
    if (auto st = restoreAllThemeTables(m_home); !st)
        return st;
    // The settings files of the previous project's own themes go.
    removeStraySettings(m_home);
    return copyPristineSettings(m_home);
}

Status ProjectFiles::restoreCommunity(const QString &stored, const QString &target)
{
    const Status st = m_hooks.restoreCommunityTable ? m_hooks.restoreCommunityTable(stored, target)
                                                    : restoreCommunityTable(m_home, stored, target);
    if (!st)
        showMessage(MsgStyle::Critical, ProjectText::kCommunityRestoreFailed);
    return st;
}

Status ProjectFiles::addLayerRepairing(const QString &shapefilePath, const QString &layer)
{
    Status st = m_map.addLayer(shapefilePath, layer);
    if (st || st.error().code != kDamagedFile)
        return st;
    // A damaged working table is restored from its pristine copy, once.
    const QString table = QFileInfo(shapefilePath).completeBaseName();
    if (!QFileInfo(shapefilePath).absolutePath().startsWith(QFileInfo(m_home.italia()).absoluteFilePath())
        || !repairThemeTable(m_home, table))
        return st;
    if (Status again = m_map.addLayer(shapefilePath, layer); !again)
        return again;
    m_session.notices << PristineText::kRepaired.arg(table + QStringLiteral(".dbf"));
    return {};
}

Result<ProjectFiles::ShownTheme> ProjectFiles::loadTheme(const QString &name, const ThemeLoadOptions &options)
{
    const QString settings = resolveCaseInsensitive(m_home.supporto(), name + QStringLiteral(".ini"));
    auto theme = loadThemeFile(settings, name, options);
    if (!theme) {
        // The message names the file whose mending lasts.
        Error e = theme.error();
        e.message.replace(QDir::toNativeSeparators(settings),
                          QDir::toNativeSeparators(settingsFileToMend(m_home, settings)));
        return e;
    }
    const ThemeSettings &s = theme->settings;
    if (s.join.isSet() && m_hooks.rejoin) {
        if (auto st = m_hooks.rejoin(*theme); !st)
            return st.error();
    }
    if (theme->shapefilePath.isEmpty() || !QFileInfo(theme->shapefilePath).isFile())
        return Result<ShownTheme>::fail(QStringLiteral("Shapefile non trovato: %1").arg(s.shapefile));
    const QString layer = s.layerName.isEmpty() ? name : s.layerName;
    if (auto st = addLayerRepairing(theme->shapefilePath, layer); !st)
        return st.error();
    m_map.applySettings(layer, s);
    if (theme->regionCode)
        m_session.regionCode = *theme->regionCode;
    if (theme->indicator) {
        m_session.indicator = theme->indicator;
        m_session.indicatorSet = true;
    }
    return ShownTheme{layer, labelsShown(s), s.labelField};
}

Status ProjectFiles::loadThemes(const QStringList &names, bool defaultProject, double progressFrom, double progressTo)
{
    const ThemeLoadOptions options{m_home.root(), defaultProject};
    QList<ShownTheme> shown;
    QStringList skipped;
    const double count = std::max<qsizetype>(1, names.size());
    for (int i = 0; i < names.size(); ++i) {
        if (!reportProgress(progressFrom + (progressTo - progressFrom) * i / count))
            return Status::fail(QString(), kProjectCancelled);
        auto theme = loadTheme(names[i], options);
        if (theme) {
            shown.append(*theme);
            continue;
        }
        // A project stops at its first fault; the default project leaves the
        // faulty theme out and shows the others.
        if (!defaultProject)
            return theme.error();
        skipped << ProjectText::kThemeSkipped.arg(names[i], theme.errorMessage());
    }
    m_map.refreshLegend();
    // A layer just added has no labels: only those with labels need a call.
    for (const ShownTheme &s : shown)
        if (s.labels)
            m_map.setLabels(s.layer, true, s.field);
    if (!skipped.isEmpty())
        return Status::fail(skipped.join(QLatin1Char('\n')));
    return {};
}

}  // namespace mervola
