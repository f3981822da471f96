#include "chart/data/ChartView.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

namespace {

constexpr int rounds = 3000;

/// Sizes with the smallest widget and degenerate ones among them.
QSize sizeAtRandom(QRandomGenerator& random)
{
    switch (random.bounded(6)) {
    case 0:
        return {240, 160};
    case 1:
        return {random.bounded(120), random.bounded(120)};
    default:
        return {random.bounded(240, 4000), random.bounded(160, 3000)};
    }
}

struct Sample {
    ViewState state;
    qsizetype count = 0;
    bool rsi = false;
    ChartView view;
};

Sample sampleAtRandom(QRandomGenerator& random)
{
    Sample sample;
    sample.count = random.bounded(8) == 0 ? 0 : random.bounded(1, random.bounded(2) == 0 ? 300 : 1'000'000);
    // Whole anchors while following, any while panned.
    sample.state.rightBarIndex = static_cast<double>(std::max<qsizetype>(sample.count - 1, 0));
    if (random.bounded(2) == 0)
        sample.state.rightBarIndex *= random.bounded(1.0);
    sample.state.barWidth = std::min(40.0, std::max(1.0, 7.0 * std::pow(1.2, random.bounded(-13, 13))));
    sample.state.chartShift = random.bounded(2) == 0;
    sample.rsi = random.bounded(2) == 0;
    const double low = random.bounded(60'000.0) - 500.0;
    sample.view
        = ChartView(sizeAtRandom(random), sample.state, sample.count, sample.rsi)
              .withPrices({low, low + 1e-5 + random.bounded(1.0) * std::pow(10.0, random.bounded(5))});
    return sample;
}

} // namespace

class TestChartViewProperties final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void columns_go_to_bars_and_back()
    {
        QRandomGenerator random(1);
        for (int round = 0; round < rounds; ++round) {
            const ChartView view = sampleAtRandom(random).view;
            const int x = random.bounded(-50, view.size().width() + 50);
            const double back = view.barX(static_cast<double>(view.barAt(x)));
            QVERIFY(std::abs(back - x) <= view.barWidth() / 2.0 + 1e-6);
        }
    }

    void rows_go_to_prices_and_back()
    {
        QRandomGenerator random(2);
        for (int round = 0; round < rounds; ++round) {
            const ChartView view = sampleAtRandom(random).view;
            const int y = random.bounded(-50, view.size().height() + 50);
            // Prices of six digits leave less than a thousandth of a row over a range of 1e-5.
            QVERIFY(std::abs(view.priceY(view.priceAt(y)) - y) <= 0.01);
        }
    }

    void bars_go_to_columns_and_back()
    {
        QRandomGenerator random(3);
        for (int round = 0; round < rounds; ++round) {
            const Sample sample = sampleAtRandom(random);
            const ChartView& view = sample.view;
            const qsizetype index = sample.count == 0 ? 0 : random.bounded(static_cast<int>(sample.count));
            QCOMPARE(view.barAt(view.barX(static_cast<double>(index))), index);
            const double center = view.barX(static_cast<double>(index));
            QVERIFY(view.barPixel(index) <= center && view.barPixel(index) > center - 1.0);
        }
    }

    void prices_go_to_rows_and_back()
    {
        QRandomGenerator random(4);
        for (int round = 0; round < rounds; ++round) {
            const ChartView view = sampleAtRandom(random).view;
            const double height = view.prices().max - view.prices().min;
            const double price = view.prices().min + height * (random.bounded(1.4) - 0.2);
            const double tolerance = height * 1e-9 + std::abs(price) * 1e-12;
            QVERIFY(std::abs(view.priceAt(view.priceY(price)) - price) <= tolerance);
            QVERIFY(std::abs(view.pricePixel(price) - view.priceY(price)) < 1.0);
        }
    }

    void visible_bars_are_those_that_reach_the_plot()
    {
        QRandomGenerator random(5);
        for (int round = 0; round < rounds; ++round) {
            const Sample sample = sampleAtRandom(random);
            const ChartView& view = sample.view;
            const BarRange& bars = view.visible();
            QCOMPARE(bars.isEmpty(), sample.count == 0);
            if (sample.count == 0)
                continue;
            QVERIFY(bars.first >= 0 && bars.last < sample.count);
            // The last one is the anchor; the first one stands within two bars of the left edge.
            const double right = view.plot().right() - view.shift();
            QVERIFY(
                std::abs(view.barX(static_cast<double>(bars.last)) - right) <= view.barWidth() / 2.0 + 1e-6);
            if (bars.first > 0)
                QVERIFY(view.barX(static_cast<double>(bars.first))
                    <= view.plot().left() - view.shift() + 2.0 * view.barWidth());
        }
    }

    void the_panes_stand_one_above_the_other()
    {
        QRandomGenerator random(6);
        for (int round = 0; round < rounds; ++round) {
            const Sample sample = sampleAtRandom(random);
            const ChartView& view = sample.view;
            QCOMPARE(view.pane(0).isEmpty(), !sample.rsi);
            QVERIFY(view.plot().width() >= ChartView::minPlotSide);
            QVERIFY(view.plot().height() >= ChartView::minPlotSide);
            if (!sample.rsi || view.size().height() < 160)
                continue;
            QCOMPARE(view.pane(0).top(), view.plot().bottom() + 2);
            QCOMPARE(view.pane(0).bottom() + 1, view.size().height() - ChartView::timeAxisHeight);
            QCOMPARE(view.pane(0).width(), view.plot().width());
            QVERIFY(view.pane(0).height() >= 60 && view.pane(0).height() <= 130);
        }
    }
};

TAVORAN_TEST(TestChartViewProperties)
#include "tst_ChartViewProperties.moc"
