#include "project/SettingsWriters.h"

#include "platform/AtlasHome.h"
#include "platform/SqlText.h"
#include "project/ReferenceDb.h"

#include <QDir>
#include <QFileInfo>

namespace mervola {

namespace {

const QString kNoJoin = QStringLiteral("-1^-1^-1^-1^-1^-1^");

QString line(ThemeKey key, const QString &value) { return themeKeyName(key) + QLatin1Char('=') + value; }

QString flag(bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); }

// Copies a key from the old file when it was present there.
void copyIfPresent(QStringList &out, const ThemeSettings &old, ThemeKey key)
{
    if (old.has(key))
        out << line(key, old.rawValue(key));
}

}  // namespace

Result<QStringList> afterJoinLines(const ThemeSettings &old, const LayerState &layer, const QString &shapefile,
                                   const QStringList &addedFields, const ReferenceDb &db)
{
    auto rows = db.query(QStringLiteral("Select * from ListaJoin where shpCollegato = ") + sqlQuote(shapefile));
    if (!rows)
        return rows.error();
    QString join = kNoJoin;
    if (!rows->empty()) {
        QStringList f;
        for (const char *col : {"PATHDB", "NOMEDB", "NOMETABELLA", "CAMPOJOININT", "CAMPOJOINEXT", "SHPCOLLEGATO"})
            f << rows->value(0, QString::fromLatin1(col)).toString();
        join = joinFields(f);
    }

    QStringList out;
    out << QLatin1Char('[') + layer.name.toUpper() + QLatin1Char(']');
    out << line(ThemeKey::Join, join);
    out << QStringLiteral("STRUCTJOIN =") + joinFields(addedFields);
    copyIfPresent(out, old, ThemeKey::Workspace);
    copyIfPresent(out, old, ThemeKey::Base);
    copyIfPresent(out, old, ThemeKey::Simbolo);
    out << (layer.labelsOn ? line(ThemeKey::Label, layer.labelField) : QStringLiteral("LABEL=*"));
    // The joined table's fields changed, so a classification no longer holds.
    if (old.has(ThemeKey::TipoClassificazione))
        out << QStringLiteral("TIPOCLASSIFICAZIONE=0");
    copyIfPresent(out, old, ThemeKey::Campo);
    if (old.has(ThemeKey::Classificazione))
        out << QStringLiteral("CLASSIFICAZIONE=0");
    copyIfPresent(out, old, ThemeKey::Outline);
    out << line(ThemeKey::Visibile, flag(layer.visible));
    return out;
}

Status rewriteAfterJoin(const QString &iniPath, const LayerState &layer, const QString &shapefile,
                        const QStringList &addedFields, const ReferenceDb &db)
{
    const ThemeSettings old = readThemeSettingsFile(iniPath, layer.name);
    auto lines = afterJoinLines(old, layer, shapefile, addedFields, db);
    if (!lines)
        return lines.error();
    return writeLinesReplacing(iniPath, *lines);
}

Result<LoadedTheme> loadThemeFile(const QString &iniPath, const QString &themeName, const ThemeLoadOptions &options)
{
    // Nothing is written back unless the file could be read and names the
    // theme's shapefile: a stripped copy would lose the user's settings.
    auto text = readTextFile(iniPath);
    if (!text || QFileInfo(iniPath).isDir())
        return Error{SettingsText::kUnreadable.arg(QDir::toNativeSeparators(iniPath))};
    const ProfileFile profile = ProfileFile::fromText(*text);
    bool hasSection = false;
    for (const QString &section : profile.sections())
        hasSection = hasSection || section.compare(themeName.trimmed(), Qt::CaseInsensitive) == 0;
    if (!hasSection)
        return Error{SettingsText::kNoSection.arg(QDir::toNativeSeparators(iniPath), themeName)};
    LoadedTheme t;
    t.settings = readThemeSettings(profile, themeName);
    ThemeSettings &s = t.settings;
    if (s.shapefile.trimmed().isEmpty())
        return Error{SettingsText::kNoBase.arg(QDir::toNativeSeparators(iniPath))};
    if (options.defaultProject) {
        // The default project always draws from the atlas home's own data.
        s.raw[size_t(ThemeKey::Workspace)] = options.home + QStringLiteral("/italia");
        s.workspace = *s.raw[size_t(ThemeKey::Workspace)];
    }

    QStringList out;
    out << QLatin1Char('[') + themeName + QLatin1Char(']');
    for (ThemeKey key : themeKeys()) {
        if (!s.has(key))
            continue;
        if (key == ThemeKey::Label && s.rawValue(key).size() == 1)
            out << QStringLiteral("LABEL=*");
        else
            out << line(key, s.rawValue(key));
    }
    if (auto st = writeLinesReplacing(iniPath, out); !st)
        return st.error();

    if (!s.shapefile.isEmpty()) {
        QString folder = s.workspace;
        folder.replace(QLatin1Char('\\'), QLatin1Char('/'));
        t.shapefilePath = resolveCaseInsensitive(QDir::cleanPath(folder), s.shapefile);
    }

    const QString layer = s.layerName;
    if (layer.startsWith(QLatin1String("cmon"), Qt::CaseInsensitive)
        || layer.startsWith(QLatin1String("comu_"), Qt::CaseInsensitive))
        t.regionCode = layer.right(2);

    const QString upper = themeName.toUpper();
    if (s.has(ThemeKey::Campo) && (upper.startsWith(QLatin1String("CMON")) || upper == QLatin1String("COMMONT")))
        t.indicator = s.campo.field.startsWith(QLatin1Char('_')) ? s.campo.field : QStringLiteral("I000");
    return t;
}

QStringList updatedKeyLines(const ThemeSettings &old, const QString &themeName,
                             const QList<QPair<ThemeKey, QString>> &values)
{
    ThemeSettings s = old;
    for (const auto &[key, value] : values)
        s.raw[size_t(key)] = value;
    QStringList out;
    out << QLatin1Char('[') + themeName.toUpper() + QLatin1Char(']');
    for (ThemeKey key : themeKeys())
        if (s.has(key))
            out << line(key, s.rawValue(key));
    return out;
}

Status updateThemeKeys(const QString &iniPath, const QString &themeName, const QList<QPair<ThemeKey, QString>> &values)
{
    return writeLinesReplacing(iniPath, updatedKeyLines(readThemeSettingsFile(iniPath, themeName), themeName, values));
}

}  // namespace mervola
