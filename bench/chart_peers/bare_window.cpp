// tavoran-bare-host PORT: a window of Qt without a chart; see ChartHost.h.

#include "chart_peers/ChartHost.h"

#include <QCoreApplication>
#include <QWidget>

namespace {

class BareWindow final : public HostedChart {
public:
    BareWindow()
    {
        m_window.resize(1600, 900);
        m_window.show();
        QCoreApplication::processEvents();
    }

    void tick(double, double) override { }
    void tickFrame(double, double) override { }
    void pointerFrame() override { }
    void panFrame() override { }
    void endPan() override { }
    [[nodiscard]] std::vector<double> values() const override { return {}; }
    [[nodiscard]] double bars() const override { return 0.0; }

private:
    QWidget m_window;
};

} // namespace

int main(int argc, char** argv)
{
    return runChartHost(
        argc, argv, [](const std::vector<Candle>&, double) { return std::make_unique<BareWindow>(); });
}
