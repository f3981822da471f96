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

practice::HalfSpreads halfSpreadsIn(
    const MinuteView& minute, const MinuteHistory& history, const RunSettings& settings)
{
    const practice::GridBar& bar = minute.bar;
    const auto atMid = [](std::int64_t half, std::int64_t mid) {
        return std::max<std::int64_t>(1, std::min(half, mid - 1));
    };
    if (settings.spreadPoints)
        return atMid(*settings.spreadPoints / 2, bar.low);
    const practice::HalfSpreads& recorded = minute.halfSpread;
    if (!recorded.areRecorded())
        return atMid(history.spec.spreadPoints / 2, bar.low);
    return {atMid(recorded.open, bar.open), atMid(recorded.high, bar.high), atMid(recorded.low, bar.low),
        atMid(recorded.close, bar.close)};
}

namespace {

/// Its prices come after a hole, or elsewhere than the last minute's ended: the mid, or the sides around it.
bool opensWithGap(
    std::size_t minute, std::int64_t halfSpread, const MinuteHistory& history, const RunSettings& settings)
{
    return history.opensWithGap(minute)
        || halfSpreadsIn(history.at(minute - 1), history, settings).close != halfSpread;
}

} // namespace

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
    const practice::HalfSpreads spreads = halfSpreadsIn(minute, m_history, m_settings);
    m_first = {minute.time, minute.bar.open, spreads.open, static_cast<std::uint32_t>(m_minute),
        opensWithGap(m_minute, spreads.open, m_history, m_settings), true};
    m_moments.clear();
    m_next = 0;
    if (m_settings.model == Model::Open || m_settings.model == Model::Ohlc)
        addExtremes(minute.bar, spreads);
    else
        addPath(minute.bar, spreads);
    m_moments.front().afterGap = m_first.afterGap;
    ++m_minute;
    return true;
}

void PriceWalk::addExtremes(const practice::GridBar& bar, const practice::HalfSpreads& spreads)
{
    const bool everyTime = m_settings.model == Model::Ohlc;
    const bool highFirst = comesHighFirst(bar, m_settings.extremes);
    add(0, bar.open, spreads.open, everyTime || beginsBar(m_history, m_settings.timeframe, m_minute));
    const auto addHigh = [&](practice::TimeMs offset) { add(offset, bar.high, spreads.high, everyTime); };
    const auto addLow = [&](practice::TimeMs offset) { add(offset, bar.low, spreads.low, everyTime); };
    if (highFirst) {
        addHigh(20'000);
        addLow(40'000);
    } else {
        addLow(20'000);
        addHigh(40'000);
    }
    add(practice::minuteMs - 1, bar.close, spreads.close, everyTime);
}

void PriceWalk::addPath(const practice::GridBar& bar, const practice::HalfSpreads& spreads)
{
    const practice::TickPath path(
        {bar, 0}, stepsAMinute, practice::hashKey({m_pathKey, static_cast<std::uint64_t>(m_first.time)}));
    const auto halfAt = [&](std::size_t step) { return practice::halfSpreadAt(bar, spreads, path, step); };
    const auto isChange = [&](std::size_t step) {
        return path.mid(step) != path.mid(step - 1) || halfAt(step) != halfAt(step - 1);
    };
    const auto addStep = [&](std::size_t step, bool forScript) {
        add(static_cast<practice::TimeMs>(step) * stepMs, path.mid(step), halfAt(step), forScript);
    };
    if (m_settings.model == Model::Path) {
        addStep(0, true);
        for (std::size_t step = 1; step < stepsAMinute; ++step) {
            if (isChange(step))
                addStep(step, true);
        }
        return;
    }
    std::size_t next = 0; // the first step that has had no moment
    const auto showChangesUntil = [&](std::size_t end) {
        for (; next < end; ++next) {
            if (isChange(next))
                addStep(next, false);
        }
    };
    for (practice::TimeMs offset = 0; offset < practice::minuteMs; offset += feedMs) {
        const auto now = static_cast<std::size_t>(offset / stepMs);
        showChangesUntil(now);
        add(offset, path.mid(now), halfAt(now), true);
        next = now + 1;
    }
    showChangesUntil(stepsAMinute);
}

void PriceWalk::add(practice::TimeMs offset, std::int64_t mid, std::int64_t halfSpread, bool forScript)
{
    m_moments.push_back({m_first.time + offset, mid, halfSpread, m_first.minute, false, forScript});
}

} // namespace lab
