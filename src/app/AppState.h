#pragma once
// The process-wide state of the program: what start-up leaves behind and
// what the main window and the dialogs share while the program runs.

#include "app/Stack.h"
#include "project/StructureTable.h"

#include <QString>

namespace mervola {

struct AppState {
    bool splash = false;  // true from the start routine until the splash timer fires

    StructureTable structure;  // the STRUTTURE rows
    bool structuresLoaded = false;

    QString labelFont = QStringLiteral("Arial");
    QString labelText;  // the second label setting, empty at start

    QString regionCode = QStringLiteral("00");      // "00" all Italy, "01".."20"
    QString indicatorField = QStringLiteral("I000");
    bool indicatorSet = false;                       // a mountain-community theme set the indicator
    QString communityTable = QStringLiteral("commont");  // current mountain-community table (DBFCOMMONT)

    bool busyLoading = false;  // true while start-up loads the map

    QString activeTheme;       // alias of the legend's selected entry
    QString activeSourceName;  // its source theme name (ALIASTEMI)

    bool projectModified = false;

    // Scale defaults set at start-up for the scale box.
    double scaleBase = 0;
    double scaleFactor = 0;

    // Extent history of the navigation tools, empty at start.
    Stack extentHistory;

    // Back to the values of a fresh process.
    void reset() { *this = AppState(); }
};

// The one state object of the running program.
AppState &appState();

}  // namespace mervola
