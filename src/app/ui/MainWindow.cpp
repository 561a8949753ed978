#include "app/ui/MainWindow.h"

#include "app/CommandTable.h"
#include "app/ExitFlow.h"
#include "project/Regions.h"
#include "app/Scale.h"
#include "app/Twips.h"
#include "app/ui/Icons.h"
#include "app/ui/MapTipPanel.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "map/ui/MapWidget.h"
#include "project/JoinTheme.h"
#include "project/ProjectFile.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QFrame>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QRegularExpressionValidator>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

namespace mervola {

MainWindow::MainWindow(AtlasHome home, AppState &state, QWidget *parent)
    : QMainWindow(parent), m_home(std::move(home)), m_state(state)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(kAppTitle);
    setWindowIcon(commandIcon(QStringLiteral("app")));

    m_scaleTimer = new QTimer(this);
    m_scaleTimer->setObjectName(QStringLiteral("tmrScala"));
    m_scaleTimer->setInterval(500);
    connect(m_scaleTimer, &QTimer::timeout, this, &MainWindow::updateScaleBox);
    m_resizeTimer = new QTimer(this);
    m_resizeTimer->setObjectName(QStringLiteral("tmrGrandezza"));
    m_resizeTimer->setInterval(1000);
    m_resizeTimer->setSingleShot(true);
    connect(m_resizeTimer, &QTimer::timeout, this, &MainWindow::updateScaleBox);
    m_tipTimer = new QTimer(this);
    m_tipTimer->setObjectName(QStringLiteral("tmrToolTip"));

    buildMenus();
    buildCentre();
    buildCoolBar();
    m_mapTip = installMapTips(m_map, m_tipTimer);
    connect(m_regions, &QComboBox::activated, this, [this](int index) {
        if (!m_regionStepping)
            chooseRegion(index);
    });

    m_coord = new QLabel(this);
    m_coord->setObjectName(QStringLiteral("coord"));
    m_coord->setMinimumWidth(360);
    statusBar()->setObjectName(QStringLiteral("sbrMain"));
    statusBar()->addWidget(m_coord, 1);

    const double dpi = logicalDpiX();
    setMinimumSize(twipsToPixels(kMinWindowWidthTwips, dpi), twipsToPixels(kMinWindowHeightTwips, dpi));

    m_state.extentHistory.onStatus = [this](bool any) {
        if (auto *a = action(QStringLiteral("zoomprec")))
            a->setEnabled(any);
        if (auto *m = action(QStringLiteral("mnuZoomPrec")))
            m->setEnabled(any);
    };
    m_host = std::make_unique<MapModelHost>(m_map->model());
    m_host->onRefresh = [this] { m_map->refresh(); };
    m_host->onCaption = [this](const QString &c) { setWindowTitle(c); };
    m_host->onLegend = [this] { refreshLegend(); };
    m_projects = std::make_unique<ProjectFiles>(m_home, *m_host);
    // Opening a project runs the joins it stored again.
    m_projects->hooks().rejoin = makeRejoinHook(m_home);
}


void MainWindow::buildMenus()
{
    for (const Menu &menu : menuDefinitions()) {
        QMenu *m = QMainWindow::menuBar()->addMenu(menu.caption);
        m->setObjectName(menu.name);
        for (const MenuItem &item : menu.items) {
            if (item.caption.isEmpty()) {
                m->addSeparator()->setObjectName(item.name);
                continue;
            }
            QAction *a = m->addAction(item.caption);
            a->setObjectName(item.name);
            if (item.name == QLatin1String("mnuGuida"))
                a->setShortcut(QKeySequence(Qt::Key_F1));
            m_actions.insert(item.name, a);
            const QString name = item.name, key = item.key;
            connect(a, &QAction::triggered, this, [this, name, key] {
                if (name == QLatin1String("mnuTool")) {
                    QAction *tip = action(QStringLiteral("tooltip"));
                    tip->setChecked(!tip->isChecked());
                    selectTool(QStringLiteral("tooltip"), tip->isChecked());
                } else if (!key.isEmpty()) {
                    dispatch(key);
                } else {
                    dispatch(name);
                }
            });
        }
    }
}

void MainWindow::buildCoolBar()
{
    m_toolbar = new QToolBar(this);
    m_toolbar->setObjectName(QStringLiteral("tolMain"));
    m_toolbar->setMovable(false);
    m_toolbar->setIconSize(QSize(22, 22));
    for (const ToolbarButton &b : toolbarButtons()) {
        QAction *a = m_toolbar->addAction(commandIcon(b.key), b.toolTip);
        a->setObjectName(b.key);
        a->setToolTip(b.toolTip);
        a->setCheckable(b.mapTool);
        m_actions.insert(b.key, a);
        const QString key = b.key;
        if (b.mapTool)
            connect(a, &QAction::toggled, this, [this, key](bool on) { selectTool(key, on); });
        else
            connect(a, &QAction::triggered, this, [this, key] { dispatch(key); });
        if (key == QLatin1String("stampa") || key == QLatin1String("query") || key == QLatin1String("zoomout")
            || key == QLatin1String("zoomprec") || key == QLatin1String("legenda"))
            m_toolbar->addSeparator();
    }
    // The pan tool has no button of its own on the bar; it is a check action
    // reachable from the keyboard (P) and by dragging with the middle button.
    auto *pan = new QAction(commandIcon(QStringLiteral("pan")), QStringLiteral("Sposta"), this);
    pan->setObjectName(QStringLiteral("pan"));
    pan->setCheckable(true);
    pan->setShortcut(QKeySequence(Qt::Key_P));
    pan->setShortcutContext(Qt::WindowShortcut);
    addAction(pan);
    m_actions.insert(QStringLiteral("pan"), pan);
    connect(pan, &QAction::toggled, this, [this](bool on) { selectTool(QStringLiteral("pan"), on); });

    auto *fraRegioni = new QWidget(this);
    fraRegioni->setObjectName(QStringLiteral("fraRegioni"));
    auto *rl = new QHBoxLayout(fraRegioni);
    rl->setContentsMargins(8, 0, 8, 0);
    auto *lblRegioni = new QLabel(QStringLiteral("Visualizza"), fraRegioni);
    lblRegioni->setObjectName(QStringLiteral("lblRegioni"));
    m_regions = new QComboBox(fraRegioni);
    m_regions->setObjectName(QStringLiteral("cboRegioni"));
    m_regions->setMinimumContentsLength(22);
    lblRegioni->setBuddy(m_regions);
    m_regions->setAccessibleName(QStringLiteral("Visualizza"));
    m_regions->installEventFilter(this);
    rl->addWidget(lblRegioni);
    rl->addWidget(m_regions);

    auto *fraScala = new QWidget(this);
    fraScala->setObjectName(QStringLiteral("fraScala"));
    auto *sl = new QHBoxLayout(fraScala);
    sl->setContentsMargins(8, 0, twipsToPixels(kScaleFrameRightTwips, logicalDpiX()), 0);
    auto *lblScala = new QLabel(QStringLiteral("Scala 1:"), fraScala);
    lblScala->setObjectName(QStringLiteral("lblScala"));
    m_scale = new QLineEdit(fraScala);
    m_scale->setObjectName(QStringLiteral("txtScala"));
    m_scale->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9.,]*")), m_scale));
    m_scale->setFixedWidth(110);
    m_scale->setAlignment(Qt::AlignRight);
    lblScala->setBuddy(m_scale);
    m_scale->setAccessibleName(QStringLiteral("Scala 1:"));
    connect(m_scale, &QLineEdit::returnPressed, this, &MainWindow::applyTypedScale);
    sl->addWidget(lblScala);
    sl->addWidget(m_scale);

    // The region and scale boxes are a band of their own, beside the
    // buttons on a wide window and below them on a narrow one.
    m_viewBar = new QToolBar(this);
    m_viewBar->setObjectName(QStringLiteral("colRegioniScala"));
    m_viewBar->setMovable(false);
    auto *spacer = new QWidget(m_viewBar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_viewBar->addWidget(fraRegioni);
    m_viewBar->addWidget(spacer);
    m_viewBar->addWidget(fraScala);
    addToolBar(Qt::TopToolBarArea, m_toolbar);
    addToolBar(Qt::TopToolBarArea, m_viewBar);

    // The map tools in the menu too, so that they work without a mouse.
    if (QMenu *view = menuBar()->findChild<QMenu *>(QStringLiteral("mnuVisualizza"))) {
        view->addSeparator()->setObjectName(QStringLiteral("mnuBarStrumenti"));
        const std::pair<const char *, const char *> tools[] = {
            {"zoomin", "Zoom in p&roporzionale"}, {"zoomout", "Zoom o&ut proporzionale"}, {"info", "I&nformazioni"}};
        for (const auto &[key, caption] : tools) {
            QAction *a = action(QLatin1String(key));
            a->setText(QString::fromUtf8(caption));
            view->addAction(a);
        }
    }
    // Tab goes legend, map, region box, scale box.
    setTabOrder(m_legend, m_map);
    setTabOrder(m_map, m_regions);
    setTabOrder(m_regions, m_scale);
}

void MainWindow::buildCentre()
{
    auto *centre = new QWidget(this);
    centre->setObjectName(QStringLiteral("picMappa"));
    auto *h = new QHBoxLayout(centre);
    h->setContentsMargins(2, 2, 2, 2);
    h->setSpacing(0);
    m_legend = new LegendView(centre);
    m_divider = new QWidget(centre);
    m_divider->setObjectName(QStringLiteral("picSplitter"));
    m_divider->setFixedWidth(6);
    m_divider->setCursor(Qt::SplitHCursor);
    m_divider->installEventFilter(this);
    // The map sits in a thin frame that shows the keyboard focus.
    m_mapFrame = new QFrame(centre);
    m_mapFrame->setObjectName(QStringLiteral("fraMappa"));
    auto *frameLayout = new QVBoxLayout(m_mapFrame);
    frameLayout->setContentsMargins(2, 2, 2, 2);
    m_map = new MapWidget(m_mapFrame);
    m_map->setObjectName(QStringLiteral("MapMain"));
    m_map->setAccessibleName(QStringLiteral("Mappa"));
    m_map->setAccessibleDescription(
        QStringLiteral("Frecce: sposta la mappa; + e -: zoom; Invio: usa lo strumento scelto al centro della mappa"));
    m_map->setFocusPolicy(Qt::StrongFocus);
    m_map->installEventFilter(this);
    frameLayout->addWidget(m_map);
    m_legend->setAccessibleName(QStringLiteral("Legenda"));
    m_legend->setStyleSheet(focusMarkStyle(QStringLiteral("QTreeView")));
    showMapFocus(false);
    h->addWidget(m_legend);
    h->addWidget(m_divider);
    h->addWidget(m_mapFrame, 1);
    setCentralWidget(centre);
    setDividerTwips(kMinDividerTwips);

    connect(m_map, &MapWidget::mouseMoved, this, [this](double x, double y) {
        m_coord->setText(coordinateText(x, y));
        if (m_mapTip && action(QStringLiteral("tooltip"))->isChecked())
            m_mapTip->MouseMove();
    });
    connect(m_legend, &LegendView::visibilityToggled, this, [this](const QString &name, bool on) {
        if (map::MapLayer *l = m_map->model().find(name)) {
            l->visible = on;
            storeVisibility(name, on);
            m_state.projectModified = true;
            m_map->refresh();
        }
    });
    connect(m_legend, &LegendView::activeThemeChanged, this, &MainWindow::activeThemeChanged);
    connect(m_legend, &LegendView::themeDoubleClicked, this, &MainWindow::openClassification);
    connect(m_legend, &LegendView::themeContextMenu, this, &MainWindow::showLegendMenu);
    connectMapTools();
}

double MainWindow::twipsPerPixel() const { return kTwipsPerInch / logicalDpiX(); }

void MainWindow::setDividerTwips(double twips)
{
    m_legendTwips = std::max(twips, kMinDividerTwips);
    m_legend->setFixedWidth(twipsToPixels(m_legendTwips, logicalDpiX()));
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_divider && event->type() == QEvent::MouseMove) {
        auto *me = static_cast<QMouseEvent *>(event);
        if (me->buttons() & Qt::LeftButton) {
            const double x = m_divider->mapTo(centralWidget(), me->position().toPoint()).x();
            setDividerTwips(dividerPositionTwips(x * twipsPerPixel()));
        }
    } else if (watched == m_divider && event->type() == QEvent::MouseButtonRelease) {
        startScaleTimer();
    } else if (watched == m_map && event->type() == QEvent::Wheel) {
        auto *we = static_cast<QWheelEvent *>(event);
        if (we->angleDelta().y() != 0)
            zoomAt(m_map->toMapPoint(we->position().toPoint()), we->angleDelta().y() > 0 ? 0.5 : 1.5);
        return true;
    } else if (watched == m_map && event->type() == QEvent::KeyPress) {
        if (handleMapKey(static_cast<QKeyEvent *>(event)->key()))
            return true;
    } else if (watched == m_map && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)) {
        showMapFocus(event->type() == QEvent::FocusIn);
    } else if (watched == m_regions && event->type() == QEvent::KeyPress) {
        return regionBoxKey(static_cast<QKeyEvent *>(event));
    } else if (watched == m_map && event->type() == QEvent::Paint && !m_painted) {
        m_painted = true;
        QTimer::singleShot(0, this, &MainWindow::firstMapPainted);
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (isMinimized())
        return;
    const bool narrow = width() < m_toolbar->sizeHint().width() + m_viewBar->sizeHint().width() + 16;
    if (narrow != m_bandsBroken) {
        m_bandsBroken = narrow;
        if (narrow)
            insertToolBarBreak(m_viewBar);
        else
            removeToolBarBreak(m_viewBar);
    }
    startScaleTimer();
    // A window manager may settle the size in several steps: the scale is
    // checked once more a second after the last one.
    m_resizeTimer->start();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (confirmExit(m_state.projectModified, [this] { return saveProjectInteractive(); }))
        event->accept();
    else
        event->ignore();
}

void MainWindow::startScaleTimer() { m_scaleTimer->start(); }

QString MainWindow::scaleText() const { return m_scale->text(); }

void MainWindow::updateScaleBox()
{
    m_scaleTimer->stop();
    if (parseScale(m_scale->text()) < kMinScale && m_lastValidScale > 0)
        m_scale->setText(groupDigits(qint64(m_lastValidScale)));
    const double widthTwips = m_map->width() * twipsPerPixel();
    const double scale = currentScale(m_map->extent().width(), widthTwips);
    m_scale->setText(groupDigits(qint64(scale)));
    m_lastValidScale = parseScale(m_scale->text());
}

QString MainWindow::coordinateText(double x, double y)
{
    // The default formatting of a number: up to fifteen significant
    // digits, the decimal comma, no grouping.
    QLocale italian(QLocale::Italian, QLocale::Italy);
    italian.setNumberOptions(QLocale::OmitGroupSeparator);
    return QStringLiteral("X:") + italian.toString(x, 'g', 15) + QStringLiteral("   Y:") + italian.toString(y, 'g', 15);
}

QString MainWindow::focusMarkStyle(const QString &widgetClass)
{
    return widgetClass + QStringLiteral(" { border: 2px solid transparent; } ") + widgetClass +
           QStringLiteral(":focus { border: 2px solid palette(highlight); }");
}

void MainWindow::showMapFocus(bool on)
{
    m_mapFrame->setProperty("focusMark", on);
    m_mapFrame->setStyleSheet(on ? QStringLiteral("#fraMappa { border: 2px solid palette(highlight); }")
                                 : QStringLiteral("#fraMappa { border: 2px solid transparent; }"));
}

// Arrows only move through the region box; Enter, or a choice made in the
// open list, loads the region.
bool MainWindow::regionBoxKey(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End: {
        if (event->modifiers() & Qt::AltModifier)
            return false;  // Alt+Down opens the list
        m_regionStepping = true;
        static_cast<QObject *>(m_regions)->event(event);
        m_regionStepping = false;
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_regions->currentIndex() != m_loadedRegion)
            chooseRegion(m_regions->currentIndex());
        return true;
    default:
        return false;
    }
}

}  // namespace mervola
