#include "chart/series/CandleSeries.h"

#include "support/TestMain.h"

#include <limits>

namespace {

constexpr qint64 tenOClock = 36'000'000;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

Candle flat(qint64 time, double price, qint32 volume = 1)
{
    return {time, price, price, price, price, volume};
}

} // namespace

class TestCandleSeries final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keeps_ordered_bars_as_they_are()
    {
        CandleSeries series;
        const std::vector<Candle> bars{{1000, 1.0, 3.0, 0.5, 2.0, 7}, {2000, 2.0, 2.5, 1.5, 2.2, 9}};
        series.setCandles(bars);
        QVERIFY(series.candles() == bars);
        QCOMPARE(series.count(), 2);
    }

    void sorts_bars_that_came_out_of_order()
    {
        CandleSeries series;
        series.setCandles({flat(3000, 3), flat(1000, 1), flat(2000, 2)});
        const std::vector<Candle> expected{flat(1000, 1), flat(2000, 2), flat(3000, 3)};
        QVERIFY(series.candles() == expected);
    }

    void of_bars_with_equal_time_the_last_given_stays()
    {
        CandleSeries series;
        series.setCandles({flat(1000, 1), flat(1000, 2), flat(2000, 3), flat(1000, 4), flat(2000, 5)});
        const std::vector<Candle> expected{flat(1000, 4), flat(2000, 5)};
        QVERIFY(series.candles() == expected);
    }

    void leaves_out_bars_with_a_price_that_cannot_be_drawn()
    {
        CandleSeries series;
        Candle badHigh = flat(2000, 1);
        badHigh.high = 1e308;
        Candle badLow = flat(3000, 1);
        badLow.low = -infinite;
        Candle badClose = flat(4000, 1);
        badClose.close = notANumber;
        series.setCandles(
            {flat(1000, notANumber), badHigh, badLow, badClose, flat(5000, -37.5), flat(6000, 1e15)});
        const std::vector<Candle> expected{flat(5000, -37.5), flat(6000, 1e15)};
        QVERIFY(series.candles() == expected);
    }

    void counts_a_negative_volume_as_none()
    {
        CandleSeries series;
        series.setCandles({flat(1000, 1, -5), flat(2000, 1, std::numeric_limits<qint32>::min())});
        QCOMPARE(series.candles()[0].volume, 0);
        QCOMPARE(series.candles()[1].volume, 0);
    }

    void an_empty_list_empties_the_series()
    {
        CandleSeries series;
        series.setCandles({flat(1000, 1)});
        series.setCandles({});
        QVERIFY(series.isEmpty());
    }

    void the_first_tick_begins_a_bar_at_the_middle_of_bid_and_ask()
    {
        CandleSeries series;
        QCOMPARE(series.foldTick(1.0, 2.0, tenOClock + 5), TickEffect::Appended);
        QCOMPARE(series.count(), 1);
        QVERIFY(series.candles().front() == flat(tenOClock, 1.5, 1));
    }

    void a_tick_of_the_newest_bar_never_changes_its_open()
    {
        CandleSeries series;
        series.foldTick(10.0, 10.0, tenOClock);
        QCOMPARE(series.foldTick(12.0, 12.0, tenOClock + 1), TickEffect::LastCandle);
        QCOMPARE(series.foldTick(7.0, 9.0, tenOClock + 2), TickEffect::LastCandle);
        QCOMPARE(series.foldTick(11.0, 11.0, tenOClock + 899'999), TickEffect::LastCandle);
        const Candle expected{tenOClock, 10.0, 12.0, 8.0, 11.0, 4};
        QCOMPARE(series.count(), 1);
        QVERIFY(series.candles().front() == expected);
    }

    void a_tick_at_the_boundary_begins_the_next_bar()
    {
        CandleSeries series;
        series.foldTick(1.0, 1.0, tenOClock + 14 * Q_INT64_C(60'000) + 59'999);
        QCOMPARE(series.foldTick(2.0, 2.0, tenOClock + 15 * Q_INT64_C(60'000)), TickEffect::Appended);
        QCOMPARE(series.candles()[0].time, tenOClock);
        QCOMPARE(series.candles()[1].time, tenOClock + 15 * Q_INT64_C(60'000));
        QVERIFY(series.candles()[0] == flat(tenOClock, 1.0));
    }

    void a_late_tick_changes_nothing()
    {
        CandleSeries series;
        series.setCandles({flat(tenOClock - 900'000, 1), flat(tenOClock, 2)});
        const std::vector<Candle> before = series.candles();
        QCOMPARE(series.foldTick(5.0, 5.0, tenOClock - 1), TickEffect::Nothing);
        QVERIFY(series.candles() == before);
    }

    void a_time_before_the_epoch_is_cut_towards_zero()
    {
        CandleSeries series;
        series.foldTick(1.0, 1.0, -900'001);
        QCOMPARE(series.candles().back().time, -900'000);
        series.foldTick(1.0, 1.0, -1);
        QCOMPARE(series.candles().back().time, 0);
        QCOMPARE(series.foldTick(1.0, 1.0, 1), TickEffect::LastCandle);
    }

    void ticks_at_the_ends_of_time_are_taken_in()
    {
        CandleSeries series;
        QCOMPARE(series.foldTick(1.0, 1.0, std::numeric_limits<qint64>::min()), TickEffect::Appended);
        QCOMPARE(series.foldTick(1.0, 1.0, std::numeric_limits<qint64>::max()), TickEffect::Appended);
        QCOMPARE(series.candles().front().time % 900'000, 0);
        QCOMPARE(series.candles().back().time % 900'000, 0);
    }

    void a_tick_without_a_usable_price_changes_nothing()
    {
        CandleSeries series;
        series.foldTick(1.0, 1.0, tenOClock);
        const std::vector<Candle> before = series.candles();
        for (const double bad : {notANumber, infinite, -infinite, 1e308, -1e16}) {
            QCOMPARE(series.foldTick(bad, 1.0, tenOClock + 1), TickEffect::Nothing);
            QCOMPARE(series.foldTick(1.0, bad, tenOClock + 900'000), TickEffect::Nothing);
        }
        QVERIFY(series.candles() == before);
    }

    void a_tick_that_lacks_a_price_changes_nothing()
    {
        CandleSeries series;
        QCOMPARE(series.foldTick(0.0, 0.0, tenOClock), TickEffect::Nothing);
        QVERIFY(series.isEmpty());
        series.foldTick(1.0, 1.0, tenOClock);
        const std::vector<Candle> before = series.candles();
        for (const qint64 time : {tenOClock + 1, tenOClock + 900'000}) {
            QCOMPARE(series.foldTick(0.0, 1.2, time), TickEffect::Nothing);
            QCOMPARE(series.foldTick(1.2, -0.0, time), TickEffect::Nothing);
        }
        QVERIFY(series.candles() == before);
    }

    void prices_below_zero_are_taken_in()
    {
        CandleSeries series;
        QCOMPARE(series.foldTick(-40.0, -36.0, tenOClock), TickEffect::Appended);
        QCOMPARE(series.foldTick(-1.0, 1.0, tenOClock + 1), TickEffect::LastCandle);
        const Candle expected{tenOClock, -38.0, 0.0, -38.0, 0.0, 2};
        QVERIFY(series.candles().front() == expected);
    }

    void the_tick_volume_stops_at_the_largest_number()
    {
        constexpr qint32 most = std::numeric_limits<qint32>::max();
        CandleSeries series;
        series.setCandles({flat(tenOClock, 1, most)});
        QCOMPARE(series.foldTick(1.0, 1.0, tenOClock + 1), TickEffect::LastCandle);
        QCOMPARE(series.candles().front().volume, most);
    }

    void a_senseless_bar_length_means_a_quarter_hour()
    {
        CandleSeries series;
        for (const qint64 bad : {Q_INT64_C(0), Q_INT64_C(-60000), std::numeric_limits<qint64>::min()}) {
            series.setTimeframeMs(60'000);
            series.setTimeframeMs(bad);
            QCOMPARE(series.timeframeMs(), 900'000);
        }
    }

    void takes_a_million_bars()
    {
        constexpr int million = 1'000'000;
        std::vector<Candle> bars;
        bars.reserve(million);
        for (int i = 0; i < million; ++i)
            bars.push_back(flat((million - i) * Q_INT64_C(60'000), i));
        CandleSeries series;
        series.setTimeframeMs(60'000);
        series.setCandles(std::move(bars));
        QCOMPARE(series.count(), million);
        QCOMPARE(series.candles().front().time, 60'000);
        QCOMPARE(series.foldTick(1.0, 1.0, (million + 1) * Q_INT64_C(60'000)), TickEffect::Appended);
    }
};

TAVORAN_TEST(TestCandleSeries)
#include "tst_CandleSeries.moc"
