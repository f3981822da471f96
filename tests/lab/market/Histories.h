#pragma once

#include "lab/core/market/MinuteHistory.h"
#include "lab/core/market/PriceWalk.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace lab::checks {

using practice::GridBar;
using practice::TimeMs;

/// Thursday, 2014-05-01T00:00:00Z.
inline constexpr TimeMs start = 1'398'902'400'000;
inline constexpr TimeMs minuteMs = practice::minuteMs;

struct HandMade {
    std::int64_t minute = 0; ///< since `start`
    GridBar bar;
    practice::HalfSpreads halfSpread = {};
};

inline MinuteHistory historyOf(const std::vector<HandMade>& minutes, const std::string& symbol = "EURUSD")
{
    MinuteHistory history;
    const auto& catalog = practice::symbolCatalog();
    history.spec = catalog[practice::findSymbol(catalog, symbol).value()];
    for (const HandMade& minute : minutes) {
        history.minutes.append({minute.bar, minute.halfSpread});
        history.starts.push_back(static_cast<std::int32_t>(start / minuteMs + minute.minute));
    }
    return history;
}

/// A random walk with quiet minutes, jumps, holes and spreads that change and are sometimes missing.
inline MinuteHistory someHistory(std::size_t count, std::uint64_t key)
{
    practice::HashRandom random(key);
    std::vector<HandMade> minutes;
    std::int64_t time = 0;
    std::int64_t price = 138'000;
    const auto draw = [&](double range) { return static_cast<std::int64_t>(random.uniform() * range); };
    while (minutes.size() < count) {
        time += random.uniform() < 0.1 ? 1 + draw(40) : 1;
        price += random.uniform() < 0.2 ? draw(60) - 30 : 0;
        GridBar bar{price, price, price, price + draw(21) - 10, 1 + draw(50)};
        bar.high = std::max(bar.open, bar.close) + draw(8);
        bar.low = std::min(bar.open, bar.close) - draw(8);
        price = bar.close;
        const bool isRecorded = random.uniform() < 0.8;
        const practice::HalfSpreads halves(1 + draw(4), 1 + draw(9), 1 + draw(9), 1 + draw(4));
        minutes.push_back({time, bar, isRecorded ? halves : practice::HalfSpreads()});
    }
    return historyOf(minutes);
}

inline std::vector<Moment> walked(
    const MinuteHistory& history, const RunSettings& settings, std::size_t first, std::size_t end)
{
    PriceWalk walk(history, settings, first, end);
    std::vector<Moment> moments;
    for (Moment moment; walk.next(moment);)
        moments.push_back(moment);
    return moments;
}

inline std::vector<Moment> walked(const MinuteHistory& history, const RunSettings& settings)
{
    return walked(history, settings, 0, history.size());
}

} // namespace lab::checks
