#include "chart/gestures/PanZoom.h"

#include "support/TestMain.h"

namespace {

ViewState stateAt(double rightBarIndex, double barWidth)
{
    ViewState state;
    state.rightBarIndex = rightBarIndex;
    state.barWidth = barWidth;
    return state;
}

} // namespace

class TestPanZoom final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_drag_moves_the_view_by_as_many_bars_as_it_covers()
    {
        const ViewState start = stateAt(50.0, 8.0);
        PanZoom pan;
        QVERIFY(!pan.isPanning());
        pan.begin(100, start);
        QVERIFY(pan.isPanning());
        QCOMPARE(pan.dragged(180, start, 100).rightBarIndex, 40.0);
        QCOMPARE(pan.dragged(96, start, 100).rightBarIndex, 50.5);
        pan.renumber(7.0);
        QCOMPARE(pan.dragged(180, start, 100).rightBarIndex, 47.0);
        pan.end();
        QVERIFY(!pan.isPanning());
    }

    void a_drag_ends_with_the_series_and_follows_the_market_from_its_end()
    {
        const ViewState start = stateAt(50.0, 8.0);
        PanZoom pan;
        pan.begin(100, start);
        QCOMPARE(pan.dragged(9000, start, 100), [&] {
            ViewState first = start;
            first.rightBarIndex = 0.0;
            first.autoScroll = false;
            return first;
        }());
        QCOMPARE(pan.dragged(-9000, start, 100).rightBarIndex, 99.0);
        QVERIFY(pan.dragged(-9000, start, 100).autoScroll);
        QVERIFY(!pan.dragged(-284, start, 100).autoScroll); // one bar short of it
        QCOMPARE(pan.dragged(0, start, 0), start);
    }

    void a_step_back_undoes_a_step()
    {
        QCOMPARE(PanZoom::wider(10.0), 12.0);
        QCOMPARE(PanZoom::narrower(12.0), 10.0);
        QCOMPARE(PanZoom::wheeled(10.0, 120), 12.0);
        QCOMPARE(PanZoom::wheeled(12.0, -120), 10.0);
        QCOMPARE(PanZoom::wheeled(12.0, 0), 10.0);
    }

    void bars_have_a_least_and_a_largest_width()
    {
        QCOMPARE(PanZoom::narrower(ViewState::minBarWidth), ViewState::minBarWidth);
        QCOMPARE(PanZoom::wheeled(ViewState::minBarWidth, -120), ViewState::minBarWidth);
        QCOMPARE(PanZoom::wider(ViewState::maxBarWidth), ViewState::maxBarWidth);
        QCOMPARE(PanZoom::wheeled(ViewState::maxBarWidth, 120), ViewState::maxBarWidth);
    }
};

TAVORAN_TEST(TestPanZoom)
#include "tst_PanZoom.moc"
