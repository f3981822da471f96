#include "MainWindowFixture.h"
#include "app/Log.h"
#include "app/Theme.h"
#include "chart/ChartWidget.h"
#include "chart/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/OrderEvents.h"
#include "mainwindow/PopupPrices.h"
#include "mainwindow/TrayIcon.h"
#include "orders/OrderDialog.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class tst_MainWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowIsBuiltAsPromised();
    void menusHoldTheirEntriesInOrder();
    void exampleScriptsStandInTheNavigator();
    void startIsWrittenToTheJournal();
    void signInIsShownAndWrittenToTheJournal();
    void connectionStateFollowsTheFeed();
    void trafficLatencyAndNewsOfTheFeedAreShown();
    void chartsReadTheirHistoryAgainOnlyAfterTheFeedWasGone();
    void actionsThatNeedSymbolsWaitForThem();
    void pricesReachMarketWatchAndTrades();
    void doubleClickInMarketWatchOpensOneChart();
    void newChartStartsWithWhatIsKnown();
    void chartsFollowTradesFiguresAndPrices();
    void interruptedRestoringIsToldAndAShownWindowEndsIt();
    void zoomKeysActOnceAndLeaveTextFieldsAlone();
    void chartsComeBackInOrderWithTheMaximizedOne();
    void chartGeometrySurvivesARestart();
    void corruptChartLayoutOpensWhatIsReadable();
    void unlistedSymbolOpensAndIsReportedOnce();
    void reopenedChartGetsItsDigitsFromTheHello();
    void ampersandStaysVisibleInTheTab();
    void orderDialogTakesTheActiveChartsSymbol();
    void placedOrderIsWrittenDownAndListsAreRead();
    void aDialogClosedWhileItsOrderIsOnItsWayComesBackOnRequest();
    void unknownOutcomeReadsTheLists();
    void orderEventIsWrittenDown();
    void serverTextNeverBreaksALogLine();
    void hostileRecordsAreSurvived();
    void floodOfMessagesIsSurvived();
    void themeSwitchAppliesAtOnce();
    void dockKeysShowAndHide();
    void minimizedWindowIsRepaired();
    void windowComesToTheFront();
    void popupPricesShowAndHideWithTheirKey();
    void popupPricesFollowHelloAndSnapshots();
    void popupPricesDoNotKeepTheTerminalOpen();
    void orderEventsAreHeardAndShown();
    void trayMenuOffersShowAndExit();
    void quittingSavesTheCharts();

private:
    static QList<ChartWindow*> charts(const MainWindowFixture& f)
    {
        return f.window->findChild<ChartArea*>()->charts();
    }
};

void tst_MainWindow::windowIsBuiltAsPromised()
{
    MainWindowFixture f;
    f.open();
    QCOMPARE(f.window->windowTitle(), u"Tavoran Terminal"_s);
    QCOMPARE(f.window->size(), QSize(1280, 800));
    const auto* area = qobject_cast<QMdiArea*>(f.window->centralWidget());
    QVERIFY(area);
    QCOMPARE(area->viewMode(), QMdiArea::TabbedView);
    QCOMPARE(area->tabPosition(), QTabWidget::South);
    QVERIFY(area->tabsClosable());
    QVERIFY(area->tabsMovable());
    QCOMPARE(area->background(), QBrush(themeBackdropColor(), Qt::SolidPattern));
    QVERIFY(f.window->findChild<QTimer*>(u"dockSnapshotTimer"_s)->isActive());
    const auto* toolbox
        = qobject_cast<QTabWidget*>(f.window->findChild<QDockWidget*>(u"dockTerminal"_s)->widget());
    QStringList tabs;
    for (int i = 0; i < toolbox->count(); ++i)
        tabs.append(toolbox->tabText(i));
    QCOMPARE(tabs,
        QStringList({u"Trade"_s, u"History"_s, u"Experts"_s, u"Journal"_s, u"Calendar"_s, u"Alerts"_s}));
    QCOMPARE(f.window->menuBar()->actions().value(0)->text(), u"&File"_s);
    QCOMPARE(f.action("New Order")->shortcut(), QKeySequence(Qt::Key_F9));
    QVERIFY(f.window->findChild<TrayIcon*>() == nullptr || QSystemTrayIcon::isSystemTrayAvailable());
}

void tst_MainWindow::menusHoldTheirEntriesInOrder()
{
    MainWindowFixture f;
    f.open();
    const auto entries = [](const QMenu* menu) {
        QStringList texts;
        for (const QAction* entry : menu->actions()) {
            const QString key = entry->shortcut().toString(QKeySequence::PortableText);
            texts.append(entry->isSeparator() ? u"-"_s : entry->text() + (key.isEmpty() ? key : u'|' + key));
        }
        return texts;
    };
    const QList<QAction*> menus = f.window->menuBar()->actions();
    QCOMPARE(menus.value(0)->text(), u"&File"_s);
    QCOMPARE(entries(menus[0]->menu()),
        QStringList({u"New Chart"_s, u"New Order|F9"_s, u"-"_s, u"E&xit|Ctrl+Q"_s}));
    QCOMPARE(menus.value(1)->text(), u"&View"_s);
    QCOMPARE(entries(menus[1]->menu()),
        QStringList({u"Market Watch|Ctrl+M"_s, u"Toolbox|Ctrl+T"_s, u"Popup Prices|F10"_s, u"-"_s,
            u"Restore Default Layout"_s, u"-"_s, u"Theme"_s}));
    const QMenu* themes = menus[1]->menu()->actions().constLast()->menu();
    QVERIFY(themes);
    QCOMPARE(entries(themes), QStringList({u"Light"_s, u"Dark"_s}));
    QVERIFY(f.action("Light")->isCheckable() && f.action("Dark")->isCheckable());
    QVERIFY(f.action("Light")->isChecked() != f.action("Dark")->isChecked());
}

void tst_MainWindow::exampleScriptsStandInTheNavigator()
{
    MainWindowFixture f;
    f.open();
    const auto* navigator = f.window->findChild<QDockWidget*>(u"dockNavigator"_s)->findChild<QTreeWidget*>();
    for (const auto& script : {u"MA_Cross"_s, u"RSI_Reversal"_s})
        QCOMPARE(navigator->findItems(script, Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
}

void tst_MainWindow::startIsWrittenToTheJournal()
{
    QCoreApplication::setApplicationVersion(u"9.8.7"_s);
    MainWindowFixture f;
    f.open();
    QCOMPARE(f.journal().value(0), u"Terminal: Tavoran Terminal 9.8.7 started"_s);
}

void tst_MainWindow::signInIsShownAndWrittenToTheJournal()
{
    MainWindowFixture f;
    f.signIn(u"<b>eve</b>%1@example.test"_s);
    QCOMPARE(f.window->findChild<QLabel*>(u"userLabel"_s)->text(), u"<b>eve</b>%1@example.test"_s);
    QCOMPARE(f.window->user()["token"_L1].toString(), u"x"_s);
    QCOMPARE(f.journalCount(u"Auth: Logged in as <b>eve</b>%1@example.test on "_s + f.http.url()), 1);
}

void tst_MainWindow::connectionStateFollowsTheFeed()
{
    MainWindowFixture f;
    f.signIn();
    const auto* label = f.window->findChild<QLabel*>(u"connectionLabel"_s);
    QTRY_COMPARE(label->text(), u"<span style='color:#26d367'>●</span> Connected — 127.0.0.1"_s);
    f.feed.cut();
    QTRY_COMPARE(label->text(), u"<span style='color:#ff6b6b'>●</span> Disconnected — 127.0.0.1"_s);
}

void tst_MainWindow::trafficLatencyAndNewsOfTheFeedAreShown()
{
    MainWindowFixture f;
    f.signIn();
    QTRY_COMPARE(f.journalCount(u"Network: Feed connected"_s), 1);
    QTRY_COMPARE(f.journalCount(u"Network: Feed ready — 2 symbols"_s), 1);
    f.feed.send(R"({"type":"pong"})");
    QTRY_COMPARE(f.window->findChild<QLabel*>(u"latencyLabel"_s)->text(), u"(0 ms)"_s);
    QTRY_VERIFY(!f.window->findChild<QLabel*>(u"trafficLabel"_s)->text().contains(u" 0.0 / "_s));
}

void tst_MainWindow::chartsReadTheirHistoryAgainOnlyAfterTheFeedWasGone()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openChart(u"EURUSD"_s);
    f.settle();
    const QByteArray hello = R"({"type":"hello","symbols":[{"name":"EURUSD"}],"prices":{}})";
    f.feed.send(hello);
    QTRY_COMPARE(f.http.count("GET", "/api/accounts"), 3);
    f.settle();
    QCOMPARE(f.http.count("GET", "/api/candles"), 1);
    f.feed.cut();
    QTRY_COMPARE(f.http.count("GET", "/api/candles"), 2);
    f.feed.send(hello);
    QTRY_COMPARE(f.http.count("GET", "/api/accounts"), 5);
    f.settle();
    QCOMPARE(f.http.count("GET", "/api/candles"), 2);
}

void tst_MainWindow::actionsThatNeedSymbolsWaitForThem()
{
    MainWindowFixture f;
    f.open();
    QVERIFY(!f.action("New Order")->isEnabled());
    QVERIFY(!f.action("New Chart")->isEnabled());
    f.window->onHello({});
    QVERIFY(!f.action("New Order")->isEnabled());
    f.window->onHello({{u"symbols"_s, QJsonArray{QJsonObject{{u"name"_s, u"X"_s}}}}});
    QVERIFY(f.action("New Order")->isEnabled());
    QVERIFY(f.action("New Chart")->isEnabled());
}

void tst_MainWindow::pricesReachMarketWatchAndTrades()
{
    MainWindowFixture f;
    f.signInAndSettle();
    QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(8), u"1.10000"_s);
    f.feed.send(R"({"type":"price_update","data":{"EURUSD":{"bid":"1.30001","ask":1.4}}})");
    QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(8), u"1.30001"_s);
    auto* watch = &f.list("marketWatchSymbols");
    QCOMPARE(watch->topLevelItem(0)->text(1), u"1.30001"_s);
}

void tst_MainWindow::doubleClickInMarketWatchOpensOneChart()
{
    MainWindowFixture f;
    f.signInAndSettle();
    auto* watch = &f.list("marketWatchSymbols");
    const QPoint row = watch->visualItemRect(watch->topLevelItem(1)).center();
    QTest::mouseClick(watch->viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(watch->viewport(), Qt::LeftButton, {}, row);
    QCOMPARE(charts(f).size(), 1);
    QCOMPARE(charts(f).constFirst()->symbol(), u"USDJPY"_s);
    QCOMPARE(charts(f).constFirst()->timeframe(), u"15m"_s);
    QTRY_COMPARE(f.http.count("GET", "/api/candles?symbol=USDJPY&timeframe=15m"), 1);
}

void tst_MainWindow::newChartStartsWithWhatIsKnown()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.action("New Chart")->trigger();
    QCOMPARE(charts(f).size(), 1);
    QCOMPARE(charts(f).constFirst()->symbol(), u"EURUSD"_s);
    QCOMPARE(charts(f).constFirst()->accountId(), u"a1"_s);
    QCOMPARE(charts(f).constFirst()->digits(), 5);
    f.selector().setCurrentIndex(2);
    QCOMPARE(charts(f).constFirst()->accountId(), u"a2"_s);
}

void tst_MainWindow::chartsFollowTradesFiguresAndPrices()
{
    MainWindowFixture f;
    f.open();
    f.window->openChart(u"EURUSD"_s); // before anything is known
    f.window->setUser({});
    QTRY_VERIFY(charts(f).constFirst()->equity() > 1000.0);
    f.settle();
    f.window->openChart(u"EURUSD"_s);
    QCOMPARE(charts(f).size(), 2);
    for (const ChartWindow* chart : charts(f)) {
        QCOMPARE(chart->accountId(), u"a1"_s);
        QCOMPARE(chart->balance(), 1000.0);
        QCOMPARE(chart->equity(), 1012.5);
        QCOMPARE(chart->chart().tradeLevels().size(), 1);
        QCOMPARE(chart->chart().bid(), 1.1);
    }
    f.feed.send(R"({"type":"trades_update","data":[{"accountId":"a1","id":"t1","pnl":-20}]})");
    f.feed.send(R"({"type":"price_update","data":{"EURUSD":{"bid":1.25,"ask":1.26}}})");
    for (const ChartWindow* chart : charts(f)) {
        QTRY_COMPARE(chart->equity(), 980.0);
        QTRY_COMPARE(chart->chart().bid(), 1.25);
    }
    f.selector().setCurrentIndex(2);
    for (const ChartWindow* chart : charts(f)) {
        QCOMPARE(chart->accountId(), u"a2"_s);
        QCOMPARE(chart->balance(), 2000.0);
        QTRY_VERIFY(chart->chart().tradeLevels().isEmpty());
    }
}

void tst_MainWindow::interruptedRestoringIsToldAndAShownWindowEndsIt()
{
    const QString line = u"Terminal: The last start ended while the window layout was being restored; "
                         u"the default layout is used."_s;
    MainWindowFixture f;
    f.open();
    f.window->close();
    TerminalSettings& settings = TerminalSettings::instance();
    settings.setRestoringLayout(true);
    f.open();
    QCOMPARE(f.journalCount(line), 1);
    QVERIFY(!settings.restoringLayout());

    f.window.reset();
    f.window = std::make_unique<MainWindow>();
    QCOMPARE(f.journalCount(line), 0);
    QVERIFY(settings.restoringLayout());
    f.window->show();
    QTRY_VERIFY(!settings.restoringLayout());
}

void tst_MainWindow::zoomKeysActOnceAndLeaveTextFieldsAlone()
{
    MainWindowFixture f;
    f.signInAndSettle();
    QVERIFY(!f.action("Zoom In")->isEnabled());
    f.window->openChart(u"EURUSD"_s);
    QVERIFY(f.action("Zoom In")->isEnabled());
    f.window->findChild<ChartArea*>()->closeAllSubWindows();
    QTRY_VERIFY(!f.action("Zoom In")->isEnabled());
    QVERIFY(!f.action("Zoom Out")->isEnabled());
    f.window->openChart(u"EURUSD"_s);
    f.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    QSignalSpy in(f.action("Zoom In"), &QAction::triggered);
    QSignalSpy out(f.action("Zoom Out"), &QAction::triggered);
    charts(f).constFirst()->setFocus();
    QTest::keyClick(f.window.get(), Qt::Key_Plus);
    QTest::keyClick(f.window.get(), Qt::Key_Equal);
    QTest::keyClick(f.window.get(), Qt::Key_Minus);
    QCOMPARE(in.count(), 2);
    QCOMPARE(out.count(), 1);

    for (QWidget* field : {static_cast<QWidget*>(new QLineEdit), static_cast<QWidget*>(new QDoubleSpinBox)}) {
        f.window->statusBar()->addWidget(field);
        field->show();
        field->setFocus();
        QTRY_VERIFY(field->hasFocus());
        QTest::keyClick(field, '-');
        QTest::keyClick(field, '+');
    }
    QCOMPARE(f.window->statusBar()->findChild<QLineEdit*>()->text(), u"-+"_s);
    QCOMPARE(in.count(), 2);
    QCOMPARE(out.count(), 1);
}

void tst_MainWindow::chartsComeBackInOrderWithTheMaximizedOne()
{
    for (int maximized = 0; maximized < 3; ++maximized) {
        MainWindowFixture f;
        f.signInAndSettle();
        auto* area = f.window->findChild<ChartArea*>();
        for (const auto& symbol : {u"EURUSD"_s, u"USDJPY"_s, u"S&P"_s})
            f.window->openChart(symbol);
        charts(f).at(1)->setTimeframe(u"1d"_s);
        for (QMdiSubWindow* subWindow : area->subWindowList())
            subWindow->showNormal();
        QMdiSubWindow* chosen = area->subWindowList().at(maximized);
        area->setActiveSubWindow(chosen);
        chosen->showMaximized();
        QVERIFY(f.window->close());

        f.open();
        area = f.window->findChild<ChartArea*>();
        QStringList titles;
        for (const ChartWindow* chart : charts(f))
            titles.append(chart->title());
        QCOMPARE(titles, QStringList({u"EURUSD,M15"_s, u"USDJPY,D1"_s, u"S&P,M15"_s}));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(area->subWindowList().at(i)->isMaximized(), i == maximized);
        QCOMPARE(area->activeChart(), charts(f).at(maximized));
    }
}

void tst_MainWindow::chartGeometrySurvivesARestart()
{
    MainWindowFixture f;
    f.open();
    for (const auto& symbol : {u"EURUSD"_s, u"USDJPY"_s})
        f.window->openChart(symbol);
    const QRect places[] = {{5, 26, 300, 200}, {40, 30, 250, 210}}; // the toolkit keeps 20 pixels free above
    for (int i = 0; i < 2; ++i) {
        QMdiSubWindow* subWindow = f.window->findChild<ChartArea*>()->subWindowList().at(i);
        subWindow->showNormal();
        subWindow->setGeometry(places[i]);
    }
    f.window->close();
    f.open();
    for (int i = 0; i < 2; ++i) {
        const QMdiSubWindow* subWindow = f.window->findChild<ChartArea*>()->subWindowList().at(i);
        QVERIFY(!subWindow->isMaximized());
        QCOMPARE(subWindow->geometry(), places[i]);
    }
}

void tst_MainWindow::corruptChartLayoutOpensWhatIsReadable()
{
    MainWindowFixture f;
    const QByteArray far = [] {
        QByteArray geometry;
        QDataStream stream(&geometry, QIODevice::WriteOnly);
        const QRect absurd(QPoint(2'000'000'000, 5), QPoint(2'100'000'000, 2'000'000'000));
        stream << quint32(0x1D9D0CB) << quint16(3) << quint16(0) << absurd << absurd << qint32(0) << quint8(0)
               << quint8(0) << qint32(800) << absurd;
        return geometry;
    }();
    TerminalSettings::instance().setChartsLayout(uR"([1, {"symbol":"A","tf":"9m"},
        {"symbol":"EURUSD","tf":"1h","geometry":"%1","indicators":{"chartType":"x","colors":5,"mas":{}}},
        {"symbol":"USDJPY","tf":"1m","geometry":"AAAA","maximized":3}])"_s.arg(
        QLatin1StringView(far.toBase64())));
    f.open();
    QCOMPARE(charts(f).size(), 2);
    const QMdiSubWindow* placed = f.window->findChild<ChartArea*>()->subWindowList().constFirst();
    QVERIFY(QRect(QPoint(), f.window->size()).contains(placed->geometry().topLeft()));
    QVERIFY(placed->width() <= f.window->width());
    TerminalSettings::instance().setChartsLayout(u"{not json"_s);
    f.open();
    QCOMPARE(charts(f).size(), 0);
}

void tst_MainWindow::unlistedSymbolOpensAndIsReportedOnce()
{
    MainWindowFixture f;
    TerminalSettings::instance().setChartsLayout(
        uR"([{"symbol":"GONE<b>","tf":"1h"},{"symbol":"GONE<b>","tf":"1d"}])"_s);
    f.signIn();
    const QString line = u"Chart: GONE<b>: the server does not list this symbol"_s;
    QTRY_COMPARE(f.journalCount(line), 1);
    f.feed.send(R"({"type":"hello","symbols":[{"name":"EURUSD"}],"prices":{}})");
    QTRY_COMPARE(f.http.count("GET", "/api/accounts"), 3);
    QCOMPARE(f.journalCount(line), 1);
    QCOMPARE(charts(f).size(), 2);
}

void tst_MainWindow::reopenedChartGetsItsDigitsFromTheHello()
{
    MainWindowFixture f;
    TerminalSettings::instance().setChartsLayout(uR"([{"symbol":"USDJPY","tf":"1h"}])"_s);
    f.signIn();
    QCOMPARE(charts(f).constFirst()->digits(), 5);
    QTRY_COMPARE(charts(f).constFirst()->digits(), 3);
    QTRY_COMPARE(charts(f).constFirst()->accountId(), u"a1"_s);
}

void tst_MainWindow::ampersandStaysVisibleInTheTab()
{
    MainWindowFixture f;
    f.open();
    f.window->openChart(u"S&P"_s);
    const auto* bar = f.window->findChild<ChartArea*>()->findChild<QTabBar*>();
    QCOMPARE(bar->tabText(0), u"S&&P,M15"_s);
    charts(f).constFirst()->setTimeframe(u"1h"_s);
    QCOMPARE(bar->tabText(0), u"S&&P,H1"_s);
}

void tst_MainWindow::orderDialogTakesTheActiveChartsSymbol()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openChart(u"USDJPY"_s);
    f.window->openOrderDialog();
    f.window->openOrderDialog();
    const auto dialogs = f.window->findChildren<OrderDialog*>();
    QCOMPARE(dialogs.size(), 1);
    QVERIFY(dialogs.constFirst()->isVisible());
    QVERIFY(dialogs.constFirst()->windowTitle().contains(u"USDJPY"_s));
    dialogs.constFirst()->reject();
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindow::placedOrderIsWrittenDownAndListsAreRead()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.on("POST", "/api/trades/place", StubAnswer::json("{}"));
    QTest::keyClick(f.window.get(), Qt::Key_F9);
    auto* dialog = f.window->findChild<OrderDialog*>();
    if (!dialog) { // without an active window the platform delivers no shortcut
        f.action("New Order")->trigger();
        dialog = f.window->findChild<OrderDialog*>();
    }
    QVERIFY(dialog);
    f.http.clearRequests();
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == "Buy by Market"_L1)
            button->click();
    }
    QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
    QCOMPARE(f.log("expertsList").count(u"Execution: Order placed"_s), 1);
    QCOMPARE(f.http.last("POST", "/api/trades/place").json()["accountId"_L1].toString(), u"a1"_s);
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindow::aDialogClosedWhileItsOrderIsOnItsWayComesBackOnRequest()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.on("POST", "/api/trades/place", StubAnswer::held());
    f.window->openOrderDialog();
    auto* dialog = f.window->findChild<OrderDialog*>();
    auto* buy = dialog->findChild<QPushButton*>(u"orderBuy"_s);
    QVERIFY(buy);
    buy->click();
    QTRY_COMPARE(f.http.heldCount(), 1);
    dialog->close();
    QVERIFY(!dialog->isVisible());
    f.window->openOrderDialog();
    QCOMPARE(f.window->findChildren<OrderDialog*>().size(), 1);
    QVERIFY(dialog->isVisible());
    QVERIFY(!buy->isEnabled());
    QVERIFY(f.http.release(StubAnswer::json("{}")));
    QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindow::unknownOutcomeReadsTheLists()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openOrderDialog();
    auto* dialog = f.window->findChild<OrderDialog*>();
    f.http.clearRequests();
    QVERIFY(QMetaObject::invokeMethod(dialog, "outcomeUnknown"));
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/history?accountId=a1") >= 1);
    QCOMPARE(f.journalCount(u"Trade: Order placed"_s), 0);
}

void tst_MainWindow::orderEventIsWrittenDown()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.clearRequests();
    f.feed.send(R"({"type":"orders_changed","closeReason":"TP"})");
    QTRY_COMPARE(f.journalCount(u"Trade: Orders changed (TP) — refreshing"_s), 1);
    QCOMPARE(f.log("expertsList").count(u"Execution: Position closed (TP)"_s), 1);
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/history?accountId=a1") >= 1);
}

void tst_MainWindow::serverTextNeverBreaksALogLine()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.feed.send(
        R"({"type":"account_update","accountId":"x\n00:00:00.000  forged","status":"secret-token-123"})");
    QTRY_VERIFY(!f.journal().filter(u"forged"_s).isEmpty());
    QFile file(logFilePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray log = file.readAll();
    QVERIFY(log.contains("forged"));
    QVERIFY(!log.contains("\n00:00:00.000  forged"));
}

void tst_MainWindow::hostileRecordsAreSurvived()
{
    MainWindowFixture f;
    f.http.on("GET", "/api/accounts", StubAnswer::json(R"([5,null,[],{"id":7,"Plan":[],"balance":{}},
        {"id":"<img src='x'>\n%1","Plan":{"name":"<table>","steps":"two"},"status":["x"],"balance":"1e400"},
        {"id":"dup","status":"ACTIVE"},{"id":"dup","status":"ACTIVE"}])"));
    f.http.on(
        "GET", "/api/trades/open", StubAnswer::json(R"([{"id":"t"},{"id":"t"},{"symbol":5},null,"x"])"));
    f.http.on("GET", "/api/trades/history", StubAnswer::json(R"({"an":"object"})"));
    f.signIn();
    QTRY_COMPARE(f.selector().count(), 7);
    f.window->openChart(u"NOPE"_s);
    f.feed.send(
        R"({"type":"hello","symbols":[1,{"name":"A","digits":-7},{"name":"A","digits":1e9},{"name":null}],"prices":[]})");
    f.feed.send(
        R"({"type":"price_update","data":{"A":{"bid":"nan","ask":1e308},"B":5,"NOPE":{"bid":[],"ask":null}}})");
    f.feed.send(R"({"type":"trades_update","data":{"not":"rows"}})");
    f.feed.send(R"({"type":"orders_changed","filled":"yes","closeReason":{}})");
    f.feed.send(R"({"type":"account_update"})");
    QTRY_COMPARE(f.journalCount(u"Account: Account  status changed to "_s), 1);
    f.settle();
    QCOMPARE(f.selector().currentData().toString(), u"dup"_s);
}

void tst_MainWindow::floodOfMessagesIsSurvived()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openChart(u"EURUSD"_s);
    for (int i = 1; i <= 2000; ++i) {
        f.feed.send(QByteArray(R"({"type":"price_update","data":{"EURUSD":{"bid":)") + QByteArray::number(i)
            + R"(,"ask":)" + QByteArray::number(i + 1) + "}}}");
    }
    QTRY_COMPARE_WITH_TIMEOUT(f.list("tradeList").topLevelItem(0)->text(8), u"2000.00000"_s, 30'000);
}

void tst_MainWindow::themeSwitchAppliesAtOnce()
{
    MainWindowFixture f;
    f.open();
    f.action("Dark")->trigger();
    QVERIFY(isDarkTheme());
    QVERIFY(f.action("Dark")->isChecked());
    QVERIFY(!f.action("Light")->isChecked());
    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x2b, 0x2b, 0x2b));
    f.open();
    QVERIFY(f.action("Dark")->isChecked());
    f.action("Light")->trigger();
    QVERIFY(!isDarkTheme());
    QVERIFY(f.action("Light")->isChecked());
    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0xf0, 0xf0, 0xf0));
}

void tst_MainWindow::dockKeysShowAndHide()
{
    MainWindowFixture f;
    f.open();
    f.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    auto* watch = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
    auto* toolbox = f.window->findChild<QDockWidget*>(u"dockTerminal"_s);
    QTest::keyClick(f.window.get(), Qt::Key_M, Qt::ControlModifier);
    QVERIFY(watch->isHidden());
    QTest::keyClick(f.window.get(), Qt::Key_M, Qt::ControlModifier);
    QVERIFY(!watch->isHidden());
    QTest::keyClick(f.window.get(), Qt::Key_T, Qt::ControlModifier);
    QVERIFY(toolbox->isHidden());
}

void tst_MainWindow::minimizedWindowIsRepaired()
{
    MainWindowFixture f;
    f.open();
    auto* watch = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
    f.window->showMinimized();
    QTRY_VERIFY(f.window->isMinimized());
    watch->hide();
    f.window->showNormal();
    QTRY_VERIFY(!watch->isHidden());
}

void tst_MainWindow::windowComesToTheFront()
{
    MainWindowFixture f;
    f.open();
    f.window->showMinimized();
    QTRY_VERIFY(f.window->isMinimized());
    f.window->bringToFront();
    QTRY_VERIFY(!f.window->isMinimized());
    QTRY_VERIFY(f.window->isActiveWindow());
    f.window->hide();
    f.window->bringToFront();
    QVERIFY(f.window->isVisible());
}

void tst_MainWindow::popupPricesShowAndHideWithTheirKey()
{
    MainWindowFixture f;
    f.open();
    f.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
    QVERIFY(!f.window->findChild<PopupPrices*>());
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(f.window.get(), Qt::Key_F10);
        QCOMPARE(f.window->findChildren<PopupPrices*>().size(), 1);
        const auto* popup = f.window->findChild<PopupPrices*>();
        QVERIFY(popup->isVisible());
        QVERIFY(popup->isWindow());
        QVERIFY(popup->windowFlags() & Qt::WindowStaysOnTopHint);
        QCOMPARE(popup->windowTitle(), u"Popup Prices"_s);
        QTest::keyClick(f.window.get(), Qt::Key_F10);
        QVERIFY(!popup->isVisible());
    }
    f.window->togglePopupPrices();
    auto* popup = f.window->findChild<PopupPrices*>();
    QVERIFY(popup->isVisible());
    QTest::keyClick(popup, Qt::Key_Escape);
    QVERIFY(!popup->isVisible());
}

void tst_MainWindow::popupPricesFollowHelloAndSnapshots()
{
    MainWindowFixture f;
    f.open();
    f.action("Popup Prices")->trigger();
    auto* list = f.window->findChild<PopupPrices*>()->findChild<QTreeView*>(u"popupPriceList"_s);
    QVERIFY(list->isVisible());
    const auto rows = [list] {
        QStringList texts;
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < list->model()->columnCount(); ++column) {
                if (!list->isColumnHidden(column))
                    cells.append(list->model()->index(row, column).data().toString());
            }
            texts.append(cells.join(u' '));
        }
        return texts;
    };
    QCOMPARE(rows(), QStringList());
    f.window->setUser({});
    QTRY_COMPARE(rows(), QStringList({u"EURUSD 1.10000 1.20000"_s, u"USDJPY 150.500 150.600"_s}));
    f.settle();
    const auto picture = [list] { return list->viewport()->grab().toImage(); };
    const QImage before = picture();
    f.feed.send(R"({"type":"price_update","data":{"USDJPY":{"bid":151,"ask":"151.25"},"X":{"bid":1}}})");
    QTRY_COMPARE(rows().value(1), u"USDJPY 151.000 151.250"_s);
    QVERIFY(picture() != before);

    // What is painted anew is what a person sees: a snapshot alone asks for one repaint.
    struct Repaints final : QObject {
        int count = 0;
        bool eventFilter(QObject* watched, QEvent* event) override
        {
            if (event->type() == QEvent::Paint)
                ++count;
            return QObject::eventFilter(watched, event);
        }
    } repaints;
    QTRY_VERIFY(QTest::qWaitForWindowExposed(list->window()));
    list->viewport()->installEventFilter(&repaints);
    f.window->onPrices({{u"EURUSD"_s, QJsonObject{{u"bid"_s, 1.3}, {u"ask"_s, 1.4}}}});
    QTRY_VERIFY(repaints.count > 0);

    f.window->onHello({{u"symbols"_s, QJsonArray{QJsonObject{{u"name"_s, u"GOLD"_s}, {u"digits"_s, 2}}}},
        {u"prices"_s, QJsonObject{{u"GOLD"_s, QJsonObject{{u"bid"_s, 2000}, {u"ask"_s, 2001}}}}}});
    QCOMPARE(rows(), QStringList({u"GOLD 2000.00 2001.00"_s}));
    const QImage light = picture();
    f.action("Dark")->trigger();
    QVERIFY(picture() != light);
    QCOMPARE(picture().pixelColor(list->viewport()->rect().bottomRight()),
        QApplication::palette().color(QPalette::Base));
    f.action("Light")->trigger();
}

void tst_MainWindow::popupPricesDoNotKeepTheTerminalOpen()
{
    MainWindowFixture f;
    f.open();
    f.window->togglePopupPrices();
    QVERIFY(f.window->findChild<PopupPrices*>()->isVisible());
    // The toolkit counts windows only inside the application's own loop.
    QVERIFY(QGuiApplication::quitOnLastWindowClosed());
    constexpr int stillOpen = 7;
    QTimer::singleShot(5000, f.window.get(), [] { QCoreApplication::exit(stillOpen); });
    QTimer::singleShot(0, f.window.get(), &QWidget::close);
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_MainWindow::orderEventsAreHeardAndShown()
{
    struct Connected final : QObject {
        using QObject::isSignalConnected;
    };
    MainWindowFixture f;
    f.open();
    const auto* events = f.window->findChild<OrderEvents*>();
    QVERIFY(events);
    const auto isConnected
        = [events](const QMetaMethod& signal) { return (events->*(&Connected::isSignalConnected))(signal); };
    QVERIFY(isConnected(QMetaMethod::fromSignal(&OrderEvents::soundWanted)));
    QCOMPARE(isConnected(QMetaMethod::fromSignal(&OrderEvents::balloonWanted)),
        QSystemTrayIcon::isSystemTrayAvailable());
}

void tst_MainWindow::trayMenuOffersShowAndExit()
{
    TrayIcon tray;
    QCOMPARE(tray.icon().toolTip(), u"Tavoran Terminal"_s);
    const QList<QAction*> entries = tray.icon().contextMenu()->actions();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0]->text(), u"Show"_s);
    QCOMPARE(entries[1]->text(), u"Exit"_s);
    QSignalSpy show(&tray, &TrayIcon::showRequested);
    QSignalSpy exit(&tray, &TrayIcon::exitRequested);
    entries[0]->trigger();
    entries[1]->trigger();
    Q_EMIT tray.icon().activated(QSystemTrayIcon::Trigger);
    Q_EMIT tray.icon().activated(QSystemTrayIcon::Context);
    QCOMPARE(show.count(), 2);
    QCOMPARE(exit.count(), 1);
}

void tst_MainWindow::quittingSavesTheCharts()
{
    MainWindowFixture f;
    f.open();
    f.window->openChart(u"EURUSD"_s);
    QVERIFY(TerminalSettings::instance().chartsLayout().isEmpty());
    f.action("E&xit")->trigger();
    QVERIFY(TerminalSettings::instance().chartsLayout().contains(u"EURUSD"_s));
    QVERIFY(!TerminalSettings::instance().windowState().isEmpty());
}

TAVORAN_TEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
