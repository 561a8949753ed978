#pragma once
// Steps the user journeys share: the main window started on an atlas home,
// a file dialog answered as a user types a name, a region picked from the
// box's list, the legend read as the panel shows it, and the menus and
// toolbar reached by the names of their actions. Header-only.

#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/LegendView.h"
#include "platform/ui/ScreenFit.h"
#include "support/JoinSources.h"
#include "support/ModalDriver.h"
#include "support/UiSupport.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QTreeWidget>
#include <QtTest>
#include <memory>

namespace mervola::journey
{

// The main window on `home` as a fresh start shows it: state reset, the last
// folder forgotten, loaded and shown at 1280 x 860 (less on a small screen).
inline std::unique_ptr<MainWindow> startWindow(const QString &home)
{
    appState().reset();
    forgetLastFolder();
    auto w = std::make_unique<MainWindow>(AtlasHome(home), appState());
    if (!w->load())
        return {};
    resizeWithinScreen(w.get(), QSize(1280, 860));
    w->show();
    if (!QTest::qWaitForWindowExposed(w.get()))
        return {};
    return w;
}

// Clicks a menu item or toolbar button by the name of its action.
inline void press(MainWindow &w, const QString &name)
{
    QAction *a = w.action(name);
    QVERIFY2(a, qPrintable(name));
    QVERIFY2(a->isEnabled(), qPrintable(name + QStringLiteral(" is disabled")));
    a->trigger();
}

// Runs `steps` on the next modal window of a class (a Qt class name such as
// "mervola::FrmSearch"); a check that failed inside leaves it open, so it is
// closed then, and the journey goes on to report the failure.
inline void onDialog(const char *className, std::function<void(QWidget *)> steps)
{
    test::onModal(className, [steps = std::move(steps)](QWidget *w) {
        steps(w);
        if (QTest::currentTestFailed())
            if (auto *d = qobject_cast<QDialog *>(w); d && d->isVisible())
                d->reject();
    });
}

// Answers the next file dialog with `path`, the file type `filter` chosen
// first, as a user types the name.
inline void answerFileDialog(const QString &path, const QString &filter = {})
{
    onDialog("QFileDialog", [path, filter](QWidget *w) {
        test::typeIntoFileDialog(static_cast<QFileDialog *>(w), path, filter);
    });
}

inline QComboBox *regionBox(MainWindow &w) { return w.findChild<QComboBox *>(QStringLiteral("cboRegioni")); }

// Picks a region from the box's open list with the mouse.
inline void chooseRegion(MainWindow &w, const QString &text)
{
    QComboBox *box = regionBox(w);
    box->showPopup();
    QAbstractItemView *view = box->view();
    const QModelIndex index = view->model()->index(box->findText(text), 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

// The class lines under a theme's legend entry, as the panel shows them.
inline QStringList legendLines(const MainWindow &w, const QString &layer)
{
    QStringList out;
    if (const QTreeWidgetItem *item = w.legend()->topLevelItem(test::legendIndex(w.legend(), layer)))
        for (int c = 0; c < item->childCount(); ++c)
            out << item->child(c)->text(0);
    return out;
}

// The themes of the legend panel under their aliases, top to bottom.
inline QStringList legendThemes(const MainWindow &w)
{
    QStringList out;
    for (int i = 0; i < w.legend()->entryCount(); ++i)
        out << w.legend()->aliasAt(i);
    return out;
}

// The element count at the end of a class line: "Da 1 a 9 (123)" -> 123.
inline int classCount(const QString &line) { return line.section(QLatin1Char('('), -1).chopped(1).toInt(); }

inline int totalCount(const QStringList &lines)
{
    int n = 0;
    for (const QString &l : lines)
        n += classCount(l);
    return n;
}

// Every message shown so far, for a failing check.
inline QByteArray shown(const MessageRecorder &rec)
{
    QStringList texts;
    for (const auto &e : rec.entries())
        texts << e.text;
    return texts.join(QStringLiteral(" | ")).toUtf8();
}

// The first file of a folder snapshot that is gone, new or changed; empty
// when the two snapshots hold the same files with the same bytes.
inline QString firstDifference(const QMap<QString, QByteArray> &before, const QMap<QString, QByteArray> &after)
{
    for (auto it = before.begin(); it != before.end(); ++it)
        if (!after.contains(it.key()) || after.value(it.key()) != it.value())
            return it.key();
    for (auto it = after.begin(); it != after.end(); ++it)
        if (!before.contains(it.key()))
            return it.key();
    return {};
}

inline const map::MapLayer *layer(const MainWindow &w, const QString &name)
{
    return w.mapWidget()->model().find(name);
}

} // namespace mervola::journey
