#include "chart/gestures/LevelDrag.h"

#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// Plot (0, 0, 332, 278); one unit of price is one pixel, 278 at the top.
ChartView pixelView()
{
    return ChartView(QSize(400, 300), ViewState(), 1, false).withPrices({0.0, 278.0});
}

/// 0.00001 a pixel from 1.10278 at the top.
ChartView pipView()
{
    return ChartView(QSize(400, 300), ViewState(), 1, false).withPrices({1.1, 1.10278});
}

TradeLevel levelAt(double price, const QString& id = u"1"_s, const QString& kind = u"SL"_s)
{
    return {id, kind, price, u"label"_s, QColor(Qt::red), Qt::DashLine, true};
}

double priceAtRow(int y)
{
    return 278.0 - y - 0.5;
}

} // namespace

class TestLevelDrag final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_level_is_taken_within_six_pixels()
    {
        const QList<TradeLevel> levels{levelAt(priceAtRow(100))};
        for (int y = 80; y < 120; ++y) {
            LevelDrag drag;
            QCOMPARE(drag.begin(levels, pixelView(), y), y >= 94 && y <= 106);
            QCOMPARE(drag.isActive(), y >= 94 && y <= 106);
            QCOMPARE(drag.index(), qsizetype{y >= 94 && y <= 106 ? 0 : -1});
        }
    }

    void fixed_and_hidden_levels_are_not_taken()
    {
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        QList<TradeLevel> levels{
            levelAt(priceAtRow(100)), levelAt(278.4), levelAt(-0.4), levelAt(notANumber)};
        levels.first().draggable = false;
        for (int y = -5; y < 285; ++y)
            QCOMPARE(LevelDrag::levelAt(levels, pixelView(), y), qsizetype{-1});
        QCOMPARE(LevelDrag::levelAt({}, pixelView(), 100), qsizetype{-1});
    }

    void the_nearest_of_several_levels_is_taken()
    {
        const QList<TradeLevel> levels{levelAt(priceAtRow(100), u"1"_s), levelAt(priceAtRow(108), u"2"_s),
            levelAt(priceAtRow(108), u"3"_s), levelAt(priceAtRow(200), u"4"_s)};
        QCOMPARE(LevelDrag::levelAt(levels, pixelView(), 103), qsizetype{0});
        QCOMPARE(LevelDrag::levelAt(levels, pixelView(), 106), qsizetype{2}); // the one painted last
        QCOMPARE(LevelDrag::levelAt(levels, pixelView(), 150), qsizetype{-1});
    }

    void the_price_follows_the_pointer_within_the_plot()
    {
        const QList<TradeLevel> levels{levelAt(priceAtRow(100))};
        LevelDrag drag;
        QVERIFY(drag.begin(levels, pixelView(), 103));
        QCOMPARE(drag.price(), priceAtRow(100));
        drag.move(pixelView(), 50);
        QCOMPARE(drag.price(), 228.0);
        drag.move(pixelView(), -500);
        QCOMPARE(drag.price(), 278.0);
        drag.move(pixelView(), 500);
        QCOMPARE(drag.price(), 1.0); // the last row inside
        drag.move(pixelView(), 103); // back in the row of the press
        QCOMPARE(drag.price(), 175.0);
    }

    void the_new_price_is_rounded_to_the_digits()
    {
        const QList<TradeLevel> levels{levelAt(1.10200, u"abc"_s, u"TP"_s)};
        const int row = pipView().pricePixel(1.102);
        for (const auto& [digits, price] : {std::pair(5, 1.10178), std::pair(4, 1.1018), std::pair(2, 1.10),
                 std::pair(0, 1.0), std::pair(-3, 1.0), std::pair(99, 1.10178)}) {
            LevelDrag drag;
            QVERIFY(drag.begin(levels, pipView(), row));
            drag.move(pipView(), 100);
            const std::optional<LevelDrag::Drop> drop = drag.drop(digits);
            QVERIFY(drop);
            QCOMPARE(drop->tradeId, u"abc"_s);
            QCOMPARE(drop->kind, u"TP"_s);
            QCOMPARE(drop->price, price);
            QVERIFY(!drag.isActive());
        }
    }

    void a_click_without_moving_asks_for_nothing()
    {
        const QList<TradeLevel> levels{levelAt(1.1020012)}; // finer than the digits
        LevelDrag drag;
        QVERIFY(drag.begin(levels, pipView(), pipView().pricePixel(1.102) + 3));
        drag.move(pipView(), pipView().pricePixel(1.102) + 3); // sideways
        QCOMPARE(drag.price(), 1.1020012);
        QVERIFY(!drag.drop(5));
    }

    void a_click_after_a_drag_asks_for_nothing()
    {
        const QList<TradeLevel> levels{levelAt(1.1020012)}; // finer than the digits
        const int row = pipView().pricePixel(1.102);
        LevelDrag drag;
        QVERIFY(drag.begin(levels, pipView(), row));
        drag.move(pipView(), 50);
        QVERIFY(drag.drop(5));
        QVERIFY(drag.begin(levels, pipView(), row));
        QCOMPARE(drag.price(), 1.1020012);
        drag.move(pipView(), row);
        QCOMPARE(drag.price(), 1.1020012);
        QVERIFY(!drag.drop(5));
    }

    void a_drag_back_to_the_old_price_asks_for_nothing()
    {
        const QList<TradeLevel> levels{levelAt(178.0)};
        LevelDrag drag;
        QVERIFY(drag.begin(levels, pixelView(), 100));
        drag.move(pixelView(), 150);
        drag.move(pixelView(), 100);
        QVERIFY(!drag.drop(5));
        QVERIFY(drag.begin(levels, pixelView(), 100));
        drag.move(pixelView(), 101);
        QCOMPARE(drag.drop(5)->price, 177.0);
    }

    void prices_that_differ_by_less_than_the_tolerance_are_the_same()
    {
        for (const auto& [old, asks] : {std::pair(178.0 + 1e-11, false), std::pair(178.0 - 1e-11, false),
                 std::pair(178.0 + 1e-9, true), std::pair(178.0 - 1e-9, true)}) {
            LevelDrag drag;
            QVERIFY(drag.begin({levelAt(old)}, pixelView(), 100));
            drag.move(pixelView(), 150);
            drag.move(pixelView(), 100); // 178 exactly
            QCOMPARE(drag.drop(5).has_value(), asks);
        }
    }

    void a_level_dragged_to_zero_or_below_asks_for_nothing()
    {
        const ChartView view = pixelView().withPrices({-139.0, 139.0});
        for (const auto& [row, asks] : {std::pair(138, true), std::pair(139, false), std::pair(200, false)}) {
            LevelDrag drag;
            QVERIFY(drag.begin({levelAt(50.5)}, view, view.pricePixel(50.5)));
            drag.move(view, row);
            QCOMPARE(drag.drop(2).has_value(), asks);
        }
        LevelDrag coarse; // rounds to zero
        const ChartView small = pixelView().withPrices({0.0, 0.278});
        QVERIFY(coarse.begin({levelAt(0.2)}, small, small.pricePixel(0.2)));
        coarse.move(small, 270);
        QVERIFY(!coarse.drop(0));
    }

    void a_price_beyond_all_reason_asks_for_nothing()
    {
        for (const auto& [top, asks] : {std::pair(1e12, true), std::pair(1e300, false)}) {
            const ChartView view = pixelView().withPrices({0.0, top});
            LevelDrag drag;
            QVERIFY(drag.begin({levelAt(top / 2)}, view, view.pricePixel(top / 2)));
            drag.move(view, 20);
            QCOMPARE(drag.drop(2).has_value(), asks);
        }
    }

    void the_level_is_followed_through_a_new_list()
    {
        LevelDrag drag;
        QVERIFY(drag.begin({levelAt(priceAtRow(100), u"1"_s, u"SL"_s)}, pixelView(), 100));
        drag.move(pixelView(), 50);
        TradeLevel relabelled = levelAt(priceAtRow(100), u"1"_s, u"SL"_s);
        relabelled.label = u"other"_s;
        QVERIFY(drag.follow({levelAt(7.0, u"1"_s, u"TP"_s), levelAt(7.0, u"2"_s, u"SL"_s), relabelled}));
        QCOMPARE(drag.index(), qsizetype{2});
        QCOMPARE(drag.price(), 228.0);
        QVERIFY((drag.drop(5) == LevelDrag::Drop{u"1"_s, u"SL"_s, 228.0}));
    }

    void a_level_that_is_gone_ends_the_drag()
    {
        for (const QList<TradeLevel>& levels : {QList<TradeLevel>(),
                 QList{
                     levelAt(priceAtRow(100), u"1"_s, u"TP"_s), levelAt(priceAtRow(100), u"2"_s, u"SL"_s)}}) {
            LevelDrag drag;
            QVERIFY(drag.begin({levelAt(priceAtRow(100), u"1"_s, u"SL"_s)}, pixelView(), 100));
            drag.move(pixelView(), 50);
            QVERIFY(!drag.follow(levels));
            QVERIFY(!drag.isActive());
            QCOMPARE(drag.index(), qsizetype{-1});
            drag.move(pixelView(), 60);
            QVERIFY(!drag.drop(5));
            // It does not come back to life.
            QVERIFY(!drag.follow({levelAt(priceAtRow(100), u"1"_s, u"SL"_s)}));
        }
    }

    void a_level_whose_price_changed_ends_the_drag()
    {
        LevelDrag drag;
        QVERIFY(drag.begin({levelAt(priceAtRow(100))}, pixelView(), 100));
        drag.move(pixelView(), 50);
        QVERIFY(!drag.follow({levelAt(priceAtRow(101))}));
        QVERIFY(!drag.drop(5));
    }

    void a_level_that_became_fixed_ends_the_drag()
    {
        LevelDrag drag;
        TradeLevel level = levelAt(priceAtRow(100));
        QVERIFY(drag.begin({level}, pixelView(), 100));
        drag.move(pixelView(), 50);
        level.draggable = false;
        QVERIFY(!drag.follow({level}));
        QVERIFY(!drag.drop(5));
    }

    void a_cancelled_drag_asks_for_nothing()
    {
        LevelDrag drag;
        QVERIFY(!drag.drop(5));
        QVERIFY(drag.begin({levelAt(priceAtRow(100))}, pixelView(), 100));
        drag.move(pixelView(), 50);
        drag.cancel();
        QCOMPARE(drag.index(), qsizetype{-1});
        QVERIFY(!drag.drop(5));
    }
};

TAVORAN_TEST(TestLevelDrag)
#include "tst_LevelDrag.moc"
