#include "mainwindow/MainWindow.h"

#include "app/base/Log.h"
#include "app/base/ServerText.h"
#include "app/base/TerminalSettings.h"
#include "app/base/UpdateFramework.h"
#include "app/ui/Theme.h"
#include "chart/data/IndicatorTable.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/AccountSelector.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/ChartCommands.h"
#include "mainwindow/DesktopLinks.h"
#include "mainwindow/DockKeeper.h"
#include "mainwindow/ExpertAttachment.h"
#include "mainwindow/ExpertsFolder.h"
#include "mainwindow/MenuBar.h"
#include "mainwindow/PaintHold.h"
#include "mainwindow/PaneFocus.h"
#include "mainwindow/PaneKeeper.h"
#include "mainwindow/QuitWatch.h"
#include "mainwindow/Reports.h"
#include "mainwindow/ScreenFit.h"
#include "mainwindow/SmallWindows.h"
#include "mainwindow/TabStops.h"
#include "mainwindow/TerminalActions.h"
#include "mainwindow/ToolBars.h"
#include "mainwindow/ToolboxFiller.h"
#include "mainwindow/TradeDesk.h"
#include "mainwindow/TradeMenu.h"
#include "mainwindow/TrayIcon.h"
#include "mainwindow/account/AccountLoader.h"
#include "mainwindow/account/OrderEvents.h"
#include "mainwindow/account/TradeActions.h"
#include "net/records/FeedMessage.h"
#include "net/records/ServerReply.h"
#include "panes/AlertsPane.h"
#include "panes/MarketWatchWidget.h"
#include "panes/NavigatorWidget.h"
#include "panes/NewsPane.h"
#include "panes/TerminalPane.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QToolBar>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize initialSize(1280, 800);

/// The Navigator knows no chart, so it is told.
QList<NavigatorWidget::Indicator> offeredIndicators()
{
    QList<NavigatorWidget::Indicator> offered;
    for (const IndicatorRow& row : indicatorTable())
        offered.append({row.key, indicatorText(row.name)});
    return offered;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , m_settings(TerminalSettings::instance())
    , m_api(m_settings)
    , m_feed(m_settings)
{
    setWindowTitle(tr("Tavoran Terminal"));
    resize(initialSize);
    m_charts = std::make_unique<ChartArea>(m_api, m_book, this);
    m_docks = std::make_unique<DockKeeper>(*this, m_settings);
    m_marketWatch = new MarketWatchWidget(&m_docks->marketWatchDock());
    m_navigator = new NavigatorWidget(offeredIndicators(), &m_docks->navigatorDock());
    m_toolbox = new TerminalPane(&m_docks->toolboxDock());
    m_status = new StatusPanel(*statusBar(), StatusPanel::hostOf(m_settings.serverUrl()), this);
    m_quitWatch = new QuitWatch(this);
    m_screenFit = new ScreenFit(*this);
    setCentralWidget(m_charts.get());
    buildToolbox();
    m_docks->setPanes(*m_marketWatch, *m_navigator, *m_toolbox);
    m_loader = std::make_unique<AccountLoader>(m_api, m_book, this);
    m_accountSelector = new AccountSelector(m_status->accountSelector(), m_book, this);
    m_toolboxFiller = new ToolboxFiller(*m_toolbox, m_book, this);
    m_actions = new TerminalActions(*this,
        {m_docks->marketWatchDock().toggleViewAction(), m_docks->navigatorDock().toggleViewAction(),
            m_docks->toolboxDock().toggleViewAction()});
    m_chartCommands = std::make_unique<ChartCommands>(*m_actions, *m_charts, this);
    m_links = new DesktopLinks(*this);
    m_smallWindows = new SmallWindows(m_book, *m_marketWatch, *this);
    m_paneKeeper = new PaneKeeper(*this, *m_toolbox, *m_smallWindows, m_settings);
    m_tradeActions = std::make_unique<TradeActions>(m_api, m_book, this);
    m_tradeDesk = std::make_unique<TradeDesk>(m_api, m_feed, m_book, *this);
    m_tradeMenu = new TradeMenu(*this);
    m_expertAttachment = new ExpertAttachment(*m_charts, *m_tradeActions, this);
    buildTray();
    m_orderEvents = new OrderEvents(m_tray != nullptr, this);
    m_reports = std::make_unique<Reports>(*m_toolbox, m_settings, m_tray, this);

    connectFeed();
    connectAccount();
    connectQuotes();
    connectPanes();
    connectTrades();
    connectExperts();
    connectActions();
    connectReports();
    connectRefreshes();
    buildMenus();
    buildToolbar();
    buildPaneRing();
    setUpExperts();
    journal(tr("Terminal"), tr("Tavoran Terminal %1 started").arg(QCoreApplication::applicationVersion()));
    m_docks->startSnapshots();
    restoreLayout();
}

MainWindow::~MainWindow()
{
    // From here on nothing acts through this window. The members end in the reverse order of their
    // declaration.
    m_feed.disconnect();
    m_charts->disconnect(this);
    // Those too that were closed a moment ago, and have left the area's list.
    const QList<ChartWindow*> charts = m_charts->findChildren<ChartWindow*>();
    for (ChartWindow* chart : charts)
        chart->disconnect(this);
}

void MainWindow::buildToolbox()
{
    m_news = std::make_unique<NewsPane>(m_api, m_toolbox->pageParent());
    m_alerts = new AlertsPane(m_settings, m_toolbox->pageParent());
    m_news->setObjectName(u"newsPage"_s);
    m_alerts->setObjectName(u"alertsPage"_s);
    m_toolbox->addTab(m_news.get(), tr("Calendar"));
    m_toolbox->addTab(m_alerts, tr("Alerts"));
}

void MainWindow::buildTray()
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new TrayIcon(this);
    connect(m_tray, &TrayIcon::showRequested, this, &MainWindow::bringToFront);
    connect(m_tray, &TrayIcon::exitRequested, this, &MainWindow::quit);
}

void MainWindow::buildMenus()
{
    fillMenuBar(*menuBar(), *m_actions);
}

void MainWindow::buildToolbar()
{
    addToolBars(*this, *m_actions);
}

void MainWindow::buildPaneRing()
{
    const QList<QToolBar*> bars = findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
    new PaneFocus(*this, // the window's own child
        {
            {{m_charts.get()}, [this] { return m_charts->activeChart(); }},
            {{m_marketWatch}, {}},
            {{m_navigator}, {}},
            {{m_toolbox}, {}},
            {{statusBar()}, {}},
            {{bars.begin(), bars.end()}, {}},
        });
}

void MainWindow::connectFeed()
{
    connect(&m_feed, &WsClient::helloReceived, this, &MainWindow::onHello);
    connect(&m_feed, &WsClient::pricesUpdated, this, &MainWindow::onPrices);
    connect(&m_feed, &WsClient::tradesUpdated, this, &MainWindow::onTradesUpdated);
    connect(&m_feed, &WsClient::ordersChanged, this, &MainWindow::onOrdersChanged);
    connect(&m_feed, &WsClient::accountUpdated, this, &MainWindow::onAccountUpdated);
    connect(&m_feed, &WsClient::disconnected, &m_book, &AccountBook::noteInterruption);
    m_status->follow(m_feed);
    connect(&m_api, &ApiClient::unauthorized, this, [this] {
        journal(tr("Auth"), tr("Session expired — please restart the terminal and log in again."));
    });
}

void MainWindow::connectAccount()
{
    connect(&m_book, &AccountBook::accountsChanged, m_navigator,
        [this] { m_navigator->setAccounts(m_book.accounts()); });
    connect(&m_book, &AccountBook::currentAccountChanged, m_navigator,
        [this] { m_navigator->setActiveAccount(m_book.currentAccountId()); });
    connect(&m_book, &AccountBook::currentAccountChanged, m_charts.get(), &ChartArea::applyAccount);
    connect(&m_book, &AccountBook::tradesChanged, m_charts.get(), &ChartArea::applyTrades);
    connect(&m_book, &AccountBook::summaryChanged, m_charts.get(), &ChartArea::applySummary);
    connect(m_loader.get(), &AccountLoader::historyRead, m_toolboxFiller, &ToolboxFiller::showHistory);
    connect(
        m_accountSelector, &AccountSelector::accountChosen, m_loader.get(), &AccountLoader::selectAccount);
    connect(m_navigator, &NavigatorWidget::accountActivated, m_accountSelector, &AccountSelector::choose);
}

void MainWindow::connectQuotes()
{
    connect(&m_book, &AccountBook::symbolsChanged, m_marketWatch,
        [this] { m_marketWatch->setSymbols(m_book.symbols()); });
    connect(&m_book, &AccountBook::symbolsChanged, m_charts.get(), &ChartArea::applySymbols);
    connect(&m_book, &AccountBook::symbolsChanged, m_smallWindows, &SmallWindows::onSymbols);
    connect(&m_book, &AccountBook::symbolsChanged, m_actions,
        [this] { m_actions->setSymbolsKnown(!m_book.symbolsByName().isEmpty()); });
    connect(&m_book, &AccountBook::symbolsChanged, m_alerts,
        [this] { m_alerts->setSymbols(m_book.symbolNames()); });
    connect(&m_book, &AccountBook::quotesChanged, m_marketWatch, &MarketWatchWidget::showQuotes);
    connect(&m_book, &AccountBook::quotesChanged, m_smallWindows, &SmallWindows::onPrices);
    connect(&m_book, &AccountBook::ticked, m_charts.get(), &ChartArea::showQuotes);
    connect(&m_book, &AccountBook::ticked, m_alerts, &AlertsPane::checkQuotes);
    connect(&m_book, &AccountBook::quotesGrewOld, m_charts.get(), &ChartArea::noteInterruption);
    connect(&m_book, &AccountBook::quotesGrewOld, m_marketWatch, &MarketWatchWidget::markStale);
    connect(&m_book, &AccountBook::quotesGrewOld, m_smallWindows, &SmallWindows::onPrices);
}

void MainWindow::connectPanes()
{
    connect(m_charts.get(), &ChartArea::chartOpened, this, &MainWindow::connectChart);
    connect(m_charts.get(), &QMdiArea::subWindowActivated, this, &MainWindow::onSubWindowActivated);
    connect(m_chartCommands.get(), &ChartCommands::hintChanged, m_status, &StatusPanel::setHint);
    connect(m_marketWatch, &MarketWatchWidget::symbolActivated, this, &MainWindow::openChart);
    connect(m_navigator, &NavigatorWidget::indicatorActivated, m_chartCommands.get(),
        &ChartCommands::addIndicator);
    m_alerts->setMarket({[this] { return currentSymbol(); },
        [this](const QString& symbol) { return m_book.quote(symbol).value_or(Quote()).bid; }});
}

void MainWindow::connectChart(ChartWindow& chart)
{
    connect(&chart, &ChartWindow::modifyLevelRequested, this, &MainWindow::onChartModifyLevel);
    connect(&chart, &ChartWindow::quickTradeRequested, this, &MainWindow::onQuickTrade);
    connect(&chart, &ChartWindow::expertOrderRequested, this, &MainWindow::onExpertOrder);
    connect(&chart, &ChartWindow::expertCloseAllRequested, this, &MainWindow::onExpertCloseAll);
    connect(&chart, &ChartWindow::specificationRequested, this, &MainWindow::showSpecification);
    m_reports->follow(chart, &ChartWindow::logMessage, &ChartWindow::expertLog);
}

void MainWindow::connectTrades()
{
    connect(m_toolbox, &TerminalPane::tradeContextMenu, this, &MainWindow::onTradeContextMenu);
    connect(m_toolbox, &TerminalPane::tradeDoubleClicked, this, &MainWindow::onTradeDoubleClicked);
    connect(m_actions->algoTrading, &QAction::toggled, m_tradeActions.get(), &TradeActions::setAlgoTrading);
    connect(m_tradeActions.get(), &TradeActions::tradeLeaves, this,
        [this](const QNetworkReply& reply) { new PaintHold(*this, reply); });
    connect(m_tradeActions.get(), &TradeActions::failureChanged, m_status, &StatusPanel::setFailure);
    connect(m_tradeDesk.get(), &TradeDesk::failureChanged, m_status, &StatusPanel::setFailure);
    connect(m_tradeMenu, &TradeMenu::closeConfirmed, m_tradeActions.get(), &TradeActions::closePosition);
    connect(m_tradeMenu, &TradeMenu::cancelRequested, m_tradeActions.get(), &TradeActions::cancelOrder);
    connect(m_tradeMenu, &TradeMenu::modifyRequested, m_tradeDesk.get(), &TradeDesk::openModifyDialog);
    connect(m_tradeMenu, &TradeMenu::newOrderRequested, this, &MainWindow::openOrderDialog);
}

void MainWindow::connectExperts()
{
    connect(m_navigator, &NavigatorWidget::expertActivated, m_expertAttachment, &ExpertAttachment::attach);
}

void MainWindow::connectReports()
{
    m_reports->follow(m_feed, &WsClient::logMessage);
    m_reports->follow(*m_loader, &AccountLoader::journalLine);
    m_reports->follow(*m_charts, &ChartArea::logMessage);
    m_reports->follow(*m_chartCommands, &ChartCommands::logMessage);
    m_reports->follow(*m_links, &DesktopLinks::logMessage);
    m_reports->follow(*m_tradeDesk, &TradeDesk::journalLine, &TradeDesk::expertLine);
    m_reports->follow(
        *m_tradeActions, &TradeActions::journalLine, &TradeActions::expertLine, &TradeActions::soundWanted);
    m_reports->follow(*m_expertAttachment, &ExpertAttachment::expertLine);
    m_reports->follow(*m_orderEvents, &OrderEvents::journalLine, &OrderEvents::expertLine,
        &OrderEvents::soundWanted, &OrderEvents::balloonWanted);
    m_reports->follow(*m_alerts, &AlertsPane::soundWanted, &AlertsPane::balloonWanted);
    m_reports->follow(*m_news, &NewsPane::balloonWanted);
}

void MainWindow::connectRefreshes()
{
    AccountLoader* loader = m_loader.get();
    connect(
        m_tradeActions.get(), &TradeActions::accountsRefreshWanted, loader, &AccountLoader::refreshAccounts);
    connect(
        m_tradeActions.get(), &TradeActions::tradesRefreshWanted, loader, &AccountLoader::refreshOpenTrades);
    connect(
        m_tradeActions.get(), &TradeActions::historyRefreshWanted, loader, &AccountLoader::refreshHistory);
    connect(m_tradeDesk.get(), &TradeDesk::accountsRefreshWanted, loader, &AccountLoader::refreshAccounts);
    connect(m_tradeDesk.get(), &TradeDesk::tradesRefreshWanted, loader, &AccountLoader::refreshOpenTrades);
    connect(m_tradeDesk.get(), &TradeDesk::everythingRefreshWanted, loader, &AccountLoader::refreshAll);
    connect(m_orderEvents, &OrderEvents::accountsRefreshWanted, loader, &AccountLoader::refreshAccounts);
    connect(m_orderEvents, &OrderEvents::tradesRefreshWanted, loader, &AccountLoader::refreshOpenTrades);
    connect(m_orderEvents, &OrderEvents::historyRefreshWanted, loader, &AccountLoader::refreshHistory);
}

void MainWindow::connectActions()
{
    connect(m_actions->newChart, &QAction::triggered, this, [this] { openChart(); });
    connect(m_actions->newOrder, &QAction::triggered, this, &MainWindow::openOrderDialog);
    connect(m_actions->exit, &QAction::triggered, this, &MainWindow::quit);
    connect(m_actions->popupPrices, &QAction::triggered, this, &MainWindow::togglePopupPrices);
    connect(m_actions->restoreLayout, &QAction::triggered, m_docks.get(), &DockKeeper::restoreDefault);
    connect(m_actions->lightTheme, &QAction::triggered, this, [this] { chooseTheme(false); });
    connect(m_actions->darkTheme, &QAction::triggered, this, [this] { chooseTheme(true); });
    connect(m_actions->timeframes, &QActionGroup::triggered, this, &MainWindow::onTimeframeAction);
    connect(m_actions->depthOfMarket, &QAction::triggered, this, &MainWindow::toggleDepthOfMarket);
    connect(m_actions->about, &QAction::triggered, m_smallWindows, &SmallWindows::showAbout);
    connect(m_actions->checkForUpdates, &QAction::triggered, this,
        [] { UpdateFramework::instance().checkWithUi(); });
    m_links->serve(*m_actions);
    connect(m_quitWatch, &QuitWatch::quitRequested, this, &MainWindow::quit);
    // After this the session manager may end the process without another word, or let it go on.
    connect(qApp, &QGuiApplication::commitDataRequest, this, &MainWindow::storeLayout);
}

void MainWindow::setUpExperts()
{
    const ExpertsFolder folder;
    folder.prepare();
    m_navigator->setExperts(folder.scripts());
}

void MainWindow::setUser(const QJsonObject& user)
{
    m_user = user;
    const QString email = reply::email(user);
    m_status->setUser(email);
    journal(tr("Auth"),
        tr("Logged in as %1 on %2").arg(shownSentence(email), shownSentence(m_settings.serverUrl())));
    m_loader->refreshAccounts();
    m_feed.start();
}

void MainWindow::onHello(const QJsonObject& hello)
{
    m_book.setSymbols(feed::symbols(hello));
    m_charts->catchUp();
    // They are no ticks: after a reconnection they may be old, and nothing may act on an old price.
    m_book.noteHelloPrices(feed::helloPrices(hello));
    m_loader->refreshAccounts();
    m_news->refresh();
}

void MainWindow::onPrices(const QJsonObject& prices)
{
    m_book.notePrices(prices);
}

void MainWindow::onTradesUpdated(const QJsonArray& rows)
{
    m_book.noteProfits(rows);
}

void MainWindow::onOrdersChanged(const QJsonObject& event)
{
    m_orderEvents->onOrdersChanged(event);
}

void MainWindow::onAccountUpdated(const QJsonObject& event)
{
    m_orderEvents->onAccountUpdated(event);
}

void MainWindow::onAccountSelected(int index)
{
    m_accountSelector->onAccountSelected(index);
}

void MainWindow::openChart(const QString& symbol)
{
    const QString wanted = symbol.isEmpty() ? m_marketWatch->currentSymbol() : symbol;
    if (!wanted.isEmpty())
        m_charts->openChart(wanted);
}

void MainWindow::onTimeframeAction(QAction* action)
{
    m_charts->setTimeframe(action->data().toString());
}

void MainWindow::onSubWindowActivated(QMdiSubWindow* /*subWindow*/)
{
    // Qt names no active chart while another window has the focus; commands still go to the last one.
    m_chartCommands->followActiveChart();
}

void MainWindow::openOrderDialog()
{
    m_tradeDesk->openOrderDialog(currentSymbol());
}

void MainWindow::onTradeContextMenu(const QPoint& globalPos, const QJsonObject& trade)
{
    m_tradeMenu->popUp(globalPos, trade);
}

void MainWindow::onTradeDoubleClicked(const QJsonObject& trade)
{
    m_tradeDesk->openModifyDialog(trade);
}

void MainWindow::onChartModifyLevel(const QString& tradeId, const QString& kind, double price)
{
    m_tradeActions->moveLevel(tradeId, kind, price);
}

void MainWindow::onQuickTrade(const QString& symbol, const QString& side, double lots)
{
    m_tradeActions->quickTrade(symbol, side, lots);
}

void MainWindow::onExpertOrder(const QJsonObject& body)
{
    m_tradeActions->expertOrder(body);
}

void MainWindow::onExpertCloseAll(const QString& symbol)
{
    m_tradeActions->expertCloseAll(symbol);
}

void MainWindow::togglePopupPrices()
{
    m_smallWindows->togglePopupPrices();
}

void MainWindow::toggleDepthOfMarket()
{
    m_smallWindows->toggleDepthOfMarket(currentSymbol());
}

void MainWindow::showSpecification(const QString& symbol)
{
    m_smallWindows->showSpecification(symbol);
}

QString MainWindow::currentSymbol() const
{
    const ChartWindow* chart = m_charts->activeChart();
    return chart ? chart->symbol() : m_marketWatch->currentSymbol();
}

void MainWindow::journal(const QString& source, const QString& message)
{
    m_reports->journal(source, message);
}

void MainWindow::chooseTheme(bool dark)
{
    setTheme(dark);
    applyTheme(*qApp);
}

void MainWindow::bringToFront()
{
    showNormal();
    raise();
    activateWindow();
}

void MainWindow::restoreLayout()
{
    m_reports->followSettings();
    QStringList notices = m_settings.takeNotices();
    notices.append(m_docks->restoreFromSettings());
    for (const QString& notice : std::as_const(notices)) {
        if (!notice.isEmpty())
            journal(tr("Terminal"), notice);
    }
    m_paneKeeper->restoreFromSettings();
    m_charts->restoreLayout(m_settings.chartsLayout());
    m_chartCommands->followActiveChart();
}

void MainWindow::storeLayout()
{
    m_docks->storeInSettings();
    m_paneKeeper->storeInSettings();
    m_settings.setChartsLayout(m_charts->saveLayout());
    m_settings.sync();
}

void MainWindow::quit()
{
    if (!std::exchange(m_layoutStored, true))
        storeLayout();
    if (!std::exchange(m_leaving, true)) {
        const QStringList unanswered = m_api.unansweredChanges();
        for (const QString& change : unanswered)
            //: the program ends before the server answered the request %1
            logReport(tr("Network"), tr("Left without an answer to %1").arg(change));
        if (const int unsent = m_tradeActions->expertRequests().dropWaiting(); unsent > 0)
            //: the program ends with an expert's requests still waiting
            logReport(tr("Expert"), tr("Left with %1 request(s) not sent", nullptr, unsent).arg(unsent));
    }
    QCoreApplication::exit();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!std::exchange(m_layoutStored, true))
        storeLayout();
    event->accept();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const auto* change = static_cast<QWindowStateChangeEvent*>(event);
    if ((change->oldState() & Qt::WindowMinimized) && !isMinimized())
        m_docks->scheduleRepair();
}

void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    m_layoutStored = false;
    m_leaving = false;
    if (!std::exchange(m_wasShown, true) && !m_docks->hasRestoredGeometry())
        ScreenFit::fit(*this);
    QTimer::singleShot(0, m_docks.get(), &DockKeeper::confirmRestored);
}

bool MainWindow::focusNextPrevChild(bool next)
{
    QWidget* stop = nextTabStop(*this, next);
    if (stop)
        stop->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return stop != nullptr;
}
