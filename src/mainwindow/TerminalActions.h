#pragma once

#include <QObject>

class QAction;
class QActionGroup;
class QMainWindow;
class QMenu;
class QMenuBar;

/// Every command of the main window as one action each, the menu bar they stand in, and when they are
/// enabled. No behaviour: the main window connects them. A new command is a member here and a line in
/// its menu.
class TerminalActions final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TerminalActions)

public:
    /// Commands that show and hide docks come from the docks themselves.
    TerminalActions(QMainWindow& window, QAction* toggleMarketWatch, QAction* toggleToolbox);

    QAction* const newChart;
    QAction* const newOrder;
    QAction* const exit;
    QAction* const toggleMarketWatch;
    QAction* const toggleToolbox;
    QAction* const popupPrices;
    QAction* const restoreLayout;
    QAction* const lightTheme;
    QAction* const darkTheme;
    QAction* const zoomIn;
    QAction* const zoomOut;

    void buildMenus(QMenuBar& bar);

    /// Enables what needs a symbol list.
    void setSymbolsKnown(bool known);
    /// Enables what acts on the active chart.
    void setChartActive(bool active);

private:
    void fillFileMenu(QMenu& menu);
    void fillViewMenu(QMenu& menu);
};
