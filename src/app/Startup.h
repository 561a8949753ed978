#pragma once
// The steps of start-up that need no window. The main window's load calls
// them in this order, around its own steps (splash, map-tip binding, region
// box, legend, toolbar state):
//   (InstanceLock, taken by AppStart)  1  refuse a second instance
//   ensurePristineSettings     3  write originali/*.ini when there are none
//   setRuntimeDefaults         4
//   restorePristineState       6  pristine tables into italia/, originali/*.ini over supporto/
//   setScaleDefaults           7
//   restoreDefaultProject      8  supporto/default.rlx onto the map
//   loadStructureTable        11  STRUTTURE into the state (message when empty)
//   setActiveTheme            12  active theme and its source name

#include "app/AppState.h"
#include "platform/AtlasHome.h"
#include "platform/InstanceLock.h"
#include "project/ProjectFile.h"
#include "project/ReferenceDb.h"

#include <memory>

namespace mervola {

namespace StartupText {
inline const QString kAlreadyRunning = LockText::kInUse;
inline const QString kNoStructure = QStringLiteral("Impossibile reperire informazioni su tabella: ");
inline const QString kNoStructureEnd = QStringLiteral(" in t_rec!!!");
}  // namespace StartupText

class Startup {
public:
    Startup(AtlasHome home, AppState &state);

    // Returns how many default settings files were written (0 when present).
    Result<int> ensurePristineSettings() const;
    void setRuntimeDefaults();
    Status restorePristineState() const;
    void setScaleDefaults();
    // Loads the default project; the region, indicator and mountain-community
    // table it sets go to the state, what the user must be told to `notices`.
    Status restoreDefaultProject(MapHost &map, const ProjectHooks &hooks = {}, QStringList *notices = nullptr);
    // Reads STRUTTURE into the state. An empty table shows the critical box
    // and start-up goes on; the loaded flag ends true either way.
    Status loadStructureTable();
    // Makes `alias` the active theme and looks up its source theme name.
    Status setActiveTheme(const QString &alias);

    // Steps 3, 4, 6, 7 and 8 in order; stops at the first failure.
    Status prepareMap(MapHost &map, const ProjectHooks &hooks = {});

private:
    AtlasHome m_home;
    AppState &m_state;
};

// Copies what opening a project set into the process-wide state.
void applyProjectSession(AppState &state, const ProjectSession &session);

}  // namespace mervola
