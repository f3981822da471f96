#include "chart/ChartWidgetFixture.h"
#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using fixtures::barTime;
using fixtures::click;
using fixtures::lineAt;
using fixtures::midnight;
using fixtures::showChart;

/// Placing objects with the tools.
class TestChartDrawingTools final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void one_click_places_a_plain_line_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::newRow("horizontal") << u"hline"_s;
        QTest::newRow("vertical") << u"vline"_s;
    }
    void one_click_places_a_plain_line()
    {
        QFETCH(QString, tool);
        ChartWidget chart;
        showChart(chart, 100);
        QStringList events;
        connect(&chart, &ChartWidget::drawingCreated, &chart, [&](const Drawing& drawing) {
            events.append(u"created"_s);
            QCOMPARE(chart.drawings().last(), drawing);
            QCOMPARE(chart.tool(), tool);
        });
        connect(&chart, &ChartWidget::toolFinished, &chart, [&] {
            events.append(u"finished"_s);
            QCOMPARE(chart.tool(), QString());
        });
        chart.setTool(tool);
        click(chart, QPoint(261, 100));
        QCOMPARE(events, (QStringList{u"created"_s, u"finished"_s}));
        QCOMPARE(chart.drawings().size(), 1);
        const Drawing& drawing = chart.drawings().first();
        QCOMPARE(drawing.type, tool);
        QCOMPARE(drawing.points, (QList<DrawingPoint>{{barTime(89), chart.view().priceAt(100)}}));
        QCOMPARE(drawing.color, QColor(u"#e0e0e0"_s));
        QCOMPARE(drawing.id, QString());
        QVERIFY(!drawing.selected);
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        click(chart, QPoint(200, 200)); // the tool has ended
        QCOMPARE(chart.drawings().size(), 1);
        QCOMPARE(chart.rightBarIndex(), 99.0);
    }

    void two_clicks_place_the_other_objects_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::newRow("trend line") << u"trendline"_s;
        QTest::newRow("rectangle") << u"rectangle"_s;
        QTest::newRow("retracement") << u"fibonacci"_s;
    }
    void two_clicks_place_the_other_objects()
    {
        QFETCH(QString, tool);
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy created(&chart, &ChartWidget::drawingCreated);
        QSignalSpy finished(&chart, &ChartWidget::toolFinished);
        chart.setTool(tool);
        click(chart, QPoint(331, 100));
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(created.count(), 0);
        QCOMPARE(finished.count(), 0);
        QCOMPARE(chart.tool(), tool);
        click(chart, QPoint(261, 200));
        QCOMPARE(created.count(), 1);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(chart.drawings().size(), 1);
        const Drawing expected{{}, tool,
            {{barTime(99), chart.view().priceAt(100)}, {barTime(89), chart.view().priceAt(200)}},
            QColor(u"#e0e0e0"_s), false};
        QCOMPARE(chart.drawings().first(), expected);
        QCOMPARE(created.first().first().value<ChartWidget::Drawing>(), expected);
        QCOMPARE(chart.tool(), QString());
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    }

    void a_click_beside_the_bars_anchors_at_the_nearest_bar()
    {
        ChartWidget chart;
        showChart(chart, 10);
        chart.setChartShift(true);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(5, 100));
        click(chart, QPoint(331, 100));
        QCOMPARE(chart.drawings().size(), 1);
        QCOMPARE(chart.drawings().first().points.first().time, midnight);
        QCOMPARE(chart.drawings().first().points.last().time, barTime(9));
    }

    void the_button_comes_before_the_tool()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setAutoScroll(false);
        chart.setTool(u"hline"_s);
        click(chart, QPoint(310, 260));
        QVERIFY(chart.autoScroll());
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(chart.tool(), u"hline"_s);
        click(chart, QPoint(310, 260)); // the button is gone
        QCOMPARE(chart.drawings().size(), 1);
    }

    void the_tool_comes_before_the_ruler_and_the_levels()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const double price = chart.view().priceAt(100);
        chart.setTradeLevels({{u"1"_s, u"SL"_s, price, u"sl"_s, QColor(Qt::red), Qt::DashLine, true}});
        chart.setMeasureMode(true);
        chart.setTool(u"hline"_s);
        click(chart, QPoint(200, 100));
        QCOMPARE(chart.drawings().size(), 1);
        QVERIFY(!chart.frame().ruler);
        QVERIFY(chart.measureMode());
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor); // the ruler is still armed
    }

    void another_tool_begins_anew()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(200, 100));
        chart.setTool(u"rectangle"_s);
        click(chart, QPoint(261, 100));
        QVERIFY(chart.drawings().isEmpty());
        click(chart, QPoint(331, 200));
        QCOMPARE(chart.drawings().size(), 1);
        QCOMPARE(chart.drawings().first().type, u"rectangle"_s);
        QCOMPARE(chart.drawings().first().points.first().time, barTime(89));
    }

    void the_right_button_places_nothing()
    {
        ChartWidget chart;
        showChart(chart, 100);
        for (const QString& tool : {u"hline"_s, u"trendline"_s}) {
            chart.setTool(tool);
            for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
                QTest::mouseClick(&chart, button, {}, QPoint(200, 100));
            QCOMPARE(chart.tool(), tool);
            QVERIFY(!chart.frame().preview);
        }
        QVERIFY(chart.drawings().isEmpty());
    }

    void outside_the_plot_a_tool_places_nothing()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setTool(u"hline"_s);
        for (const QPoint& position : {QPoint(332, 100), QPoint(100, 278), QPoint(390, 290)})
            click(chart, position);
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(chart.tool(), u"hline"_s);
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        click(chart, QPoint(331, 277));
        QCOMPARE(chart.drawings().size(), 1);
    }

    void without_bars_a_tool_places_nothing()
    {
        ChartWidget chart;
        showChart(chart, 0);
        QSignalSpy created(&chart, &ChartWidget::drawingCreated);
        for (const QString& tool : {u"hline"_s, u"trendline"_s}) {
            chart.setTool(tool);
            click(chart, QPoint(100, 100));
            click(chart, QPoint(200, 100));
            QCOMPARE(chart.tool(), tool);
        }
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(created.count(), 0);
    }

    void escape_cancels_the_tool_and_leaves_nothing()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy created(&chart, &ChartWidget::drawingCreated);
        QSignalSpy finished(&chart, &ChartWidget::toolFinished);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(200, 100));
        QTest::keyClick(&chart, Qt::Key_Escape);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(chart.tool(), QString());
        QVERIFY(!chart.frame().preview);
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(100, 100)); // a first point again
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(created.count(), 0);
    }

    void escape_without_a_tool_goes_to_the_default_handler()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy finished(&chart, &ChartWidget::toolFinished);
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
        QApplication::sendEvent(&chart, &escape);
        QVERIFY(!escape.isAccepted());
        QCOMPARE(finished.count(), 0);
    }

    void every_step_of_placing_paints_once()
    {
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        chart.setTool(u"trendline"_s);
        QCOMPARE(paints.taken(), 1);
        click(chart, QPoint(200, 100)); // the preview begins
        QCOMPARE(paints.taken(), 1);
        QTest::keyClick(&chart, Qt::Key_Escape); // and ends
        QCOMPARE(paints.taken(), 1);
        chart.setTool(u"hline"_s);
        QCOMPARE(paints.taken(), 1);
        click(chart, QPoint(200, 100));
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(chart.drawings().size(), 1);
    }

    void the_cursor_is_a_cross_while_a_tool_is_active()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        chart.setTool(u"fibonacci"_s);
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(350, 100)); // the axis pans
        QCOMPARE(chart.cursor().shape(), Qt::ClosedHandCursor);
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(350, 100));
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        chart.setTool(QString());
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        chart.setTool(u"ellipse"_s);
        QCOMPARE(chart.tool(), QString());
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    }

    void menus_hear_of_every_change_of_the_tool()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy changed(&chart, &ChartWidget::settingsChanged);
        chart.setTool(u"hline"_s);
        QCOMPARE(changed.count(), 1);
        chart.setTool(u"hline"_s);
        QCOMPARE(changed.count(), 1);
        click(chart, QPoint(200, 100));
        QCOMPARE(changed.count(), 2);
        chart.setTool(u"trendline"_s);
        QTest::keyClick(&chart, Qt::Key_Escape);
        QCOMPARE(changed.count(), 4);
    }

    void a_preview_follows_the_pointer_in_the_plot()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setTool(u"trendline"_s);
        fixtures::hover(chart, QPoint(200, 100));
        QVERIFY(!chart.frame().preview);
        click(chart, QPoint(261, 100));
        QVERIFY(chart.frame().preview);
        QVERIFY(chart.frame().preview->kind == DrawingKind::TrendLine);
        QCOMPARE(chart.frame().preview->placed, (DrawingPoint{barTime(89), chart.view().priceAt(100)}));
        const QColor color(u"#e0e0e0"_s);
        const auto ink = [&chart, &color](const QPoint& pointer) {
            fixtures::hover(chart, pointer);
            // Left of the pointer's own lines.
            return fixtures::pixelsOf(chart.grab().toImage(), QRect(262, 101, 30, 60), color);
        };
        QVERIFY(ink(QPoint(320, 200)) > 10);
        QCOMPARE(ink(QPoint(350, 200)), 0); // outside the plot
        chart.setTool(QString());
        QCOMPARE(ink(QPoint(320, 200)), 0);
    }

    void enter_marks_the_first_point_at_once_and_a_step_takes_the_mark_away()
    {
        for (const auto* tool : {"trendline", "rectangle", "fibonacci"}) {
            ChartWidget chart;
            showChart(chart, 100);
            chart.setFocus();
            chart.setTool(QString::fromLatin1(tool));
            QTest::keyClick(&chart, Qt::Key_Left);
            const auto marked = [&chart](const QPoint& point) {
                return fixtures::pixelsOf(chart.screen()->grabWindow(chart.winId()).toImage(),
                           QRect(point - QPoint(3, 3), QSize(6, 6)), QColor(0xe0, 0xe0, 0xe0))
                    == 36;
            };
            QVERIFY(chart.frame().crosshair);
            const QPoint point = chart.frame().pointer;
            QVERIFY(!marked(point));
            QTest::keyClick(&chart, Qt::Key_Return);
            QCoreApplication::processEvents();
            QVERIFY(marked(point));
            for (int step = 0; step < 3; ++step)
                QTest::keyClick(&chart, Qt::Key_Up, Qt::ShiftModifier);
            QCoreApplication::processEvents();
            QVERIFY(chart.frame().pointer != point);
            QCOMPARE(
                chart.screen()->grabWindow(chart.winId()).toImage().convertToFormat(QImage::Format_RGB32),
                chart.grab().toImage().convertToFormat(QImage::Format_RGB32));
        }
    }

    void a_preview_paints_only_where_it_was_and_is()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(261, 100));
        fixtures::hover(chart, QPoint(280, 120));
        PaintCounter paints(chart);
        paints.taken();
        fixtures::hover(chart, QPoint(300, 140));
        QCOMPARE(paints.taken(), 1);
        QVERIFY((QRegion(261, 100, 40, 41) - paints.region()).isEmpty());
        QVERIFY(!paints.region().intersects(QRect(20, 30, 200, 60)));
        QVERIFY(!paints.region().intersects(QRect(100, 160, 90, 100)));
    }

    void loaded_objects_do_not_disturb_one_being_placed()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(261, 100));
        chart.setDrawings({lineAt(chart, 50, u"a"_s)});
        QCOMPARE(chart.tool(), u"trendline"_s);
        click(chart, QPoint(200, 100));
        QCOMPARE(chart.drawings().size(), 2);
        QCOMPARE(chart.drawings().last().points.size(), 2);
        QCOMPARE(chart.drawings().last().points.first().time, barTime(89));
    }
};

TAVORAN_TEST(TestChartDrawingTools)
#include "tst_ChartDrawingTools.moc"
