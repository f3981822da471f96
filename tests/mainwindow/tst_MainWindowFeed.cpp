#include "MainWindowFixture.h"
#include "app/base/Log.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/PopupPrices.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QTreeView>

using namespace Qt::StringLiterals;

class tst_MainWindowFeed final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signInIsShownAndWrittenToTheJournal()
    {
        MainWindowFixture f;
        f.signIn(u"<b>eve</b>%1@example.test"_s);
        QCOMPARE(f.window->findChild<QLabel*>(u"userLabel"_s)->text(), u"<b>eve</b>%1@example.test"_s);
        QCOMPARE(f.window->user()["token"_L1].toString(), u"x"_s);
        QCOMPARE(f.journalCount(u"Auth: Logged in as <b>eve</b>%1@example.test on "_s + f.server.url()), 1);
    }

    void connectionStateFollowsTheFeed()
    {
        MainWindowFixture f;
        f.signIn();
        const auto* label = f.window->findChild<QLabel*>(u"connectionLabel"_s);
        QTRY_COMPARE(label->text(), u"<span style='color:#26d367'>●</span> Connected — 127.0.0.1"_s);
        f.feed.cut();
        QTRY_COMPARE(label->text(), u"<span style='color:#ff6b6b'>●</span> Disconnected — 127.0.0.1"_s);
    }

    void trafficLatencyAndNewsOfTheFeedAreShown()
    {
        MainWindowFixture f;
        f.signIn();
        QTRY_COMPARE(f.journalCount(u"Network: Feed connected"_s), 1);
        QTRY_COMPARE(f.journalCount(u"Network: Feed ready — 2 symbols"_s), 1);
        f.feed.send(R"({"type":"pong"})");
        QTRY_COMPARE(f.window->findChild<QLabel*>(u"latencyLabel"_s)->text(), u"(0 ms)"_s);
        QTRY_VERIFY(!f.window->findChild<QLabel*>(u"trafficLabel"_s)->text().contains(u" 0.0 / "_s));
    }

    void actionsThatNeedSymbolsWaitForThem()
    {
        MainWindowFixture f;
        f.open();
        QVERIFY(!f.action("New Order")->isEnabled());
        QVERIFY(!f.action("New Chart")->isEnabled());
        f.window->onHello({});
        QVERIFY(!f.action("New Order")->isEnabled());
        f.window->onHello(records::hello({records::symbol("X")}));
        QVERIFY(f.action("New Order")->isEnabled());
        QVERIFY(f.action("New Chart")->isEnabled());
    }

    void pricesReachMarketWatchAndTrades()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::priceUpdate({{"EURUSD", "1.30001", 1.4}}));
        QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(8), u"1.30001"_s);
        auto* watch = &f.list("marketWatchSymbols");
        QCOMPARE(watch->topLevelItem(0)->text(1), u"1.30001"_s);
    }

    void aHelloFiresNoAlert()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","above":true,"price":1},{"symbol":"USDJPY","price":1000}])"_s);
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.3, 1.4}})));
        QTRY_COMPARE(f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.30000"_s);
        for (int row = 0; row < 2; ++row)
            QCOMPARE(f.list("alertsList").topLevelItem(row)->text(3), u"Active"_s);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.3, 1.4}}));
        QTRY_COMPARE(f.list("alertsList").topLevelItem(0)->text(3), u"Triggered"_s);
        QCOMPARE(f.list("alertsList").topLevelItem(1)->text(3), u"Active"_s);
        TerminalSettings::instance().setAlerts({});
    }

    void whatIsNoPriceOfItsSymbolReachesNobody()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":0.5},{"symbol":"SHIB","price":0.5}])"_s);
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(
            records::hello({records::symbol("EURUSD").rank(1), records::symbol("SHIB").digits(9).rank(2)},
                records::prices({{"EURUSD", 1.3, 1.4}})));
        auto* watch = &f.list("marketWatchSymbols");
        QTRY_COMPARE(watch->topLevelItem(1)->text(0), u"SHIB"_s);
        f.settle();
        f.window->openChart(u"EURUSD"_s);
        f.window->openChart(u"SHIB"_s);
        f.feed.send(records::priceUpdate({{"EURUSD", 1e-300, 1e12}, {"SHIB", "0.000000004", 6e-9}}));
        const auto* alerts = &f.list("alertsList");
        QTRY_COMPARE(alerts->topLevelItem(1)->text(3), u"Triggered"_s);
        QCOMPARE(watch->topLevelItem(1)->text(1), u"0.000000004"_s);
        QCOMPARE(f.charts().last()->chart().bid(), 4e-9);
        QCOMPARE(alerts->topLevelItem(0)->text(3), u"Active"_s);
        QCOMPARE(watch->topLevelItem(0)->text(1), u"1.30000"_s);
        QCOMPARE(watch->topLevelItem(0)->text(2), u"1.40000"_s);
        f.window->openChart(u"EURUSD"_s);
        QCOMPARE(f.charts().last()->chart().bid(), 0.0);
        TerminalSettings::instance().setAlerts({});
    }

    void aHelloTicksNoOpenChart()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.settle();
        ChartWindow* chart = f.charts().first();
        QTemporaryDir folder;
        QFile script(folder.filePath(u"Ticker.js"_s));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("function OnTick() { Print('tick ' + Bid) }");
        script.close();
        chart->attachExpert(script.fileName());
        f.feed.send(records::priceUpdate({{"EURUSD", 1.3, 1.4}}));
        QTRY_COMPARE(f.log("expertsList").count(u"Ticker: tick 1.3"_s), 1);
        const std::size_t bars = chart->chart().candles().size();

        f.feed.send(records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.5, 1.6}})));
        QTRY_COMPARE(f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.50000"_s);
        QCOMPARE(chart->chart().bid(), 1.3);
        QCOMPARE(chart->chart().candles().size(), bars);
        f.settle();
        QCOMPARE(f.log("expertsList").filter(u"tick"_s).size(), 1);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.7, 1.8}}));
        QTRY_COMPARE(f.log("expertsList").count(u"Ticker: tick 1.7"_s), 1);
    }

    void aHelloLeavesTheTradesPricesAlone()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const auto price = [&f] { return f.list("tradeList").topLevelItem(0)->text(8); };
        QCOMPARE(price(), QString());
        f.feed.send(records::priceUpdate({{"EURUSD", 1.3, 1.4}}));
        QTRY_COMPARE(price(), u"1.30000"_s);
        f.server.once("GET", "/api/trades/open?accountId=a1", StubAnswer::held());
        f.feed.send(records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.5, 1.6}})));
        QTRY_COMPARE(f.server.heldCount(), 1);
        QCOMPARE(f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.50000"_s);
        QCOMPARE(price(), u"1.30000"_s);
        // The hello has the trades read again; their rows show the last price that was ticked.
        QVERIFY(f.server.release(StubAnswer::list({MainWindowFixture::openTrade().profit("13.5")})));
        QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(11), u"13.50"_s);
        QCOMPARE(price(), u"1.30000"_s);
    }

    void theHellosPricesAreKnownToChartsOpenedLater()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"USDJPY"_s);
        QCOMPARE(f.charts().first()->chart().bid(), 150.5);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.3, 1.4}}));
        f.feed.send(records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.5, 1.6}})));
        QTRY_COMPARE(f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.50000"_s);
        f.window->openChart(u"EURUSD"_s);
        QCOMPARE(f.charts().last()->chart().bid(), 1.5);
        QCOMPARE(f.charts().first()->chart().bid(), 150.5);
    }

    void popupPricesFollowHelloAndSnapshots()
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
        f.feed.send(records::priceUpdate({{"USDJPY", 151, "151.25"}, {"X", 1, 0}}));
        QTRY_COMPARE(rows().value(1), u"USDJPY 151.000 151.250"_s);
        QVERIFY(picture() != before);

        // What is painted anew is what a person sees: a snapshot alone asks for one repaint.
        QTRY_VERIFY(QTest::qWaitForWindowExposed(list->window()));
        const PaintCounter repaints(*list->viewport());
        f.window->onPrices(records::prices({{"EURUSD", 1.3, 1.4}}));
        QTRY_VERIFY(repaints.count() > 0);

        f.window->onHello(
            records::hello({records::symbol("GOLD").digits(2)}, records::prices({{"GOLD", 2000, 2001}})));
        QCOMPARE(rows(), QStringList({u"GOLD 2000.00 2001.00"_s}));
        const QImage light = picture();
        f.action("Dark")->trigger();
        QVERIFY(picture() != light);
        QCOMPARE(picture().pixelColor(list->viewport()->rect().bottomRight()),
            QApplication::palette().color(QPalette::Base));
        f.action("Light")->trigger();
    }

    void serverTextNeverBreaksALogLine()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::accountUpdate("x\n00:00:00.000  forged", "secret-token-123"));
        QTRY_VERIFY(!f.journal().filter(u"forged"_s).isEmpty());
        QFile file(logFilePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray log = file.readAll();
        QVERIFY(log.contains("forged"));
        QVERIFY(!log.contains("\n00:00:00.000  forged"));
    }

    void hostileRecordsAreSurvived()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/accounts", StubAnswer::json(R"([5,null,[],{"id":7,"Plan":[],"balance":{}},
        {"id":"<img src='x'>\n%1","Plan":{"name":"<table>","steps":"two"},"status":["x"],"balance":"1e400"},
        {"id":"dup","status":"ACTIVE"},{"id":"dup","status":"ACTIVE"}])"));
        f.server.on(
            "GET", "/api/trades/open", StubAnswer::json(R"([{"id":"t"},{"id":"t"},{"symbol":5},null,"x"])"));
        f.server.on("GET", "/api/trades/history", StubAnswer::json(R"({"an":"object"})"));
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

    void floodOfMessagesIsSurvived()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        for (int i = 1; i <= 2000; ++i)
            f.feed.send(records::priceUpdate({{"EURUSD", i, i + 1}}));
        QTRY_COMPARE_WITH_TIMEOUT(f.list("tradeList").topLevelItem(0)->text(8), u"2000.00000"_s, 30'000);
    }
};

TAVORAN_TEST(tst_MainWindowFeed)
#include "tst_MainWindowFeed.moc"
