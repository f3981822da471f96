#include "chart/gestures/KeyboardCrosshair.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace {

using Move = KeyboardCrosshair::Move;
using fixtures::barTime;
using fixtures::wave;

ViewState stateAt(double rightBar, double barWidth = 7.0)
{
    ViewState state;
    state.rightBarIndex = rightBar;
    state.barWidth = barWidth;
    return state;
}

/// 400 by 300 pixels: a plot of 332 columns and 278 rows, without panes. 48 bars of 7 pixels fit in.
ChartView viewOf(const ViewState& state, qsizetype count, const PriceRange& prices = {1.1, 1.10278})
{
    return ChartView(QSize(400, 300), state, count, 0).withPrices(prices);
}

/// A crosshair on a bar, at its close.
KeyboardCrosshair onBar(const std::vector<Candle>& candles, qsizetype bar)
{
    KeyboardCrosshair crosshair;
    crosshair.walk(
        viewOf(stateAt(0), 1), candles, 0, CrosshairPlace{bar, candles[static_cast<std::size_t>(bar)].close});
    return crosshair;
}

} // namespace

class TestKeyboardCrosshair final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void arrows_step_and_shift_makes_it_ten()
    {
        const auto moveOf = [](int key, Qt::KeyboardModifiers modifiers = {}) {
            return KeyboardCrosshair::moveOf(key, modifiers);
        };
        QCOMPARE(moveOf(Qt::Key_Left), (Move{-1, 0}));
        QCOMPARE(moveOf(Qt::Key_Right, Qt::ShiftModifier), (Move{10, 0}));
        QCOMPARE(moveOf(Qt::Key_Up, Qt::ShiftModifier), (Move{0, 10}));
        QCOMPARE(moveOf(Qt::Key_Down, Qt::KeypadModifier), (Move{0, -1}));
        QVERIFY(moveOf(Qt::Key_Home)->bars < -1'000'000'000);
        QVERIFY(moveOf(Qt::Key_End)->bars > 1'000'000'000);
    }

    void other_keys_are_left_alone()
    {
        QVERIFY(!KeyboardCrosshair::moveOf(Qt::Key_PageUp, {}));
        QVERIFY(!KeyboardCrosshair::moveOf(Qt::Key_A, {}));
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
            QVERIFY(!KeyboardCrosshair::moveOf(Qt::Key_Left, modifier));
            QVERIFY(!KeyboardCrosshair::moveOf(Qt::Key_Home, modifier | Qt::ShiftModifier));
        }
    }

    void it_starts_at_the_newest_bar_in_view_and_the_close_of_the_bar_it_comes_to()
    {
        const std::vector<Candle> candles = wave(100);
        KeyboardCrosshair crosshair;
        QVERIFY(!crosshair.isShown());
        QVERIFY(!crosshair.place(candles));
        QCOMPARE(crosshair.walk(viewOf(stateAt(60), 100), candles, -1, std::nullopt), qsizetype{59});
        QVERIFY(crosshair.isShown());
        QCOMPARE(crosshair.place(candles), (CrosshairPlace{59, candles[59].close}));
    }

    void it_starts_where_the_mouse_is()
    {
        const std::vector<Candle> candles = wave(100);
        KeyboardCrosshair crosshair;
        const ChartView view = viewOf(stateAt(99), 100);
        QCOMPARE(crosshair.walk(view, candles, 1, CrosshairPlace{70, 1.25}), qsizetype{71});
        QCOMPARE(crosshair.place(candles), (CrosshairPlace{71, 1.25}));
        // And goes on from itself.
        crosshair.walk(view, candles, -10, CrosshairPlace{3, 9.0});
        QCOMPARE(crosshair.place(candles), (CrosshairPlace{61, 1.25}));
    }

    void it_ends_with_the_series()
    {
        const std::vector<Candle> candles = wave(100);
        KeyboardCrosshair crosshair;
        const ChartView view = viewOf(stateAt(99), 100);
        const qsizetype home = KeyboardCrosshair::moveOf(Qt::Key_Home, {})->bars;
        QCOMPARE(crosshair.walk(view, candles, -home, std::nullopt), qsizetype{99});
        QCOMPARE(crosshair.walk(view, candles, 1, std::nullopt), qsizetype{99});
        QCOMPARE(crosshair.walk(view, candles, home, std::nullopt), qsizetype{0});
        QCOMPARE(crosshair.walk(view, candles, -1, std::nullopt), qsizetype{0});
        // A mouse may stand beside the candles.
        crosshair.hide();
        QCOMPARE(crosshair.walk(view, candles, 0, CrosshairPlace{-7, 1.1}), qsizetype{0});
    }

    void without_candles_it_stays_hidden()
    {
        KeyboardCrosshair crosshair;
        const ChartView view = viewOf(stateAt(0), 0);
        QCOMPARE(crosshair.walk(view, {}, -1, CrosshairPlace{0, 1.0}), qsizetype{0});
        QVERIFY(!crosshair.isShown());
        crosshair.climb(view, 1, 5);
        crosshair.returnToPlot(view, 5);
        crosshair.setPrice(1.0);
        QVERIFY(!crosshair.isShown());
        QVERIFY(!crosshair.pixel(view, {}));
    }

    void it_stays_on_its_candle_whatever_comes()
    {
        std::vector<Candle> candles = wave(100);
        const KeyboardCrosshair crosshair = onBar(candles, 70);
        candles.push_back({barTime(100), 1, 1, 1, 1, 1});
        QCOMPARE(crosshair.place(candles)->bar, qsizetype{70});
        candles.erase(candles.begin(), candles.begin() + 20);
        QCOMPARE(crosshair.place(candles)->bar, qsizetype{50});
        candles.erase(candles.begin() + 50); // its own candle: the one before
        QCOMPARE(crosshair.place(candles)->bar, qsizetype{49});
        QCOMPARE(crosshair.place(fixtures::hours(wave(100)))->bar, qsizetype{17});
        QVERIFY(!crosshair.place({}));
        candles.erase(candles.begin(), candles.begin() + 60); // all that is left is later
        QCOMPARE(crosshair.place(candles)->bar, qsizetype{0});
    }

    void a_step_is_a_point_where_a_pixel_is_less()
    {
        const ChartView view = viewOf(stateAt(0), 1, {1.1, 1.10010}); // 28 pixels a point
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.10004, 1, 5), 1.10005);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.10004, -3, 5), 1.10001);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.100043, 1, 5), 1.10005);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.100043, -1, 5), 1.10004);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.100043, 0, 5), 1.100043);
    }

    void a_step_is_a_round_number_of_points_where_a_pixel_is_more()
    {
        const ChartView onePoint = viewOf(stateAt(0), 1); // one point a pixel
        QCOMPARE(KeyboardCrosshair::stepped(onePoint, 1.10123, 1, 5), 1.10124);
        const ChartView threePoints = viewOf(stateAt(0), 1, {1.1, 1.1 + 278 * 0.00003});
        QCOMPARE(KeyboardCrosshair::stepped(threePoints, 1.10123, 1, 5), 1.10125);
        QCOMPARE(KeyboardCrosshair::stepped(threePoints, 1.10125, 10, 5), 1.10175);
        QCOMPARE(KeyboardCrosshair::stepped(threePoints, 1.10125, -1, 5), 1.10120);
        const ChartView coin = viewOf(stateAt(0), 1, {60'000.0, 67'000.0}); // 25 a pixel
        QCOMPARE(KeyboardCrosshair::stepped(coin, 61'234.56, 1, 2), 61'250.0);
        QCOMPARE(KeyboardCrosshair::stepped(coin, 61'234.56, -1, 2), 61'200.0);
    }

    void steps_end_with_the_plot()
    {
        const ChartView view = viewOf(stateAt(0), 1); // one point a pixel
        const double top = KeyboardCrosshair::stepped(view, 1.1027, 1000, 5);
        QCOMPARE(top, 1.10278);
        QCOMPARE(view.pricePixel(top), 0);
        const double bottom = KeyboardCrosshair::stepped(view, 1.1027, -1000, 5);
        QCOMPARE(view.pricePixel(bottom), 277);
        QCOMPARE(KeyboardCrosshair::stepped(view, bottom, -1, 5), bottom);
    }

    void a_price_out_of_the_plot_comes_no_further_out()
    {
        const ChartView view = viewOf(stateAt(0), 1);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.2, 1, 5), 1.2);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.2, -1, 5), 1.19999);
        QCOMPARE(KeyboardCrosshair::stepped(view, 1.0, -10, 5), 1.0);
    }

    void prices_stay_whole_points_in_any_view()
    {
        QRandomGenerator random(20261122);
        for (int round = 0; round < 2000; ++round) {
            const int digits = static_cast<int>(random.bounded(6));
            const double low = random.bounded(70'000.0);
            const ChartView view = viewOf(stateAt(0), 1, {low, low + 1e-6 + random.bounded(500.0)});
            const double price = view.priceAt(random.bounded(278));
            for (const int steps : {1, 10, -1, -10}) {
                const double to = KeyboardCrosshair::stepped(view, price, steps, digits);
                QVERIFY(steps > 0 ? to >= price : to <= price);
                if (to == price)
                    continue;
                const double points = to * std::pow(10.0, digits);
                QVERIFY(std::abs(points - std::round(points)) < 1e-4);
                const int row = view.pricePixel(to);
                QVERIFY(row >= 0 && row <= 277);
                if (const double next = KeyboardCrosshair::stepped(view, to, steps, digits); next != to)
                    QVERIFY(view.pricePixel(next) != row); // every key can be seen
            }
        }
    }

    void it_comes_back_to_the_plot_on_a_whole_point()
    {
        const std::vector<Candle> candles = wave(10);
        KeyboardCrosshair crosshair = onBar(candles, 5);
        const ChartView view = viewOf(stateAt(9), 10, {1.100003, 1.102003});
        const auto returned = [&](double price) {
            crosshair.setPrice(price);
            crosshair.returnToPlot(view, 5);
            return crosshair.place(candles)->price;
        };
        QCOMPARE(returned(1.5), 1.102);
        QCOMPARE(returned(0.5), 1.10002);
        QCOMPARE(returned(1.1012345), 1.10123);
        QCOMPARE(returned(1.10123), 1.10123);
        QVERIFY(crosshair.placeIn(view, candles));
    }

    void a_plot_lower_than_a_point_still_holds_it()
    {
        const std::vector<Candle> candles = fixtures::flatBars(10, 1.234567);
        KeyboardCrosshair crosshair = onBar(candles, 5);
        const ChartView view = viewOf(stateAt(9), 10, {1.2345670 - 1e-9, 1.2345670 + 1e-9});
        for (const int steps : {0, 1, -1, 10}) {
            crosshair.climb(view, steps, 5);
            crosshair.returnToPlot(view, 5);
            QVERIFY(crosshair.placeIn(view, candles));
            QVERIFY(std::abs(crosshair.place(candles)->price - 1.234567) <= 1e-9);
        }
    }

    void its_pixel_is_where_bar_and_price_are_painted()
    {
        const std::vector<Candle> candles = wave(100);
        const KeyboardCrosshair crosshair = onBar(candles, 70);
        const ChartView view = viewOf(stateAt(99), 100, {1.08, 1.12});
        const QPoint pixel(view.barPixel(70), view.pricePixel(candles[70].close));
        QCOMPARE(crosshair.pixel(view, candles), pixel);
        QCOMPARE(crosshair.placeIn(view, candles), (CrosshairPlace{70, candles[70].close}));
    }

    void out_of_view_it_has_no_place_in_the_plot()
    {
        const std::vector<Candle> candles = wave(100);
        const KeyboardCrosshair crosshair = onBar(candles, 70);
        QVERIFY(!crosshair.placeIn(viewOf(stateAt(60), 100, {1.08, 1.12}), candles));
        QVERIFY(!crosshair.placeIn(viewOf(stateAt(99), 100, {1.2, 1.3}), candles));
        QCOMPARE(crosshair.place(candles)->bar, qsizetype{70});
    }

    void bars_of_one_pixel_are_told_apart()
    {
        const std::vector<Candle> candles = wave(600);
        const ChartView view = viewOf(stateAt(500.4, 1.0), 600, {1.08, 1.12});
        for (qsizetype bar = 200; bar < 500; ++bar)
            QCOMPARE(onBar(candles, bar).placeIn(view, candles)->bar, bar);
    }

    void a_bar_in_view_moves_nothing()
    {
        for (const double right : {60.0, 60.4, 60.9}) {
            const ViewState state = stateAt(right);
            for (const qsizetype bar : {14, 37, 60})
                QCOMPARE(KeyboardCrosshair::revealing(viewOf(state, 100), state, bar), state);
        }
    }

    void the_view_follows_no_further_than_needed()
    {
        ViewState state = stateAt(60.4);
        state.autoScroll = false;
        const auto rightFor = [&](qsizetype bar) {
            const ViewState moved = KeyboardCrosshair::revealing(viewOf(state, 100), state, bar);
            return moved.autoScroll ? -1.0 : moved.rightBarIndex;
        };
        QCOMPARE(rightFor(61), 61.0);
        QCOMPARE(rightFor(70), 70.0);
        QCOMPARE(rightFor(12), 59.0);
        QCOMPARE(rightFor(0), 47.0);
        QCOMPARE(rightFor(99), -1.0); // follows the market
    }

    void leaving_the_newest_bar_ends_following_the_market()
    {
        const ViewState state = stateAt(99);
        const ViewState moved = KeyboardCrosshair::revealing(viewOf(state, 100), state, 10);
        QCOMPARE(moved.autoScroll, false);
        QCOMPARE(moved.rightBarIndex, 57.0);
    }

    void every_bar_can_be_brought_into_the_plot()
    {
        QRandomGenerator random(20261122);
        for (int round = 0; round < 3000; ++round) {
            const qsizetype count = random.bounded(1, 2000);
            ViewState state
                = stateAt(random.bounded(1.0) * static_cast<double>(count - 1), 1.0 + random.bounded(39.0));
            state.chartShift = random.bounded(2) == 1;
            state.autoScroll = false;
            const QSize size(240 + random.bounded(1000), 160 + random.bounded(500));
            const qsizetype bar = random.bounded(static_cast<quint32>(count));
            const ViewState moved
                = KeyboardCrosshair::revealing(ChartView(size, state, count, 0), state, bar);
            const ChartView view(size, moved, count, 0);
            QVERIFY(view.visible().contains(bar));
            QVERIFY(view.barPixel(bar) >= view.plot().left() && view.barPixel(bar) <= view.plot().right());
            QVERIFY(moved.rightBarIndex >= 0.0 && moved.rightBarIndex <= static_cast<double>(count - 1));
            QCOMPARE(KeyboardCrosshair::revealing(view, moved, bar), moved);
        }
    }
};

TAVORAN_TEST(TestKeyboardCrosshair)
#include "tst_KeyboardCrosshair.moc"
