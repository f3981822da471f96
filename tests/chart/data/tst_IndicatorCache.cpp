#include "chart/data/IndicatorCache.h"

#include "chart/series/CandleSeries.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 minute = 60'000;

std::vector<Candle> walk(QRandomGenerator& random, int count)
{
    std::vector<Candle> candles;
    double price = 1.0 + random.bounded(1.0);
    for (int i = 0; i < count; ++i) {
        candles.push_back({i * minute, price, price, price, price, 1});
        price += (random.bounded(21) - 10) * 0.0001;
    }
    return candles;
}

MovingAverageSpec averageAtRandom(QRandomGenerator& random)
{
    static constexpr std::array periods{-3, 0, 1, 2, 3, 7, 20, 50, 400, 1'000'000'000};
    QList<IndicatorKind> kinds;
    for (const IndicatorRow& row : indicatorTable()) {
        if (!row.pane)
            kinds.append(row.kind);
    }
    return {kinds.at(random.bounded(static_cast<int>(kinds.size()))),
        periods.at(static_cast<std::size_t>(random.bounded(static_cast<int>(periods.size())))),
        QColor::fromRgb(random.generate())};
}

QList<IndicatorPane> rsiOver(qint32 period)
{
    return {{IndicatorKind::Rsi, period, true}};
}

/// Bit for bit; no values at all stand for a gap at every bar.
bool areSame(IndicatorCache::Values cached, const std::vector<double>& expected)
{
    if (cached.empty())
        return std::all_of(expected.begin(), expected.end(), [](double value) { return std::isnan(value); });
    return cached.size() == expected.size()
        && std::memcmp(cached.data(), expected.data(), expected.size() * sizeof(double)) == 0;
}

} // namespace

class TestIndicatorCache final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_equal_the_whole_computation_after_any_mix_of_changes_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 8; ++seed)
            QTest::addRow("walk %u", seed) << seed;
    }
    void values_equal_the_whole_computation_after_any_mix_of_changes()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        CandleSeries series;
        series.setTimeframeMs(minute);
        QList<MovingAverageSpec> averages;
        QList<IndicatorPane> panes;
        IndicatorCache cache;
        qint64 now = 0;
        double price = 1.5;
        for (int step = 0; step < 1500; ++step) {
            switch (random.bounded(40)) {
            case 0:
                series.setCandles(
                    walk(random, random.bounded(3) == 0 ? random.bounded(6) : random.bounded(600)));
                now = static_cast<qint64>(series.count()) * minute;
                cache.forgetValues();
                break;
            case 1:
                averages.clear();
                for (int count = random.bounded(5); count > 0; --count)
                    averages.append(averageAtRandom(random));
                cache.setAverages(averages);
                break;
            case 2:
                averages.append(averageAtRandom(random));
                cache.setAverages(averages);
                break;
            case 3:
                panes = hiddenPanes();
                for (IndicatorPane& pane : panes)
                    pane = {pane.kind, random.bounded(-1, 30), random.bounded(3) > 0};
                cache.setPanes(panes);
                break;
            default: // ticks, a third of which begin a new bar or skip some
                now += random.bounded(3) == 0 ? minute * random.bounded(1, 4) : 0;
                price += (random.bounded(21) - 10) * 0.0001;
                series.foldTick(price, price + 0.0002, now);
                break;
            }
            if (random.bounded(3) == 0) // several changes may come between two frames
                continue;
            cache.update(series.candles());
            QCOMPARE(cache.averages().size(), static_cast<std::size_t>(averages.size()));
            for (qsizetype i = 0; i < averages.size(); ++i)
                QVERIFY2(areSame(cache.averages()[static_cast<std::size_t>(i)],
                             indicators::movingAverage(series.candles(), averages.at(i))),
                    qPrintable(u"step %1, average %2"_s.arg(step).arg(i)));
            std::size_t shown = 0;
            for (const IndicatorPane& pane : panes) {
                if (pane.shown)
                    QVERIFY2(areSame(cache.panes()[shown++],
                                 indicators::movingAverage(series.candles(), {pane.kind, pane.period, {}})),
                        qPrintable(u"step %1"_s.arg(step)));
            }
            QCOMPARE(cache.panes().size(), shown);
        }
    }

    void a_tick_costs_one_value_however_long_the_series_is_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("a thousand") << 1'000;
        QTest::newRow("a million") << 1'000'000;
    }
    void a_tick_costs_one_value_however_long_the_series_is()
    {
        QFETCH(int, count);
        QRandomGenerator random(5);
        CandleSeries series;
        series.setTimeframeMs(minute);
        series.setCandles(walk(random, count));
        IndicatorCache cache;
        cache.setAverages({{IndicatorKind::Sma, 20, {}}, {IndicatorKind::Ema, 50, {}}});
        cache.setPanes(rsiOver(14));
        cache.update(series.candles());
        const quint64 whole = cache.computed();
        QCOMPARE(whole, static_cast<quint64>(count) * 3);
        for (int tick = 0; tick < 10; ++tick) {
            series.foldTick(1.5, 1.5, series.candles().back().time);
            cache.update(series.candles());
        }
        QCOMPARE(cache.computed() - whole, quint64{3} * 10);
        series.foldTick(1.5, 1.5, series.candles().back().time + minute);
        cache.update(series.candles());
        // The bar before is settled, and the new one is computed.
        QCOMPARE(cache.computed() - whole, quint64{3 * 10 + 3 * 2});
    }

    void nothing_is_computed_before_it_is_asked_for()
    {
        QRandomGenerator random(6);
        IndicatorCache cache;
        cache.setAverages({{IndicatorKind::Sma, 20, {}}});
        cache.setPanes(rsiOver(14));
        cache.setPanes(rsiOver(21));
        cache.setPanes(hiddenPanes());
        cache.update(walk(random, 100));
        QCOMPARE(cache.computed(), quint64{100});
        QVERIFY(cache.panes().empty());
    }

    void averages_of_two_colours_share_their_values()
    {
        QRandomGenerator random(7);
        const std::vector<Candle> candles = walk(random, 100);
        IndicatorCache cache;
        QList<MovingAverageSpec> averages;
        for (int i = 0; i < 1000; ++i)
            averages.append({IndicatorKind::Sma, i % 2 == 0 ? 1 : -i, QColor(Qt::red)});
        cache.setAverages(averages);
        cache.update(candles);
        QCOMPARE(cache.computed(), quint64{100});
        QCOMPARE(cache.averages().size(), std::size_t{1000});
        QCOMPARE(cache.averages().front().data(), cache.averages().back().data());
    }

    void averages_that_stay_are_not_computed_again()
    {
        QRandomGenerator random(8);
        const std::vector<Candle> candles = walk(random, 100);
        const MovingAverageSpec first{IndicatorKind::Sma, 20, {}};
        const MovingAverageSpec second{IndicatorKind::Ema, 20, {}};
        IndicatorCache cache;
        cache.setAverages({first});
        cache.update(candles);
        QCOMPARE(cache.computed(), quint64{100});
        cache.setAverages({second, first});
        cache.update(candles);
        QCOMPARE(cache.computed(), quint64{100 + 100 + 1});
        QVERIFY(areSame(cache.averages()[0], indicators::movingAverage(candles, second)));
        QVERIFY(areSame(cache.averages()[1], indicators::movingAverage(candles, first)));
    }

    void absurd_periods_cost_nothing()
    {
        QRandomGenerator random(9);
        const std::vector<Candle> candles = walk(random, 10'000);
        IndicatorCache cache;
        QList<MovingAverageSpec> averages;
        for (int i = 0; i < 5000; ++i)
            averages.append({IndicatorKind::Ema, 1'000'000'000 + i, {}});
        cache.setAverages(averages);
        cache.setPanes(rsiOver(std::numeric_limits<qint32>::max()));
        cache.update(candles);
        QCOMPARE(cache.computed(), quint64{0});
        QVERIFY(cache.panes().front().empty());
        for (const IndicatorCache::Values& values : cache.averages())
            QVERIFY(values.empty());
    }

    void a_shorter_series_begins_anew()
    {
        QRandomGenerator random(10);
        const std::vector<Candle> candles = walk(random, 100);
        IndicatorCache cache;
        cache.setAverages({{IndicatorKind::Sma, 3, {}}});
        for (const std::size_t count : {std::size_t{100}, std::size_t{99}, std::size_t{40}, std::size_t{2}}) {
            const std::span<const Candle> part = std::span(candles).first(count);
            cache.update(part);
            QVERIFY(areSame(
                cache.averages().front(), indicators::movingAverage(part, {IndicatorKind::Sma, 3, {}})));
        }
    }

    void without_bars_there_are_no_values()
    {
        IndicatorCache cache;
        cache.setAverages({{IndicatorKind::Sma, 1, {}}});
        cache.setPanes(rsiOver(2));
        cache.update({});
        QVERIFY(cache.averages().front().empty());
        QVERIFY(cache.panes().front().empty());
    }
};

TAVORAN_TEST(TestIndicatorCache)
#include "tst_IndicatorCache.moc"
