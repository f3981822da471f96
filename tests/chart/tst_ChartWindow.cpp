#include "app/TerminalSettings.h"
#include "chart/ChartFrame.h"
#include "chart/ChartWidget.h"
#include "chart/ChartWindow.h"
#include "net/ApiClient.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class tst_ChartWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isTitledAfterSymbolAndTimeframe();
    void asksForNothingBeforeItIsLoaded();
    void loadsTheHistoryOfItsSymbolAndTimeframe();
    void percentEncodesTheSymbolInTheQuery();
    void aFailedLoadIsJournalledAndKeepsWhatIsShown();
    void aReplyThatIsNoHistoryKeepsWhatIsShown_data();
    void aReplyThatIsNoHistoryKeepsWhatIsShown();
    void afterTwoQuickSwitchesOnlyTheSecondReplyIsApplied();
    void switchingBackAndForthNeverShowsTheOtherSeries();
    void reloadingDuringAReloadAppliesTheNewestReplyOnly();
    void aNewTimeframeClearsTheChartAndRetitlesTheWindow();
    void theSameTimeframeDoesNothing();
    void aPriceOfItsSymbolIsATick();
    void aPriceOfAnotherSymbolChangesNothing();
    void aQuoteWithoutBothPricesIsNoTick_data();
    void aQuoteWithoutBothPricesIsNoTick();
    void tradesBecomeLevelLines();
    void aTradeWithoutAStopGetsNoStopLine();
    void theDigitsAndTheDescriptionMayArriveLater();
    void whatTheCanvasReportsIsPassedOn();
    void accountAndFiguresAreKept();
    void theStateComesBack();
    void aReplyAfterTheWindowIsGoneIsDropped();

private:
    std::unique_ptr<StubHttpServer> m_server;
    std::unique_ptr<ApiClient> m_api;
};

namespace {

const QByteArray candlesPath = "/api/candles";
const QByteArray drawingsPath = "/api/drawings";

QByteArray bars(int count, double close)
{
    QJsonArray rows;
    for (int i = 0; i < count; ++i) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(1'600'000'200'000 + i * 900'000LL, Qt::UTC);
        rows.append(QJsonObject{{u"timestamp"_s, time.toString(Qt::ISODateWithMs)}, {u"open"_s, close},
            {u"high"_s, close}, {u"low"_s, close}, {u"close"_s, close}, {u"volume"_s, 1}});
    }
    return QJsonDocument(rows).toJson(QJsonDocument::Compact);
}

QJsonObject snapshot(const QString& symbol, const QJsonValue& bid, const QJsonValue& ask)
{
    return {{symbol, QJsonObject{{u"bid"_s, bid}, {u"ask"_s, ask}}}};
}

} // namespace

void tst_ChartWindow::init()
{
    m_server = std::make_unique<StubHttpServer>();
    TerminalSettings::instance().setServerUrl(m_server->url());
    m_api = std::make_unique<ApiClient>();
    m_server->on("GET", drawingsPath, StubAnswer::json("[]"));
}

void tst_ChartWindow::cleanup()
{
    m_api.reset();
    m_server.reset();
}

void tst_ChartWindow::isTitledAfterSymbolAndTimeframe()
{
    const ChartWindow window(*m_api, u"EURUSD"_s, u"1h"_s, {}, 5);
    QCOMPARE(window.title(), u"EURUSD,H1"_s);
    QCOMPARE(window.windowTitle(), u"EURUSD,H1"_s);
    QCOMPARE(window.chart().timeframeMs(), 3'600'000);
    QCOMPARE(window.chart().digits(), 5);
    const ChartFrame frame = window.chart().frame();
    QCOMPARE(frame.symbol, u"EURUSD"_s);
    QCOMPARE(frame.timeframeLabel, u"H1"_s);
    QCOMPARE(frame.description, QString());
}

void tst_ChartWindow::asksForNothingBeforeItIsLoaded()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    bool answered = false;
    m_api->get(
        u"/api/accounts"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
    QTRY_VERIFY(answered); // a request of the window would have gone out before
    QCOMPARE(m_server->requests().size(), 1);
    window.load();
    QTRY_COMPARE(m_server->requests().size(), 3);
}

void tst_ChartWindow::loadsTheHistoryOfItsSymbolAndTimeframe()
{
    m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    window.chart().setAutoScroll(false);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    QVERIFY(log.wait());
    QCOMPARE(m_server->last("GET", candlesPath).target, "/api/candles?symbol=EURUSD&timeframe=15m"_ba);
    QCOMPARE(log.first(), QVariantList({u"Chart"_s, u"EURUSD,M15: 3 candles loaded"_s}));
    QCOMPARE(window.chart().candles().size(), std::size_t(3));
    QCOMPARE(window.chart().candles().back().close, 1.25);
    QVERIFY(window.chart().autoScroll());
}

void tst_ChartWindow::percentEncodesTheSymbolInTheQuery()
{
    ChartWindow window(*m_api, u"A&B+C #ü"_s, u"15m"_s, {}, 5);
    window.load();
    QTRY_COMPARE(m_server->count("GET", candlesPath), 1);
    QCOMPARE(m_server->last("GET", candlesPath).target,
        "/api/candles?symbol=A%26B%2BC%20%23%C3%BC&timeframe=15m"_ba);
}

void tst_ChartWindow::aFailedLoadIsJournalledAndKeepsWhatIsShown()
{
    m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
    m_server->once("GET", candlesPath, StubAnswer::message(u"No %1 <b>history</b>"_s, 404));
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    QVERIFY(log.wait());
    window.reload();
    QVERIFY(log.wait());
    QCOMPARE(
        log.last(), QVariantList({u"Chart"_s, u"EURUSD: failed to load candles: No %1 <b>history</b>"_s}));
    QCOMPARE(window.chart().candles().size(), std::size_t(3));
}

void tst_ChartWindow::aReplyThatIsNoHistoryKeepsWhatIsShown_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty body") << QByteArray();
    QTest::newRow("a page") << QByteArray("<html>Maintenance</html>");
    QTest::newRow("an object") << QByteArray("{}");
    QTest::newRow("a cut array") << bars(3, 1.25).chopped(1);
}

void tst_ChartWindow::aReplyThatIsNoHistoryKeepsWhatIsShown()
{
    QFETCH(QByteArray, body);
    m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
    m_server->once("GET", candlesPath, StubAnswer::json(body));
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    QVERIFY(log.wait());
    window.reload();
    QVERIFY(log.wait());
    QCOMPARE(log.last().at(1), u"EURUSD: failed to load candles: Unexpected server response"_s);
    QCOMPARE(window.chart().candles().size(), std::size_t(3));
}

void tst_ChartWindow::afterTwoQuickSwitchesOnlyTheSecondReplyIsApplied()
{
    m_server->on("GET", candlesPath, StubAnswer::held());
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    window.setTimeframe(u"1h"_s);
    window.setTimeframe(u"1d"_s);
    QTRY_COMPARE(m_server->heldCount(), 3);
    QVERIFY(m_server->release(StubAnswer::json(bars(4, 4.0)), "/api/candles?symbol=EURUSD&timeframe=1d"));
    QVERIFY(log.wait());
    QVERIFY(m_server->release(StubAnswer::json(bars(1, 1.0)), "/api/candles?symbol=EURUSD&timeframe=15m"));
    QVERIFY(
        m_server->release(StubAnswer::message(u"late"_s, 500), "/api/candles?symbol=EURUSD&timeframe=1h"));
    // A further request is answered after the late replies on the same loop.
    m_server->once("GET", "/api/accounts", StubAnswer::json("[]"));
    bool answered = false;
    m_api->get(
        u"/api/accounts"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
    QTRY_VERIFY(answered);
    QCOMPARE(log.size(), 1);
    QCOMPARE(log.first().at(1), u"EURUSD,D1: 4 candles loaded"_s);
    QCOMPARE(window.chart().candles().back().close, 4.0);
}

void tst_ChartWindow::switchingBackAndForthNeverShowsTheOtherSeries()
{
    m_server->on("GET", candlesPath, StubAnswer::held());
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    for (int i = 0; i < 5; ++i) {
        window.setTimeframe(u"1h"_s);
        window.setTimeframe(u"15m"_s);
    }
    QTRY_COMPARE(m_server->heldCount(), 2);
    m_server->on("GET", "/api/candles?symbol=EURUSD&timeframe=15m", StubAnswer::json(bars(2, 15.0)));
    m_server->on("GET", "/api/candles?symbol=EURUSD&timeframe=1h", StubAnswer::json(bars(3, 60.0)));
    while (m_server->release(StubAnswer::json(bars(1, 99.0)))) { }
    QTRY_COMPARE(log.size(), 1);
    QCOMPARE(window.chart().candles().size(), std::size_t(2));
    QCOMPARE(window.chart().candles().back().close, 15.0);
    QCOMPARE(window.title(), u"EURUSD,M15"_s);
}

void tst_ChartWindow::reloadingDuringAReloadAppliesTheNewestReplyOnly()
{
    m_server->on("GET", candlesPath, StubAnswer::held());
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    window.reload();
    window.reload();
    QTRY_COMPARE(m_server->heldCount(), 1);
    m_server->on("GET", candlesPath, StubAnswer::json(bars(2, 2.0)));
    QVERIFY(m_server->release(StubAnswer::json(bars(1, 1.0))));
    QTRY_COMPARE(log.size(), 1);
    QCOMPARE(window.chart().candles().back().close, 2.0);
    QCOMPARE(m_server->count("GET", candlesPath), 2);
}

void tst_ChartWindow::aNewTimeframeClearsTheChartAndRetitlesTheWindow()
{
    m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    QSignalSpy log(&window, &ChartWindow::logMessage);
    window.load();
    QVERIFY(log.wait());
    QSignalSpy title(&window, &ChartWindow::titleChanged);
    QSignalSpy timeframe(&window, &ChartWindow::timeframeChanged);
    window.setTimeframe(u"4h"_s);
    QVERIFY(window.chart().candles().empty());
    QCOMPARE(window.timeframe(), u"4h"_s);
    QCOMPARE(window.windowTitle(), u"EURUSD,H4"_s);
    QCOMPARE(window.chart().timeframeMs(), 14'400'000);
    QCOMPARE(title, QList<QVariantList>{{u"EURUSD,H4"_s}});
    QCOMPARE(timeframe, QList<QVariantList>{{u"4h"_s}});
    QVERIFY(log.wait());
    QCOMPARE(m_server->last("GET", candlesPath).target, "/api/candles?symbol=EURUSD&timeframe=4h"_ba);
}

void tst_ChartWindow::theSameTimeframeDoesNothing()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
    window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
    QSignalSpy title(&window, &ChartWindow::titleChanged);
    window.setTimeframe(u"15m"_s);
    QVERIFY(title.isEmpty());
    QCOMPARE(window.chart().candles().size(), std::size_t(1));
}

void tst_ChartWindow::aPriceOfItsSymbolIsATick()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    window.onPrices(snapshot(u"EURUSD"_s, 1.5, u"2.5"_s));
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(window.chart().bid(), 1.5);
    QCOMPARE(window.chart().ask(), 2.5);
    QCOMPARE(window.chart().candles().size(), std::size_t(1));
    const Candle& candle = window.chart().candles().front();
    QCOMPARE(candle.close, 2.0);
    QVERIFY(candle.time >= before - before % 60'000);
    QVERIFY(candle.time <= after);
}

void tst_ChartWindow::aPriceOfAnotherSymbolChangesNothing()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    window.onPrices(snapshot(u"EURUSD.x"_s, 1.5, 2.5));
    QCOMPARE(window.chart().bid(), 0.0);
    QVERIFY(window.chart().candles().empty());
}

void tst_ChartWindow::aQuoteWithoutBothPricesIsNoTick_data()
{
    QTest::addColumn<QJsonValue>("bid");
    QTest::addColumn<QJsonValue>("ask");
    QTest::newRow("no ask") << QJsonValue(1.5) << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("no bid") << QJsonValue(QJsonValue::Undefined) << QJsonValue(1.5);
    QTest::newRow("zero") << QJsonValue(0) << QJsonValue(0);
    QTest::newRow("negative") << QJsonValue(-1) << QJsonValue(1);
    QTest::newRow("not a number") << QJsonValue(u"nan"_s) << QJsonValue(1);
    QTest::newRow("absurd") << QJsonValue(1.0) << QJsonValue(1e308);
}

void tst_ChartWindow::aQuoteWithoutBothPricesIsNoTick()
{
    QFETCH(QJsonValue, bid);
    QFETCH(QJsonValue, ask);
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    window.onPrices(snapshot(u"EURUSD"_s, bid, ask));
    QVERIFY(window.chart().candles().empty());
    window.onPrices({{u"EURUSD"_s, u"1.5"_s}});
    QVERIFY(window.chart().candles().empty());
}

void tst_ChartWindow::tradesBecomeLevelLines()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    const QJsonObject open{{u"id"_s, u"aaaaaaaabbbb"_s}, {u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s},
        {u"lotSize"_s, u"0.10"_s}, {u"entryPrice"_s, u"1.1"_s}, {u"stopLoss"_s, 1.05}};
    const QJsonObject pending{{u"id"_s, u"c"_s}, {u"symbol"_s, u"EURUSD"_s}, {u"orderKind"_s, u"SELL_STOP"_s},
        {u"lotSize"_s, 1}, {u"pendingPrice"_s, 1.0}};
    window.setTrades({open}, {pending});
    QStringList labels;
    for (const TradeLevel& level : window.chart().tradeLevels())
        labels << level.label;
    QCOMPARE(labels, QStringList({u"buy 0.10 #aaaaaaaa"_s, u"sl #aaaaaaaa"_s, u"SELL_STOP 1.00 #c"_s}));
    window.setTrades({}, {});
    QVERIFY(window.chart().tradeLevels().isEmpty());
}

void tst_ChartWindow::aTradeWithoutAStopGetsNoStopLine()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    window.setTrades({QJsonObject{{u"id"_s, u"a"_s}, {u"symbol"_s, u"EURUSD"_s}, {u"entryPrice"_s, 1.1},
                         {u"stopLoss"_s, 0}}},
        {});
    QCOMPARE(window.chart().tradeLevels().size(), 1);
    QCOMPARE(window.chart().tradeLevels().first().kind, u"ENTRY"_s);
}

void tst_ChartWindow::theDigitsAndTheDescriptionMayArriveLater()
{
    ChartWindow window(*m_api, u"USDJPY"_s, u"1m"_s, {}, 5);
    window.setSymbolInfo(3, u"US Dollar / Yen"_s);
    QCOMPARE(window.digits(), 3);
    QCOMPARE(window.chart().frame().description, u"US Dollar / Yen"_s);
    QCOMPARE(window.chart().frame().symbol, u"USDJPY"_s);
    QCOMPARE(window.chart().frame().timeframeLabel, u"M1"_s);
    window.setTimeframe(u"1mn"_s);
    QCOMPARE(window.chart().frame().timeframeLabel, u"MN"_s);
    QCOMPARE(window.chart().frame().description, u"US Dollar / Yen"_s);
    QCOMPARE(window.chart().digits(), 3);
}

void tst_ChartWindow::whatTheCanvasReportsIsPassedOn()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    QSignalSpy crosshair(&window, &ChartWindow::crosshairMoved);
    QSignalSpy scroll(&window, &ChartWindow::autoScrollChanged);
    QSignalSpy modify(&window, &ChartWindow::modifyLevelRequested);
    Q_EMIT window.chart().crosshairMoved(u"O: 1"_s);
    Q_EMIT window.chart().levelDragged(u"id"_s, u"SL"_s, 1.25);
    window.chart().setAutoScroll(false);
    QCOMPARE(crosshair, QList<QVariantList>{{u"O: 1"_s}});
    QCOMPARE(modify, QList<QVariantList>({{u"id"_s, u"SL"_s, 1.25}}));
    QCOMPARE(scroll, QList<QVariantList>{{false}});
}

void tst_ChartWindow::accountAndFiguresAreKept()
{
    ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, u"one"_s, 5);
    QCOMPARE(window.accountId(), u"one"_s);
    window.setAccountId(u"two"_s);
    QCOMPARE(window.accountId(), u"two"_s);
    window.setAccountFigures(1000.0, 990.5);
    QCOMPARE(window.balance(), 1000.0);
    QCOMPARE(window.equity(), 990.5);
}

void tst_ChartWindow::theStateComesBack()
{
    ChartWindow first(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    first.chart().setChartType(2);
    first.chart().setChartShift(true);
    ChartWindow second(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
    second.restoreState(first.saveState());
    QCOMPARE(second.saveState(), first.saveState());
    QCOMPARE(second.chart().chartType(), 2);
    QVERIFY(second.chart().chartShift());
}

void tst_ChartWindow::aReplyAfterTheWindowIsGoneIsDropped()
{
    m_server->on("GET", candlesPath, StubAnswer::held());
    auto window = std::make_unique<ChartWindow>(*m_api, u"EURUSD"_s, u"1m"_s, QString(), 5);
    window->load();
    QTRY_COMPARE(m_server->heldCount(), 1);
    window.reset();
    QVERIFY(m_server->release(StubAnswer::json(bars(1, 1.0))));
    bool answered = false;
    m_server->once("GET", "/api/accounts", StubAnswer::json("[]"));
    m_api->get(
        u"/api/accounts"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
    QTRY_VERIFY(answered);
}

TAVORAN_TEST_MAIN(tst_ChartWindow)
#include "tst_ChartWindow.moc"
