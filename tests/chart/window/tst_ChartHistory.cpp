#include "chart/ChartWindowFixture.h"
#include "chart/series/Timeframe.h"
#include "support/TestMain.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using fixtures::candleBody;
using fixtures::ChartServer;

/// The history a chart window asks for, and what becomes of each answer, late ones included.
class tst_ChartHistory final : public QObject {
    Q_OBJECT

    /// Shows three candles in the window, and then what the server answers to the next request.
    void loadAndReload(ChartWindow& window, QSignalSpy& log, const StubAnswer& answer)
    {
        m_served->server.once("GET", "/api/candles", StubAnswer::json(candleBody(3, 1.25)));
        m_served->server.once("GET", "/api/candles", answer);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
        window.reload();
        QVERIFY(log.wait());
    }

    std::unique_ptr<ChartServer> m_served;

private Q_SLOTS:
    void init() { m_served = std::make_unique<ChartServer>(); }

    void theSymbolIsNeverSubstitutedAgain()
    {
        ChartWindow window(m_served->api, u"%3%2"_s, u"1h"_s, {}, 5);
        QCOMPARE(window.title(), u"%3%2,H1"_s);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        loadAndReload(window, log, StubAnswer::message(u"Gone %1"_s, 404));
        QCOMPARE(log.first().at(1), u"%3%2,H1: 3 candles loaded"_s);
        QCOMPARE(log.last().at(1), u"%3%2: failed to load candles: Gone %1"_s);
    }

    void asksForNothingBeforeItIsLoaded()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        m_served->exchange(); // a request of the window would have gone out before
        QCOMPARE(m_served->server.requests().size(), 1);
        window.load();
        QTRY_COMPARE(m_served->server.requests().size(), 3);
    }

    void loadsTheHistoryOfItsSymbolAndTimeframe()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::json(candleBody(3, 1.25)));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setAutoScroll(false);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(m_served->server.last("GET", "/api/candles").target,
            "/api/candles?symbol=EURUSD&timeframe=15m"_ba);
        QCOMPARE(log.first(), QVariantList({u"Chart"_s, u"EURUSD,M15: 3 candles loaded"_s}));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
        QCOMPARE(window.chart().candles().back().close, 1.25);
        QVERIFY(window.chart().autoScroll());
    }

    void percentEncodesTheSymbolInTheQuery()
    {
        ChartWindow window(m_served->api, u"A&B+C #ü"_s, u"15m"_s, {}, 5);
        window.load();
        QTRY_COMPARE(m_served->server.count("GET", "/api/candles"), 1);
        QCOMPARE(m_served->server.last("GET", "/api/candles").target,
            "/api/candles?symbol=A%26B%2BC%20%23%C3%BC&timeframe=15m"_ba);
    }

    void theJournalCountsWhatTheServerSent()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::json("[1," + candleBody(2, 1.25).mid(1)));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 3 candles loaded"_s);
        QCOMPARE(window.chart().candles().size(), std::size_t(2));
    }

    void anEmptyHistoryEmptiesTheChart()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::json("[]"));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 0 candles loaded"_s);
        QVERIFY(window.chart().candles().empty());
    }

    void aFailedLoadIsJournalledAndKeepsWhatIsShown()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        loadAndReload(window, log, StubAnswer::message(u"No %1 <b>history</b>"_s, 404));
        QCOMPARE(log.last(),
            QVariantList({u"Chart"_s, u"EURUSD: failed to load candles: No %1 <b>history</b>"_s}));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
    }

    void aChartThatNeverLoadedGoesOnWaiting()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.resize(500, 360);
        const QImage waiting = window.chart().grab().toImage();
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load(); // the server knows no candles
        QVERIFY(log.wait());
        QVERIFY(log.last().at(1).toString().startsWith(u"EURUSD: failed to load candles: "_s));
        QVERIFY(window.chart().candles().empty());
        QCOMPARE(window.chart().grab().toImage(), waiting);
    }

    void anAnswerThatIsNoHistoryCountsAsAnEmptyOne_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("empty body") << QByteArray();
        QTest::newRow("a page") << QByteArray("<html>Maintenance</html>");
        QTest::newRow("an object") << QByteArray("{}");
        QTest::newRow("a cut array") << candleBody(3, 1.25).chopped(1);
        // Qt gives up on the whole text for one number that is too large or too small.
        QTest::newRow("an endless number") << "[{\"open\":1e999}]"_ba;
        QTest::newRow("a vanishing number") << "[{\"open\":1e-400}]"_ba;
        QTest::newRow("nested too deeply") << QByteArray(2000, '[') + QByteArray(2000, ']');
    }
    void anAnswerThatIsNoHistoryCountsAsAnEmptyOne()
    {
        QFETCH(QByteArray, body);
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        loadAndReload(window, log, StubAnswer::json(body));
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 0 candles loaded"_s);
        QVERIFY(window.chart().candles().empty());
    }

    void afterTwoQuickSwitchesOnlyTheSecondReplyIsApplied()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        window.setTimeframe(u"1h"_s);
        window.setTimeframe(u"1d"_s);
        QTRY_COMPARE(m_served->server.heldCount(), 3);
        QVERIFY(m_served->server.release(
            StubAnswer::json(candleBody(4, 4.0)), "/api/candles?symbol=EURUSD&timeframe=1d"));
        QVERIFY(log.wait());
        QVERIFY(m_served->server.release(
            StubAnswer::json(candleBody(1, 1.0)), "/api/candles?symbol=EURUSD&timeframe=15m"));
        QVERIFY(m_served->server.release(
            StubAnswer::message(u"late"_s, 500), "/api/candles?symbol=EURUSD&timeframe=1h"));
        m_served->exchange();
        QCOMPARE(log.size(), 1);
        QCOMPARE(log.first().at(1), u"EURUSD,D1: 4 candles loaded"_s);
        QCOMPARE(window.chart().candles().back().close, 4.0);
    }

    void switchingBackAndForthNeverShowsTheOtherSeries()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        for (int i = 0; i < 5; ++i) {
            window.setTimeframe(u"1h"_s);
            window.setTimeframe(u"15m"_s);
        }
        QTRY_COMPARE(m_served->server.heldCount(), 2);
        m_served->server.on(
            "GET", "/api/candles?symbol=EURUSD&timeframe=15m", StubAnswer::json(candleBody(2, 15.0)));
        m_served->server.on(
            "GET", "/api/candles?symbol=EURUSD&timeframe=1h", StubAnswer::json(candleBody(3, 60.0)));
        while (m_served->server.release(StubAnswer::json(candleBody(1, 99.0)))) { }
        QTRY_COMPARE(log.size(), 1);
        QCOMPARE(window.chart().candles().size(), std::size_t(2));
        QCOMPARE(window.chart().candles().back().close, 15.0);
        QCOMPARE(window.title(), u"EURUSD,M15"_s);
    }

    void reloadingDuringAReloadAppliesTheNewestReplyOnly()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        window.reload();
        window.reload();
        QTRY_COMPARE(m_served->server.heldCount(), 1);
        m_served->server.on("GET", "/api/candles", StubAnswer::json(candleBody(2, 2.0)));
        QVERIFY(m_served->server.release(StubAnswer::json(candleBody(1, 1.0))));
        QTRY_COMPARE(log.size(), 1);
        QCOMPARE(window.chart().candles().back().close, 2.0);
        QCOMPARE(m_served->server.count("GET", "/api/candles"), 2);
    }

    void aNewWindowAsksForHistoryAndObjects()
    {
        ChartWindow window(m_served->api, u"EUR&USD"_s, u"15m"_s, u"acc/1"_s, 5);
        window.load();
        QTRY_COMPARE(m_served->server.requests().size(), 2);
        QCOMPARE(m_served->server.count("GET", "/api/candles?symbol=EUR%26USD&timeframe=15m"), 1);
        QCOMPARE(m_served->server.count("GET", "/api/drawings?symbol=EUR%26USD&accountId=acc%2F1"), 1);
    }

    void timeframesSwitchedFasterThanRepliesArriveShowTheLastOnly()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        const QStringList keys{u"1m"_s, u"5m"_s, u"1h"_s, u"4h"_s, u"1d"_s};
        const auto targetOf
            = [](const QString& key) { return "/api/candles?symbol=EURUSD&timeframe=" + key.toLatin1(); };
        const auto seriesOf = [&keys](const QString& key) {
            const auto place = static_cast<int>(keys.indexOf(key));
            return StubAnswer::json(candleBody(place + 1, place + 1));
        };
        // Each round ends at another timeframe, and its replies come in the wrong order.
        QString last;
        for (int round = 0; round < 5; ++round) {
            for (int i = 0; i < 10; ++i) {
                last = keys.at((i * 3 + round) % keys.size());
                window.setTimeframe(last);
                QVERIFY(window.chart().candles().empty());
            }
            log.clear();
            QStringList order = keys;
            std::reverse(order.begin(), order.end());
            order.removeAll(last);
            order.append(last);
            const auto answerAll = [&] {
                for (const QString& key : std::as_const(order)) {
                    while (m_served->server.release(seriesOf(key), targetOf(key))) { }
                }
                return !window.chart().candles().empty();
            };
            QTRY_VERIFY(answerAll());
            const int expected = static_cast<int>(keys.indexOf(last)) + 1;
            QCOMPARE(window.chart().candles().size(), static_cast<std::size_t>(expected));
            QCOMPARE(window.chart().candles().back().close, expected);
            QCOMPARE(window.title(), u"EURUSD,"_s + timeframeLabel(last));
            QCOMPARE(window.chart().timeframeMs(), timeframeMs(last));
            QCOMPARE(log.last().at(1),
                u"EURUSD,%1: %2 candles loaded"_s.arg(timeframeLabel(last), QString::number(expected)));
        }
    }

    void moreHistoryThanAReplyMayHoldKeepsWhatIsShown()
    {
        // A million rows are far above the size at which any reply is given up.
        const QByteArray row
            = R"({"timestamp":"2014-05-01T00:00:00.000Z","open":1,"high":1,"low":1,"close":1,"volume":1})";
        QByteArray body = "[" + (row + ",").repeated(200'000);
        body.back() = ']';
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        loadAndReload(window, log, StubAnswer::json(body));
        QVERIFY(log.last().at(1).toString().startsWith(u"EURUSD: failed to load candles: "_s));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
    }

    void aReplyAfterTheWindowIsGoneIsDropped()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        auto window = std::make_unique<ChartWindow>(m_served->api, u"EURUSD"_s, u"1m"_s, QString(), 5);
        window->load();
        QTRY_COMPARE(m_served->server.heldCount(), 1);
        window.reset();
        QVERIFY(m_served->server.release(StubAnswer::json(candleBody(1, 1.0))));
        m_served->exchange();
    }
};

TAVORAN_TEST(tst_ChartHistory)
#include "tst_ChartHistory.moc"
