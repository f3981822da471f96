#include "orders/TickChartGeometry.h"

#include <algorithm>

namespace {

constexpr int topMargin = 6;
constexpr int scaleWidth = 52;
constexpr int verticalMargins = 26;

} // namespace

std::optional<TickChartGeometry> TickChartGeometry::of(
    QSize size, const QList<double>& bids, const QList<double>& asks)
{
    const QRect plot(0, topMargin, size.width() - scaleWidth, size.height() - verticalMargins);
    if (bids.size() < 2 || asks.isEmpty() || plot.width() <= 0 || plot.height() <= 0)
        return std::nullopt;
    const auto [lowBid, highBid] = std::minmax_element(bids.cbegin(), bids.cend());
    const auto [lowAsk, highAsk] = std::minmax_element(asks.cbegin(), asks.cend());
    const double lowest = std::min(*lowBid, *lowAsk);
    const double highest = std::max(*highBid, *highAsk);
    // The small term keeps a flat series from dividing by zero.
    const double pad = (highest - lowest) * 0.1 + 1e-9;
    return TickChartGeometry(plot, lowest - pad, highest + pad, bids.size());
}

TickChartGeometry::TickChartGeometry(const QRect& plot, double low, double high, qsizetype quotes)
    : m_plot(plot)
    , m_low(low)
    , m_high(high)
    , m_quotes(quotes)
{
}

int TickChartGeometry::yOf(double value) const
{
    // For flat prices of ten million and more the pad is lost in rounding.
    if (!(m_high > m_low))
        return m_plot.y() + m_plot.height() / 2;
    return int(m_plot.y() + (m_high - value) / (m_high - m_low) * m_plot.height());
}

int TickChartGeometry::xOf(qsizetype index) const
{
    return int(m_plot.x() + double(m_plot.width()) * double(index) / double(m_quotes - 1));
}

TickChartGeometry::ScaleStep TickChartGeometry::scaleStep(int index) const
{
    const double value = m_low + index * (m_high - m_low) * 0.25;
    return {value, yOf(value)};
}

QRect TickChartGeometry::scaleLabelBox(int y) const
{
    return {plotRight() + 2, y - 7, 48, 14};
}

QRect TickChartGeometry::tagBox(double value) const
{
    return {plotRight() + 1, yOf(value) - 8, 50, 16};
}

QList<QLine> TickChartGeometry::segments(const QList<double>& values) const
{
    QList<QLine> lines;
    lines.reserve(values.size());
    for (qsizetype k = 1; k < values.size(); ++k)
        lines.append({xOf(k - 1), yOf(values.at(k - 1)), xOf(k), yOf(values.at(k))});
    return lines;
}
