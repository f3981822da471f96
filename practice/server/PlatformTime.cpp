#include "practice/server/PlatformTime.h"

#include "practice/storage/TradeStore.h"

#include <algorithm>

namespace practice {

namespace {

constexpr TimeMs mostToFollow = dayMs;

} // namespace

PlatformTime::PlatformTime(const Clock& machine, TimeMs notBefore)
    : m_machine(machine)
    , m_now(std::max(machine.now(), notBefore))
    , m_lookedAt(machine.elapsed())
{
}

TimeMs PlatformTime::now() const
{
    const TimeMs elapsed = m_machine.elapsed();
    const TimeMs passed = std::max<TimeMs>(0, elapsed - m_lookedAt);
    const TimeMs lead = m_now + passed - m_machine.now();
    if (lead <= 0 && lead >= -mostToFollow) {
        m_now += passed - lead;
    } else if (lead > 0 && lead <= mostToFollow) {
        if (passed == 1)
            return m_now; // half a millisecond would be lost in rounding
        m_now += std::max(passed - lead, passed / 2);
    } else {
        m_now += passed;
    }
    m_lookedAt = elapsed;
    return m_now;
}

TimeMs earliestMoment(Database& database, TimeMs machineNow)
{
    TradeStore store(database);
    const TimeMs latest = store.latestMoment();
    return latest - machineNow > mostToFollow && store.load().liveTrades.empty() ? machineNow : latest;
}

} // namespace practice
