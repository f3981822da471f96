#include "chart/ChartWindowFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QDoubleSpinBox>

using namespace Qt::StringLiterals;
using fixtures::candleBody;
using fixtures::ChartServer;

/// A chart window as a whole: titles, timeframe, trades, keys and what it keeps. History, prices and the
/// place of the view have classes of their own.
class tst_ChartWindow final : public QObject {
    Q_OBJECT

    std::unique_ptr<ChartServer> m_served;

private Q_SLOTS:
    void init() { m_served = std::make_unique<ChartServer>(); }

    void isTitledAfterSymbolAndTimeframe()
    {
        const ChartWindow window(m_served->api, u"EURUSD"_s, u"1h"_s, {}, 5);
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1h"_s, {}, 5);
        for (const QSize& size : {QSize(500, 360), QSize(700, 300)}) {
            window.resize(size);
            window.show();
            QTRY_COMPARE(window.chart().geometry(), QRect(QPoint(0, 0), size));
        }
    }

    void aNewTimeframeClearsTheChartAndRetitlesTheWindow()
    {
        m_served->server.on("GET", "/api/candles", StubAnswer::json(candleBody(3, 1.25)));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
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
        QCOMPARE(m_served->server.last("GET", "/api/candles").target,
            "/api/candles?symbol=EURUSD&timeframe=4h"_ba);
    }

    void listenersOfANewTimeframeFindTheChartChanged()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.chart().setCandles({Candle{900'000, 1, 1, 1, 1, 1}});
        QSignalSpy title(&window, &ChartWindow::titleChanged);
        QSignalSpy timeframe(&window, &ChartWindow::timeframeChanged);
        window.setTimeframe(u"15m"_s);
        QVERIFY(title.isEmpty());
        QVERIFY(timeframe.isEmpty());
        m_served->exchange();
        QCOMPARE(m_served->server.count("GET", "/api/candles"), 0);
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
    }

    void tradesBecomeLevelLines()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.setTrades({records::position("aaaaaaaabbbb").buy("0.10").at("1.1").stopLoss(1.05)},
            {records::pendingOrder("c").sell(1).with("orderKind", "SELL_STOP").awaits(1.0)});
        QStringList labels;
        for (const TradeLevel& level : window.chart().tradeLevels())
            labels << level.label;
        QCOMPARE(labels, QStringList({u"buy 0.10 #aaaaaaaa"_s, u"sl #aaaaaaaa"_s, u"SELL_STOP 1.00 #c"_s}));
        window.setTrades({}, {});
        QVERIFY(window.chart().tradeLevels().isEmpty());
    }

    void aTradeWithoutAStopGetsNoStopLine()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.setTrades({records::position("a").at(1.1).stopLoss(0)}, {});
        QCOMPARE(window.chart().tradeLevels().size(), 1);
        QCOMPARE(window.chart().tradeLevels().first().kind, u"ENTRY"_s);
    }

    void theDigitsAndTheDescriptionMayArriveLater()
    {
        ChartWindow window(m_served->api, u"USDJPY"_s, u"1m"_s, {}, 5);
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
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

    void anotherAccountReadsTheObjectsAnew()
    {
        const QByteArray ofTwo = "/api/drawings?symbol=EURUSD&accountId=two";
        m_served->server.on("GET", ofTwo,
            StubAnswer::json(R"([{"id":"d","toolType":"vline","points":[{"time":"5","price":"1.5"}]}])"));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, u"one"_s, 5);
        window.setAccountId(u"two"_s);
        QTRY_COMPARE(window.chart().drawings().size(), 1);
        window.setAccountId(u"two"_s);
        window.setTimeframe(u"1h"_s);
        QTRY_COMPARE(m_served->server.count("GET", "/api/candles"), 1);
        QCOMPARE(m_served->server.count("GET", "/api/drawings"), 1);
        QCOMPARE(window.chart().drawings().size(), 1);
    }

    void aFailureWithTheObjectsIsJournalled()
    {
        m_served->server.on("GET", "/api/drawings", StubAnswer::message(u"No objects"_s, 500));
        m_served->server.on("GET", "/api/candles", StubAnswer::held());
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QVERIFY(log.wait());
        QCOMPARE(log, QList<QVariantList>({{u"Chart"_s, u"EURUSD: failed to load drawings: No objects"_s}}));
    }

    void theKeysOfTheWindowGoToTheChart()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        window.show();
        window.findChild<QDoubleSpinBox*>()->setFocus();
        window.setFocus(); // as an area of several windows does with the active one
        QCOMPARE(window.focusWidget(), &window.chart());
    }

    void aChosenToolTakesTheKeys()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, u"one"_s, 5);
        QCOMPARE(window.accountId(), u"one"_s);
        window.setAccountId(u"two"_s);
        QCOMPARE(window.accountId(), u"two"_s);
        window.setAccountFigures(1000.0, 990.5);
        QCOMPARE(window.balance(), 1000.0);
        QCOMPARE(window.equity(), 990.5);
    }

    void theStateComesBack()
    {
        ChartWindow first(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        first.chart().setChartType(2);
        first.chart().setChartShift(true);
        ChartWindow second(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        second.restoreState(first.saveState());
        QCOMPARE(second.saveState(), first.saveState());
        QCOMPARE(second.chart().chartType(), 2);
        QVERIFY(second.chart().chartShift());
    }
};

TAVORAN_TEST(tst_ChartWindow)
#include "tst_ChartWindow.moc"
