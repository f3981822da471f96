#include "mainwindow/TerminalActions.h"

#include "app/Theme.h"

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

TerminalActions::TerminalActions(QMainWindow& window, QAction* marketWatch, QAction* toolbox)
    : QObject(&window)
    , newChart(new QAction(tr("New Chart"), this))
    , newOrder(new QAction(tr("New Order"), this))
    , exit(new QAction(tr("E&xit"), this))
    , toggleMarketWatch(marketWatch)
    , toggleToolbox(toolbox)
    , popupPrices(new QAction(tr("Popup Prices"), this))
    , restoreLayout(new QAction(tr("Restore Default Layout"), this))
    , lightTheme(new QAction(tr("Light"), this))
    , darkTheme(new QAction(tr("Dark"), this))
    , zoomIn(new QAction(tr("Zoom In"), this))
    , zoomOut(new QAction(tr("Zoom Out"), this))
{
    newOrder->setShortcut(Qt::Key_F9);
    exit->setShortcut(Qt::CTRL | Qt::Key_Q);
    toggleMarketWatch->setShortcut(Qt::CTRL | Qt::Key_M);
    toggleToolbox->setShortcut(Qt::CTRL | Qt::Key_T);
    popupPrices->setShortcut(Qt::Key_F10);
    // A text field that has the focus takes these keys before any shortcut does.
    zoomIn->setShortcuts({QKeySequence(Qt::Key_Plus), QKeySequence(Qt::Key_Equal)});
    zoomOut->setShortcut(Qt::Key_Minus);
    // A key must work in the whole window even while its action stands in no menu.
    window.addActions({newOrder, exit, toggleMarketWatch, toggleToolbox, popupPrices, zoomIn, zoomOut});

    auto* themes = new QActionGroup(this);
    for (QAction* theme : {lightTheme, darkTheme}) {
        theme->setCheckable(true);
        themes->addAction(theme);
    }
    (isDarkTheme() ? darkTheme : lightTheme)->setChecked(true);

    setSymbolsKnown(false);
    setChartActive(false);
}

void TerminalActions::buildMenus(QMenuBar& bar)
{
    fillFileMenu(*bar.addMenu(tr("&File")));
    fillViewMenu(*bar.addMenu(tr("&View")));
}

void TerminalActions::fillFileMenu(QMenu& menu)
{
    menu.addAction(newChart);
    menu.addAction(newOrder);
    menu.addSeparator();
    menu.addAction(exit);
}

void TerminalActions::fillViewMenu(QMenu& menu)
{
    menu.addAction(toggleMarketWatch);
    menu.addAction(toggleToolbox);
    menu.addAction(popupPrices);
    menu.addSeparator();
    menu.addAction(restoreLayout);
    menu.addSeparator();
    QMenu* themes = menu.addMenu(tr("Theme"));
    themes->addAction(lightTheme);
    themes->addAction(darkTheme);
}

void TerminalActions::setSymbolsKnown(bool known)
{
    newChart->setEnabled(known);
    newOrder->setEnabled(known);
}

void TerminalActions::setChartActive(bool active)
{
    zoomIn->setEnabled(active);
    zoomOut->setEnabled(active);
}
