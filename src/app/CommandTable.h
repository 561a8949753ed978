#pragma once
// The command vocabulary of the main window: toolbar buttons with their keys
// and tool tips, the menus with their captions, the dispatch order and the
// command groups that are enabled and disabled together.

#include <QString>
#include <QStringList>
#include <vector>

namespace mervola {

struct ToolbarButton {
    QString key;
    QString toolTip;
    bool mapTool;  // a check button that selects what a click on the map does
};

struct MenuItem {
    QString name;     // object name, e.g. "mnuApriProgetto"
    QString caption;  // with the access-key ampersand; empty for a separator
    QString key;      // toolbar key with the same effect, or empty
};

struct Menu {
    QString name;
    QString caption;
    std::vector<MenuItem> items;
};

// The twenty buttons of tolMain in bar order.
const std::vector<ToolbarButton> &toolbarButtons();
// The keys in the order the toolbar handler tests them.
const QStringList &dispatchOrder();
// The menu bar, left to right.
const std::vector<Menu> &menuDefinitions();
// Keys switched by the command-group routine: modes 0/1 act on the theme
// commands, 2/3 on the project commands.
const QStringList &themeCommandKeys();
const QStringList &projectCommandKeys();
// The map tools: selecting one releases the others.
const QStringList &mapToolKeys();

}  // namespace mervola
