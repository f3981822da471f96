#include "mainwindow/MenuBar.h"

#include "mainwindow/MenuBarFocus.h"
#include "mainwindow/TerminalActions.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

struct MenuTexts {
    Q_DECLARE_TR_FUNCTIONS(MenuBar)
};

void fillFileMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addAction(actions.newChart);
    menu.addAction(actions.newOrder);
    menu.addSeparator();
    menu.addAction(actions.exit);
}

void fillViewMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addAction(actions.toggleMarketWatch);
    menu.addAction(actions.toggleToolbox);
    menu.addAction(actions.popupPrices);
    menu.addSeparator();
    menu.addAction(actions.restoreLayout);
    menu.addSeparator();
    menu.addMenu(MenuTexts::tr("Theme"))->addActions({actions.lightTheme, actions.darkTheme});
}

void fillInsertMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addMenu(MenuTexts::tr("Indicators"))->addActions(actions.indicators);
    menu.addMenu(MenuTexts::tr("Objects"))->addActions(actions.drawingTools());
}

void fillChartsMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addMenu(MenuTexts::tr("Chart Type"))->addActions(actions.chartTypes->actions());
    menu.addMenu(MenuTexts::tr("Timeframe"))->addActions(actions.timeframes->actions());
    menu.addSeparator();
    menu.addAction(actions.zoomIn);
    menu.addAction(actions.zoomOut);
    menu.addAction(actions.refresh);
    menu.addAction(actions.dataWindow);
    menu.addSeparator();
    menu.addAction(actions.properties);
    menu.addAction(actions.specification);
}

void fillToolsMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addAction(actions.newOrder);
    menu.addAction(actions.depthOfMarket);
    menu.addSeparator();
    menu.addAction(actions.openExpertsFolder);
}

void fillWindowMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.addAction(actions.tile);
    menu.addAction(actions.cascade);
    menu.addSeparator();
    menu.addAction(actions.closeChart);
}

void fillHelpMenu(QMenu& menu, const TerminalActions& actions)
{
    menu.setToolTipsVisible(true); // why an entry is disabled
    menu.addAction(actions.openGuide);
    menu.addAction(actions.checkForUpdates);
    menu.addSeparator();
    menu.addAction(actions.about);
}

} // namespace

void fillMenuBar(QMenuBar& bar, const TerminalActions& actions)
{
    fillFileMenu(*bar.addMenu(MenuTexts::tr("&File")), actions);
    fillViewMenu(*bar.addMenu(MenuTexts::tr("&View")), actions);
    fillInsertMenu(*bar.addMenu(MenuTexts::tr("&Insert")), actions);
    fillChartsMenu(*bar.addMenu(MenuTexts::tr("&Charts")), actions);
    fillToolsMenu(*bar.addMenu(MenuTexts::tr("&Tools")), actions);
    fillWindowMenu(*bar.addMenu(MenuTexts::tr("&Window")), actions);
    fillHelpMenu(*bar.addMenu(MenuTexts::tr("&Help")), actions);
    // Qt's arrow behind which the menus lie that have no room.
    if (auto* more = bar.findChild<QToolButton*>(u"qt_menubar_ext_button"_s))
        more->setAccessibleName(MenuTexts::tr("More menus"));
    new MenuBarFocus(bar); // the bar's own child
}
