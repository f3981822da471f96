#include "lab/core/market/PriceWalk.h"

#include "lab/core/market/RunSpan.h"
#include "practice/core/market/HashRandom.h"
#include "practice/core/market/TickPath.h"

#include <algorithm>

namespace lab {
namespace {

constexpr practice::TimeMs stepMs = 200; // as the practice market's, at the pace of real time
constexpr practice::TimeMs feedMs = 250; // as the practice platform sends quotes
constexpr std::size_t stepsAMinute = practice::minuteMs / stepMs;

bool comesHighFirst(const practice::GridBar& bar, ExtremeOrder order)
{
    if (order == ExtremeOrder::Usual)
        return bar.high - bar.open < bar.open - bar.low;
    return order == ExtremeOrder::HighFirst;
}

} // namespace

std::int64_t halfSpreadIn(const MinuteView& minute, const MinuteHistory& history, const RunSettings& settings)
{
    std::int64_t half = minute.halfSpread;
    if (settings.spreadPoints)
        half = *settings.spreadPoints / 2;
    else if (half <= 0)
        half = history.spec.spreadPoints / 2;
    return std::max<std::int64_t>(1, std::min(half, minute.bar.low - 1));
}

PriceWalk::PriceWalk(
    const MinuteHistory& history, const RunSettings& settings, std::size_t firstMinute, std::size_t endMinute)
    : m_history(history)
    , m_settings(settings)
    , m_minute(firstMinute)
    , m_endMinute(std::min(endMinute, history.size()))
    , m_pathKey(practice::hashKey(
          {settings.seed, practice::hashText(history.spec.name), practice::hashText("path")}))
{
}

bool PriceWalk::enterMinute()
{
    if (m_minute >= m_endMinute)
        return false;
    const MinuteView minute = m_history.at(m_minute);
    m_first = {minute.time, minute.bar.open, halfSpreadIn(minute, m_history, m_settings),
        static_cast<std::uint32_t>(m_minute), m_history.opensWithGap(m_minute), true};
    m_moments.clear();
    m_next = 0;
    if (m_settings.model == Model::Open || m_settings.model == Model::Ohlc)
        addExtremes(minute.bar);
    else
        addPath(minute.bar);
    m_moments.front().afterGap = m_first.afterGap;
    ++m_minute;
    return true;
}

void PriceWalk::addExtremes(const practice::GridBar& bar)
{
    const bool everyTime = m_settings.model == Model::Ohlc;
    const bool highFirst = comesHighFirst(bar, m_settings.extremes);
    add(0, bar.open, everyTime || beginsBar(m_history, m_settings.timeframe, m_minute));
    add(20'000, highFirst ? bar.high : bar.low, everyTime);
    add(40'000, highFirst ? bar.low : bar.high, everyTime);
    add(practice::minuteMs - 1, bar.close, everyTime);
}

void PriceWalk::addPath(const practice::GridBar& bar)
{
    const practice::TickPath path(
        {bar, 0}, stepsAMinute, practice::hashKey({m_pathKey, static_cast<std::uint64_t>(m_first.time)}));
    if (m_settings.model == Model::Path) {
        for (std::size_t step = 0; step < stepsAMinute; ++step) {
            if (step == 0 || path.mid(step) != path.mid(step - 1))
                add(static_cast<practice::TimeMs>(step) * stepMs, path.mid(step), true);
        }
        return;
    }
    std::size_t next = 0; // the first step that has had no moment
    const auto showChangesUntil = [&](std::size_t end) {
        for (; next < end; ++next) {
            if (path.mid(next) != path.mid(next - 1))
                add(static_cast<practice::TimeMs>(next) * stepMs, path.mid(next), false);
        }
    };
    for (practice::TimeMs offset = 0; offset < practice::minuteMs; offset += feedMs) {
        const auto now = static_cast<std::size_t>(offset / stepMs);
        showChangesUntil(now);
        add(offset, path.mid(now), true);
        next = now + 1;
    }
    showChangesUntil(stepsAMinute);
}

void PriceWalk::add(practice::TimeMs offset, std::int64_t mid, bool forScript)
{
    m_moments.push_back({m_first.time + offset, mid, m_first.halfSpread, m_first.minute, false, forScript});
}

} // namespace lab
