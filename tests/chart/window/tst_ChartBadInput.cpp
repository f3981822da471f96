#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/LayerStack.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using fixtures::midnight;
using fixtures::quarterHour;

namespace {

constexpr QColor untouched(0xff, 0x00, 0xff);

QImage allLayers(ChartWidget& chart)
{
    QImage image(chart.size().expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    image.fill(untouched);
    QPainter painter(&image);
    layerstack::paintAll(painter, chart.frame());
    return image;
}

double priceAtRandom(QRandomGenerator& random)
{
    static const std::array odd{0.0, -0.0, 1e-300, -1e-9, 1e15, -1e15, 1e16, 1e308, -1e308,
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(), 5e-324};
    if (random.bounded(3) == 0)
        return odd[random.bounded(static_cast<quint32>(odd.size()))];
    return (random.bounded(2.0) - 1.0) * std::pow(10.0, random.bounded(20) - 8);
}

/// Bars that no market has: any prices, highs below lows, any times and volumes.
std::vector<Candle> barsAtRandom(QRandomGenerator& random)
{
    std::vector<Candle> bars(random.bounded(60U));
    for (Candle& bar : bars) {
        bar.time = midnight + random.bounded(100) * quarterHour + random.bounded(3);
        if (random.bounded(10) == 0)
            bar.time = static_cast<qint64>(random.generate64());
        bar.open = priceAtRandom(random);
        bar.high = priceAtRandom(random);
        bar.low = priceAtRandom(random);
        bar.close = priceAtRandom(random);
        bar.volume = static_cast<qint32>(random.generate());
    }
    return bars;
}

QSize sizeAtRandom(QRandomGenerator& random)
{
    switch (random.bounded(4)) {
    case 0:
        return {random.bounded(4), random.bounded(200)};
    case 1:
        return {random.bounded(200), random.bounded(4)};
    default:
        return {random.bounded(600), random.bounded(400)};
    }
}

void switchEverythingOn(ChartWidget& chart)
{
    chart.setMinimumSize(0, 0);
    chart.setSymbolInfo(u"%1"_s, u"%2\n"_s, u"<b>%3"_s);
    chart.setMovingAverages(
        {{IndicatorKind::Sma, 3, QColor(Qt::red)}, {IndicatorKind::Ema, 5, QColor(Qt::blue)},
            {IndicatorKind::Sma, std::numeric_limits<int>::min(), QColor(Qt::green)}});
    chart.setPane(IndicatorKind::Rsi, true, 3);
    chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.0, u"%1 %2"_s, QColor(Qt::red), Qt::DashLine, true},
        {u"2"_s, u"TP"_s, std::numeric_limits<double>::quiet_NaN(), QString(), QColor(), Qt::NoPen, true}});
}

} // namespace

/// Whatever a server sends, a chart shows something: every pixel is painted, nothing hangs or crashes.
class TestChartBadInput final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void any_bars_at_any_size_can_be_painted()
    {
        QRandomGenerator random(20261121);
        ChartWidget chart;
        switchEverythingOn(chart);
        for (int round = 0; round < 400; ++round) {
            chart.resize(sizeAtRandom(random));
            chart.setCandles(barsAtRandom(random));
            chart.setTimeframeMs(static_cast<qint64>(random.generate64()) >> random.bounded(63));
            chart.setChartType(random.bounded(3));
            chart.setChartShift(random.bounded(2) == 0);
            chart.setDrawings(fixtures::oneOfEachKind(random.bounded(80)));
            chart.onTick(
                priceAtRandom(random), priceAtRandom(random), midnight + random.bounded(200) * quarterHour);
            fixtures::turnWheel(chart, QPoint(0, random.bounded(3) - 1));
            fixtures::hover(chart, QPoint(random.bounded(300), random.bounded(200)));
            const QImage image = allLayers(chart);
            QCOMPARE(fixtures::pixelsOf(image, chart.rect(), untouched), 0);
            QVERIFY(std::is_sorted(chart.candles().begin(), chart.candles().end(),
                [](const Candle& a, const Candle& b) { return a.time < b.time; }));
        }
    }

    void a_flat_series_is_a_line_in_the_middle_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QColor>("color");
        QTest::newRow("candles") << 0 << ChartColors().up;
        QTest::newRow("bars") << 1 << ChartColors().up;
        QTest::newRow("line") << 2 << ChartColors().line;
    }
    void a_flat_series_is_a_line_in_the_middle()
    {
        QFETCH(const int, type);
        QFETCH(const QColor, color);
        for (const double price : {1.1, 0.0, -37.0, 8e6}) {
            ChartWidget chart;
            chart.resize(400, 300); // 278 rows of plot
            chart.setChartType(type);
            chart.setCandles(fixtures::flatBars(60, price));
            QVERIFY(chart.view().prices().max > chart.view().prices().min);
            const QImage image = allLayers(chart);
            const int inTheMiddle = fixtures::pixelsOf(image, QRect(0, 137, 332, 4), color);
            QVERIFY2(inTheMiddle > 150, qPrintable(QString::number(inTheMiddle)));
            QCOMPARE(fixtures::pixelsOf(image, chart.view().plot(), color), inTheMiddle);
        }
    }

    void indicators_of_a_flat_series_are_lines_too()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        const QColor red(Qt::red);
        chart.setMovingAverages({{IndicatorKind::Ema, 10, red}});
        chart.setPane(IndicatorKind::Rsi, true, 14);
        chart.setCandles(fixtures::flatBars(100, 1.1));
        const QImage image = allLayers(chart);
        const int y = chart.view().pricePixel(1.1);
        QVERIFY(fixtures::pixelsOf(image, QRect(0, y - 1, 332, 3), red) > 300);
        // Nothing was lost, so RSI is 100, at the top of the pane.
        const QRect pane = chart.view().pane(0);
        QVERIFY(fixtures::pixelsOf(image, QRect(0, pane.top(), 332, 1), QColor(0xc7, 0x92, 0xea)) > 300);
    }

    void a_spike_leaves_the_other_bars_at_the_edge()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        std::vector<Candle> bars = fixtures::wave(100);
        bars[90].high = 1e14;
        chart.setCandles(bars);
        const QImage image = allLayers(chart);
        const ChartView& view = chart.view();
        QVERIFY(view.prices().contains(1e14));
        const QColor color = bars[90].close >= bars[90].open ? chart.colors().up : chart.colors().down;
        QVERIFY(fixtures::pixelsOf(image, QRect(view.barPixel(90), 20, 1, 200), color) > 190);
        QCOMPARE(fixtures::pixelsOf(image, QRect(0, 40, view.barPixel(90) - 3, 180), chart.colors().up), 0);
    }

    void indicators_of_a_million_bars_are_those_of_their_end()
    {
        const std::vector<Candle> all = fixtures::wave(1'000'000);
        QImage pictures[2];
        const std::array starts{all.begin(), all.end() - 5000};
        for (std::size_t i = 0; i < starts.size(); ++i) {
            ChartWidget chart;
            chart.resize(400, 300);
            ChartColors colors;
            colors.grid = colors.background; // the grid of times stands on other bars
            chart.setColors(colors);
            chart.setMovingAverages(
                {{IndicatorKind::Sma, 20, QColor(Qt::red)}, {IndicatorKind::Ema, 50, QColor(Qt::blue)}});
            chart.setPane(IndicatorKind::Rsi, true, 14);
            chart.setCandles({starts[i], all.end()});
            pictures[i] = allLayers(chart).copy(0, 0, 332, 278);
        }
        QCOMPARE(pictures[0], pictures[1]);
        QVERIFY(fixtures::pixelsOf(pictures[0], pictures[0].rect(), QColor(Qt::red)) > 200);
    }

    void series_changed_ten_times_a_turn_end_as_the_last_one()
    {
        ChartWidget busy;
        ChartWidget calm;
        for (ChartWidget* chart : {&busy, &calm}) {
            chart->resize(400, 300);
            chart->setMovingAverages({{IndicatorKind::Sma, 5, QColor(Qt::red)}});
            chart->setPane(IndicatorKind::Rsi, true, 14);
        }
        for (int i = 0; i < 10; ++i) {
            busy.setTimeframeMs(i % 2 == 0 ? 60'000 : quarterHour);
            busy.setCandles(fixtures::wave(300 - i * 20));
            if (i % 3 == 0)
                QVERIFY(!busy.grab().isNull());
        }
        calm.setCandles(fixtures::wave(120));
        QCOMPARE(busy.grab().toImage(), calm.grab().toImage());
    }
};

TAVORAN_TEST(TestChartBadInput)
#include "tst_ChartBadInput.moc"
