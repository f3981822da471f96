#include "mainwindow/ToolBars.h"

#include "mainwindow/MoreButtons.h"
#include "mainwindow/TerminalActions.h"
#include "mainwindow/ToolBarKeys.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMainWindow>
#include <QToolBar>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// The icons are drawn on a field of this size.
constexpr QSize iconSize(16, 16);

struct ToolBarTexts {
    Q_DECLARE_TR_FUNCTIONS(ToolBars)
};

/// Under these names the layout of the toolbars is saved; this is also their default order.
QStringList objectNames()
{
    return {u"toolbarStandard"_s, u"toolbarTimeframes"_s, u"toolbarStudies"_s};
}

/// Qt's arrow behind which the buttons lie that have no room; every toolbar has one.
QToolButton& arrowOf(const QToolBar& bar)
{
    return *bar.findChild<QToolButton*>(u"qt_toolbar_ext_button"_s);
}

QToolBar* addToolBar(QMainWindow& window, const QString& title, const QString& name)
{
    auto* bar = new QToolBar(title, &window);
    bar->setObjectName(name);
    bar->setIconSize(iconSize);
    window.addToolBar(Qt::TopToolBarArea, bar);
    arrowOf(*bar).setAccessibleName(ToolBarTexts::tr("More buttons"));
    return bar;
}

/// Qt leaves tool buttons out of the way of Tab. A click on one still takes the keyboard from nobody.
void letKeysReach(QToolBar& bar)
{
    for (QToolButton* button : bar.findChildren<QToolButton*>())
        button->setFocusPolicy(Qt::TabFocus);
    // The toolbar's own children.
    const auto* more = new MoreButtons(bar, arrowOf(bar));
    new ToolBarKeys(bar, *more);
}

} // namespace

void addToolBars(QMainWindow& window, const TerminalActions& actions)
{
    const QStringList names = objectNames();

    QToolBar* standard = addToolBar(window, ToolBarTexts::tr("Standard"), names.at(0));
    standard->addActions({actions.newChart, actions.toggleMarketWatch, actions.toggleNavigator,
        actions.toggleToolbox, actions.newOrder, actions.algoTrading});

    QToolBar* timeframes = addToolBar(window, ToolBarTexts::tr("Timeframes"), names.at(1));
    timeframes->addActions(actions.timeframes->actions());
    // Their short names say more than any picture.
    for (QAction* timeframe : actions.timeframes->actions()) {
        if (auto* button = qobject_cast<QToolButton*>(timeframes->widgetForAction(timeframe)))
            button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    }
    timeframes->addActions(actions.chartTypes->actions());
    timeframes->addActions({actions.autoScroll, actions.chartShift});

    QToolBar* studies = addToolBar(window, ToolBarTexts::tr("Line Studies"), names.at(2));
    studies->addActions({actions.cursor, actions.crosshair});
    studies->addActions(actions.drawingTools());
    studies->addActions({actions.zoomIn, actions.zoomOut});

    for (QToolBar* bar : {standard, timeframes, studies})
        letKeysReach(*bar);
}

void placeToolBars(QMainWindow& window)
{
    const QStringList names = objectNames();
    QList<QToolBar*> bars;
    for (const QString& name : names) {
        if (auto* bar = window.findChild<QToolBar*>(name, Qt::FindDirectChildrenOnly))
            bars.append(bar);
    }
    // Removing the last toolbar of a row removes the row.
    for (QToolBar* bar : bars)
        window.removeToolBar(bar);
    for (QToolBar* bar : bars) {
        window.addToolBar(Qt::TopToolBarArea, bar);
        bar->show();
    }
}
