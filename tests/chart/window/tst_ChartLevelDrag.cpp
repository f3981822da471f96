#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using fixtures::showChart;

namespace {

/// The price in the middle of a pixel row.
double priceAtRow(const ChartWidget& chart, int row)
{
    return (chart.view().priceAt(row) + chart.view().priceAt(row + 1)) / 2;
}

TradeLevel levelAt(double price, const QString& id = u"trade/1"_s, const QString& kind = u"SL"_s)
{
    return {id, kind, price, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true};
}

void press(ChartWidget& chart, const QPoint& position)
{
    QTest::mousePress(&chart, Qt::LeftButton, {}, position);
}

void release(ChartWidget& chart, const QPoint& position)
{
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, position);
}

/// A shown chart with one level in row 100 and a record of what its hand asks for.
struct LevelChart {
    explicit LevelChart(int bars = 100)
    {
        showChart(chart, bars);
        level = levelAt(priceAtRow(chart, 100));
        chart.setTradeLevels({level});
    }

    /// Takes the level and drags it to row 60, where it is still in the hand.
    void take()
    {
        press(chart, QPoint(50, 100));
        QTest::mouseMove(&chart, QPoint(50, 60));
        QCOMPARE(chart.frame().draggedLevel, qsizetype{0});
    }

    /// Whether the hand is empty, and tells so.
    [[nodiscard]] bool hasLetGo() const
    {
        return chart.frame().draggedLevel == -1 && chart.cursor().shape() == Qt::ArrowCursor;
    }

    ChartWidget chart;
    QSignalSpy dragged{&chart, &ChartWidget::levelDragged};
    TradeLevel level;
};

} // namespace

class TestChartLevelDrag final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_dropped_level_asks_for_the_price_under_the_pointer()
    {
        LevelChart c;
        c.chart.setDigits(4);
        c.chart.setTradeLevels({c.level, levelAt(priceAtRow(c.chart, 200), u"2"_s, u"TP"_s)});
        fixtures::drag(c.chart, QPoint(50, 103), QPoint(80, 40));
        QCOMPARE(c.dragged.count(), 1);
        const double price = std::round(c.chart.view().priceAt(40) * 1e4) / 1e4;
        QCOMPARE(c.dragged.first(), (QList<QVariant>{u"trade/1"_s, u"SL"_s, price}));
        fixtures::drag(c.chart, QPoint(50, 194), QPoint(80, 240));
        QCOMPARE(c.dragged.count(), 2);
        QCOMPARE(c.dragged.last().at(0).toString(), u"2"_s);
        QCOMPARE(c.dragged.last().at(1).toString(), u"TP"_s);
        QCOMPARE(c.chart.rightBarIndex(), 99.0);
    }

    void the_line_stays_where_the_server_has_it()
    {
        LevelChart c;
        const QImage before = c.chart.grab().toImage();
        fixtures::drag(c.chart, QPoint(50, 100), QPoint(50, 40));
        QCOMPARE(c.dragged.count(), 1);
        fixtures::leave(c.chart);
        QCOMPARE(c.chart.tradeLevels(), QList{c.level});
        QVERIFY(c.hasLetGo());
        QCOMPARE(c.chart.grab().toImage(), before);
    }

    void a_press_seven_pixels_away_pans()
    {
        LevelChart c;
        fixtures::drag(c.chart, QPoint(50, 107), QPoint(57, 40));
        QCOMPARE(c.chart.rightBarIndex(), 98.0);
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_fixed_level_pans()
    {
        LevelChart c;
        c.level.draggable = false;
        c.chart.setTradeLevels({c.level});
        fixtures::drag(c.chart, QPoint(50, 100), QPoint(57, 40));
        QCOMPARE(c.chart.rightBarIndex(), 98.0);
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_click_on_a_level_asks_for_nothing()
    {
        LevelChart c; // its price is finer than the digits
        QTest::mouseClick(&c.chart, Qt::LeftButton, {}, QPoint(50, 102));
        fixtures::drag(c.chart, QPoint(50, 102), QPoint(90, 102));
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(c.chart.rightBarIndex(), 99.0);
    }

    void the_cursor_shows_the_drag()
    {
        LevelChart c;
        press(c.chart, QPoint(50, 100));
        QCOMPARE(c.chart.cursor().shape(), Qt::SizeVerCursor);
        QTest::mouseMove(&c.chart, QPoint(50, 60));
        QCOMPARE(c.chart.cursor().shape(), Qt::SizeVerCursor);
        release(c.chart, QPoint(50, 60));
        QCOMPARE(c.chart.cursor().shape(), Qt::ArrowCursor);
    }

    void the_dragged_line_shows_its_price_and_tag()
    {
        LevelChart c;
        c.take();
        fixtures::leave(c.chart); // without the crosshair over it
        const ChartFrame frame = c.chart.frame();
        QCOMPARE(frame.draggedLevel, qsizetype{0});
        QCOMPARE(frame.draggedPrice, c.chart.view().priceAt(60));
        const QImage picture = c.chart.grab().toImage();
        const QColor red(Qt::red);
        const int row = c.chart.view().pricePixel(frame.draggedPrice);
        QCOMPARE(fixtures::pixelsOf(picture, QRect(0, row, 331, 1), red), 331);
        QVERIFY(
            fixtures::pixelsOf(picture, QRect(332, row - 9, 66, 18), QColor(red.darker(280).rgb())) > 400);
        QCOMPARE(fixtures::pixelsOf(picture, QRect(0, 100, 331, 1), red), 0);
        release(c.chart, QPoint(50, 60));
    }

    void a_drag_beyond_the_plot_stops_at_its_edges()
    {
        LevelChart c;
        c.chart.setDigits(8);
        const auto roundedAt = [&c](int row) { return std::round(c.chart.view().priceAt(row) * 1e8) / 1e8; };
        fixtures::drag(c.chart, QPoint(50, 100), QPoint(50, -200));
        QCOMPARE(c.dragged.takeFirst().last().toDouble(), roundedAt(0));
        fixtures::drag(c.chart, QPoint(50, 100), QPoint(50, 900));
        QCOMPARE(c.dragged.takeFirst().last().toDouble(), roundedAt(277));
    }

    void escape_cancels_the_drag()
    {
        LevelChart c;
        QSignalSpy finished(&c.chart, &ChartWidget::toolFinished);
        c.take();
        QTest::keyClick(&c.chart, Qt::Key_Escape);
        QVERIFY(c.hasLetGo());
        QTest::mouseMove(&c.chart, QPoint(80, 40));
        release(c.chart, QPoint(80, 40));
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(finished.count(), 0);
        QCOMPARE(c.chart.rightBarIndex(), 99.0); // and nothing pans instead
    }

    void another_button_does_not_drop_a_level()
    {
        LevelChart c;
        c.take();
        for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                QMouseEvent event(type, QPointF(50, 60), QPointF(50, 60), button, Qt::LeftButton, {});
                QApplication::sendEvent(&c.chart, &event);
                QVERIFY(!event.isAccepted()); // the window's menu may have it
            }
            QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
            QCOMPARE(c.dragged.count(), 0);
        }
        release(c.chart, QPoint(50, 60));
        QCOMPARE(c.dragged.count(), 1);
    }

    void a_refresh_of_the_bars_cancels_the_drag()
    {
        LevelChart c;
        for (const int bars : {120, 0}) {
            press(c.chart, QPoint(50, c.chart.view().pricePixel(c.level.price)));
            QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
            QTest::mouseMove(&c.chart, QPoint(50, 60));
            c.chart.setCandles(fixtures::wave(bars));
            QVERIFY(c.hasLetGo());
            QTest::mouseMove(&c.chart, QPoint(50, 40));
            release(c.chart, QPoint(50, 40));
        }
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_level_that_vanished_is_not_asked_for()
    {
        LevelChart c;
        const TradeLevel other = levelAt(priceAtRow(c.chart, 150), u"2"_s);
        for (const QList<TradeLevel>& left : {QList<TradeLevel>(), QList{other}}) {
            c.chart.setTradeLevels({c.level, other});
            c.take();
            c.chart.setTradeLevels(left);
            QVERIFY(c.hasLetGo());
            release(c.chart, QPoint(50, 60));
        }
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_level_whose_price_changed_is_not_asked_for()
    {
        LevelChart c;
        c.take();
        c.chart.setTradeLevels({levelAt(priceAtRow(c.chart, 120))});
        QVERIFY(c.hasLetGo());
        release(c.chart, QPoint(50, 60));
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_drag_goes_on_while_the_level_stays()
    {
        LevelChart c;
        c.take();
        const double price = c.chart.frame().draggedPrice;
        // Another trade was opened.
        c.chart.setTradeLevels({levelAt(priceAtRow(c.chart, 30), u"2"_s), c.level});
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{1});
        QCOMPARE(c.chart.frame().draggedPrice, price);
        QCOMPARE(c.chart.cursor().shape(), Qt::SizeVerCursor);
        release(c.chart, QPoint(50, 60));
        QCOMPARE(c.dragged.count(), 1);
        QCOMPARE(c.dragged.first().first().toString(), u"trade/1"_s);
    }

    void ticks_do_not_disturb_a_drag()
    {
        LevelChart c;
        c.take();
        const double price = c.chart.frame().draggedPrice;
        const qint64 time = c.chart.candles().back().time;
        c.chart.onTick(1.2, 1.2, time); // the scale grows
        c.chart.onTick(1.2, 1.2, time + fixtures::quarterHour);
        QCOMPARE(c.chart.frame().draggedPrice, price);
        release(c.chart, QPoint(50, 60));
        QCOMPARE(c.dragged.count(), 1);
        QCOMPARE(c.dragged.first().last().toDouble(), std::round(price * 1e5) / 1e5);
    }

    void a_drag_whose_release_got_lost_asks_for_nothing()
    {
        LevelChart c;
        c.take();
        fixtures::hover(c.chart, QPoint(50, 50), Qt::NoButton);
        QVERIFY(c.hasLetGo());
        release(c.chart, QPoint(50, 50));
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_hidden_chart_lets_go()
    {
        LevelChart c;
        c.take();
        c.chart.hide();
        QVERIFY(c.hasLetGo());
        QMouseEvent up(
            QEvent::MouseButtonRelease, QPointF(50, 60), QPointF(50, 60), Qt::LeftButton, Qt::NoButton, {});
        QApplication::sendEvent(&c.chart, &up);
        QCOMPARE(c.dragged.count(), 0);
    }

    void the_level_comes_before_objects()
    {
        LevelChart c;
        Drawing line;
        line.type = u"hline"_s;
        line.points = {{fixtures::midnight, c.level.price}};
        c.chart.setDrawings({line});
        press(c.chart, QPoint(50, 100));
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
        QVERIFY(!c.chart.drawings().first().selected);
        release(c.chart, QPoint(50, 100));
    }

    void an_armed_ruler_comes_before_levels()
    {
        LevelChart c;
        c.chart.setMeasureMode(true);
        press(c.chart, QPoint(50, 100));
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
        release(c.chart, QPoint(50, 100));
    }

    void without_bars_no_level_is_taken()
    {
        LevelChart c(0);
        press(c.chart, QPoint(50, 100));
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
        QCOMPARE(c.chart.cursor().shape(), Qt::ClosedHandCursor);
        release(c.chart, QPoint(50, 100));
    }

    void a_step_paints_only_where_the_line_was_and_is()
    {
        LevelChart c;
        fixtures::hover(c.chart, QPoint(50, 100));
        press(c.chart, QPoint(50, 100));
        fixtures::hover(c.chart, QPoint(50, 110), Qt::LeftButton);
        PaintCounter paints(c.chart);
        paints.taken();
        const quint64 before = c.chart.seriesPaints();
        fixtures::hover(c.chart, QPoint(50, 120), Qt::LeftButton);
        QCOMPARE(paints.taken(), 1);
        for (const int row : {110, 120})
            QVERIFY(
                (QRegion(0, row - 15, 332, 16) + QRegion(332, row - 9, 66, 18) - paints.region()).isEmpty());
        QVERIFY(!paints.region().intersects(QRect(60, 30, 250, 50)));
        QVERIFY(!paints.region().intersects(QRect(110, 140, 200, 100)));
        fixtures::hover(c.chart, QPoint(50, 130), Qt::LeftButton);
        paints.taken();
        QVERIFY(c.chart.seriesPaints() <= before + 1);
        release(c.chart, QPoint(50, 130));
    }
};

TAVORAN_TEST(TestChartLevelDrag)
#include "tst_ChartLevelDrag.moc"
