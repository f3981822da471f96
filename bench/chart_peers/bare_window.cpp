// tavoran-bare-host PORT: a window of Qt without a chart, a small square of which changes with each price;
// see ChartHost.h.

#include "chart_peers/ChartHost.h"

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

namespace {

class Square final : public QWidget {
public:
    using QWidget::QWidget;

    void change() { m_light = !m_light; }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPainter(this).fillRect(event->rect(), m_light ? Qt::white : Qt::darkGray);
    }

private:
    bool m_light = false;
};

class BareWindow final : public HostedChart {
public:
    BareWindow()
    {
        m_window.resize(1600, 900);
        m_square.resize(10, 10);
        m_window.show();
        QCoreApplication::processEvents();
    }

    void tick(double, double) override
    {
        m_square.change();
        m_square.update();
    }
    void tickFrame(double, double) override
    {
        m_square.change();
        m_square.repaint();
    }
    void pointerFrame() override { }
    void panFrame() override { }
    void endPan() override { }
    [[nodiscard]] std::vector<double> values() const override { return {}; }
    [[nodiscard]] double bars() const override { return 0.0; }

private:
    QWidget m_window;
    Square m_square{&m_window};
};

} // namespace

int main(int argc, char** argv)
{
    return runChartHost(
        argc, argv, [](const std::vector<Candle>&, double) { return std::make_unique<BareWindow>(); });
}
