#include "chart/ChartWindowFixture.h"
#include "support/TestMain.h"

#include <QPushButton>

using namespace Qt::StringLiterals;
using fixtures::candleBody;
using fixtures::ChartServer;
using fixtures::quote;

namespace {

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

/// Quotes and candles that reach a chart window: which count, and what decimals have to do with it.
class tst_ChartPrices final : public QObject {
    Q_OBJECT

    std::unique_ptr<ChartServer> m_served;

private Q_SLOTS:
    void init() { m_served = std::make_unique<ChartServer>(); }

    void aPriceOfItsSymbolIsATick()
    {
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        window.onPrices(quote(u"EURUSD"_s, 1.5, u"2.5"_s));
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.onPrices(quote(u"EURUSD.x"_s, 1.5, 2.5));
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
            ChartWindow window(m_served->api, u"EURUSD"_s, u"1mn"_s, {}, 5);
            if (!first)
                window.onPrices(quote(u"EURUSD"_s, 1.1, 1.2));
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
        ChartWindow window(m_served->api, u"EURUSD"_s, u"1m"_s, {}, 5);
        window.setSymbolInfo(2, {});
        window.onPrices(quote(u"GOLD"_s, 1.5, 2.5));
        QCOMPARE(captions(window), QStringList({u"SELL\n—"_s, u"BUY\n—"_s}));
    }

    void pricesBelowZeroBuildBars()
    {
        ChartWindow window(m_served->api, u"OIL"_s, u"1mn"_s, {}, 2);
        window.onPrices(quote(u"OIL"_s, -37.75, u"-37.25"_s));
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        QCOMPARE(window.chart().candles().front().close, -37.5);
        QCOMPARE(captions(window), QStringList({u"SELL\n-37.75"_s, u"BUY\n-37.25"_s}));
    }

    void theSymbolsDecimalsSayHowSmallItsPricesAre()
    {
        ChartWindow window(m_served->api, u"SHIB"_s, u"1mn"_s, {}, 9);
        window.onPrices(quote(u"SHIB"_s, 2e-9, 4e-9));
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        QCOMPARE(window.chart().candles().front().close, 3e-9);
        window.setSymbolInfo(9, {});
        QCOMPARE(window.chart().candles().size(), std::size_t(1));
        window.setSymbolInfo(5, {});
        QCOMPARE(window.chart().candles().size(), std::size_t(0));
        window.onPrices(quote(u"SHIB"_s, 2e-9, 4e-9));
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
        QJsonArray rows = fixtures::candleRows(QList<double>(4, 5e-6));
        const QList<double> all{2e-6, 3e-6, 4e-9, 1e-300};
        for (qsizetype i = 0; i < all.size(); ++i) {
            QJsonObject row = rows[i].toObject();
            row.insert(u"low"_s, all[i]);
            rows[i] = row;
        }
        m_served->server.on("GET", "/api/candles", StubAnswer::json(candleBody(rows)));
        ChartWindow window(m_served->api, u"SHIB"_s, u"15m"_s, {}, 5);
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
        QJsonArray rows = fixtures::candleRows({1.25, 1.25});
        rows.append(records::candle("9999-12-31T00:00:00.000Z", 1.25, 1.25, 1.25, 1.25, 1));
        m_served->server.on("GET", "/api/candles", StubAnswer::json(candleBody(rows)));
        ChartWindow window(m_served->api, u"EURUSD"_s, u"15m"_s, {}, 5);
        const QSignalSpy log(&window, &ChartWindow::logMessage);
        window.load();
        QTRY_COMPARE(log.size(), 1);
        QCOMPARE(log.first().at(1), u"EURUSD,M15: 3 candles loaded"_s);
        window.onPrices(quote(u"EURUSD"_s, 1.5, 1.7));
        QCOMPARE(window.chart().candles().size(), std::size_t(3));
        QCOMPARE(window.chart().candles().back().close, 1.6);
    }
};

TAVORAN_TEST(tst_ChartPrices)
#include "tst_ChartPrices.moc"
