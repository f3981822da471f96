// tavoran-plot-host PORT: a plotting widget alone in a window; see ChartHost.h.

#include "chart_peers/ChartHost.h"
#include "scenes/PlotChart.h"

namespace {

class HostedPlot final : public HostedChart {
public:
    HostedPlot(std::vector<Candle> candles, double barWidth)
        : m_plot(QSize(1600, 900), std::move(candles), barWidth)
    {
    }

    void tick(double bid, double ask) override { m_plot.tick((bid + ask) / 2); }
    void tickFrame(double bid, double ask) override { m_plot.tickFrame((bid + ask) / 2); }
    void pointerFrame() override { m_plot.pointerFrame(); }
    void panFrame() override { m_plot.panFrame(); }
    void endPan() override { m_plot.endPan(); }
    [[nodiscard]] std::vector<double> values() const override { return m_plot.values(); }
    [[nodiscard]] double bars() const override { return m_plot.visibleBars(); }

private:
    PlotChart m_plot;
};

} // namespace

int main(int argc, char** argv)
{
    return runChartHost(argc, argv, [](std::vector<Candle> candles, double barWidth) {
        return std::make_unique<HostedPlot>(std::move(candles), barWidth);
    });
}
