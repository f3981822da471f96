#include "chart/gestures/Ruler.h"

#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

/// Plot (0, 0, 332, 278), bar 19 at column 331, 7 pixels a bar.
ChartView viewOf(const PriceRange& prices)
{
    ViewState state;
    state.rightBarIndex = 19.0;
    return ChartView(QSize(400, 300), state, 20, false).withPrices(prices);
}

} // namespace

class TestRuler final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void it_stretches_from_the_press_and_stays_after_the_release()
    {
        const ChartView view = viewOf({0.0, 278.0});
        Ruler ruler;
        ruler.setArmed(true);
        QVERIFY(ruler.isArmed());
        QVERIFY(!ruler.span());
        ruler.stretch(view, QPoint(5, 5)); // nothing was begun
        QVERIFY(!ruler.span());
        ruler.begin(QPoint(100, 50));
        QVERIFY((ruler.span() == Ruler::Span{QPoint(100, 50), QPoint(100, 50)}));
        QVERIFY(ruler.isStretching());
        ruler.stretch(view, QPoint(120, 60));
        ruler.finish();
        ruler.stretch(view, QPoint(200, 200));
        QVERIFY((ruler.span() == Ruler::Span{QPoint(100, 50), QPoint(120, 60)}));
        QVERIFY(!ruler.isStretching());
    }

    void it_ends_within_the_plot()
    {
        const ChartView view = viewOf({0.0, 278.0});
        Ruler ruler;
        ruler.setArmed(true);
        ruler.begin(QPoint(100, 50));
        ruler.stretch(view, QPoint(900, 900));
        QCOMPARE(ruler.span()->end, QPoint(331, 277));
        ruler.stretch(view, QPoint(-900, -900));
        QCOMPARE(ruler.span()->end, QPoint(0, 0));
    }

    void the_next_press_begins_anew()
    {
        Ruler ruler;
        ruler.setArmed(true);
        ruler.begin(QPoint(100, 50));
        ruler.finish();
        ruler.begin(QPoint(10, 20));
        QVERIFY((ruler.span() == Ruler::Span{QPoint(10, 20), QPoint(10, 20)}));
        ruler.clear();
        QVERIFY(!ruler.span());
        QVERIFY(!ruler.isStretching());
        QVERIFY(ruler.isArmed());
    }

    void arming_and_disarming_clear_it()
    {
        for (const bool on : {true, false}) {
            Ruler ruler;
            ruler.setArmed(true);
            ruler.begin(QPoint(100, 50));
            ruler.setArmed(on);
            QCOMPARE(ruler.isArmed(), on);
            QVERIFY(!ruler.span());
            QVERIFY(!ruler.isStretching());
        }
    }

    void it_tells_bars_points_and_percent()
    {
        const ChartView view = viewOf({1.1, 1.10278}); // 0.00001 a pixel
        // From 1.10200 to 1.10040: 160 pixels down, and ten bars to the left.
        const Ruler::Span span{QPoint(331, 78), QPoint(261, 238)};
        QCOMPARE(Ruler::text(view, span, 5), u"10 bars,  -160 points  (-0.15%)"_s);
        QCOMPARE(Ruler::text(view, {span.end, span.start}, 5), u"10 bars,  160 points  (0.15%)"_s);
        QCOMPARE(Ruler::text(view, span, 3), u"10 bars,  -2 points  (-0.15%)"_s);
        QCOMPARE(Ruler::text(view, span, 0), u"10 bars,  0 points  (-0.15%)"_s);
        QCOMPARE(Ruler::text(view, {span.start, span.start}, 5), u"0 bars,  0 points  (0.00%)"_s);
        // Beside the bars they are counted along their grid.
        QCOMPARE(Ruler::text(view, {QPoint(331, 78), QPoint(9, 78)}, 5), u"46 bars,  0 points  (0.00%)"_s);
    }

    void a_start_at_price_zero_is_zero_percent()
    {
        const ChartView view = viewOf({0.0, 278.0});
        QCOMPARE(view.priceAt(278), 0.0);
        QCOMPARE(
            Ruler::text(view, {QPoint(10, 278), QPoint(10, 178)}, 2), u"0 bars,  10000 points  (0.00%)"_s);
        QCOMPARE(Ruler::text(view, {QPoint(10, 178), QPoint(10, 278)}, 2),
            u"0 bars,  -10000 points  (-100.00%)"_s);
    }

    void endless_numbers_are_cut()
    {
        const ChartView view = viewOf({-1e15, 1e15});
        QCOMPARE(Ruler::text(view, {QPoint(331, 278), QPoint(331, 0)}, 99),
            u"0 bars,  9000000000000000000 points  (-200.00%)"_s);
    }

    void its_box_stands_beside_and_above_the_end()
    {
        const ChartView view = viewOf({0.0, 278.0});
        QCOMPARE(Ruler::box(view, QPoint(100, 100), 90), QRect(108, 78, 100, 18));
    }

    void its_box_flips_at_the_right_edge_and_at_the_top()
    {
        const ChartView view = viewOf({0.0, 278.0});
        QCOMPARE(Ruler::box(view, QPoint(224, 100), 90), QRect(232, 78, 100, 18)); // ends in the last column
        QCOMPARE(Ruler::box(view, QPoint(225, 100), 90), QRect(117, 78, 100, 18));
        QCOMPARE(Ruler::box(view, QPoint(100, 22), 90), QRect(108, 0, 100, 18));
        QCOMPARE(Ruler::box(view, QPoint(100, 21), 90), QRect(108, 29, 100, 18));
        QCOMPARE(Ruler::box(view, QPoint(331, 0), 90), QRect(223, 8, 100, 18));
    }
};

TAVORAN_TEST(TestRuler)
#include "tst_Ruler.moc"
