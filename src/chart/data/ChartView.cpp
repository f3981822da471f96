#include "chart/data/ChartView.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int paneMinHeight = 60;
constexpr int paneMaxHeight = 130;
constexpr int minShift = 24;
constexpr double shiftShare = 0.16;
constexpr double marginShare = 0.06;
constexpr double smallestMargin = 1e-9;

/// Keeps far-away pixels within what an int and the painter can take.
constexpr double farPixel = 1e8;
/// Keeps far-away indices within what rounding to an integer can take.
constexpr double farIndex = 1e15;

int toPixel(double position)
{
    return static_cast<int>(std::clamp(position, -farPixel, farPixel));
}

qsizetype nearestIndex(double index)
{
    return static_cast<qsizetype>(std::llround(std::clamp(index, -farIndex, farIndex)));
}

double finiteOr(double value, double fallback)
{
    return std::isfinite(value) ? value : fallback;
}

BarRange visibleBars(double rightBarIndex, qsizetype count, int plotWidth, double barWidth)
{
    const auto shown = static_cast<qsizetype>(plotWidth / barWidth) + 1;
    BarRange range;
    range.last = std::min(nearestIndex(rightBarIndex), count - 1);
    range.first = std::max<qsizetype>(range.last - shown + 1, 0);
    return range;
}

} // namespace

PriceRange paddedPriceRange(std::span<const Candle> candles, double followBid, double followAsk)
{
    double min = std::numeric_limits<double>::infinity();
    double max = -min;
    for (const Candle& candle : candles) {
        min = std::min(min, candle.low);
        max = std::max(max, candle.high);
    }
    if (followBid > 0.0) {
        min = std::min(min, followBid);
        max = std::max(max, followAsk > 0.0 ? followAsk : followBid);
    }
    if (min > max) {
        min = 0.0;
        max = 1.0;
    }
    const double margin = (max - min) * marginShare + smallestMargin;
    PriceRange range{min - margin, max + margin};
    if (range.min >= range.max) { // the margin is lost beside a flat price this large
        range.min = min - std::abs(min) * smallestMargin;
        range.max = max + std::abs(max) * smallestMargin;
    }
    return range;
}

ChartView::ChartView(QSize size, const ViewState& state, qsizetype count, int panes)
    : m_size(size.expandedTo(QSize(0, 0)))
    , m_panes(std::max(panes, 0))
    , m_barWidth(std::clamp(
          finiteOr(state.barWidth, ViewState().barWidth), ViewState::minBarWidth, ViewState::maxBarWidth))
    , m_rightBarIndex(std::clamp(finiteOr(state.rightBarIndex, 0.0), -farIndex, farIndex))
    , m_count(std::max<qsizetype>(count, 0))
{
    const int width = std::max(m_size.width() - priceAxisWidth, minPlotSide);
    int height = m_size.height() - timeAxisHeight;
    if (m_panes > 0) {
        const int paneHeight = std::clamp(m_size.height() / 5, paneMinHeight, paneMaxHeight);
        m_lowestPane = QRect(0, height - paneHeight, width, paneHeight);
        height -= m_panes * (paneHeight + 1);
    }
    m_plot = QRect(0, 0, width, std::max(height, minPlotSide));
    if (state.chartShift)
        m_shift = std::max(static_cast<int>(width * shiftShare), minShift);
    m_visible = visibleBars(m_rightBarIndex, m_count, width, m_barWidth);
    m_prices = paddedPriceRange({}, 0.0, 0.0);
}

ChartView ChartView::withPrices(const PriceRange& prices) const
{
    ChartView view = *this;
    view.m_prices = prices;
    return view;
}

QRect ChartView::pane(int number) const
{
    if (number < 0 || number >= m_panes)
        return {};
    return m_lowestPane.translated(0, -number * (m_lowestPane.height() + 1));
}

QRect ChartView::scrollToEndButton() const
{
    return {m_plot.right() - 30, m_plot.bottom() - 26, 24, 20};
}

double ChartView::barX(double index) const
{
    return m_plot.right() - m_shift - (m_rightBarIndex - index) * m_barWidth;
}

int ChartView::barPixel(qsizetype index) const
{
    // Towards the left, so that no two bars fall together where the axis passes zero.
    return toPixel(std::floor(barX(static_cast<double>(index))));
}

qsizetype ChartView::barAt(double x) const
{
    return nearestIndex(m_rightBarIndex - (m_plot.right() - m_shift - x) / m_barWidth);
}

double ChartView::priceY(double price) const
{
    return m_plot.top() + (m_prices.max - price) / (m_prices.max - m_prices.min) * m_plot.height();
}

int ChartView::pricePixel(double price) const
{
    return toPixel(priceY(price));
}

double ChartView::priceAt(double y) const
{
    return m_prices.max - (y - m_plot.top()) * (m_prices.max - m_prices.min) / std::max(m_plot.height(), 1);
}

std::optional<CrosshairPlace> ChartView::placeAt(const QPoint& pixel) const
{
    if (!m_plot.contains(pixel))
        return std::nullopt;
    return CrosshairPlace{barAt(pixel.x()), priceAt(pixel.y())};
}
