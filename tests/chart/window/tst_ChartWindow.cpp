#include "app/base/TerminalSettings.h"
#include "app/base/UtcTime.h"
#include "chart/layers/ChartFrame.h"
#include "chart/series/Timeframe.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "net/ApiClient.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QDoubleSpinBox>
#include <QJsonDocument>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QByteArray candlesPath = "/api/candles";
const QByteArray drawingsPath = "/api/drawings";

QByteArray bars(int count, double close)
{
    QJsonArray rows;
    for (int i = 0; i < count; ++i) {
        const QDateTime time = utcTime(1'600'000'200'000 + i * 900'000LL);
        rows.append(QJsonObject{{u"timestamp"_s, time.toString(Qt::ISODateWithMs)}, {u"open"_s, close},
            {u"high"_s, close}, {u"low"_s, close}, {u"close"_s, close}, {u"volume"_s, 1}});
    }
    return QJsonDocument(rows).toJson(QJsonDocument::Compact);
}

QJsonObject snapshot(const QString& symbol, const QJsonValue& bid, const QJsonValue& ask)
{
    return {{symbol, QJsonObject{{u"bid"_s, bid}, {u"ask"_s, ask}}}};
}

/// On the buttons that sell and buy.
QStringList captions(const ChartWindow& window)
{
    QStringList texts;
    const QList<QPushButton*> buttons = window.findChildren<QPushButton*>();
    for (const QPushButton* button : buttons)
        texts << button->text();
    return texts;
}

} // namespace

class tst_ChartWindow final : public QObject {
    Q_OBJECT

    /// A further exchange, after which whatever was answered or sent before has arrived.
    void settle()
    {
        bool answered = false;
        m_api->get(
            u"/api/accounts"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
        QTRY_VERIFY(answered);
    }

    std::unique_ptr<StubHttpServer> m_server;
    std::unique_ptr<ApiClient> m_api;

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<StubHttpServer>();
        TerminalSettings::instance().setServerUrl(m_server->url());
        m_api = std::make_unique<ApiClient>(TerminalSettings::instance());
        m_server->on("GET", drawingsPath, StubAnswer::json("[]"));
    }

    void cleanup()
    {
        m_api.reset();
        m_server.reset();
    }

    void isTitledAfterSymbolAndTimeframe()
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

    void theCanvasFillsTheWindow()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1h"_s, {}, 5);
        for (const QSize& size : {QSize(500, 360), QSize(700, 300)}) {
            window.resize(size);
            window.show();
            QTRY_COMPARE(window.chart().geometry(), QRect(QPoint(0, 0), size));
        }
    }

    void theSymbolIsNeverSubstitutedAgain()
    {
        m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        m_server->once("GET", candlesPath, StubAnswer::message(u"Gone %1"_s, 404));
        ChartWindow window(*m_api, u"%3%2"_s, u"1h"_s, {}, 5);
        QCOMPARE(window.title(), u"%3%2,H1"_s);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"%3%2,H1: 3 candles loaded"_s);
        window.reload();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"%3%2: failed to load candles: Gone %1"_s);
    }

    void asksForNothingBeforeItIsLoaded()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        settle(); // a request of the window would have gone out before
        QCOMPARE(m_server->requests().size(), 1);
        window.load();
        QTRY_COMPARE(m_server->requests().size(), 3);
    }

    void loadsTheHistoryOfItsSymbolAndTimeframe()
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

    void percentEncodesTheSymbolInTheQuery()
    {
        ChartWindow window(*m_api, u"A&B+C #ü"_s, u"15m"_s, {}, 5);
        window.load();
        QTRY_COMPARE(m_server->count("GET", candlesPath), 1);
        QCOMPARE(m_server->last("GET", candlesPath).target,
            "/api/candles?symbol=A%26B%2BC%20%23%C3%BC&timeframe=15m"_ba);
    }

    void theJournalCountsWhatTheServerSent()
    {
        m_server->on("GET", candlesPath, StubAnswer::json("[1," + bars(2, 1.25).mid(1)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 3 candles loaded"_s);
        QCOMPARE(window.chart().candles().size(), std::size_t(2));
    }

    void anEmptyHistoryEmptiesTheChart()
    {
        m_server->on("GET", candlesPath, StubAnswer::json("[]"));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 0 candles loaded"_s);
        QVERIFY(window.chart().candles().empty());
    }

    void aFailedLoadIsJournalledAndKeepsWhatIsShown()
    {
        m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        m_server->once("GET", candlesPath, StubAnswer::message(u"No %1 <b>history</b>"_s, 404));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        window.reload();
        QVERIFY(log.wait());
        QCOMPARE(log.last(),
            QVariantList({u"Chart"_s, u"EURUSD: failed to load candles: No %1 <b>history</b>"_s}));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
    }

    void aChartThatNeverLoadedGoesOnWaiting()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
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
        QTest::newRow("a cut array") << bars(3, 1.25).chopped(1);
        // Qt gives up on the whole text for one number that is too large or too small.
        QTest::newRow("an endless number") << "[{\"open\":1e999}]"_ba;
        QTest::newRow("a vanishing number") << "[{\"open\":1e-400}]"_ba;
        QTest::newRow("nested too deeply") << QByteArray(2000, '[') + QByteArray(2000, ']');
    }
    void anAnswerThatIsNoHistoryCountsAsAnEmptyOne()
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
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 0 candles loaded"_s);
        QVERIFY(window.chart().candles().empty());
    }

    void afterTwoQuickSwitchesOnlyTheSecondReplyIsApplied()
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
        QVERIFY(
            m_server->release(StubAnswer::json(bars(1, 1.0)), "/api/candles?symbol=EURUSD&timeframe=15m"));
        QVERIFY(m_server->release(
            StubAnswer::message(u"late"_s, 500), "/api/candles?symbol=EURUSD&timeframe=1h"));
        settle();
        QCOMPARE(log.size(), 1);
        QCOMPARE(log.first().at(1), u"EURUSD,D1: 4 candles loaded"_s);
        QCOMPARE(window.chart().candles().back().close, 4.0);
    }

    void switchingBackAndForthNeverShowsTheOtherSeries()
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

    void reloadingDuringAReloadAppliesTheNewestReplyOnly()
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

    void aNewTimeframeClearsTheChartAndRetitlesTheWindow()
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

    void listenersOfANewTimeframeFindTheChartChanged()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
        QStringList heard;
        const auto hear = [&window, &heard](const QString& what) {
            heard << what << window.timeframe() << window.windowTitle()
                  << QString::number(window.chart().timeframeMs())
                  << QString::number(window.chart().candles().size());
        };
        connect(&window, &ChartWindow::titleChanged, this, [&hear] { hear(u"title"_s); });
        connect(&window, &ChartWindow::timeframeChanged, this, [&hear] { hear(u"timeframe"_s); });
        window.setTimeframe(u"4h"_s);
        const QStringList changed{u"4h"_s, u"EURUSD,H4"_s, u"14400000"_s, u"0"_s};
        QCOMPARE(heard, QStringList{u"title"_s} + changed + QStringList{u"timeframe"_s} + changed);
    }

    void theSameTimeframeDoesNothing()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
        QSignalSpy title(&window, &ChartWindow::titleChanged);
        QSignalSpy timeframe(&window, &ChartWindow::timeframeChanged);
        window.setTimeframe(u"15m"_s);
        QVERIFY(title.isEmpty());
        QVERIFY(timeframe.isEmpty());
        settle();
        QCOMPARE(m_server->count("GET", candlesPath), 0);
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
    }

    void aPriceOfItsSymbolIsATick()
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

    void aPriceOfAnotherSymbolChangesNothing()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.onPrices(snapshot(u"EURUSD.x"_s, 1.5, 2.5));
        QCOMPARE(window.chart().bid(), 0.0);
        QVERIFY(window.chart().candles().empty());
    }

    void aQuoteThatLacksAPriceIsShownAndBuildsNoBar_data()
    {
        QTest::addColumn<QJsonValue>("record");
        QTest::addColumn<double>("bid");
        QTest::addColumn<double>("ask");
        const auto row = [](const char* name, const QJsonObject& record, double bid, double ask) {
            QTest::newRow(name) << QJsonValue(record) << bid << ask;
        };
        row("no ask", {{u"bid"_s, 1.5}}, 1.5, 0.0);
        row("no bid", {{u"ask"_s, 1.5}}, 0.0, 1.5);
        row("zero", {{u"bid"_s, 0}, {u"ask"_s, 0}}, 0.0, 0.0);
        row("not a number", {{u"bid"_s, u"nan"_s}, {u"ask"_s, 1}}, 0.0, 1.0);
        row("absurd", {{u"bid"_s, 1.0}, {u"ask"_s, 1e308}}, 1.0, 0.0);
        row("far below a point", {{u"bid"_s, 1e-9}, {u"ask"_s, 1.5}}, 0.0, 1.5);
        row("tiny", {{u"bid"_s, u"1e-300"_s}, {u"ask"_s, -1e-300}}, 0.0, 0.0);
        row("a trillion", {{u"bid"_s, 1.5}, {u"ask"_s, 1e12}}, 1.5, 0.0);
        row("below zero beside none", {{u"bid"_s, -1.0}, {u"ask"_s, 0}}, -1.0, 0.0);
        row("no prices", {}, 0.0, 0.0);
        QTest::newRow("no record") << QJsonValue(u"1.5"_s) << 0.0 << 0.0;
    }
    void aQuoteThatLacksAPriceIsShownAndBuildsNoBar()
    {
        QFETCH(QJsonValue, record);
        QFETCH(double, bid);
        QFETCH(double, ask);
        for (const bool first : {true, false}) {
            ChartWindow window(*m_api, u"EURUSD"_s, u"1mn"_s, {}, 5);
            if (!first)
                window.onPrices(snapshot(u"EURUSD"_s, 1.1, 1.2));
            const std::vector<Candle> bars = window.chart().candles();
            window.onPrices({{u"EURUSD"_s, record}});
            QVERIFY(window.chart().candles() == bars);
            QCOMPARE(window.chart().bid(), bid);
            QCOMPARE(window.chart().ask(), ask);
            QCOMPARE(captions(window),
                QStringList(
                    {u"SELL\n"_s + QString::number(bid, 'f', 5), u"BUY\n"_s + QString::number(ask, 'f', 5)}));
            window.setSymbolInfo(2, {});
            QCOMPARE(captions(window).first(), u"SELL\n"_s + QString::number(bid, 'f', 2));
        }
    }

    void theCaptionsWaitForTheFirstPrice()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.setSymbolInfo(2, {});
        window.onPrices(snapshot(u"GOLD"_s, 1.5, 2.5));
        QCOMPARE(captions(window), QStringList({u"SELL\n—"_s, u"BUY\n—"_s}));
    }

    void pricesBelowZeroBuildBars()
    {
        ChartWindow window(*m_api, u"OIL"_s, u"1mn"_s, {}, 2);
        window.onPrices(snapshot(u"OIL"_s, -37.75, u"-37.25"_s));
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        QCOMPARE(window.chart().candles().front().close, -37.5);
        QCOMPARE(captions(window), QStringList({u"SELL\n-37.75"_s, u"BUY\n-37.25"_s}));
    }

    void theSymbolsDecimalsSayHowSmallItsPricesAre()
    {
        ChartWindow window(*m_api, u"SHIB"_s, u"1mn"_s, {}, 9);
        window.onPrices(snapshot(u"SHIB"_s, 2e-9, 4e-9));
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        QCOMPARE(window.chart().candles().front().close, 3e-9);
        window.setSymbolInfo(9, {});
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        window.setSymbolInfo(5, {});
        QCOMPARE(window.chart().candles().size(), std::size_t(0));
        window.onPrices(snapshot(u"SHIB"_s, 2e-9, 4e-9));
        QCOMPARE(window.chart().bid(), 0.0);
    }

    void decimalsThatComeAfterTheHistoryJudgeItsPrices_data()
    {
        QTest::addColumn<int>("digits");
        QTest::addColumn<QList<double>>("lows");
        QTest::newRow("more than usual") << 9 << QList<double>{2e-6, 3e-6, 4e-9};
        QTest::newRow("less than those") << 6 << QList<double>{2e-6, 3e-6};
        QTest::newRow("usual") << 5 << QList<double>();
    }
    void decimalsThatComeAfterTheHistoryJudgeItsPrices()
    {
        QFETCH(const int, digits);
        QFETCH(const QList<double>, lows);
        QJsonArray rows = QJsonDocument::fromJson(bars(4, 5e-6)).array();
        const QList<double> all{2e-6, 3e-6, 4e-9, 1e-300};
        for (qsizetype i = 0; i < all.size(); ++i) {
            QJsonObject row = rows[i].toObject();
            row.insert(u"low"_s, all[i]);
            rows[i] = row;
        }
        m_server->on("GET", candlesPath, StubAnswer::json(QJsonDocument(rows).toJson()));
        ChartWindow window(*m_api, u"SHIB"_s, u"15m"_s, {}, 5);
        const QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.setSymbolInfo(digits, {});
        QList<double> shown;
        for (const Candle& candle : window.chart().candles())
            shown.append(candle.low);
        QCOMPARE(shown, lows);
        window.reload();
        QTRY_COMPARE(log.size(), 2);
        QCOMPARE(window.chart().candles().size(), static_cast<std::size_t>(lows.size()));
    }

    void aCandleOfTheFarFutureStopsNoTick()
    {
        QJsonArray rows = QJsonDocument::fromJson(bars(2, 1.25)).array();
        rows.append(QJsonObject{{u"timestamp"_s, u"9999-12-31T00:00:00.000Z"_s}, {u"open"_s, 1.25},
            {u"high"_s, 1.25}, {u"low"_s, 1.25}, {u"close"_s, 1.25}, {u"volume"_s, 1}});
        m_server->on("GET", candlesPath, StubAnswer::json(QJsonDocument(rows).toJson()));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        const QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        QCOMPARE(log.first().at(1), u"EURUSD,M15: 3 candles loaded"_s);
        window.onPrices(snapshot(u"EURUSD"_s, 1.5, 1.7));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
        QCOMPARE(window.chart().candles().back().close, 1.6);
    }

    void tradesBecomeLevelLines()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
        const QJsonObject open{{u"id"_s, u"aaaaaaaabbbb"_s}, {u"symbol"_s, u"EURUSD"_s},
            {u"type"_s, u"BUY"_s}, {u"lotSize"_s, u"0.10"_s}, {u"entryPrice"_s, u"1.1"_s},
            {u"stopLoss"_s, 1.05}};
        const QJsonObject pending{{u"id"_s, u"c"_s}, {u"symbol"_s, u"EURUSD"_s},
            {u"orderKind"_s, u"SELL_STOP"_s}, {u"lotSize"_s, 1}, {u"pendingPrice"_s, 1.0}};
        window.setTrades({open}, {pending});
        QStringList labels;
        for (const TradeLevel& level : window.chart().tradeLevels())
            labels << level.label;
        QCOMPARE(labels, QStringList({u"buy 0.10 #aaaaaaaa"_s, u"sl #aaaaaaaa"_s, u"SELL_STOP 1.00 #c"_s}));
        window.setTrades({}, {});
        QVERIFY(window.chart().tradeLevels().isEmpty());
    }

    void aTradeWithoutAStopGetsNoStopLine()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.setTrades({QJsonObject{{u"id"_s, u"a"_s}, {u"symbol"_s, u"EURUSD"_s}, {u"entryPrice"_s, 1.1},
                             {u"stopLoss"_s, 0}}},
            {});
        QCOMPARE(window.chart().tradeLevels().size(), 1);
        QCOMPARE(window.chart().tradeLevels().first().kind, u"ENTRY"_s);
    }

    void theDigitsAndTheDescriptionMayArriveLater()
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

    void whatTheCanvasReportsIsPassedOn()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, {}, 5);
        QSignalSpy crosshair(&window, &ChartWindow::crosshairMoved);
        QSignalSpy scroll(&window, &ChartWindow::autoScrollChanged);
        QSignalSpy modify(&window, &ChartWindow::modifyLevelRequested);
        QSignalSpy settings(&window, &ChartWindow::settingsChanged);
        Q_EMIT window.chart().crosshairMoved(u"O: 1"_s);
        Q_EMIT window.chart().levelDragged(u"id"_s, u"SL"_s, 1.25);
        window.chart().setChartType(1);
        QCOMPARE(settings.count(), 1);
        window.chart().setAutoScroll(false);
        QCOMPARE(settings.count(), 2);
        QCOMPARE(crosshair, QList<QVariantList>{{u"O: 1"_s}});
        QCOMPARE(modify, QList<QVariantList>({{u"id"_s, u"SL"_s, 1.25}}));
        QCOMPARE(scroll, QList<QVariantList>{{false}});
    }

    void aNewWindowAsksForHistoryAndObjects()
    {
        ChartWindow window(*m_api, u"EUR&USD"_s, u"15m"_s, u"acc/1"_s, 5);
        window.load();
        QTRY_COMPARE(m_server->requests().size(), 2);
        QCOMPARE(m_server->count("GET", "/api/candles?symbol=EUR%26USD&timeframe=15m"), 1);
        QCOMPARE(m_server->count("GET", "/api/drawings?symbol=EUR%26USD&accountId=acc%2F1"), 1);
    }

    void anotherAccountReadsTheObjectsAnew()
    {
        const QByteArray ofTwo = "/api/drawings?symbol=EURUSD&accountId=two";
        m_server->on("GET", ofTwo,
            StubAnswer::json(R"([{"id":"d","toolType":"vline","points":[{"time":"5","price":"1.5"}]}])"));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, u"one"_s, 5);
        window.setAccountId(u"two"_s);
        QTRY_COMPARE(window.chart().drawings().size(), 1);
        window.setAccountId(u"two"_s);
        window.setTimeframe(u"1h"_s);
        QTRY_COMPARE(m_server->count("GET", candlesPath), 1);
        QCOMPARE(m_server->count("GET", drawingsPath), 1);
        QCOMPARE(window.chart().drawings().size(), 1);
    }

    void aFailureWithTheObjectsIsJournalled()
    {
        m_server->on("GET", drawingsPath, StubAnswer::message(u"No objects"_s, 500));
        m_server->on("GET", candlesPath, StubAnswer::held());
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log, QList<QVariantList>({{u"Chart"_s, u"EURUSD: failed to load drawings: No objects"_s}}));
    }

    void timeframesSwitchedFasterThanRepliesArriveShowTheLastOnly()
    {
        m_server->on("GET", candlesPath, StubAnswer::held());
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        const QStringList keys{u"1m"_s, u"5m"_s, u"1h"_s, u"4h"_s, u"1d"_s};
        const auto targetOf
            = [](const QString& key) { return "/api/candles?symbol=EURUSD&timeframe=" + key.toLatin1(); };
        const auto seriesOf = [&keys](const QString& key) {
            const auto place = static_cast<int>(keys.indexOf(key));
            return StubAnswer::json(bars(place + 1, place + 1));
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
                    while (m_server->release(seriesOf(key), targetOf(key))) { }
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
        m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        m_server->once("GET", candlesPath, StubAnswer::json(body));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.reload();
        QTRY_COMPARE(log.size(), 2);
        QVERIFY(log.last().at(1).toString().startsWith(u"EURUSD: failed to load candles: "_s));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
    }

    void theFirstHistoryKeepsARestoredViewStill()
    {
        m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.restoreState({{u"autoScroll"_s, false}, {u"chartShift"_s, true}});
        const QJsonObject restored = window.saveState();
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        QVERIFY(!window.chart().autoScroll());
        QCOMPARE(window.chart().rightBarIndex(), 2.0);
        QCOMPARE(window.saveState(), restored);
    }

    void laterHistoriesFollowTheEndAgain()
    {
        m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.restoreState({{u"autoScroll"_s, false}});
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.reload();
        QTRY_COMPARE(log.size(), 2);
        QVERIFY(window.chart().autoScroll());
    }

    void catchingUpKeepsAViewThatWasScrolledBack()
    {
        m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        m_server->on("GET", candlesPath, StubAnswer::json(bars(5, 1.25)));
        window.catchUp();
        QTRY_COMPARE(log.size(), 2);
        QCOMPARE(log.last().at(1), u"EURUSD,M15: 5 candles loaded"_s);
        QCOMPARE(window.chart().rightBarIndex(), 4.0);
        QVERIFY(window.chart().autoScroll());
        window.chart().setAutoScroll(false);
        m_server->on("GET", candlesPath, StubAnswer::json(bars(9, 1.25)));
        window.catchUp();
        QTRY_COMPARE(log.size(), 3);
        QCOMPARE(window.chart().candles().size(), std::size_t(9));
        QCOMPARE(window.chart().rightBarIndex(), 4.0);
        QVERIFY(!window.chart().autoScroll());
    }

    void catchingUpDoesNotTakeBackTheWishToSeeTheEnd()
    {
        m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.chart().setAutoScroll(false);
        m_server->on("GET", candlesPath, StubAnswer::held());
        window.reload();
        window.catchUp();
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_server->on("GET", candlesPath, StubAnswer::json(bars(5, 1.25)));
        QVERIFY(m_server->release(StubAnswer::json(bars(4, 1.25))));
        QTRY_COMPARE(log.size(), 2);
        QCOMPARE(window.chart().rightBarIndex(), 4.0);
        QVERIFY(window.chart().autoScroll());
    }

    void aWishThatFailedDoesNotMoveTheViewLater()
    {
        m_server->once("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        m_server->once("GET", candlesPath, StubAnswer::message(u"Not now"_s, 503));
        m_server->on("GET", candlesPath, StubAnswer::json(bars(5, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.reload();
        QTRY_COMPARE(log.size(), 2);
        window.chart().setAutoScroll(false);
        window.catchUp();
        QTRY_COMPARE(log.size(), 3);
        QCOMPARE(window.chart().rightBarIndex(), 2.0);
        QVERIFY(!window.chart().autoScroll());
    }

    void readingAgainAsksForHistoryAndObjects()
    {
        m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        window.chart().setAutoScroll(false);
        window.loadAgain();
        QTRY_COMPARE(log.size(), 2);
        QVERIFY(!window.chart().autoScroll());
        QTRY_COMPARE(m_server->count("GET", drawingsPath), 2);
    }

    void aTimeframeChosenBeforeTheFirstHistoryFollowsTheEnd()
    {
        m_server->on("GET", candlesPath, StubAnswer::json(bars(3, 1.25)));
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.restoreState({{u"autoScroll"_s, false}});
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.setTimeframe(u"1h"_s);
        QTRY_COMPARE(log.size(), 1);
        QVERIFY(window.chart().autoScroll());
    }

    void theKeysOfTheWindowGoToTheChart()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.show();
        window.findChild<QDoubleSpinBox*>()->setFocus();
        window.setFocus(); // as an area of several windows does with the active one
        QCOMPARE(window.focusWidget(), &window.chart());
    }

    void aChosenToolTakesTheKeys()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.show();
        auto* box = window.findChild<QDoubleSpinBox*>();
        box->setFocus();
        window.setTool(u"hline"_s);
        QCOMPARE(window.chart().tool(), u"hline"_s);
        QCOMPARE(window.focusWidget(), &window.chart());
        box->setFocus();
        window.setTool({});
        QCOMPARE(window.focusWidget(), box);
    }

    void accountAndFiguresAreKept()
    {
        ChartWindow window(*m_api, u"EURUSD"_s, u"1m"_s, u"one"_s, 5);
        QCOMPARE(window.accountId(), u"one"_s);
        window.setAccountId(u"two"_s);
        QCOMPARE(window.accountId(), u"two"_s);
        window.setAccountFigures(1000.0, 990.5);
        QCOMPARE(window.balance(), 1000.0);
        QCOMPARE(window.equity(), 990.5);
    }

    void theStateComesBack()
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

    void aReplyAfterTheWindowIsGoneIsDropped()
    {
        m_server->on("GET", candlesPath, StubAnswer::held());
        auto window = std::make_unique<ChartWindow>(*m_api, u"EURUSD"_s, u"1m"_s, QString(), 5);
        window->load();
        QTRY_COMPARE(m_server->heldCount(), 1);
        window.reset();
        QVERIFY(m_server->release(StubAnswer::json(bars(1, 1.0))));
        settle();
    }
};

TAVORAN_TEST(tst_ChartWindow)
#include "tst_ChartWindow.moc"
