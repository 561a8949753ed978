#pragma once
// The main window on a fresh copy of the atlas of all Italy, loaded and
// shown as the program shows it, for the tests that drive its windows.
// Header-only: widget tests include it.

#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/LegendView.h"
#include "platform/ui/ScreenFit.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace mervola::test
{

struct RealAtlasWindow {
    QTemporaryDir dir;
    std::unique_ptr<MainWindow> window;
    bool ok = false;

    // `referenceSql` runs on the reference database before the window
    // loads; the window takes `size`, or less on a smaller screen.
    explicit RealAtlasWindow(const QStringList &referenceSql = {}, QSize size = QSize(1280, 860))
    {
        if (!copyRealAtlas(dir.path()))
            return;
        if (!referenceSql.isEmpty() && !ReferenceDb(AtlasHome(dir.path())).executeAll(referenceSql))
            return;
        appState().reset();
        forgetLastFolder();
        window = std::make_unique<MainWindow>(AtlasHome(dir.path()), appState());
        if (!window->load())
            return;
        resizeWithinScreen(window.get(), size);
        window->show();
        ok = QTest::qWaitForWindowExposed(window.get());
    }
    // Makes `layer` the legend's active theme.
    void activate(const QString &layer)
    {
        LegendView *legend = window->legend();
        for (int i = 0; i < legend->entryCount(); ++i)
            if (legend->layerNameAt(i) == layer)
                legend->setActiveIndex(i);
    }
    QWidget *child(const char *name) { return window->findChild<QWidget *>(QLatin1String(name)); }
};

} // namespace mervola::test
