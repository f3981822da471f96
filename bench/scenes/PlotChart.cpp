#include "scenes/PlotChart.h"

#include "scenes/PlainIndicators.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t window = 400;  ///< bars by which an exponential average forgets what was before
constexpr double volumeShare = 0.14; ///< of the height, for the largest volume in view

} // namespace

PlotChart::PlotChart(QSize size, std::vector<Candle> candles, double barWidth)
    : m_series(std::move(candles))
    , m_close(m_series.back().close)
{
    m_plot.resize(size);
    m_plot.setNotAntialiasedElements(QCP::aeAll);
    m_plot.setBackground(QBrush(Qt::black));
    buildPrices();
    buildPane();
    buildCrosshair();
    colorAxes();
    show(static_cast<double>(m_series.size()) - 1);
    m_plot.show();
    QCoreApplication::processEvents();
    // Only now it is known how much room the axes leave.
    replot();
    m_visibleBars = m_plot.xAxis->axisRect()->width() / barWidth;
    show(static_cast<double>(m_series.size()) - 1);
    replot();
}

void PlotChart::buildPrices()
{
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
    for (std::size_t i = 0; i < m_series.size(); ++i) {
        const Candle& bar = m_series[i];
        m_candles->data()->add({static_cast<double>(i), bar.open, bar.high, bar.low, bar.close});
        m_volume->data()->add({static_cast<double>(i), static_cast<double>(bar.volume)});
    }
    m_lines[0] = addLine(m_plot.xAxis, m_plot.yAxis, plain::simple(m_series, 20), QColor(0xff, 0xd5, 0x4f));
    m_lines[1]
        = addLine(m_plot.xAxis, m_plot.yAxis, plain::exponential(m_series, 50), QColor(0x4f, 0xc3, 0xf7));
    m_lines[2] = addLine(m_plot.xAxis, m_plot.yAxis, plain::simple(m_series, 100), QColor(0xba, 0x68, 0xc8));
}

void PlotChart::buildPane()
{
    m_pane = new QCPAxisRect(&m_plot);
    m_plot.plotLayout()->addElement(1, 0, m_pane);
    m_plot.plotLayout()->setRowStretchFactor(1, 0.17);
    m_pane->axis(QCPAxis::atLeft)->setRange(0, 100);
    m_lines[3] = addLine(m_pane->axis(QCPAxis::atBottom), m_pane->axis(QCPAxis::atLeft),
        plain::rsi(m_series, 14), QColor(0xc7, 0x92, 0xea));
}

void PlotChart::buildCrosshair()
{
    m_plot.addLayer(QStringLiteral("crosshair"), nullptr, QCustomPlot::limAbove);
    QCPLayer* layer = m_plot.layer(QStringLiteral("crosshair"));
    layer->setMode(QCPLayer::lmBuffered);
    m_across = new QCPItemStraightLine(&m_plot);
    m_down = new QCPItemStraightLine(&m_plot);
    for (QCPItemStraightLine* line : {m_across, m_down}) {
        line->setLayer(layer);
        line->setPen(QPen(Qt::gray, 1, Qt::DashLine));
    }
}

void PlotChart::colorAxes()
{
    for (const QCPAxisRect* rect : m_plot.axisRects()) {
        for (QCPAxis* axis : rect->axes()) {
            axis->setTickLabelColor(Qt::white);
            for (const auto setPen : {&QCPAxis::setBasePen, &QCPAxis::setTickPen, &QCPAxis::setSubTickPen})
                (axis->*setPen)(QPen(Qt::white));
            axis->grid()->setPen(QPen(QColor(0x30, 0x30, 0x30)));
        }
    }
    m_plot.yAxis->setNumberFormat(QStringLiteral("f"));
    m_plot.yAxis->setNumberPrecision(5);
}

void PlotChart::pointerFrame()
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

void PlotChart::tickFrame()
{
    tickFrame(m_close + (++m_step % 2) * 0.00001);
}

void PlotChart::tickFrame(double bid)
{
    takeTick(bid);
    replot();
}

void PlotChart::tick(double bid)
{
    takeTick(bid);
    m_plot.replot(QCustomPlot::rpQueuedReplot);
}

void PlotChart::takeTick(double bid)
{
    Candle& newest = m_series.back();
    newest.close = bid;
    newest.high = std::max(newest.high, bid);
    newest.low = std::min(newest.low, bid);
    ++newest.volume;
    QCPFinancialData& shown = *(m_candles->data()->end() - 1);
    shown.close = newest.close;
    shown.high = newest.high;
    shown.low = newest.low;
    (m_volume->data()->end() - 1)->value = newest.volume;
    // Exact for the simple averages; the others carry on from so long ago that nobody sees a difference.
    const auto count = static_cast<std::ptrdiff_t>(std::min(window, m_series.size()));
    const std::vector<Candle> tail(m_series.end() - count, m_series.end());
    const std::array<double, 4> values = {plain::simple(tail, 20).back(), plain::exponential(tail, 50).back(),
        plain::simple(tail, 100).back(), plain::rsi(tail, 14).back()};
    for (std::size_t i = 0; i < m_lines.size(); ++i)
        (m_lines[i]->data()->end() - 1)->value = values[i];
    show(static_cast<double>(m_series.size()) - 1); // prices and volumes still fit
}

void PlotChart::panFrame()
{
    const double bars = (++m_step % 400) * m_visibleBars / m_plot.xAxis->axisRect()->width();
    show(static_cast<double>(m_series.size()) - 1 - bars);
    replot();
}

void PlotChart::endPan()
{
    show(static_cast<double>(m_series.size()) - 1);
    replot();
}

std::vector<double> PlotChart::values() const
{
    std::vector<double> found;
    for (const QCPGraph* line : m_lines)
        found.push_back((line->data()->end() - 1)->value);
    return found;
}

QCPGraph* PlotChart::addLine(QCPAxis* x, QCPAxis* y, const std::vector<double>& values, const QColor& color)
{
    QCPGraph* line = m_plot.addGraph(x, y);
    line->setPen(QPen(color));
    for (std::size_t i = 0; i < values.size(); ++i)
        line->addData(static_cast<double>(i), values[i]);
    return line;
}

void PlotChart::show(double last)
{
    m_pane->axis(QCPAxis::atBottom)->setRange(last - m_visibleBars, last + 0.5);
    m_plot.xAxis->setRange(last - m_visibleBars, last + 0.5);
    const auto from = static_cast<std::size_t>(std::max(0.0, last - m_visibleBars));
    double low = 1e300;
    double high = -1e300;
    qint32 volume = 1;
    for (std::size_t i = from; i <= static_cast<std::size_t>(last); ++i) {
        low = std::min(low, m_series[i].low);
        high = std::max(high, m_series[i].high);
        volume = std::max(volume, m_series[i].volume);
    }
    m_plot.yAxis2->setRange(0, volume / volumeShare);
    m_plot.yAxis->setRange(low - (high - low) * 0.06, high + (high - low) * 0.06);
}

void PlotChart::replot()
{
    m_plot.replot(QCustomPlot::rpImmediateRefresh); // repaints, too
}
