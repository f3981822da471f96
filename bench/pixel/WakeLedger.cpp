#include "pixel/WakeLedger.h"

#include <algorithm>
#include <optional>

namespace {

// What is found late by the sampling, and what a coarse timer may be early.
constexpr double earlyShareOfPeriod = 0.1;
// A wake-up is found after it came, and what it does is seen from outside after that.
constexpr std::int64_t beforeDeedNs = 60'000'000;

} // namespace

WakeLedger::WakeLedger(const std::vector<Wake>& wakes, std::int64_t periodNs, const std::vector<Deed>& deeds)
{
    std::optional<std::int64_t> firstTurn;
    std::int64_t turns = 0; // taken or let go
    // A turn for each period that has begun since the first one: a late one does not make the next one too
    // many. Of the turns that nothing has taken only one is late, the others are let go.
    const auto takeTurn = [&](std::int64_t ns) {
        const double periods
            = static_cast<double>(ns - firstTurn.value_or(ns)) / static_cast<double>(periodNs);
        const auto begun = static_cast<std::int64_t>(periods + earlyShareOfPeriod) + 1;
        firstTurn = firstTurn.value_or(ns);
        turns = std::max(turns, begun - 2);
        if (turns >= begun)
            return false;
        ++turns;
        return true;
    };
    for (const Wake& wake : wakes) {
        m_all += wake.count;
        m_byThread[wake.thread] += wake.count;
        const bool ofDeed = std::any_of(deeds.cbegin(), deeds.cend(), [&wake](const Deed& deed) {
            return wake.ns >= deed.atNs - beforeDeedNs && wake.ns <= deed.atNs + deed.takesNs;
        });
        int left = wake.count;
        if (wake.mainThread && left > 0 && takeTurn(wake.ns)) {
            ++m_ofTimer;
            --left;
        }
        m_ofDeeds += ofDeed ? left : 0;
    }
}
