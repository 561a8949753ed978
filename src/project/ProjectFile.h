#pragma once
// Project files (*.rlx): the map extent, the mountain-community table and
// the settings file of every theme in one text file. Saving concatenates the
// themes' settings files; opening splits them back into supporto/ and loads
// each theme onto the map. The default project supporto/default.rlx is the
// initial project at start and the fallback when a project cannot be opened.

#include "platform/AtlasHome.h"
#include "project/MapHost.h"
#include "project/ReferenceDb.h"
#include "project/SettingsWriters.h"

#include <QList>
#include <functional>
#include <optional>

namespace mervola {

namespace ProjectText {
inline const QString kBadExtension = QStringLiteral("L'estensione del file di progetto non è corretta.");
inline const QString kOpenFailed =
    QStringLiteral("Il progetto non può essere aperto.") + QLatin1Char('\n') + QStringLiteral("Sarà ripristinato il progetto iniziale.");
inline const QString kCommunityRestoreFailed =
    QStringLiteral("Non è stato possibile ripristinare la tabella delle comunità montane");
inline const QString kCaptionPrefix = QStringLiteral("Mervola - ");
// "%1" the theme, "%2" why it was left out.
inline const QString kThemeSkipped = QStringLiteral("Il tema %1 non è stato caricato. %2");
}  // namespace ProjectText

// Error code of an opening the user cancelled.
constexpr int kProjectCancelled = 9200;

// A project file as read, before anything is applied.
struct ProjectContent {
    QString dbfCommont;  // first field of DBFCOMMONT, may be empty
    ExtentRect extent;
    struct Section {
        QString name;       // between the brackets
        QStringList lines;  // header included, copied unchanged
    };
    QList<Section> themes;  // in file order
};

// Parses a project; fails on a missing [RLX] section, a missing or
// non-numeric EXTENT, or a theme section whose name is not a plain file name.
Result<ProjectContent> parseProject(const QString &text);

// Reads and parses a project file line by line, so that a huge file never
// sits in memory whole. Lines longer than kProjectLineLimit characters are
// cut (no settings value is ever read past kProfileBufferSize - 1).
// `progress` gets the fraction read (0..1) and returns false to cancel.
constexpr int kProjectLineLimit = 65536;
Result<ProjectContent> readProjectFile(const QString &path,
                                       const std::function<bool(double)> &progress = {});

// The extension check of the save and open commands.
bool hasProjectExtension(const QString &path);

// Numbers of the EXTENT line: C locale, shortest text that reads back the same value.
QString formatExtentNumber(double value);
QString formatExtentLine(const ExtentRect &extent);  // "EXTENT=xmin^ymin^xmax^ymax^"

// The settings-file name of a layer: a name holding "(" is cut before the
// character preceding the "(" ("comuni (collegata)" -> "comuni").
QString settingsNameOfLayer(const QString &layerName);

// State that opening a project leaves for the main window.
struct ProjectSession {
    QString regionCode = QStringLiteral("00");
    QString dbfCommont;                // first field of DBFCOMMONT as the project gave it
    QStringList notices;               // things the user is told (tables repaired)
    std::optional<QString> indicator;  // set by a mountain-community theme
    bool indicatorSet = false;
};

struct ProjectHooks {
    // Re-runs a theme's stored join (JOIN first field not "-1") before its
    // layer is added. Unset: the theme is loaded without its joined columns.
    std::function<Status(const LoadedTheme &)> rejoin;
    // Restores a mountain-community table from the stored one; defaults to
    // restoreCommunityTable() of the atlas home.
    std::function<Status(const QString &stored, const QString &target)> restoreCommunityTable;
    // Reports how far an opening has got (0..1); returning false cancels it.
    // The opening then removes what it wrote and brings back the initial project.
    std::function<bool(double)> progress;
};

class ProjectFiles {
public:
    ProjectFiles(AtlasHome home, MapHost &map);

    ProjectHooks &hooks() { return m_hooks; }
    const ProjectSession &session() const { return m_session; }

    // The text lines of a project of the current map.
    Result<QStringList> projectLines(const QString &dbfCommont) const;
    // Saves the current map as a project. A wrong extension shows its
    // message and writes nothing; other failures are returned.
    Status save(const QString &path, const QString &dbfCommont);

    // Opens a project. A wrong extension shows its message and changes
    // nothing; any other failure shows the "cannot be opened" message and
    // brings back the initial project. Returns the failure in both cases.
    Status open(const QString &path);

    // Restores the default project (supporto/default.rlx) onto the map. A
    // theme that cannot be shown is left out and the others are loaded; the
    // failure returned then names each theme left out and why.
    Status restoreDefault();

private:
    Status openSteps(const QString &path);
    Status clearJoinBookkeeping() const;
    Status restorePristine() const;
    Status restoreCommunity(const QString &stored, const QString &target);
    Status loadThemes(const QStringList &names, bool defaultProject, double progressFrom = 0, double progressTo = 1);
    struct ShownTheme {
        QString layer;
        bool labels = false;
        QString field;
    };
    Result<ShownTheme> loadTheme(const QString &name, const ThemeLoadOptions &options);
    Status addLayerRepairing(const QString &shapefilePath, const QString &layer);
    bool reportProgress(double fraction) const;
    void removeWrittenFiles();

    AtlasHome m_home;
    MapHost &m_map;
    ReferenceDb m_db;
    ProjectHooks m_hooks;
    ProjectSession m_session;
    QStringList m_created;  // settings files the current opening created
};

}  // namespace mervola
