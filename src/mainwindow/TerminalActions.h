#pragma once

#include <QList>
#include <QObject>

class QAction;
class QActionGroup;
class QIcon;
class QMainWindow;
enum class Pictogram;

/// Every command of the main window as one action each, with its text, key and icon, and when it is
/// enabled. The same action stands in the menus and in the toolbars. No behaviour: ChartCommands and the
/// main window connect them. A new command is a member here and a line in its menu.
class TerminalActions final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TerminalActions)

public:
    /// Commands that show and hide docks come from the docks themselves.
    struct DockToggles {
        QAction* marketWatch;
        QAction* navigator;
        QAction* toolbox;
    };

    /// The window is also the parent.
    TerminalActions(QMainWindow& window, const DockToggles& docks);

    QAction* const newChart;
    QAction* const newOrder;
    QAction* const exit;

    QAction* const toggleMarketWatch;
    QAction* const toggleNavigator;
    QAction* const toggleToolbox;
    QAction* const popupPrices;
    QAction* const restoreLayout;
    QAction* const lightTheme;
    QAction* const darkTheme;

    QAction* const algoTrading;

    QAction* const cursor;
    QAction* const crosshair;
    QAction* const horizontalLine;
    QAction* const verticalLine;
    QAction* const trendLine;
    QAction* const rectangle;
    QAction* const fibonacci;

    QAction* const candlesticks;
    QAction* const bars;
    QAction* const line;
    QAction* const autoScroll;
    QAction* const chartShift;
    QAction* const zoomIn;
    QAction* const zoomOut;
    QAction* const refresh;
    QAction* const dataWindow;
    QAction* const properties;
    QAction* const specification;

    QAction* const depthOfMarket;
    QAction* const openExpertsFolder;

    QAction* const tile;
    QAction* const cascade;
    QAction* const closeChart;

    QAction* const openGuide;
    QAction* const checkForUpdates;
    QAction* const about;

    /// One checked at most; an action's data is the timeframe key.
    QActionGroup* const timeframes;
    /// One checked at most; an action's data is the chart type, 0 to 2.
    QActionGroup* const chartTypes;
    /// One for each row of the table of indicators; an action's data is the row's key.
    QList<QAction*> const indicators;
    /// One for each kind of drawing, in the order of menu and toolbar; an action's data is the tool's key.
    [[nodiscard]] QList<QAction*> drawingTools() const;

    /// Enables what needs a symbol list.
    void setSymbolsKnown(bool known);
    /// Enables what acts on the active chart.
    void setChartActive(bool active);

private:
    [[nodiscard]] QAction* command(const QString& text, Pictogram icon);
    [[nodiscard]] QAction* withIcon(QAction* action, const QIcon& icon);
    [[nodiscard]] QList<QAction*> indicatorCommands();
    void giveKeys(QMainWindow& window);
    void makeTimeframes();
    void groupChoices();
    void giveToolTips();
};
