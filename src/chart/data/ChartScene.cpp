#include "chart/data/ChartScene.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace {

std::span<const Candle> candlesIn(const std::vector<Candle>& candles, const BarRange& range)
{
    if (range.isEmpty())
        return {};
    return std::span(candles).subspan(
        static_cast<std::size_t>(range.first), static_cast<std::size_t>(range.last - range.first + 1));
}

} // namespace

void ChartScene::setCandles(std::vector<Candle> candles)
{
    m_series.setCandles(std::move(candles));
    ++m_seriesRevision;
    m_viewStale = true;
}

std::optional<TickEffect> ChartScene::tick(double bid, double ask, qint64 timeMs)
{
    if (!isUsablePrice(bid) || !isUsablePrice(ask))
        return std::nullopt;
    const bool quoteChanged = bid != m_bid || ask != m_ask;
    m_bid = bid;
    m_ask = ask;
    const TickEffect effect = m_series.foldTick(bid, ask, timeMs);
    if (effect == TickEffect::Nothing && !quoteChanged)
        return std::nullopt;
    if (effect == TickEffect::Appended) {
        ++m_seriesRevision;
        if (m_state.autoScroll)
            m_state = atEnd();
    }
    m_viewStale = true;
    return effect;
}

bool ChartScene::setTimeframeMs(qint64 ms)
{
    const qint64 before = m_series.timeframeMs();
    m_series.setTimeframeMs(ms);
    return m_series.timeframeMs() != before;
}

void ChartScene::setState(const ViewState& state)
{
    m_state = state;
    m_viewStale = true;
}

void ChartScene::setPanes(int count)
{
    m_panes = count;
    m_viewStale = true;
}

ViewState ChartScene::atEnd() const
{
    ViewState state = m_state;
    state.rightBarIndex = static_cast<double>(std::max<qsizetype>(m_series.count() - 1, 0));
    state.autoScroll = true;
    return state;
}

std::optional<ChartScene::Place> ChartScene::place() const
{
    if (m_state.autoScroll || m_series.isEmpty())
        return std::nullopt;
    const double nearest
        = std::clamp(std::round(m_state.rightBarIndex), 0.0, static_cast<double>(m_series.count() - 1));
    return Place{m_series.candles()[static_cast<std::size_t>(nearest)].time, m_state.rightBarIndex - nearest};
}

ViewState ChartScene::at(const Place& place) const
{
    const std::vector<Candle>& candles = m_series.candles();
    const auto later = std::upper_bound(candles.begin(), candles.end(), place.time,
        [](qint64 time, const Candle& candle) { return time < candle.time; });
    const double index = static_cast<double>(later - candles.begin()) - 1.0 + place.beyond;
    ViewState state = m_state;
    state.rightBarIndex
        = std::clamp(index, 0.0, static_cast<double>(std::max<qsizetype>(m_series.count() - 1, 0)));
    return state;
}

ViewState ChartScene::withAutoScroll(bool on) const
{
    ViewState state = on ? atEnd() : m_state;
    state.autoScroll = on;
    return state;
}

ViewState ChartScene::withShift(bool on) const
{
    ViewState state = m_state;
    state.chartShift = on;
    return state;
}

ViewState ChartScene::withBarWidth(double pixels) const
{
    ViewState state = m_state;
    state.barWidth = pixels;
    return state;
}

const ChartView& ChartScene::view(const QSize& size) const
{
    if (!m_viewStale && m_view.size() == size)
        return m_view;
    const ChartView unscaled(size, m_state, m_series.count(), m_panes);
    const std::span<const Candle> visible = candlesIn(m_series.candles(), unscaled.visible());
    const double followBid = m_state.autoScroll ? m_bid : 0.0;
    m_view = unscaled.withPrices(paddedPriceRange(visible, followBid, m_ask));
    m_largestVolume = 1;
    for (const Candle& candle : visible)
        m_largestVolume = std::max(m_largestVolume, candle.volume);
    m_viewStale = false;
    return m_view;
}

std::optional<QuotedView> ChartScene::lastView() const
{
    if (m_viewStale)
        return std::nullopt;
    return quotedView(m_view.size());
}

QuotedView ChartScene::quotedView(const QSize& size) const
{
    const ChartView& now = view(size);
    return {now, m_largestVolume, m_bid, m_ask};
}

std::optional<Candle> ChartScene::candleAt(qsizetype bar) const
{
    if (bar < 0 || bar >= m_series.count())
        return std::nullopt;
    return m_series.candles()[static_cast<std::size_t>(bar)];
}
