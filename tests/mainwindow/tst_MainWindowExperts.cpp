#include "chart/window/ChartWindow.h"
#include "mainwindow/ExpertsFolder.h"
#include "mainwindow/MainWindowFixture.h"
#include "panes/NavigatorWidget.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

/// From a double-click in the Navigator to an order at the server.
class tst_MainWindowExperts final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindowFixture> m_fixture;

    MainWindowFixture& desk() { return *m_fixture; }
    QStringList experts() { return desk().log("expertsList"); }

    void activate(const QByteArray& text)
    {
        QFile file(m_folder.filePath(u"Robot.js"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
        file.close();
        Q_EMIT desk().window->findChild<NavigatorWidget*>()->expertActivated(file.fileName());
    }

    /// What the log holds of an expert, and of the switch that all of them share.
    static QStringList logged()
    {
        return fixtures::logMessages().filter(QRegularExpression(u"^\\[(Robot|Expert|Execution)\\]"_s));
    }

    void tick() { desk().window->onPrices(records::prices({{"EURUSD", 1.1, 1.2}})); }

private Q_SLOTS:
    void init()
    {
        QFile::remove(logFilePath());
        m_fixture = std::make_unique<MainWindowFixture>();
        desk().signInAndSettle();
    }

    void withoutAChartThereIsNothingToAttachTo()
    {
        activate("");
        QCOMPARE(experts(), QStringList(u"Expert: Open a chart first, then attach the Expert Advisor."_s));
    }

    void attachingIsReportedWithANoteWhileAlgoTradingIsOff()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("");
        QCOMPARE(experts(),
            QStringList({u"Robot: Robot loaded"_s, u"Robot: Attached to EURUSD M15"_s,
                u"Robot: Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar."_s}));
        QCOMPARE(desk().chartArea()->currentSubWindow()->windowTitle(), u"EURUSD,M15  •  Robot"_s);
    }

    void theExpertGoesToTheActiveChart()
    {
        desk().window->openChart(u"USDJPY"_s);
        QMdiSubWindow* const yen = desk().chartArea()->currentSubWindow();
        desk().window->openChart(u"EURUSD"_s);
        desk().chartArea()->setActiveSubWindow(yen);
        desk().charts().first()->setTimeframe(u"1h"_s);
        activate("function OnTick() { Print('ticks') }");
        QCOMPARE(
            experts().mid(0, 2), QStringList({u"Robot: Robot loaded"_s, u"Robot: Attached to USDJPY H1"_s}));
        tick();
        QCOMPARE(experts().size(), 3);
        desk().window->onPrices(records::prices({{"USDJPY", 150.1, 150.2}}));
        QCOMPARE(experts().mid(3), QStringList(u"Robot: ticks"_s));
    }

    void anExpertKnowsTheDigitsOfTheLastHello()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnTick() { Print(Symbol(), Digits(), Point()); Trade.buy(1, {slPoints: 5}) }");
        const qsizetype before = experts().size();
        QJsonObject order;
        connect(desk().charts().first(), &ChartWindow::expertOrderRequested, this,
            [&order](const QJsonObject& body) { order = body; });
        desk().feed.setGreeting(
            records::hello({records::symbol("EURUSD").digits(2).described("Euro").rank(1)},
                records::prices({{"EURUSD", 1.1, 1.2}})));
        const int read = desk().server.count("GET", "/api/accounts");
        desk().feed.cut();
        QTRY_VERIFY_WITH_TIMEOUT(desk().server.count("GET", "/api/accounts") > read, 20000);
        QCOMPARE(experts().size(), before);
        tick();
        QCOMPARE(experts().size(), before + 2);
        QCOMPARE(experts()[before], u"Robot: EURUSD 2 0.01"_s);
        QCOMPARE(order["stopLoss"_L1].toDouble(), 1.05);
    }

    void withAlgoTradingOnThereIsNoNote()
    {
        desk().window->openChart(u"EURUSD"_s);
        desk().action("Algo Trading")->setChecked(true);
        activate("");
        QCOMPARE(experts(),
            QStringList({u"Expert: Algo Trading enabled"_s, u"Robot: Robot loaded"_s,
                u"Robot: Attached to EURUSD M15"_s}));
    }

    void aScriptThatDoesNotRunIsOnlyReportedByItsChart()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnInit() { throw 5 }");
        QCOMPARE(experts(), QStringList(u"Robot: OnInit: 5"_s));
    }

    void anOrderIsRefusedEveryTimeWhileAlgoTradingIsOff()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnTick() { Trade.buy(0.1); Trade.closeAll() }");
        tick();
        tick();
        const QString refusal = u"Expert: Algo Trading is OFF — order ignored. Enable it in the toolbar."_s;
        QCOMPARE(experts().count(refusal), 2);
        QCOMPARE(experts().count(u"Expert: Algo Trading is OFF — close ignored."_s), 2);
        desk().settle();
        QCOMPARE(desk().server.count("POST", "/api/trades/place"), 0);
    }

    void anOrderReachesTheServer()
    {
        desk().server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        desk().window->openChart(u"EURUSD"_s);
        desk().action("Algo Trading")->setChecked(true);
        activate("var n = 0; function OnTick() { if (!n++) Trade.buy(0.1, {sl: 1.05}) }");
        tick();
        QTRY_COMPARE(experts().last(), u"Expert: BUY 0.10 EURUSD executed"_s);
        QCOMPARE(desk().server.count("POST", "/api/trades/place"), 1);
        QCOMPARE(desk().server.last("POST", "/api/trades/place").json(),
            QJsonObject({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s}, {u"orderKind"_s, u"MARKET"_s},
                {u"lotSize"_s, 0.1}, {u"stopLoss"_s, 1.05}, {u"accountId"_s, u"a1"_s}}));
    }

    void closingAllReachesTheServer()
    {
        desk().server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        desk().window->openChart(u"EURUSD"_s);
        desk().action("Algo Trading")->setChecked(true);
        activate("var n = 0; function OnTick() { Print(Positions.count(), Account.balance); if (!n++) "
                 "Trade.closeAll() }");
        tick();
        QVERIFY(experts().contains(u"Robot: 1 1000"_s));
        QVERIFY(experts().contains(u"Expert: Closing 1 position(s) on EURUSD"_s));
        QTRY_COMPARE(desk().server.count("POST", "/api/trades/close/t1"), 1);
    }

    void whatRefusesAnExpertStandsInTheLog_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("the script itself")
            << QByteArray("throw new TypeError('bad')") << QStringList(u"[Robot] TypeError at line 1: bad"_s);
        QTest::newRow("OnInit") << QByteArray("function OnInit() { Print('first'); throw 5 }")
                                << QStringList(u"[Robot] OnInit: 5"_s);
        QTest::newRow("on two lines")
            << QByteArray("function OnInit() { throw 'a\\nb' }") << QStringList(u"[Robot] OnInit: a b"_s);
    }

    void whatRefusesAnExpertStandsInTheLog()
    {
        QFETCH(const QByteArray, script);
        QFETCH(const QStringList, lines);
        desk().window->openChart(u"EURUSD"_s);
        activate(script);
        QCOMPARE(logged(), lines);
    }

    void withoutAChartTheRefusalStandsInTheLog()
    {
        activate("");
        QCOMPARE(logged(), QStringList(u"[Expert] Open a chart first, then attach the Expert Advisor."_s));
    }

    void aScriptThatCannotBeOpenedStandsInTheLog()
    {
        desk().window->openChart(u"EURUSD"_s);
        const QString path = m_folder.filePath(u"Gone.js"_s);
        Q_EMIT desk().window->findChild<NavigatorWidget*>()->expertActivated(path);
        QCOMPARE(experts(), QStringList(u"Gone: Cannot open "_s + path));
        QCOMPARE(fixtures::logMessages().filter(u"[Gone] "_s), QStringList(u"[Gone] Cannot open "_s + path));
    }

    void whatEndsAnExpertStandsInTheLog()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnTick() { throw 'lost' } function OnDeinit() { throw 'bye' }");
        tick();
        QCOMPARE(logged(),
            QStringList({u"[Robot] OnTick: lost"_s, u"[Robot] Stopped after error in OnTick: OnTick: lost"_s,
                u"[Robot] OnDeinit: bye"_s}));
    }

    void anErrorAtTheVeryEndStandsInTheLog()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnDeinit() { throw 'bye' }");
        desk().window.reset();
        QCOMPARE(logged(), QStringList(u"[Robot] OnDeinit: bye"_s));
    }

    void itsRefusedOrdersStandInTheLog()
    {
        desk().server.on("POST", "/api/trades/place", StubAnswer::message(u"Not enough money"_s, 400));
        desk().window->openChart(u"EURUSD"_s);
        activate(
            "var n = 0; function OnTick() { if (++n == 3) { Trade.buy(-1); Trade.buy(0.1, { sl: 'x' }) } "
            "else { Trade.buy(0.1); Trade.closeAll() } }");
        tick();
        desk().action("Algo Trading")->setChecked(true);
        tick();
        QTRY_VERIFY(experts().contains(u"Expert: Order failed: Not enough money"_s));
        tick();
        QCOMPARE(logged(),
            QStringList({u"[Expert] Algo Trading is OFF — order ignored. Enable it in the toolbar."_s,
                u"[Expert] Algo Trading is OFF — close ignored."_s,
                u"[Expert] Order failed: Not enough money"_s,
                u"[Robot] Order ignored: the lots must be a number above 0, not -1"_s,
                u"[Robot] Order ignored: stop loss or take profit is not a number"_s}));
    }

    void whatAnExpertMerelySaysStaysOutOfTheLog()
    {
        desk().server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnTick() { Print('failed: error'); Alert('failed'); Trade.buy(0.1) }");
        desk().action("Algo Trading")->setChecked(true);
        tick();
        QTRY_VERIFY(experts().contains(u"Expert: BUY 0.10 EURUSD executed"_s));
        QCOMPARE(logged(), QStringList());
    }

    void anExpertMayCloseItsChartInMidTick()
    {
        desk().window->openChart(u"EURUSD"_s);
        desk().window->openChart(u"EURUSD"_s);
        connect(desk().charts().last(), &ChartWindow::expertCloseAllRequested, this,
            [this] { qDeleteAll(desk().chartArea()->subWindowList()); });
        activate("function OnTick() { Trade.closeAll(); Print(Close(0)) }");
        tick();
        QVERIFY(desk().charts().isEmpty());
        tick();
    }

    /// Whoever closes the chart still reads afterwards what it was told.
    void whatAnExpertAskedForIsReadableAfterItsChartWasClosed()
    {
        desk().window->openChart(u"EURUSD"_s);
        ChartArea* const area = desk().chartArea();
        QString named;
        connect(desk().charts().first(), &ChartWindow::expertCloseAllRequested, this,
            [area, &named](const QString& symbol) {
                qDeleteAll(area->subWindowList());
                named = QString(symbol.constData(), symbol.size());
            });
        activate("function OnTick() { Trade.closeAll() }");
        tick();
        QVERIFY(desk().charts().isEmpty());
        QCOMPARE(named, u"EURUSD"_s);
    }

    void theLastWordsOfOneExpertMayCloseAllCharts()
    {
        int closings = 0;
        ChartArea* const area = desk().chartArea();
        const auto closeAll = [area, &closings] {
            // The others have last words too.
            if (++closings > 1)
                return;
            const QList<QMdiSubWindow*> others = area->subWindowList().mid(1);
            qDeleteAll(others);
        };
        for (int i = 0; i < 3; ++i) {
            desk().window->openChart(u"EURUSD"_s);
            activate("function OnDeinit() { Trade.closeAll() }");
            connect(desk().charts().last(), &ChartWindow::expertCloseAllRequested, this, closeAll);
        }
        desk().window.reset();
        QCOMPARE(closings, 3);
    }

    void closingTheChartTellsTheExpertWhoseWordsAreRead()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnDeinit() { Print('bye') }");
        desk().chartArea()->currentSubWindow()->close();
        QTRY_VERIFY(desk().charts().isEmpty());
        QTRY_COMPARE(experts().last(), u"Robot: bye"_s);
    }

    void theFolderIsLookedThroughOnlyAtStart()
    {
        const ExpertsFolder folder;
        const auto lists = [this](const QString& name) {
            const auto* tree = desk().window->findChild<NavigatorWidget*>()->findChild<QTreeWidget*>();
            return tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).size();
        };
        QCOMPARE(lists(u"MA_Cross"_s), 1);
        QCOMPARE(lists(u"RSI_Reversal"_s), 1);
        QFile late(folder.path() + u"/Late.js"_s);
        QVERIFY(late.open(QIODevice::WriteOnly));
        late.close();
        desk().settle();
        QCOMPARE(lists(u"Late"_s), 0);
        desk().open();
        QCOMPARE(lists(u"Late"_s), 1);
        QVERIFY(late.remove());
    }

    void closingTheTerminalTellsTheExpert()
    {
        desk().window->openChart(u"EURUSD"_s);
        activate("function OnDeinit() { Print('bye'); Trade.buy(1) }");
        QStringList said;
        connect(desk().charts().first(), &ChartWindow::expertLog, this,
            [&said](const QString& source, const QString& text) { said.append(source + u": "_s + text); });
        desk().window.reset();
        QCOMPARE(said, QStringList(u"Robot: bye"_s));
        QCOMPARE(desk().server.count("POST", "/api/trades/place"), 0);
    }

    /// Its chart still waits for its end, but is in no list any more.
    void closingTheTerminalRightAfterAChartTellsItsExpertToo()
    {
        desk().window->openChart(u"EURUSD"_s);
        desk().action("Algo Trading")->setChecked(true);
        activate("function OnDeinit() { Trade.buy(1); Trade.closeAll(); throw 'bye' }");
        desk().chartArea()->currentSubWindow()->close();
        QVERIFY(desk().charts().isEmpty());
        desk().window.reset();
        QCOMPARE(logged(), QStringList(u"[Robot] OnDeinit: bye"_s));
        desk().settle();
        QCOMPARE(desk().server.count("POST", "/api/trades/place"), 0);
    }
};

TAVORAN_TEST(tst_MainWindowExperts)
#include "tst_MainWindowExperts.moc"
