#include "pixel/WakeLedger.h"

#include <algorithm>
#include <optional>

namespace {

// What is found late by the sampling, and what a coarse timer may be early.
constexpr double earlyShareOfPeriod = 0.1;
// A wake-up is found after it came, and what it does is seen from outside after that.
constexpr std::int64_t beforeDeedNs = 60'000'000;

} // namespace

WakeLedger::WakeLedger(const std::vector<Wake>& wakes, const Timer& timer, const std::vector<Deed>& deeds)
{
    std::optional<std::int64_t> firstTurn;
    // As many turns as periods have begun since the first one: a late one does not make the next one too
    // many.
    const auto isDue = [&](std::int64_t ns) {
        return !firstTurn
            || m_ofTimer
            < static_cast<double>(ns - *firstTurn) / static_cast<double>(timer.periodNs) + earlyShareOfPeriod;
    };
    for (const Wake& wake : wakes) {
        m_all += wake.count;
        m_byThread[wake.thread] += wake.count;
        const bool ofDeed = std::any_of(deeds.cbegin(), deeds.cend(), [&wake](const Deed& deed) {
            return wake.ns >= deed.atNs - beforeDeedNs && wake.ns <= deed.atNs + deed.takesNs;
        });
        int left = wake.count;
        if (wake.mainThread && left > 0 && isDue(wake.ns)) {
            firstTurn = firstTurn.value_or(wake.ns);
            ++m_ofTimer;
            --left;
        }
        m_ofDeeds += ofDeed ? left : 0;
    }
}
