#include "app/Startup.h"

#include "project/Regions.h"
#include "platform/Messages.h"
#include "project/PristineSettings.h"

#include <QDir>

namespace mervola {

Startup::Startup(AtlasHome home, AppState &state) : m_home(std::move(home)), m_state(state) {}

Result<int> Startup::ensurePristineSettings() const { return writePristineSettingsIfMissing(m_home); }

void Startup::setRuntimeDefaults()
{
    m_state.labelFont = QStringLiteral("Arial");
    m_state.labelText.clear();
    m_state.regionCode = QStringLiteral("00");
    m_state.indicatorField = QStringLiteral("I000");
    m_state.indicatorSet = false;
    m_state.busyLoading = true;
}

Status Startup::restorePristineState() const
{
    // Both steps go on past a file they cannot restore; the user is told
    // about all of them at once.
    const Status tables = restoreAllThemeTables(m_home);
    removeStraySettings(m_home);
    const Status settings = copyPristineSettings(m_home);
    if (tables && settings)
        return {};
    if (!tables && !settings && tables.error().code == kMissingFolder)
        return tables;
    QStringList messages;
    for (const Status *st : {&tables, &settings})
        if (!*st)
            messages << st->errorMessage();
    return Status::fail(messages.join(QLatin1Char('\n')));
}

void Startup::setScaleDefaults()
{
    m_state.scaleBase = 1600;
    m_state.scaleFactor = 258.34;
}

Status Startup::restoreDefaultProject(MapHost &map, const ProjectHooks &hooks, QStringList *notices)
{
    ProjectFiles project(m_home, map);
    project.hooks() = hooks;
    const Status st = project.restoreDefault();
    applyProjectSession(m_state, project.session());
    if (notices)
        *notices = project.session().notices;
    return st;
}

Status Startup::loadStructureTable()
{
    m_state.structuresLoaded = false;
    m_state.structure = {};
    auto table = readStructureTable(ReferenceDb(m_home));
    if (!table) {
        m_state.structuresLoaded = true;
        return table.error();
    }
    if (table->rows.empty())
        showMessage(MsgStyle::Critical,
                    StartupText::kNoStructure + QStringLiteral("STRUTTURE") + StartupText::kNoStructureEnd);
    else
        m_state.structure = std::move(*table);
    m_state.structuresLoaded = true;
    return {};
}

Status Startup::setActiveTheme(const QString &alias)
{
    m_state.activeTheme = alias;
    auto source = sourceThemeName(ReferenceDb(m_home), alias);
    if (!source) {
        m_state.activeSourceName.clear();
        return source.error();
    }
    m_state.activeSourceName = *source;
    return {};
}

Status Startup::prepareMap(MapHost &map, const ProjectHooks &hooks)
{
    if (auto written = ensurePristineSettings(); !written)
        return written.error();
    setRuntimeDefaults();
    if (auto st = restorePristineState(); !st)
        return st;
    setScaleDefaults();
    return restoreDefaultProject(map, hooks);
}

void applyProjectSession(AppState &state, const ProjectSession &session)
{
    state.regionCode = session.regionCode;
    // The project's own mountain-community table, else the region's.
    state.communityTable = session.dbfCommont.isEmpty() ? mountainTheme(session.regionCode) : session.dbfCommont;
    if (session.indicator)
        state.indicatorField = *session.indicator;
    if (session.indicatorSet)
        state.indicatorSet = true;
}

}  // namespace mervola
