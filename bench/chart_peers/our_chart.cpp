// tavoran-chart-host PORT: the terminal's chart alone in a window; see ChartHost.h.

#include "chart/layers/ChartFrame.h"
#include "chart_peers/ChartHost.h"
#include "scenes/LiveChart.h"

namespace {

class OurChart final : public HostedChart {
public:
    OurChart(std::vector<Candle> candles, double barWidth)
        : m_live(QSize(1600, 900), std::move(candles), barWidth)
    {
    }

    void tick(double bid, double ask) override { m_live.tick(bid, ask); }
    void tickFrame(double bid, double ask) override { m_live.tickFrame(bid, ask); }
    void pointerFrame() override { m_live.pointerFrame(); }
    void panFrame() override { m_live.panFrame(); }
    void endPan() override { m_live.endPan(); }

    [[nodiscard]] std::vector<double> values() const override
    {
        const ChartFrame frame = m_live.widget().frame();
        std::vector<double> found;
        for (const auto& lines : {frame.averageValues, frame.paneValues})
            for (const std::span<const double> line : lines)
                found.push_back(line.back());
        return found;
    }

    [[nodiscard]] double bars() const override
    {
        const ChartView& view = m_live.widget().view();
        return view.plot().width() / view.barWidth();
    }

private:
    LiveChart m_live;
};

} // namespace

int main(int argc, char** argv)
{
    return runChartHost(argc, argv, [](std::vector<Candle> candles, double barWidth) {
        return std::make_unique<OurChart>(std::move(candles), barWidth);
    });
}
