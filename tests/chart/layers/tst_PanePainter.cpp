#include "chart/layers/PanePainter.h"

#include "chart/LayerFixture.h"
#include "chart/layers/TickArea.h"
#include "support/TestMain.h"

#include <array>
#include <limits>

using fixtures::pixelsOf;
using fixtures::pixelsOtherThan;

namespace {

constexpr double gap = std::numeric_limits<double>::quiet_NaN();
constexpr QRect area(0, 218, 332, 60);
const QColor green(0x11, 0xee, 0x22);
constexpr std::array bounds{10, 20};

PaneStyle styleOf(std::optional<ValueRange> scale)
{
    return {green, bounds, scale};
}

} // namespace

class TestPanePainter final : public QObject {
    Q_OBJECT

    QImage paint(const PaneStyle& style, const std::vector<double>& values)
    {
        ChartFrame frame = fixtures::frameOfBars(m_candles, 40.0, m_texts);
        return fixtures::paint(
            [&style, &values](QPainter& painter, const ChartFrame& shown) {
                paintPane(painter, shown, {area, {IndicatorKind::Rsi, 14, true}, style, values});
            },
            frame);
    }

    std::vector<Candle> m_candles = fixtures::wave(6);
    TextPainter m_texts;

private Q_SLOTS:
    void a_scale_that_is_given_stays_whatever_the_values_are()
    {
        const ValueRange scale = paneScale(styleOf(ValueRange{0.0, 100.0}), std::array{-5.0, 7.0}, {0, 1});
        QCOMPARE(scale.min, 0.0);
        QCOMPARE(scale.max, 100.0);
    }

    void without_a_scale_the_values_in_view_fill_the_pane()
    {
        constexpr std::array values{-900.0, gap, 3.0, 8.0, 5.0, 900.0};
        const ValueRange scale = paneScale(styleOf({}), values, {1, 4});
        QCOMPARE(scale.min, 3.0);
        QCOMPARE(scale.max, 8.0);

        const QImage image = paint(styleOf({}), {5.0, 10.0, 10.0, 5.0, 5.0, 5.0});
        QCOMPARE(pixelsOf(image, QRect(171, 218, 41, 1), green), 41); // the highest at the top
        QCOMPARE(pixelsOf(image, QRect(251, 278, 81, 1), green), 81); // the lowest in the row below
    }

    void a_scale_has_a_height_for_any_values()
    {
        const auto heightOf = [](const std::vector<double>& values, const BarRange& visible) {
            const ValueRange scale = paneScale(styleOf({}), values, visible);
            return scale.max - scale.min;
        };
        constexpr double infinity = std::numeric_limits<double>::infinity();
        QVERIFY(heightOf({}, {0, 5}) > 0.0);
        QVERIFY(heightOf({gap, gap}, {0, 1}) > 0.0);
        QVERIFY(heightOf({1.0, 2.0}, {0, -1}) > 0.0);
        QVERIFY(heightOf({7.0, 7.0}, {0, 1}) > 0.0);
        QVERIFY(heightOf({1e15, 1e15}, {0, 1}) > 0.0);
        QCOMPARE(heightOf({1.0, infinity, -infinity, 3.0}, {0, 3}), 2.0);
    }

    void far_values_stay_inside_the_pane()
    {
        const QImage image = paint(styleOf(ValueRange{0.0, 1.0}), {0.5, 1e300, -1e300, 0.5, 1e300, 0.5});
        QVERIFY(pixelsOf(image, area.adjusted(0, 0, 0, 1), green) > 60);
        QCOMPARE(pixelsOf(image, area.adjusted(0, 0, 0, 1), green), pixelsOf(image, image.rect(), green));
    }

    void bounds_outside_the_scale_are_left_out()
    {
        const QColor dots(0x44, 0x44, 0x44);
        QVERIFY(pixelsOf(paint(styleOf(ValueRange{0.0, 30.0}), {}), QRect(0, 0, 400, 300), dots) > 200);
        QCOMPARE(pixelsOf(paint(styleOf(ValueRange{40.0, 50.0}), {}), QRect(0, 0, 400, 300), dots), 0);
    }

    void a_pane_without_a_scale_tells_its_ends()
    {
        const QRect highest(332, 218, 68, 16);
        const QRect lowest(332, 262, 68, 16);
        const std::vector<double> values{104.0, 96.0};
        const QImage own = paint(styleOf({}), values);
        QVERIFY(pixelsOtherThan(own, highest, Qt::black) > 10);
        QVERIFY(pixelsOtherThan(own, lowest, Qt::black) > 10);
        const QImage given = paint(styleOf(ValueRange{96.0, 104.0}), values);
        QCOMPARE(pixelsOtherThan(given, QRect(332, 0, 68, 300), Qt::black), 0);
    }

    void a_tick_changes_such_a_pane_whole()
    {
        const ChartView view(QSize(400, 600), ViewState(), 6, 2);
        for (const int number : {0, 1})
            QVERIFY(tickarea::pane(view, number).contains(view.pane(number).adjusted(0, 0, 0, 1)));
    }
};

TAVORAN_TEST(TestPanePainter)
#include "tst_PanePainter.moc"
