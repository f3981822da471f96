#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/TestMain.h"

#include <QSignalSpy>

#include <cmath>

using namespace Qt::StringLiterals;
using fixtures::showChart;
using fixtures::wave;

namespace {

constexpr int count = 150;
constexpr int earlier = 20;
constexpr int later = 15;

/// The bars of a shown chart as they were first read, without those at both ends of a later reading.
std::vector<Candle> firstReading()
{
    const std::vector<Candle> all = wave(count);
    return {all.begin() + earlier, all.end() - later};
}

/// A shown chart of 400 by 300 pixels with the bars of the first reading.
struct ReadChart {
    ReadChart()
    {
        showChart(chart, 0);
        chart.setCandles(firstReading());
    }

    /// Drags the view back, and lets go.
    void scrollBack()
    {
        fixtures::drag(chart, QPoint(100, 100), QPoint(233, 100));
        QVERIFY(!chart.autoScroll());
    }

    void renew() { chart.renewCandles(wave(count)); }

    ChartWidget chart;
};

} // namespace

/// A series that is read again, which the trader did not ask for, takes nothing out of the trader's hand.
class TestChartRenewal final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_view_that_was_scrolled_back_keeps_its_bars_in_their_places()
    {
        ReadChart c;
        c.scrollBack();
        const QSignalSpy follows(&c.chart, &ChartWidget::autoScrollChanged);
        const QRect plot = c.chart.view().plot();
        const double edge = c.chart.rightBarIndex();
        const QImage before = c.chart.grab(plot).toImage();
        c.renew();
        QCOMPARE(c.chart.candles().size(), std::size_t(count));
        QCOMPARE(c.chart.rightBarIndex(), edge + earlier);
        QVERIFY(!c.chart.autoScroll());
        QVERIFY(follows.isEmpty());
        // The grid of times stands on other bars; bars and volumes lie where they lay.
        const auto inked = [&](const QImage& image, const QColor& color) {
            return fixtures::pixelsOf(image, image.rect(), color);
        };
        const QImage after = c.chart.grab(plot).toImage();
        const ChartColors& colors = c.chart.colors();
        for (int x = 0; x < plot.width(); ++x) {
            for (const QColor& color : {colors.up, colors.down}) {
                const QRect column(x, 0, 1, plot.height());
                QCOMPARE(inked(after.copy(column), color), inked(before.copy(column), color));
            }
        }
        QVERIFY(inked(after, colors.up) > 100);
    }

    void a_view_that_follows_goes_to_the_end()
    {
        ReadChart c;
        const QSignalSpy follows(&c.chart, &ChartWidget::autoScrollChanged);
        c.renew();
        QCOMPARE(c.chart.rightBarIndex(), count - 1.0);
        QVERIFY(c.chart.autoScroll());
        QVERIFY(follows.isEmpty());
    }

    void a_chart_without_bars_begins_at_the_end_and_follows()
    {
        ChartWidget chart;
        chart.setAutoScroll(false);
        const QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
        chart.renewCandles(wave(count));
        QCOMPARE(chart.rightBarIndex(), count - 1.0);
        QVERIFY(chart.autoScroll());
        QCOMPARE(follows.count(), 1);
    }

    void no_bars_at_all_empty_the_chart()
    {
        ReadChart c;
        c.scrollBack();
        c.chart.renewCandles({});
        QVERIFY(c.chart.candles().empty());
        QCOMPARE(c.chart.rightBarIndex(), 0.0);
        c.renew();
        QCOMPARE(c.chart.rightBarIndex(), count - 1.0);
        QVERIFY(c.chart.autoScroll());
    }

    void a_level_stays_in_the_hand()
    {
        for (const bool scrolledBack : {true, false}) {
            ReadChart c;
            if (scrolledBack)
                c.scrollBack();
            const double price = (c.chart.view().priceAt(100) + c.chart.view().priceAt(101)) / 2;
            c.chart.setTradeLevels({{u"t"_s, u"SL"_s, price, u"sl"_s, QColor(Qt::red), Qt::DashLine, true}});
            QSignalSpy dropped(&c.chart, &ChartWidget::levelDragged);
            QTest::mousePress(&c.chart, Qt::LeftButton, {}, QPoint(50, 100));
            QTest::mouseMove(&c.chart, QPoint(50, 120));
            const double dragged = c.chart.frame().draggedPrice;
            c.renew();
            QCOMPARE(c.chart.frame().draggedLevel, 0);
            QCOMPARE(c.chart.frame().draggedPrice, dragged);
            QCOMPARE(c.chart.cursor().shape(), Qt::SizeVerCursor);
            QTest::mouseMove(&c.chart, QPoint(50, 140));
            const double expected = c.chart.view().priceAt(140);
            QTest::mouseRelease(&c.chart, Qt::LeftButton, {}, QPoint(50, 140));
            QCOMPARE(dropped.count(), 1);
            QVERIFY(std::abs(dropped.first().at(2).toDouble() - expected) < 1e-5);
        }
    }

    void a_chart_in_the_hand_does_not_jump()
    {
        ReadChart c;
        QTest::mousePress(&c.chart, Qt::LeftButton, {}, QPoint(100, 100));
        c.renew(); // nothing has moved: the view follows
        QCOMPARE(c.chart.rightBarIndex(), count - 1.0);
        QTest::mouseMove(&c.chart, QPoint(170, 100));
        QCOMPARE(c.chart.rightBarIndex(), count - 11.0);
        c.chart.renewCandles({c.chart.candles().begin() + 5, c.chart.candles().end()});
        QCOMPARE(c.chart.rightBarIndex(), count - 16.0);
        QCOMPARE(c.chart.cursor().shape(), Qt::ClosedHandCursor);
        QTest::mouseMove(&c.chart, QPoint(177, 100));
        QCOMPARE(c.chart.rightBarIndex(), count - 17.0);
        QTest::mouseRelease(&c.chart, Qt::LeftButton, {}, QPoint(177, 100));
    }

    void an_object_half_placed_and_a_ruler_stay()
    {
        ReadChart c;
        c.scrollBack();
        c.chart.setMeasureMode(true);
        fixtures::drag(c.chart, QPoint(60, 60), QPoint(130, 90));
        c.chart.setTool(u"trendline"_s);
        fixtures::click(c.chart, QPoint(80, 70));
        const ChartFrame before = c.chart.frame();
        QVERIFY(before.preview && before.ruler);
        c.renew();
        const ChartFrame after = c.chart.frame();
        QVERIFY(after.preview);
        QVERIFY(after.preview->placed == before.preview->placed);
        QVERIFY(after.ruler);
        QCOMPARE(after.ruler->end, before.ruler->end);
        fixtures::click(c.chart, QPoint(200, 90));
        QCOMPARE(c.chart.drawings().size(), 1);
        QVERIFY(c.chart.drawings().first().points.first() == before.preview->placed);
    }

    void indicators_are_those_of_the_new_bars()
    {
        ReadChart c;
        c.scrollBack();
        c.chart.setMovingAverages({{IndicatorKind::Sma, 5, QColor(Qt::red)}});
        QCOMPARE(c.chart.frame().averageValues[0].size(), firstReading().size());
        c.renew();
        ChartWidget fresh;
        fresh.setMovingAverages(c.chart.movingAverages());
        fresh.setCandles(wave(count));
        const ChartFrame shown = c.chart.frame();
        const ChartFrame expected = fresh.frame();
        QCOMPARE(shown.averageValues[0].size(), expected.averageValues[0].size());
        QCOMPARE(shown.averageValues[0].back(), expected.averageValues[0].back());
        QCOMPARE(shown.averageValues[0][30], expected.averageValues[0][30]);
    }
};

TAVORAN_TEST(TestChartRenewal)
#include "tst_ChartRenewal.moc"
