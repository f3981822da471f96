#include "chart/data/ChartScene.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

#include <limits>

using namespace fixtures;

namespace {

constexpr QSize size(400, 300);

ChartScene sceneOf(int count)
{
    ChartScene scene;
    scene.setCandles(wave(count));
    scene.setState(scene.atEnd());
    return scene;
}

} // namespace

class TestChartScene final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_tick_that_repeats_itself_changes_nothing()
    {
        ChartScene scene = sceneOf(30);
        QCOMPARE(scene.tick(1.1, 1.2, barTime(29) + 1), std::optional(TickEffect::LastCandle));
        QCOMPARE(scene.tick(1.1, 1.2, barTime(3)), std::nullopt);
    }

    void unusable_prices_change_nothing()
    {
        ChartScene scene = sceneOf(30);
        QCOMPARE(scene.tick(std::numeric_limits<double>::quiet_NaN(), 1.2, barTime(30)), std::nullopt);
        QCOMPARE(scene.tick(1.1, 1e300, barTime(30)), std::nullopt);
        QCOMPARE(scene.bid(), 0.0);
        QCOMPARE(scene.ask(), 0.0);
        QCOMPARE(scene.series().count(), 30);
    }

    void a_late_tick_still_moves_the_quote()
    {
        ChartScene scene = sceneOf(30);
        QCOMPARE(scene.tick(1.1, 1.2, barTime(3)), std::optional(TickEffect::Nothing));
        QCOMPARE(scene.bid(), 1.1);
        QCOMPARE(scene.ask(), 1.2);
    }

    void a_missing_price_moves_the_quote_but_builds_no_bar()
    {
        ChartScene scene = sceneOf(30);
        QCOMPARE(scene.tick(5.0, 6.0, barTime(29)), std::optional(TickEffect::LastCandle));
        const double top = scene.view(size).prices().max;
        const std::vector<Candle> bars = scene.series().candles();
        QCOMPARE(scene.tick(7.0, 0.0, barTime(30)), std::optional(TickEffect::Nothing));
        QCOMPARE(scene.bid(), 7.0);
        QCOMPARE(scene.ask(), 0.0);
        QVERIFY(scene.series().candles() == bars);
        QVERIFY(scene.view(size).prices().contains(7.0));
        QVERIFY(scene.view(size).prices().max > top);
        QCOMPARE(scene.tick(0.0, 0.0, barTime(30)), std::optional(TickEffect::Nothing));
        QCOMPARE(scene.bid(), 0.0);
        QVERIFY(!scene.view(size).prices().contains(7.0));
        QCOMPARE(scene.tick(0.0, 0.0, barTime(30)), std::nullopt);
    }

    void a_new_bar_is_followed_only_while_scrolling()
    {
        ChartScene scene = sceneOf(30);
        const quint64 revision = scene.seriesRevision();
        QCOMPARE(scene.tick(1.1, 1.1, barTime(30)), std::optional(TickEffect::Appended));
        QCOMPARE(scene.state().rightBarIndex, 30.0);
        QVERIFY(scene.seriesRevision() != revision);
        scene.setState(scene.withAutoScroll(false));
        QCOMPARE(scene.tick(1.1, 1.1, barTime(31)), std::optional(TickEffect::Appended));
        QCOMPARE(scene.state().rightBarIndex, 30.0);
    }

    void a_place_is_found_in_another_reading_of_the_bars()
    {
        const std::vector<Candle> all = wave(60);
        for (const double index : {20.0, 20.4, 20.5, 20.7, 0.0, 29.0}) {
            ChartScene scene;
            scene.setCandles({all.begin() + 10, all.begin() + 40});
            ViewState back = scene.withAutoScroll(false);
            back.rightBarIndex = index;
            scene.setState(back);
            const auto place = scene.place();
            QVERIFY(place);
            scene.setCandles(all); // more on both sides
            QCOMPARE(scene.at(*place).rightBarIndex, index + 10.0);
            QVERIFY(!scene.at(*place).autoScroll);
            std::vector<Candle> gappy = all;
            gappy.erase(gappy.begin() + 2, gappy.begin() + 5); // bars of long ago are missing
            scene.setCandles(gappy);
            QCOMPARE(scene.at(*place).rightBarIndex, index + 7.0);
        }
        // The bar at the edge itself is missing: the one before it stands there.
        ChartScene scene;
        scene.setCandles(all);
        scene.setState(scene.atEnd());
        scene.setState(scene.withAutoScroll(false));
        const auto place = scene.place();
        std::vector<Candle> without = all;
        without.back().time += quarterHour;
        scene.setCandles(without);
        QCOMPARE(scene.at(*place).rightBarIndex, 58.0);
    }

    void a_place_beyond_the_bars_is_their_nearest_end()
    {
        const std::vector<Candle> all = wave(60);
        ChartScene scene;
        scene.setCandles(all);
        ViewState back = scene.withAutoScroll(false);
        back.rightBarIndex = 30.4;
        scene.setState(back);
        const auto place = scene.place();
        scene.setCandles({all.begin() + 40, all.end()});
        QCOMPARE(scene.at(*place).rightBarIndex, 0.0);
        scene.setCandles({all.begin(), all.begin() + 20});
        QCOMPARE(scene.at(*place).rightBarIndex, 19.0);
        scene.setCandles({});
        QCOMPARE(scene.at(*place).rightBarIndex, 0.0);
    }

    void a_view_beyond_the_bars_stands_so_far_from_the_newest()
    {
        const std::vector<Candle> all = wave(60);
        ChartScene scene;
        scene.setCandles(all);
        ViewState back = scene.withAutoScroll(false);
        back.rightBarIndex = 50.0;
        scene.setState(back);
        scene.setCandles({all.begin(), all.begin() + 20}); // the view stays where it is
        const auto place = scene.place();
        QVERIFY(place);
        QCOMPARE(place->time, barTime(19));
        QCOMPARE(place->beyond, 31.0);
    }

    void there_is_no_place_while_following_or_without_bars()
    {
        QVERIFY(!sceneOf(30).place());
        ChartScene empty;
        empty.setState(empty.withAutoScroll(false));
        QVERIFY(!empty.place());
    }

    void the_last_view_is_known_until_something_changes()
    {
        ChartScene scene = sceneOf(30);
        QVERIFY(!scene.lastView());
        const ChartView shown = scene.view(size);
        QVERIFY(scene.lastView());
        QVERIFY(scene.lastView()->view == shown);
        scene.setState(scene.withBarWidth(9.0));
        QVERIFY(!scene.lastView());
        QVERIFY(!(scene.view(size) == shown));
    }

    void the_view_fits_the_size_it_is_asked_for()
    {
        const ChartScene scene = sceneOf(30);
        QCOMPARE(scene.view(size).size(), size);
        QCOMPARE(scene.view(QSize(800, 600)).size(), QSize(800, 600));
        QCOMPARE(scene.view(QSize(0, 0)).size(), QSize(0, 0));
    }

    void the_largest_volume_is_that_of_the_visible_bars()
    {
        std::vector<Candle> candles = wave(500);
        candles.front().volume = 1'000'000;
        candles.back().volume = 5000;
        ChartScene scene;
        QCOMPARE(scene.quotedView(size).largestVolume, 1);
        scene.setCandles(candles);
        scene.setState(scene.atEnd());
        QCOMPARE(scene.quotedView(size).largestVolume, 5000);
    }

    void a_bar_beside_the_series_has_no_candle()
    {
        const ChartScene scene = sceneOf(30);
        QCOMPARE(scene.candleAt(29)->time, barTime(29));
        QVERIFY(!scene.candleAt(30));
        QVERIFY(!scene.candleAt(-1));
    }
};

TAVORAN_TEST(TestChartScene)
#include "tst_ChartScene.moc"
