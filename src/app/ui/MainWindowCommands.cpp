// Command dispatch of the main window and the map navigation commands.
#include "app/CommandTable.h"
#include "app/Scale.h"
#include "app/Startup.h"
#include "app/ui/MainWindow.h"
#include "app/MapTip.h"
#include "app/ui/HelpWindow.h"
#include "app/ui/SplashWindow.h"
#include "platform/Messages.h"
#include "platform/ui/LastFolder.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "project/ProjectFile.h"

#include <QAction>
#include <cmath>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QTimer>

namespace mervola {

namespace {
// Two views that differ by far less than a pixel are the same view.
bool sameView(const map::MapRect &a, const map::MapRect &b)
{
    const double tolerance = 1e-9 * std::max(a.width(), b.width());
    return std::abs(a.left() - b.left()) <= tolerance && std::abs(a.right() - b.right()) <= tolerance
           && std::abs(a.top() - b.top()) <= tolerance && std::abs(a.bottom() - b.bottom()) <= tolerance;
}
}  // namespace

bool MainWindow::runGuarded(const QString &key, const std::function<void()> &fn)
{
    try {
        fn();
        return true;
    } catch (const std::exception &e) {
        showMessage(MsgStyle::Critical, QString::fromUtf8(e.what()));
    } catch (...) {
        showMessage(MsgStyle::Critical, QStringLiteral("Errore imprevisto nel comando ") + key + QLatin1Char('.'));
    }
    return false;
}

void MainWindow::dispatch(const QString &key)
{
    runGuarded(key, [&] {
        if (key == QLatin1String("apri")) {
            openProjectInteractive();
        } else if (key == QLatin1String("salva")) {
            saveProjectInteractive();
        } else if (key == QLatin1String("esporta")) {
            exportMap();
        } else if (key == QLatin1String("stampa")) {
            printMap();
        } else if (key == QLatin1String("cerca")) {
            searchElement();
        } else if (key == QLatin1String("dbf")) {
            openAttributeWindow();
        } else if (key == QLatin1String("query")) {
            openQueryBuilder();
        } else if (key == QLatin1String("mnuElimJoin")) {
            removeActiveJoin();
        } else if (key == QLatin1String("label")) {
            addLabels();
        } else if (key == QLatin1String("nolabel")) {
            removeLabels();
        } else if (key == QLatin1String("legenda")) {
            openLegendEditor(m_legend->activeLayerName());
        } else if (key == QLatin1String("zoomtema")) {
            const map::MapLayer *layer = m_map->model().find(m_legend->activeLayerName());
            if (layer)
                moveView(layer->extent());
        } else if (key == QLatin1String("uscita")) {
            close();
        } else if (key == QLatin1String("totale")) {
            moveView(m_map->fullExtent());
        } else if (key == QLatin1String("zoominfix")) {
            zoomFixed(0.5);
        } else if (key == QLatin1String("zoomoutfix")) {
            zoomFixed(1.5);
        } else if (key == QLatin1String("zoomprec")) {
            if (m_state.extentHistory.count() > 0) {
                previousView();
                startScaleTimer();
            }
        } else if (key == QLatin1String("mnuGuida")) {
            HelpWindow help(m_home.helpFile(), this);
            if (!help.loaded())
                showMessage(MsgStyle::Exclamation, QStringLiteral("La guida in linea non è stata trovata: ") + m_home.helpFile());
            else
                help.exec();
        } else if (key == QLatin1String("mnuInfo")) {
            SplashWindow about(SplashWindow::Mode::About, this);
            about.exec();
        }
    });
}

void MainWindow::selectTool(const QString &key, bool checked)
{
    if (checked) {
        for (const QString &other : mapToolKeys())
            if (other != key)
                if (QAction *a = action(other); a && a->isChecked()) {
                    const QSignalBlocker block(a);
                    a->setChecked(false);
                }
    }
    const auto pressed = [this](const char *k) { return action(QLatin1String(k))->isChecked(); };
    if (pressed("zoomin"))
        m_map->setMode(MapWidget::Mode::RubberBand);
    else if (pressed("pan"))
        m_map->setMode(MapWidget::Mode::Pan);
    else if (pressed("zoomout") || pressed("info"))
        m_map->setMode(MapWidget::Mode::Click);
    else
        m_map->setMode(MapWidget::Mode::None);
    if (m_mapTip && !pressed("tooltip"))
        m_mapTip->reset();
}

void MainWindow::connectMapTools()
{
    connect(m_map, &MapWidget::rectangleChosen, this, [this](const map::MapRect &r) {
        if (!action(QStringLiteral("zoomin"))->isChecked())
            return;
        if (parseScale(m_scale->text()) < kMinScale) {
            if (m_lastValidScale > 0)
                m_scale->setText(groupDigits(qint64(m_lastValidScale)));
            return;
        }
        // A drag lower than 10 map units counts as a click: shrink to 0.7.
        if (moveView(r.height() >= 10 && r.width() > 0 ? r : m_map->extent().scaled(0.7))
            && m_map->extent().width() < kMinExtentWidth)
            previousView();
    });
    connect(m_map, &MapWidget::clicked, this, [this](QPointF p, Qt::MouseButton) {
        if (action(QStringLiteral("info"))->isChecked()) {
            showElementInfo(p);
            return;
        }
        if (action(QStringLiteral("zoomout"))->isChecked()) {
            map::MapRect r = m_map->extent();
            r.centerOn(p);
            moveView(r.scaled(1.5));
        }
    });
    // A pan records the view it started from once the map has moved.
    connect(m_map, &MapWidget::mousePressed, this, [this](QPointF, Qt::MouseButton, Qt::KeyboardModifiers) {
        m_panStart = m_map->extent();
    });
    connect(m_map, &MapWidget::panFinished, this, [this] {
        if (!(m_map->extent() == m_panStart))
            m_state.extentHistory.Push(m_panStart);
        m_state.projectModified = true;
        startScaleTimer();
    });
}

bool MainWindow::moveView(const map::MapRect &r)
{
    const map::MapRect before = m_map->extent();
    if (r.isEmpty())
        return false;
    m_map->setExtent(r);
    // Fitting to the map's shape may give back the view already shown.
    if (sameView(m_map->extent(), before)) {
        m_map->setExtent(before);
        return false;
    }
    m_state.extentHistory.Push(before);
    m_map->refresh();
    m_state.projectModified = true;
    startScaleTimer();
    return true;
}

void MainWindow::previousView()
{
    const map::MapRect r = m_state.extentHistory.Pop();
    if (!r.isEmpty()) {
        m_map->setExtent(r);
        m_map->refresh();
    }
}

void MainWindow::zoomFixed(double factor)
{
    if (factor < 1 && parseScale(m_scale->text()) < kMinScale) {
        if (m_lastValidScale > 0)
            m_scale->setText(groupDigits(qint64(m_lastValidScale)));
        return;
    }
    if (moveView(m_map->extent().scaled(factor)) && factor < 1 && m_map->extent().width() < kMinExtentWidth)
        previousView();
    startScaleTimer();
}

void MainWindow::zoomAt(QPointF anchor, double factor)
{
    if (factor < 1 && parseScale(m_scale->text()) < kMinScale) {
        if (m_lastValidScale > 0)
            m_scale->setText(groupDigits(qint64(m_lastValidScale)));
        return;
    }
    const map::MapRect now = m_map->extent();
    // The point under the cursor stays where it is.
    const double l = anchor.x() - (anchor.x() - now.left()) * factor;
    const double r = anchor.x() + (now.right() - anchor.x()) * factor;
    const double b = anchor.y() - (anchor.y() - now.bottom()) * factor;
    const double t = anchor.y() + (now.top() - anchor.y()) * factor;
    if (moveView(map::MapRect(l, t, r, b)) && factor < 1 && m_map->extent().width() < kMinExtentWidth)
        previousView();
}

void MainWindow::panBy(double dx, double dy)
{
    const map::MapRect now = m_map->extent();
    map::MapRect r = now;
    r.centerOn(QPointF(now.center().x() + dx * now.width(), now.center().y() + dy * now.height()));
    moveView(r);
}

// Enter on the map does what a click at its centre does with the chosen
// tool: with the arrows to bring an element there, the information and
// zoom tools work without a mouse.
bool MainWindow::useToolAtCentre()
{
    const QPointF centre = m_map->extent().center();
    if (action(QStringLiteral("info"))->isChecked()) {
        showElementInfo(centre);
    } else if (action(QStringLiteral("zoomout"))->isChecked()) {
        moveView(m_map->extent().scaled(1.5));
    } else if (action(QStringLiteral("zoomin"))->isChecked()) {
        zoomFixed(0.7);
    } else {
        return false;
    }
    return true;
}

bool MainWindow::handleMapKey(int key)
{
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: dispatch(QStringLiteral("zoominfix")); return true;
    case Qt::Key_Minus: dispatch(QStringLiteral("zoomoutfix")); return true;
    case Qt::Key_Left: panBy(-0.25, 0); return true;
    case Qt::Key_Right: panBy(0.25, 0); return true;
    case Qt::Key_Up: panBy(0, 0.25); return true;
    case Qt::Key_Down: panBy(0, -0.25); return true;
    case Qt::Key_Home: dispatch(QStringLiteral("totale")); return true;
    case Qt::Key_Backspace: dispatch(QStringLiteral("zoomprec")); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: return useToolAtCentre();
    default: return false;
    }
}

void MainWindow::applyTypedScale()
{
    const double wanted = parseScale(m_scale->text());
    const double widthTwips = m_map->width() * (1440.0 / logicalDpiX());
    const double now = currentScale(m_map->extent().width(), widthTwips);
    if (wanted <= 0 || now <= 0) {
        startScaleTimer();
        return;
    }
    if (wanted < kMinScale) {
        startScaleTimer();
        return;
    }
    moveView(m_map->extent().scaled(wanted / now));
}

bool MainWindow::saveProjectInteractive()
{
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Salva progetto"),
                                                      lastUsedFolder(m_home.root()),
                                                      QStringLiteral("Progetto Mervola (*.rlx)"));
    if (path.isEmpty())
        return false;
    rememberFolderOf(path);
    const Status st = m_projects->save(path, m_state.communityTable);
    if (!st) {
        if (st.errorMessage() != ProjectText::kBadExtension)
            showMessage(MsgStyle::Critical, st.errorMessage());
        return false;
    }
    m_state.projectModified = false;
    setWindowTitle(ProjectText::kCaptionPrefix + QFileInfo(path).completeBaseName());
    return true;
}

bool MainWindow::openProjectInteractive()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Apri progetto"),
                                                      lastUsedFolder(m_home.root()),
                                                      QStringLiteral("Progetto Mervola (*.rlx)"));
    if (path.isEmpty())
        return false;
    rememberFolderOf(path);
    return openProject(path);
}

}  // namespace mervola
