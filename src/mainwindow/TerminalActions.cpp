#include "mainwindow/TerminalActions.h"

#include "app/base/UpdateFramework.h"
#include "app/ui/Theme.h"
#include "chart/data/IndicatorTable.h"
#include "chart/series/Timeframe.h"
#include "mainwindow/ActionIcons.h"

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>

using namespace Qt::StringLiterals;

TerminalActions::TerminalActions(QMainWindow& window, const DockToggles& docks)
    : QObject(&window)
    , newChart(command(tr("New Chart"), Pictogram::NewChart))
    , newOrder(command(tr("New Order"), Pictogram::NewOrder))
    , exit(command(tr("E&xit"), Pictogram::Exit))
    , toggleMarketWatch(withIcon(docks.marketWatch, actionIcon(Pictogram::MarketWatch)))
    , toggleNavigator(withIcon(docks.navigator, actionIcon(Pictogram::Navigator)))
    , toggleToolbox(withIcon(docks.toolbox, actionIcon(Pictogram::Toolbox)))
    , popupPrices(command(tr("Popup Prices"), Pictogram::PopupPrices))
    , restoreLayout(command(tr("Restore Default Layout"), Pictogram::RestoreLayout))
    , lightTheme(command(tr("Light"), Pictogram::LightTheme))
    , darkTheme(command(tr("Dark"), Pictogram::DarkTheme))
    , algoTrading(command(tr("Algo Trading"), Pictogram::AlgoTrading))
    //: the plain pointer, in place of a drawing tool
    , cursor(command(tr("Cursor"), Pictogram::Cursor))
    , crosshair(command(tr("Crosshair"), Pictogram::Crosshair))
    , horizontalLine(command(tr("Horizontal Line"), Pictogram::HorizontalLine))
    , verticalLine(command(tr("Vertical Line"), Pictogram::VerticalLine))
    , trendLine(command(tr("Trend Line"), Pictogram::TrendLine))
    , rectangle(command(tr("Rectangle"), Pictogram::Rectangle))
    , fibonacci(command(tr("Fibonacci Retracement"), Pictogram::Fibonacci))
    , candlesticks(command(tr("Candlesticks"), Pictogram::Candlesticks))
    //: a type of chart
    , bars(command(tr("Bars"), Pictogram::Bars))
    //: a type of chart
    , line(command(tr("Line"), Pictogram::Line))
    , autoScroll(command(tr("Auto Scroll"), Pictogram::AutoScroll))
    , chartShift(command(tr("Chart Shift"), Pictogram::ChartShift))
    , zoomIn(command(tr("Zoom In"), Pictogram::ZoomIn))
    , zoomOut(command(tr("Zoom Out"), Pictogram::ZoomOut))
    , refresh(command(tr("Refresh"), Pictogram::Refresh))
    , dataWindow(command(tr("Data Window"), Pictogram::DataWindow))
    , properties(command(tr("Properties..."), Pictogram::Properties))
    , specification(command(tr("Symbol Specification..."), Pictogram::Specification))
    , depthOfMarket(command(tr("Depth of Market"), Pictogram::DepthOfMarket))
    , openExpertsFolder(command(tr("Open Experts Folder"), Pictogram::ExpertsFolder))
    , tile(command(tr("Tile"), Pictogram::Tile))
    , cascade(command(tr("Cascade"), Pictogram::Cascade))
    //: closes the active chart
    , closeChart(command(tr("Close"), Pictogram::Close))
    , openGuide(command(tr("Expert Advisors Guide..."), Pictogram::Guide))
    , checkForUpdates(command(tr("Check for Updates..."), Pictogram::Updates))
    , about(command(tr("About Tavoran Terminal"), Pictogram::About))
    , timeframes(new QActionGroup(this))
    , chartTypes(new QActionGroup(this))
    , indicators(indicatorCommands())
{
    giveKeys(window);
    makeTimeframes();
    groupChoices();
    giveToolTips();
    checkForUpdates->setEnabled(UpdateFramework::instance().isAvailable());
    setSymbolsKnown(false);
    setChartActive(false);
}

QAction* TerminalActions::command(const QString& text, Pictogram icon)
{
    return withIcon(new QAction(text, this), actionIcon(icon));
}

QAction* TerminalActions::withIcon(QAction* action, const QIcon& icon)
{
    action->setIcon(icon);
    // In a menu the icon would take the place of the check mark.
    action->setIconVisibleInMenu(!action->isCheckable());
    return action;
}

QList<QAction*> TerminalActions::indicatorCommands()
{
    QList<QAction*> commands;
    for (const IndicatorRow& row : indicatorTable()) {
        QAction* action = withIcon(new QAction(indicatorText(row.command), this), actionIcon(row.icon));
        action->setData(QString(row.key));
        commands.append(action);
    }
    return commands;
}

void TerminalActions::giveKeys(QMainWindow& window)
{
    newOrder->setShortcut(Qt::Key_F9);
    exit->setShortcut(Qt::CTRL | Qt::Key_Q);
    toggleMarketWatch->setShortcut(Qt::CTRL | Qt::Key_M);
    toggleToolbox->setShortcut(Qt::CTRL | Qt::Key_T);
    popupPrices->setShortcut(Qt::Key_F10);
    // A text field that has the focus takes these keys before any shortcut does.
    zoomIn->setShortcuts({QKeySequence(Qt::Key_Plus), QKeySequence(Qt::Key_Equal)});
    zoomOut->setShortcut(Qt::Key_Minus);
    dataWindow->setShortcut(Qt::CTRL | Qt::Key_D);
    properties->setShortcut(Qt::Key_F8);
    depthOfMarket->setShortcut(Qt::ALT | Qt::Key_B);
    // The keys belong to the window: they work whatever menus and toolbars are on show.
    window.addActions({newOrder, exit, toggleMarketWatch, toggleToolbox, popupPrices, zoomIn, zoomOut,
        dataWindow, properties, depthOfMarket});
}

void TerminalActions::makeTimeframes()
{
    static constexpr Pictogram icons[] = {Pictogram::M1, Pictogram::M5, Pictogram::M15, Pictogram::H1,
        Pictogram::H4, Pictogram::D1, Pictogram::W1, Pictogram::MN};
    const QStringList& keys = timeframeKeys();
    Q_ASSERT(keys.size() == std::ssize(icons));
    for (qsizetype i = 0; i < keys.size(); ++i) {
        QAction* timeframe = command(timeframeLabel(keys.at(i)), icons[i]);
        timeframe->setData(keys.at(i));
        timeframes->addAction(timeframe);
    }
}

void TerminalActions::groupChoices()
{
    const auto makeCheckable = [](QAction* action) {
        action->setCheckable(true);
        action->setIconVisibleInMenu(false);
    };
    for (QAction* action : {algoTrading, autoScroll, chartShift})
        makeCheckable(action);

    auto* themes = new QActionGroup(this);
    for (QAction* theme : {lightTheme, darkTheme})
        themes->addAction(theme);
    auto* pointers = new QActionGroup(this);
    for (QAction* pointer : {cursor, crosshair})
        pointers->addAction(pointer);
    static constexpr const char16_t* toolKeys[]
        = {u"hline", u"vline", u"trendline", u"rectangle", u"fibonacci"};
    const QList<QAction*> tools = drawingTools();
    for (qsizetype i = 0; i < tools.size(); ++i) {
        tools.at(i)->setData(QString::fromUtf16(toolKeys[i]));
        pointers->addAction(tools.at(i));
    }
    int type = 0;
    for (QAction* chartType : {candlesticks, bars, line}) {
        chartType->setData(type++);
        chartTypes->addAction(chartType);
    }
    for (const QActionGroup* group :
        {themes, pointers, static_cast<QActionGroup*>(chartTypes), static_cast<QActionGroup*>(timeframes)}) {
        for (QAction* action : group->actions())
            makeCheckable(action);
    }
    (isDarkTheme() ? darkTheme : lightTheme)->setChecked(true);
    cursor->setChecked(true);
}

void TerminalActions::giveToolTips()
{
    // The toolbar has shorter texts than the menu.
    fibonacci->setIconText(tr("Fibonacci"));
    fibonacci->setToolTip(tr("Fibonacci"));
    algoTrading->setToolTip(tr("Algo Trading — allow Expert Advisors to place orders"));
    autoScroll->setToolTip(tr("Auto Scroll — keep the chart on the newest tick"));
    chartShift->setToolTip(tr("Chart Shift — shift the newest bar off the right border"));
    if (!UpdateFramework::instance().isAvailable())
        checkForUpdates->setToolTip(tr("This system's package manager keeps the terminal up to date"));
}

QList<QAction*> TerminalActions::drawingTools() const
{
    return {horizontalLine, verticalLine, trendLine, rectangle, fibonacci};
}

void TerminalActions::setSymbolsKnown(bool known)
{
    for (QAction* action : {newChart, newOrder, depthOfMarket})
        action->setEnabled(known);
}

void TerminalActions::setChartActive(bool active)
{
    for (QAction* action : indicators)
        action->setEnabled(active);
    for (QAction* action : {cursor, crosshair, horizontalLine, verticalLine, trendLine, rectangle, fibonacci,
             candlesticks, bars, line, autoScroll, chartShift, zoomIn, zoomOut, refresh, dataWindow,
             properties, specification, tile, cascade, closeChart})
        action->setEnabled(active);
    timeframes->setEnabled(active);
}
