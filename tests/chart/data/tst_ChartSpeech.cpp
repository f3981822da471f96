#include "chart/data/ChartSpeech.h"

#include "chart/data/TradeLevels.h"
#include "support/Records.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <QJsonObject>

#include <array>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// 2 June 2026, 00:00 UTC.
constexpr qint64 midnight = 1'780'358'400'000;
constexpr qint64 hour = 3'600'000;

const std::vector<Candle>& candles()
{
    static const std::vector<Candle> two{
        {midnight, 1.1, 1.2, 1.05, 1.15, 7}, {midnight + hour, 1.15, 1.3, 1.14, 1.25, 12'345}};
    return two;
}

ChartLook look()
{
    ChartLook look;
    look.digits = 3;
    return look;
}

ChartLook lookWithIndicators()
{
    ChartLook with = look();
    with.averages = {{IndicatorKind::Sma, 20, {}}, {IndicatorKind::Ema, 2, {}}};
    with.panes.first().shown = true;
    return with;
}

const QString last
    = u"Last bar 2026.06.02 01:00: open 1.150, high 1.300, low 1.140, close 1.250, volume 12345"_s;

QList<TradeLevel> levelsOf(const records::Trade& open, const records::Trade& pending)
{
    return buildTradeLevels(u"EURUSD"_s, {open}, {pending});
}

} // namespace

class TestChartSpeech final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        useForeignTimeZone();
    }

    void old_prices_are_read_as_such()
    {
        const ChartLook plain = look();
        speech::Reading reading{plain, candles(), {}, {}, 1.25, 1.252, {}};
        reading.quoteStale = true;
        QVERIFY(speech::chartReading(reading).endsWith(
            u". Disconnected, last known prices. Bid 1.250. Ask 1.252."));
    }

    void without_a_crosshair_the_newest_bar_and_the_quote_are_read()
    {
        const ChartLook plain = look();
        QCOMPARE(speech::chartReading({plain, candles(), {}, {}, 1.2501, 1.2519, {}}),
            last + u". Bid 1.250. Ask 1.252."_s);
    }

    void a_price_that_is_missing_is_not_read()
    {
        const ChartLook plain = look();
        QCOMPARE(speech::chartReading({plain, candles(), {}, {}, 0.0, 0.0, {}}), last + u'.');
        QCOMPARE(speech::chartReading({plain, candles(), {}, {}, 0.0, 1.3, {}}), last + u". Ask 1.300."_s);
    }

    void a_chart_without_candles_says_what_it_shows()
    {
        const ChartLook plain = lookWithIndicators();
        QCOMPARE(speech::chartReading({plain, {}, {}, {}, 1.25, 1.26, {}}), u"Waiting for data..."_s);
    }

    void averages_and_rsi_are_read_at_the_newest_bar()
    {
        const ChartLook with = lookWithIndicators();
        const std::array<double, 2> ema{1.1, 1.2004};
        const std::array<double, 2> rsi{30.0, 71.239};
        const std::array<std::span<const double>, 2> averages{std::span<const double>(), ema};
        const std::array<std::span<const double>, 1> panes{rsi};
        QCOMPARE(speech::chartReading({with, candles(), averages, panes, 0.0, 0.0, {}}),
            last + u", SMA(20) none, EMA(2) 1.200, RSI(14) 71.24."_s);
    }

    void with_a_crosshair_its_bar_comes_first_and_has_the_indicators()
    {
        const ChartLook with = lookWithIndicators();
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        const std::array<double, 2> sma{1.1, 1.2};
        const std::array<double, 2> ema{none, 1.3};
        const std::array<double, 2> rsi{30.0, 71.2};
        const std::array<std::span<const double>, 2> averages{sma, ema};
        const std::array<std::span<const double>, 1> panes{rsi};
        QCOMPARE(
            speech::chartReading({with, candles(), averages, panes, 1.25, 1.26, CrosshairPlace{0, 1.0731}}),
            u"Crosshair at 1.073, 2026.06.02 00:00: open 1.100, high 1.200, low 1.050, close 1.150, volume "
            u"7, "
            "SMA(20) 1.100, EMA(2) none, RSI(14) 30.00. "_s
                + last + u". Bid 1.250. Ask 1.260."_s);
    }

    void beside_the_candles_the_crosshair_has_a_price_alone()
    {
        ChartLook with = lookWithIndicators();
        with.averages.clear();
        for (const qsizetype bar : {-1, 2}) {
            QCOMPARE(speech::chartReading({with, candles(), {}, {}, 0.0, 0.0, CrosshairPlace{bar, 1.0731}}),
                u"Crosshair at 1.073. "_s + last + u", RSI(14) none."_s);
        }
    }

    void a_level_in_the_hand_comes_first()
    {
        const ChartLook plain = look();
        QCOMPARE(speech::chartReading(
                     {plain, candles(), {}, {}, 0.0, 0.0, CrosshairPlace{5, 1.0731}, u"Entry at 1.073"_s}),
            u"Moving: Entry at 1.073. Crosshair at 1.073. "_s + last + u'.');
    }

    void a_hidden_pane_is_not_read()
    {
        ChartLook with = lookWithIndicators();
        with.averages.clear();
        with.panes.first().shown = false;
        QCOMPARE(speech::chartReading({with, candles(), {}, {}, 0.0, 0.0, {}}), last + u'.');
    }

    void a_level_says_kind_side_volume_and_price()
    {
        const QList<TradeLevel> levels
            = levelsOf(records::position("0123456789abcdef").at(1.1).stopLoss(1.05).takeProfit(1.2),
                records::pendingOrder("fedcba9876543210").with("orderKind", "SELL_STOP").awaits(1.07));
        QCOMPARE(levels.size(), 4);
        QCOMPARE(
            speech::levelName(levels[0], levels[0].price, 5), u"Entry of buy 0.10 #01234567 at 1.10000"_s);
        QCOMPARE(speech::levelName(levels[1], levels[1].price, 5),
            u"Stop loss of buy 0.10 #01234567 at 1.05000"_s);
        QCOMPARE(speech::levelName(levels[2], 1.21, 2), u"Take profit of buy 0.10 #01234567 at 1.21"_s);
        QCOMPARE(speech::levelName(levels[3], levels[3].price, 5),
            u"Pending sell stop 0.10 #fedcba98 at 1.07000"_s);
    }

    void what_a_server_writes_into_a_level_is_no_pattern()
    {
        const QList<TradeLevel> levels
            = levelsOf(records::position("%2%1%3%4").at(1.1), records::pendingOrder("x").awaits(0.0));
        QCOMPARE(speech::levelName(levels[0], 1.1, 2), u"Entry of buy 0.10 #%2%1%3%4 at 1.10"_s);
    }

    void a_drawing_says_its_kind_and_where_it_lies()
    {
        const DrawingPoint first{midnight, 1.08};
        const DrawingPoint second{midnight + hour, 1.09};
        const auto name = [&](const QString& kind) {
            return speech::drawingName({u"1"_s, kind, {first, second}}, 5);
        };
        QCOMPARE(name(u"hline"_s), u"Horizontal line at 1.08000"_s);
        QCOMPARE(name(u"vline"_s), u"Vertical line at 2026.06.02 00:00"_s);
        const QString places = u"from 1.08000 at 2026.06.02 00:00 to 1.09000 at 2026.06.02 01:00"_s;
        QCOMPARE(name(u"trendline"_s), u"Trend line "_s + places);
        QCOMPARE(name(u"rectangle"_s), u"Rectangle "_s + places);
        QCOMPARE(name(u"fibonacci"_s), u"Fibonacci retracement "_s + places);
        QCOMPARE(name(u"circle"_s), QString());
        QCOMPARE(speech::drawingName({u"1"_s, u"trendline"_s, {first}}, 5), QString());
    }
};

TAVORAN_TEST(TestChartSpeech)
#include "tst_ChartSpeech.moc"
