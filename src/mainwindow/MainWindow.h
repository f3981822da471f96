#pragma once

#include "mainwindow/StatusPanel.h"
#include "mainwindow/account/AccountBook.h"
#include "net/ApiClient.h"
#include "net/WsClient.h"

#include <QJsonObject>
#include <QMainWindow>

#include <memory>

class AccountLoader;
class AccountSelector;
class AlertsPane;
class ChartArea;
class ChartCommands;
class ChartWindow;
class DesktopLinks;
class DockKeeper;
class ExpertAttachment;
class MarketWatchWidget;
class NavigatorWidget;
class NewsPane;
class OrderEvents;
class PaneKeeper;
class QMdiSubWindow;
class QuitWatch;
class Reports;
class ScreenFit;
class SmallWindows;
class TerminalActions;
class TerminalPane;
class TerminalSettings;
class ToolboxFiller;
class TradeActions;
class TradeDesk;
class TradeMenu;
class TrayIcon;

/// The terminal's window after sign-in. Constructs its collaborators, connects them, and delegates:
/// what happens is written in them.
class MainWindow final : public QMainWindow {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Takes the server's sign-in answer; loads the accounts and starts the feed.
    void setUser(const QJsonObject& user);
    [[nodiscard]] const QJsonObject& user() const { return m_user; }

public Q_SLOTS:
    void onHello(const QJsonObject& hello);
    void onPrices(const QJsonObject& prices);
    void onTradesUpdated(const QJsonArray& rows);
    void onOrdersChanged(const QJsonObject& event);
    void onAccountUpdated(const QJsonObject& event);
    void onAccountSelected(int index);
    /// Opens a chart; an empty symbol means the one selected in Market Watch.
    void openChart(const QString& symbol = {});
    void onTimeframeAction(QAction* action);
    void onSubWindowActivated(QMdiSubWindow* subWindow);
    /// Opens the order dialog for the active chart's symbol, or brings the open one to the front.
    void openOrderDialog();
    void onTradeContextMenu(const QPoint& globalPos, const QJsonObject& trade);
    void onTradeDoubleClicked(const QJsonObject& trade);
    void onChartModifyLevel(const QString& tradeId, const QString& kind, double price);
    void onQuickTrade(const QString& symbol, const QString& side, double lots);
    void onExpertOrder(const QJsonObject& body);
    void onExpertCloseAll(const QString& symbol);
    void showSpecification(const QString& symbol);
    void togglePopupPrices();
    void toggleDepthOfMarket();
    /// Shows the window unminimized and gives it the keyboard.
    void bringToFront();
    /// A line for the Journal tab and the log file.
    void journal(const QString& source, const QString& message);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void buildToolbox();
    void buildTray();
    void buildMenus();
    void buildToolbar();
    void buildPaneRing();
    void connectFeed();
    void connectAccount();
    void connectQuotes();
    void connectPanes();
    /// Of each new chart.
    void connectChart(ChartWindow& chart);
    void connectTrades();
    void connectExperts();
    void connectActions();
    void connectReports();
    void connectRefreshes();
    void setUpExperts();
    void restoreLayout();
    /// Writes the layout to the settings, whatever has been written before.
    void storeLayout();
    /// Ends the event loop without asking any window: the layout is kept as it is, and what is still on its
    /// way to the server is told in the log.
    void quit();
    void chooseTheme(bool dark);
    /// The active chart's symbol, else the one selected in Market Watch.
    [[nodiscard]] QString currentSymbol() const;

    // The order is that of life: what is declared later ends earlier, and may use what is declared before it.
    TerminalSettings& m_settings;
    ApiClient m_api;
    WsClient m_feed;
    AccountBook m_book;
    QJsonObject m_user;

    // Children that know neither client. This window ends them after all its members.
    MarketWatchWidget* m_marketWatch = nullptr;
    NavigatorWidget* m_navigator = nullptr;
    TerminalPane* m_toolbox = nullptr;
    AlertsPane* m_alerts = nullptr;
    ToolboxFiller* m_toolboxFiller = nullptr;
    StatusPanel* m_status = nullptr;
    AccountSelector* m_accountSelector = nullptr;
    TrayIcon* m_tray = nullptr; ///< none on a desktop without a tray
    OrderEvents* m_orderEvents = nullptr;
    TerminalActions* m_actions = nullptr;
    DesktopLinks* m_links = nullptr;
    SmallWindows* m_smallWindows = nullptr;
    PaneKeeper* m_paneKeeper = nullptr;
    TradeMenu* m_tradeMenu = nullptr;
    ExpertAttachment* m_expertAttachment = nullptr;
    QuitWatch* m_quitWatch = nullptr;
    ScreenFit* m_screenFit = nullptr;

    // Collaborators that use a client, report to a child above, or act on another one of these.
    std::unique_ptr<DockKeeper> m_docks;
    std::unique_ptr<AccountLoader> m_loader;
    std::unique_ptr<NewsPane> m_news;
    std::unique_ptr<Reports> m_reports; ///< experts may still fail while their charts go
    std::unique_ptr<ChartArea> m_charts;
    std::unique_ptr<ChartCommands> m_chartCommands;
    std::unique_ptr<TradeActions> m_tradeActions; ///< what experts want while their charts go is not sent
    std::unique_ptr<TradeDesk> m_tradeDesk;

    bool m_layoutStored = false; ///< since the window was last shown; what closes afterwards no longer counts
    bool m_leaving = false;
    bool m_wasShown = false;
};
