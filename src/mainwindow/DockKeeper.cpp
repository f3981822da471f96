#include "mainwindow/DockKeeper.h"

#include "app/base/TerminalSettings.h"
#include "mainwindow/SavedGeometry.h"
#include "mainwindow/ScreenFit.h"
#include "mainwindow/ToolBars.h"
#include "mainwindow/WindowPlacement.h"

#include <QDockWidget>
#include <QMainWindow>

using namespace Qt::StringLiterals;

namespace {

constexpr int snapshotIntervalMs = 1000;
constexpr int repairDelaysMs[] = {0, 80, 200};
constexpr int sideMinimumWidth = 150;
constexpr int toolboxMinimumHeight = 80;
constexpr int collapsedSize = 20;
constexpr int defaultSideWidth = 352;
constexpr int defaultToolboxHeight = 210;

} // namespace

DockKeeper::DockKeeper(QMainWindow& window, TerminalSettings& settings)
    : QObject(&window)
    , m_window(window)
    , m_settings(settings)
    , m_marketWatch(addDock(tr("Market Watch"), u"dockMarketWatch"_s, Qt::LeftDockWidgetArea))
    , m_navigator(addDock(tr("Navigator"), u"dockNavigator"_s, Qt::LeftDockWidgetArea))
    , m_toolbox(addDock(tr("Toolbox"), u"dockTerminal"_s, Qt::BottomDockWidgetArea))
{
    m_marketWatch->setMinimumWidth(sideMinimumWidth);
    m_navigator->setMinimumWidth(sideMinimumWidth);

    m_snapshotTimer.setObjectName(u"dockSnapshotTimer"_s);
    m_snapshotTimer.setInterval(snapshotIntervalMs);
    connect(&m_snapshotTimer, &QTimer::timeout, this, &DockKeeper::takeSnapshot);
}

DockKeeper::~DockKeeper()
{
    confirmRestored(); // a window that was never shown has not crashed either
}

void DockKeeper::setPanes(QWidget& marketWatch, QWidget& navigator, QWidget& toolbox)
{
    m_marketWatch->setWidget(&marketWatch);
    m_navigator->setWidget(&navigator);
    m_toolbox->setWidget(&toolbox);
    toolbox.setMinimumHeight(toolboxMinimumHeight);
    restoreDefault();
}

QDockWidget* DockKeeper::addDock(const QString& title, const QString& name, Qt::DockWidgetArea area)
{
    auto* dock = new QDockWidget(title, &m_window);
    dock->setObjectName(name);
    m_window.addDockWidget(area, dock);
    return dock;
}

void DockKeeper::restoreDefault()
{
    const auto place = [this](QDockWidget* dock, Qt::DockWidgetArea area) {
        dock->setFloating(false);
        m_window.removeDockWidget(dock);
        m_window.addDockWidget(area, dock);
        dock->show();
    };
    place(m_marketWatch, Qt::LeftDockWidgetArea);
    place(m_navigator, Qt::LeftDockWidgetArea);
    place(m_toolbox, Qt::BottomDockWidgetArea);
    m_window.resizeDocks({m_marketWatch}, {defaultSideWidth}, Qt::Horizontal);
    m_window.resizeDocks({m_toolbox}, {defaultToolboxHeight}, Qt::Vertical);
    placeToolBars(m_window);
}

void DockKeeper::startSnapshots()
{
    m_snapshotTimer.start();
}

void DockKeeper::takeSnapshot()
{
    DockFacts facts;
    facts.windowMinimized = m_window.isMinimized();
    facts.windowHidden = !m_window.isVisible();
    facts.leftHidden = !m_marketWatch->isVisible();
    facts.leftFloating = m_marketWatch->isFloating();
    facts.leftWidth = m_marketWatch->width();
    facts.bottomHidden = !m_toolbox->isVisible();
    facts.bottomFloating = m_toolbox->isFloating();
    facts.bottomHeight = m_toolbox->height();
    if (!docksLookSane(facts))
        return;
    m_lastGoodState = m_window.saveState();
    m_lastGoodWidth = facts.leftWidth;
    m_lastGoodHeight = facts.bottomHeight;
}

void DockKeeper::scheduleRepair()
{
    for (const int delay : repairDelaysMs)
        QTimer::singleShot(delay, this, &DockKeeper::repair);
}

void DockKeeper::repair()
{
    if (!m_lastGoodState.isEmpty())
        m_window.restoreState(m_lastGoodState);
    for (QDockWidget* dock : {m_marketWatch, m_navigator, m_toolbox}) {
        if (dock->isHidden())
            dock->show();
    }
    if (!m_marketWatch->isFloating() && m_marketWatch->width() < collapsedSize && m_lastGoodWidth > 0)
        m_window.resizeDocks({m_marketWatch}, {m_lastGoodWidth}, Qt::Horizontal);
    if (!m_toolbox->isFloating() && m_toolbox->height() < collapsedSize && m_lastGoodHeight > 0)
        m_window.resizeDocks({m_toolbox}, {m_lastGoodHeight}, Qt::Vertical);
}

QString DockKeeper::restoreFromSettings()
{
    if (m_settings.restoringLayout()) {
        m_settings.setRestoringLayout(false);
        return tr("The last start ended while the window layout was being restored; "
                  "the default layout is used.");
    }
    const QByteArray geometry = m_settings.windowGeometry();
    const QByteArray state = m_settings.windowState();
    if (geometry.isEmpty() && state.isEmpty())
        return {};

    m_settings.setRestoringLayout(true);
    m_restoring = true;
    restoreGeometry(geometry);
    if (!state.isEmpty() && !m_window.restoreState(state)) {
        restoreDefault();
        return tr("The saved window layout could not be read; the default layout is used.");
    }
    return {};
}

void DockKeeper::restoreGeometry(const QByteArray& geometry)
{
    const QRect before = m_window.geometry();
    const QList<QRect> screens = availableScreens();
    // Qt accepts any rectangle, and what it makes of one that no screen could ever show depends on the
    // desktop.
    if (geometry.isEmpty() || !m_window.restoreGeometry(geometryOnScreen(geometry, screens, before)))
        return;
    m_geometryRestored = true;
    const Qt::WindowStates state = m_window.windowState() & ~Qt::WindowMinimized;
    const bool filling = state & (Qt::WindowMaximized | Qt::WindowFullScreen);
    const QRect restored = filling ? m_window.normalGeometry() : m_window.geometry();
    const QRect placed = placedOnScreen(restored.isValid() ? restored : before, screens);
    // Compared with where the window is now: `before` may be a good place without being that.
    if (placed == restored && state == m_window.windowState())
        return;
    m_window.setWindowState(Qt::WindowNoState);
    m_window.setGeometry(placed);
    m_window.setWindowState(state);
}

void DockKeeper::confirmRestored()
{
    if (!m_restoring)
        return;
    m_restoring = false;
    m_settings.setRestoringLayout(false);
}

void DockKeeper::storeInSettings() const
{
    m_settings.setWindowLayout(m_window.saveGeometry(), m_window.saveState());
}
