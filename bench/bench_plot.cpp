#include "scenes/PlainIndicators.h"
#include "scenes/Series.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

namespace {

constexpr std::size_t visibleBars = 230;

/// The same content in a widely used plotting widget, without antialiasing, its crosshair on a
/// buffered layer of its own, as its manual advises for speed.
class Plot final {
public:
    Plot()
    {
        m_plot.resize(1600, 900);
        m_plot.setNotAntialiasedElements(QCP::aeAll);
        m_plot.setBackground(QBrush(Qt::black));
        m_candles = new QCPFinancial(m_plot.xAxis, m_plot.yAxis);
        m_candles->setChartStyle(QCPFinancial::csCandlestick);
        m_candles->setTwoColored(true);
        m_candles->setWidth(0.72);
        m_candles->setBrushPositive(QBrush(Qt::black));
        m_candles->setPenPositive(QPen(QColor(0, 0xe6, 0)));
        m_candles->setBrushNegative(QBrush(Qt::white));
        m_candles->setPenNegative(QPen(Qt::white));
        m_volume = new QCPBars(m_plot.xAxis, m_plot.yAxis2);
        m_volume->setBrush(QColor(0x2f, 0x6b, 0x3f));
        m_volume->setPen(Qt::NoPen);
        m_series = walk(5'000);
        for (std::size_t i = 0; i < m_series.size(); ++i) {
            const Candle& bar = m_series[i];
            m_candles->data()->add({static_cast<double>(i), bar.open, bar.high, bar.low, bar.close});
            m_volume->data()->add({static_cast<double>(i), static_cast<double>(bar.volume)});
        }
        m_plot.yAxis2->setRange(0, 4000);
        addLine(m_plot.xAxis, m_plot.yAxis, plain::simple(m_series, 20), QColor(0xff, 0xd5, 0x4f));
        addLine(m_plot.xAxis, m_plot.yAxis, plain::exponential(m_series, 50), QColor(0x4f, 0xc3, 0xf7));
        addLine(m_plot.xAxis, m_plot.yAxis, plain::simple(m_series, 100), QColor(0xba, 0x68, 0xc8));
        m_pane = new QCPAxisRect(&m_plot);
        m_plot.plotLayout()->addElement(1, 0, m_pane);
        m_plot.plotLayout()->setRowStretchFactor(1, 0.17);
        m_pane->axis(QCPAxis::atLeft)->setRange(0, 100);
        addLine(m_pane->axis(QCPAxis::atBottom), m_pane->axis(QCPAxis::atLeft), plain::rsi(m_series, 14),
            QColor(0xc7, 0x92, 0xea));
        m_plot.addLayer(QStringLiteral("crosshair"), nullptr, QCustomPlot::limAbove);
        QCPLayer* layer = m_plot.layer(QStringLiteral("crosshair"));
        layer->setMode(QCPLayer::lmBuffered);
        m_across = new QCPItemStraightLine(&m_plot);
        m_down = new QCPItemStraightLine(&m_plot);
        for (QCPItemStraightLine* line : {m_across, m_down}) {
            line->setLayer(layer);
            line->setPen(QPen(Qt::gray, 1, Qt::DashLine));
        }
        show(static_cast<double>(m_series.size()) - 1);
        m_plot.show();
        QCoreApplication::processEvents();
    }

    void pointerFrame()
    {
        ++m_step;
        const double x = static_cast<double>(m_series.size()) - 1 - m_step % 200;
        const double y = m_series.back().close + (m_step % 100) * 0.00001;
        m_across->point1->setCoords(0, y);
        m_across->point2->setCoords(1, y);
        m_down->point1->setCoords(x, 0);
        m_down->point2->setCoords(x, 1);
        m_plot.layer(QStringLiteral("crosshair"))->replot();
        m_plot.repaint();
    }

    void tickFrame()
    {
        (m_candles->data()->end() - 1)->close = m_series.back().close + (++m_step % 2) * 0.00001;
        replot();
    }

    void panFrame()
    {
        show(static_cast<double>(m_series.size()) - 1 - (++m_step % 400) / 7.0);
        replot();
    }

private:
    void addLine(QCPAxis* x, QCPAxis* y, const std::vector<double>& values, const QColor& color)
    {
        QCPGraph* line = m_plot.addGraph(x, y);
        line->setPen(QPen(color));
        for (std::size_t i = 0; i < values.size(); ++i)
            line->addData(static_cast<double>(i), values[i]);
    }
    void show(double last)
    {
        m_pane->axis(QCPAxis::atBottom)->setRange(last - visibleBars, last + 0.5);
        m_plot.xAxis->setRange(last - visibleBars, last + 0.5);
        const auto from = static_cast<std::size_t>(std::max(0.0, last - visibleBars));
        double low = 1e300;
        double high = -1e300;
        for (std::size_t i = from; i <= static_cast<std::size_t>(last); ++i) {
            low = std::min(low, m_series[i].low);
            high = std::max(high, m_series[i].high);
        }
        m_plot.yAxis->setRange(low - (high - low) * 0.06, high + (high - low) * 0.06);
    }
    void replot()
    {
        m_plot.replot(QCustomPlot::rpImmediateRefresh);
        m_plot.repaint();
    }

    QCustomPlot m_plot;
    std::vector<Candle> m_series;
    QCPFinancial* m_candles; ///< the plot owns its parts
    QCPBars* m_volume;
    QCPAxisRect* m_pane;
    QCPItemStraightLine* m_across;
    QCPItemStraightLine* m_down;
    int m_step = 0;
};

void plotFrame(benchmark::State& state, void (Plot::*frame)())
{
    Plot plot;
    for ([[maybe_unused]] auto _ : state)
        (plot.*frame)();
}

BENCHMARK_CAPTURE(plotFrame, pointer_7px, &Plot::pointerFrame)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plotFrame, tick_7px, &Plot::tickFrame)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plotFrame, pan_7px, &Plot::panFrame)->MeasureProcessCPUTime();

} // namespace
