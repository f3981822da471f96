#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/DataWindow.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

constexpr QPoint inPlot(200, 100);

/// A shown chart of 100 bars that has the focus, with prices of five digits.
struct KeyChart {
    KeyChart()
    {
        fixtures::showChart(chart, 100);
        chart.activateWindow();
        chart.setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&chart));
        QTRY_VERIFY(chart.hasFocus());
    }

    void press(int key, Qt::KeyboardModifiers modifiers = {}, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(&chart, static_cast<Qt::Key>(key), modifiers);
    }

    /// A key that is held down.
    void repeat(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(&chart, &event);
    }

    [[nodiscard]] qsizetype bar() const { return chart.crosshair() ? chart.crosshair()->bar : -1; }
    [[nodiscard]] double price() const { return chart.crosshair() ? chart.crosshair()->price : 0.0; }

    void addLevel(double price)
    {
        chart.setTradeLevels(
            {{u"trade/1"_s, u"SL"_s, price, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true}});
    }

    /// Enter takes a level at this price.
    void take(double price)
    {
        addLevel(price);
        fixtures::hover(chart, QPoint(inPlot.x(), chart.view().pricePixel(price) + 3));
        press(Qt::Key_Left);
        press(Qt::Key_Return);
        QCOMPARE(chart.frame().draggedLevel, qsizetype{0});
    }

    ChartWidget chart;
    QPushButton button{&chart};
    QSignalSpy dragged{&chart, &ChartWidget::levelDragged};
    QSignalSpy created{&chart, &ChartWidget::drawingCreated};
    QSignalSpy finished{&chart, &ChartWidget::toolFinished};
    QSignalSpy texts{&chart, &ChartWidget::crosshairMoved};
};

using Deed = void (*)(KeyChart&);

} // namespace

class TestChartKeyboard final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void arrows_move_a_crosshair_from_the_newest_bar()
    {
        KeyChart c;
        QCOMPARE(c.bar(), qsizetype{-1});
        c.press(Qt::Key_Left);
        QCOMPARE(c.bar(), qsizetype{98});
        QCOMPARE(c.price(), std::round(c.chart.candles()[98].close * 1e5) / 1e5);
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(c.bar(), qsizetype{88});
        c.press(Qt::Key_Right);
        QCOMPARE(c.bar(), qsizetype{89});
        QCOMPARE(c.chart.rightBarIndex(), 99.0);
    }

    void arrows_move_it_price_by_price()
    {
        KeyChart c;
        c.press(Qt::Key_Left);
        const double before = c.price();
        c.press(Qt::Key_Up);
        const double step = c.price() - before;
        QVERIFY(step > 0.0);
        c.press(Qt::Key_Up);
        const double onStep = c.price();
        c.press(Qt::Key_Up, Qt::ShiftModifier);
        QVERIFY(c.price() - onStep > 9 * step);
        c.press(Qt::Key_Down, {}, 10);
        QVERIFY(std::abs(c.price() - onStep) < 1e-9);
        c.press(Qt::Key_Down, Qt::ShiftModifier, 100);
        QVERIFY(c.price() >= c.chart.view().prices().min); // ends with the plot
        QCOMPARE(c.bar(), qsizetype{98});
    }

    void it_goes_on_from_the_mouse()
    {
        KeyChart c;
        fixtures::hover(c.chart, inPlot);
        const CrosshairPlace mouse = *c.chart.crosshair();
        c.press(Qt::Key_Left);
        QCOMPARE(c.bar(), mouse.bar - 1);
        QVERIFY(std::abs(c.price() - mouse.price) <= 0.5e-5);
    }

    void header_and_data_window_follow_it()
    {
        KeyChart c;
        DataWindow window(c.chart, u"EURUSD"_s, nullptr);
        window.show();
        const auto* label = window.findChild<QLabel*>();
        QVERIFY(label->text().contains(u"Hover"_s));
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(c.chart.hoveredCandle()->time, fixtures::barTime(89));
        QCOMPARE(c.texts.count(), 1);
        QVERIFY(c.texts.last().first().toString().startsWith(u"O: "_s));
        QTRY_VERIFY(label->text().contains(u"2026.06.02 22:15"_s));
        const ChartFrame frame = c.chart.frame();
        QCOMPARE(frame.crosshair, c.chart.crosshair());
        QCOMPARE(
            frame.pointer, QPoint(frame.view.barPixel(89), frame.view.pricePixel(frame.crosshair->price)));
        c.press(Qt::Key_Escape);
        QCOMPARE(c.texts.last().first().toString(), QString());
        QTRY_VERIFY(label->text().contains(u"Hover"_s));
    }

    void home_and_end_go_to_the_ends_of_the_series()
    {
        KeyChart c;
        QSignalSpy scrolls(&c.chart, &ChartWidget::autoScrollChanged);
        c.press(Qt::Key_Home);
        QCOMPARE(c.bar(), qsizetype{0});
        QCOMPARE(c.chart.rightBarIndex(), 47.0);
        QCOMPARE(scrolls.count(), 1);
        QCOMPARE(scrolls.last().first().toBool(), false);
        c.press(Qt::Key_Left);
        QCOMPARE(c.bar(), qsizetype{0});
        c.press(Qt::Key_End);
        QCOMPARE(c.bar(), qsizetype{99});
        QCOMPARE(c.chart.rightBarIndex(), 99.0);
        QCOMPARE(scrolls.count(), 2);
        QCOMPARE(scrolls.last().first().toBool(), true);
        c.press(Qt::Key_Right);
        QCOMPARE(c.bar(), qsizetype{99});
    }

    void leaving_the_view_scrolls_it()
    {
        KeyChart c;
        c.press(Qt::Key_Left, Qt::ShiftModifier, 5);
        QCOMPARE(c.bar(), qsizetype{49});
        QCOMPARE(c.chart.rightBarIndex(), 96.0);
        QVERIFY(!c.chart.autoScroll());
        c.press(Qt::Key_Right, {}, 48);
        QCOMPARE(c.bar(), qsizetype{97});
        QCOMPARE(c.chart.rightBarIndex(), 97.0);
        QVERIFY(!c.chart.autoScroll());
        c.press(Qt::Key_Right, Qt::ShiftModifier);
        QVERIFY(c.chart.autoScroll());
    }

    void it_stays_on_its_candle_when_new_ones_come()
    {
        KeyChart c;
        c.press(Qt::Key_Left);
        const std::optional<CrosshairPlace> before = c.chart.crosshair();
        c.chart.onTick(1.1, 1.1002, fixtures::barTime(99));
        c.chart.onTick(1.1, 1.1002, fixtures::barTime(100));
        c.chart.onTick(1.1, 1.1002, fixtures::barTime(101));
        QCOMPARE(c.chart.crosshair(), before);
        QCOMPARE(c.chart.frame().pointer.x(), c.chart.view().barPixel(98));
    }

    void out_of_view_it_is_brought_back_by_a_key()
    {
        KeyChart c;
        c.press(Qt::Key_Home);
        c.chart.scrollToEnd();
        QVERIFY(!c.chart.crosshair());
        QVERIFY(!c.chart.hoveredCandle());
        QCOMPARE(c.chart.frame().pointer, QPoint(-1, -1));
        c.chart.setTool(u"hline"_s);
        c.press(Qt::Key_Return); // shows where it would act, and does not act
        QCOMPARE(c.bar(), qsizetype{0});
        QCOMPARE(c.created.count(), 0);
        c.press(Qt::Key_Return);
        QCOMPARE(c.created.count(), 1);
    }

    void a_moving_mouse_takes_over()
    {
        KeyChart c;
        fixtures::hover(c.chart, inPlot);
        const CrosshairPlace mouse = *c.chart.crosshair();
        c.press(Qt::Key_Left, {}, 3);
        const qsizetype bar = c.bar();
        QCOMPARE(bar, mouse.bar - 3);
        fixtures::hover(c.chart, inPlot); // does not move
        QCOMPARE(c.bar(), bar);
        fixtures::hover(c.chart, inPlot + QPoint(0, 1));
        QCOMPARE(c.chart.crosshair(), c.chart.view().placeAt(inPlot + QPoint(0, 1)));
        fixtures::leave(c.chart);
        QVERIFY(!c.chart.crosshair());
    }

    void a_mouse_that_leaves_takes_nothing_with_it()
    {
        KeyChart c;
        fixtures::hover(c.chart, inPlot);
        c.press(Qt::Key_Left);
        const qsizetype bar = c.bar();
        const qsizetype told = c.texts.count();
        fixtures::leave(c.chart);
        QCOMPARE(c.bar(), bar);
        QCOMPARE(c.texts.count(), told);
    }

    void a_click_takes_over()
    {
        KeyChart c;
        c.press(Qt::Key_Left);
        c.chart.setTool(u"hline"_s);
        fixtures::click(c.chart, inPlot);
        QCOMPARE(c.created.count(), 1);
        QCOMPARE(c.chart.crosshair(), c.chart.view().placeAt(inPlot));
    }

    void enter_places_a_line_at_the_crosshair()
    {
        KeyChart c;
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        c.press(Qt::Key_Up, {}, 3);
        const CrosshairPlace at = *c.chart.crosshair();
        c.chart.setTool(u"hline"_s);
        c.press(Qt::Key_Return);
        QCOMPARE(c.created.count(), 1);
        const Drawing line = c.created.first().first().value<Drawing>();
        QCOMPARE(line.points.first().time, fixtures::barTime(89));
        QCOMPARE(line.points.first().price, at.price);
        QCOMPARE(c.finished.count(), 1);
        QCOMPARE(c.chart.tool(), QString());
        QCOMPARE(c.chart.crosshair(), at);
    }

    void two_enters_place_a_trend_line_with_its_preview_between()
    {
        KeyChart c;
        c.chart.setTool(u"trendline"_s);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(c.created.count(), 0);
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        c.press(Qt::Key_Up, {}, 10);
        QVERIFY(c.chart.frame().preview);
        QCOMPARE(c.chart.frame().preview->placed.time, fixtures::barTime(98));
        c.press(Qt::Key_Return);
        QCOMPARE(c.created.count(), 1);
        const Drawing line = c.created.first().first().value<Drawing>();
        QCOMPARE(line.points.size(), 2);
        QCOMPARE(line.points.at(0).time, fixtures::barTime(98));
        QCOMPARE(line.points.at(1).time, fixtures::barTime(88));
        QCOMPARE(line.points.at(1).price, c.price());
        QCOMPARE(c.finished.count(), 1);
    }

    void escape_cancels_the_tool_and_then_hides_the_crosshair()
    {
        KeyChart c;
        c.chart.setTool(u"trendline"_s);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Escape);
        QCOMPARE(c.chart.tool(), QString());
        QCOMPARE(c.finished.count(), 1);
        QCOMPARE(c.bar(), qsizetype{98});
        c.press(Qt::Key_Escape);
        QVERIFY(!c.chart.crosshair());
        QCOMPARE(c.created.count(), 0);
    }

    void a_held_enter_places_and_sends_once()
    {
        KeyChart c;
        c.chart.setTool(u"rectangle"_s);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Left);
        c.repeat(Qt::Key_Return);
        QCOMPARE(c.created.count(), 0);
        c.chart.setTool({});
        c.take(1.1);
        c.press(Qt::Key_Up, {}, 5);
        c.repeat(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 0);
        c.press(Qt::Key_Return);
        c.repeat(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 1);
    }

    void enter_picks_a_level_up_and_drops_it()
    {
        KeyChart c;
        c.take(1.1);
        QCOMPARE(c.price(), 1.1);
        c.press(Qt::Key_Down, {}, 4);
        QCOMPARE(c.chart.frame().draggedPrice, c.price());
        QVERIFY(c.price() < 1.1);
        QCOMPARE(c.dragged.count(), 0);
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 1);
        QCOMPARE(c.dragged.first(), (QList<QVariant>{u"trade/1"_s, u"SL"_s, c.price()}));
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
        QCOMPARE(c.chart.cursor().shape(), Qt::ArrowCursor);
    }

    void a_level_dropped_where_it_was_asks_for_nothing()
    {
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Return);
        c.take(1.1);
        c.press(Qt::Key_Up);
        c.press(Qt::Key_Down);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
    }

    void a_level_seven_pixels_away_is_not_picked_up()
    {
        KeyChart c;
        c.addLevel(1.1);
        fixtures::hover(c.chart, QPoint(inPlot.x(), c.chart.view().pricePixel(1.1) - 8));
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
    }

    void what_ends_a_pick_up_sends_nothing_data()
    {
        QTest::addColumn<Deed>("end");
        const auto row = [](const char* name, Deed end) { QTest::newRow(name) << end; };
        row("escape", [](KeyChart& c) { c.press(Qt::Key_Escape); });
        row("lost focus", [](KeyChart& c) { c.button.setFocus(); });
        row("moving mouse", [](KeyChart& c) { fixtures::hover(c.chart, QPoint(10, 200)); });
        row("click", [](KeyChart& c) { fixtures::click(c.chart, QPoint(10, 200)); });
        row("click on the button to the newest bar", [](KeyChart& c) {
            c.chart.setAutoScroll(false);
            fixtures::click(c.chart, c.chart.view().scrollToEndButton().center());
            QVERIFY(c.chart.autoScroll());
        });
        row("closed trade", [](KeyChart& c) { c.chart.setTradeLevels({}); });
        row("new price of the trade", [](KeyChart& c) { c.addLevel(1.101); });
        row("hiding", [](KeyChart& c) { c.chart.hide(); });
        row("other candles", [](KeyChart& c) { c.chart.setCandles(fixtures::wave(50)); });
    }

    void what_ends_a_pick_up_sends_nothing()
    {
        QFETCH(Deed, end);
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Up, {}, 5);
        end(c);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
        QCOMPARE(c.dragged.count(), 0);
        c.chart.setTradeLevels({});
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_mouse_that_has_taken_nothing_drops_nothing()
    {
        KeyChart c;
        c.chart.setAutoScroll(false);
        const QPoint onButton = c.chart.view().scrollToEndButton().center();
        QTest::mousePress(&c.chart, Qt::LeftButton, {}, onButton);
        c.take(1.1);
        c.press(Qt::Key_Up, {}, 5);
        QTest::mouseRelease(&c.chart, Qt::LeftButton, {}, onButton);
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
    }

    void a_level_out_of_sight_is_put_back_by_enter()
    {
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Up, {}, 5);
        std::vector<Candle> far = fixtures::wave(100);
        for (Candle& candle : far)
            candle = {candle.time, candle.open + 5, candle.high + 5, candle.low + 5, candle.close + 5,
                candle.volume};
        c.chart.renewCandles(far);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
        QVERIFY(!c.chart.crosshair());
        c.press(Qt::Key_Return);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{-1});
        QVERIFY(c.chart.crosshair());
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 0);
    }

    void a_held_level_scrolled_out_of_sight_is_shown_before_it_is_dropped()
    {
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Up, {}, 5);
        c.press(Qt::Key_Home);
        c.chart.scrollToEnd();
        QVERIFY(!c.chart.crosshair());
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
        QCOMPARE(c.bar(), qsizetype{0});
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 1);
    }

    void escape_keeps_the_crosshair_when_it_cancels_a_level()
    {
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Escape);
        QVERIFY(c.chart.crosshair());
        c.press(Qt::Key_Escape);
        QVERIFY(c.chart.frame().draggedLevel == -1 && c.dragged.isEmpty());
        QCOMPARE(c.chart.crosshair(), c.chart.view().placeAt(c.chart.frame().pointer)); // the mouse's
    }

    void a_refreshed_list_of_the_same_levels_changes_nothing()
    {
        KeyChart c;
        c.take(1.1);
        c.press(Qt::Key_Up);
        c.addLevel(1.1);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
        c.press(Qt::Key_Return);
        QCOMPARE(c.dragged.count(), 1);
    }

    void keys_wait_while_the_mouse_holds_something()
    {
        KeyChart c;
        c.addLevel(1.1);
        const QPoint onLevel(50, c.chart.view().pricePixel(1.1));
        QTest::mouseMove(&c.chart, onLevel);
        QTest::mousePress(&c.chart, Qt::LeftButton, {}, onLevel);
        QTest::mouseMove(&c.chart, onLevel - QPoint(0, 30));
        const std::optional<CrosshairPlace> mouse = c.chart.crosshair();
        for (const int key : {Qt::Key_Return, Qt::Key_Up, Qt::Key_Left, Qt::Key_Home})
            c.press(key);
        QCOMPARE(c.dragged.count(), 0);
        QCOMPARE(c.chart.crosshair(), mouse);
        QCOMPARE(c.chart.frame().draggedLevel, qsizetype{0});
        QTest::mouseRelease(&c.chart, Qt::LeftButton, {}, onLevel - QPoint(0, 30));
        QCOMPARE(c.dragged.count(), 1);

        QTest::mousePress(&c.chart, Qt::LeftButton, {}, QPoint(50, 250)); // pans
        QTest::mouseMove(&c.chart, QPoint(57, 250));
        c.press(Qt::Key_Home);
        QCOMPARE(c.chart.rightBarIndex(), 98.0);
        QTest::mouseRelease(&c.chart, Qt::LeftButton, {}, QPoint(57, 250));
    }

    void enter_selects_a_drawing_and_delete_removes_it()
    {
        KeyChart c;
        QSignalSpy deleted(&c.chart, &ChartWidget::drawingDeleted);
        Drawing line;
        line.id = u"d1"_s;
        line.type = u"hline"_s;
        line.points = {{fixtures::barTime(0), 1.1}};
        c.chart.setDrawings({line});
        fixtures::hover(c.chart, QPoint(inPlot.x(), c.chart.view().pricePixel(1.1)));
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        QVERIFY(c.chart.drawings().first().selected);
        c.press(Qt::Key_Up, Qt::ShiftModifier, 2);
        c.press(Qt::Key_Return); // beside it
        QVERIFY(!c.chart.drawings().first().selected);
        c.press(Qt::Key_Down, Qt::ShiftModifier, 2);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Delete);
        QCOMPARE(deleted.count(), 1);
        QCOMPARE(deleted.first().first().toString(), u"d1"_s);
    }

    void the_ruler_lies_between_two_enters()
    {
        KeyChart c;
        c.chart.setMeasureMode(true);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(c.chart.frame().ruler->start.x() - c.chart.frame().ruler->end.x(), 70);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Right);
        QCOMPARE(c.chart.frame().ruler->start.x() - c.chart.frame().ruler->end.x(), 70);
        c.press(Qt::Key_Escape);
        QVERIFY(!c.chart.frame().ruler);
        QVERIFY(c.chart.crosshair());
    }

    void enter_is_passed_on_until_keys_have_shown_a_crosshair()
    {
        KeyChart c;
        c.chart.setTool(u"hline"_s);
        fixtures::hover(c.chart, inPlot);
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(&c.chart, &enter);
        QVERIFY(!enter.isAccepted());
        QCOMPARE(c.created.count(), 0);
        c.press(Qt::Key_Left);
        c.press(Qt::Key_Return);
        QCOMPARE(c.created.count(), 1);
    }

    void keys_of_a_button_on_the_chart_stay_with_it()
    {
        KeyChart c;
        c.button.setFocus();
        c.chart.setTool(u"hline"_s);
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(&c.button, &enter);
        QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
        QApplication::sendEvent(&c.button, &end);
        QVERIFY(!c.chart.crosshair());
        QCOMPARE(c.created.count(), 0);
    }

    void keys_that_it_has_no_use_for_are_passed_on()
    {
        KeyChart c;
        const auto isTaken = [&c](int key, Qt::KeyboardModifiers modifiers = {}) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            event.accept();
            QApplication::sendEvent(&c.chart, &event);
            return event.isAccepted();
        };
        QVERIFY(!isTaken(Qt::Key_PageUp));
        QVERIFY(!isTaken(Qt::Key_Left, Qt::ControlModifier));
        QVERIFY(!isTaken(Qt::Key_Return, Qt::AltModifier));
        QVERIFY(!isTaken(Qt::Key_Escape));
        QVERIFY(isTaken(Qt::Key_Left));
        QVERIFY(isTaken(Qt::Key_Escape));
        c.chart.setCandles({});
        QVERIFY(!isTaken(Qt::Key_Left));
        QVERIFY(!isTaken(Qt::Key_Return));
    }

    void a_step_paints_the_crosshair_alone()
    {
        KeyChart c;
        c.press(Qt::Key_Left, {}, 5);
        QCoreApplication::processEvents();
        PaintCounter paints(c.chart);
        const quint64 seriesBefore = c.chart.seriesPaints();
        c.press(Qt::Key_Up);
        QCoreApplication::processEvents();
        QCOMPARE(paints.count(), 1);
        QVERIFY(!paints.region().contains(QPoint(20, 20 + 30)));
        QCOMPARE(c.chart.seriesPaints(), seriesBefore);
    }
};

TAVORAN_TEST(TestChartKeyboard)
#include "tst_ChartKeyboard.moc"
