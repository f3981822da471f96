#pragma once

#include "practice/server/Clock.h"

namespace practice {

class Database;

/// The platform's own time: the machine's, but it never runs backwards and is not led astray by a clock that
/// is set while the platform runs.
///
/// - A clock set forward by up to a day is followed at once. A clock set further is not: swap for years that
/// never were would be charged, and nothing would pay it back when the clock is put right. The next start
/// follows such a clock.
/// - While the clock is behind by up to a day, time goes at half its pace until the clock has caught up; a
/// clock further behind is not waited for.
/// - Time that passes while the process stands still or the machine sleeps counts like any other.
class PlatformTime final : public Clock {
public:
    /// Keeps a reference. Time begins with the machine's, or with `notBefore` where that is later.
    PlatformTime(const Clock& machine, TimeMs notBefore);

    [[nodiscard]] TimeMs now() const override;
    [[nodiscard]] TimeMs elapsed() const override { return m_machine.elapsed(); }

private:
    const Clock& m_machine;
    mutable TimeMs m_now; ///< at the last look
    mutable TimeMs m_lookedAt;
};

/// The moment at which the time of a platform with this data begins: not before the last moment that the data
/// tells of, or a night would be charged twice. Data without a live trade that is more than a day ahead of
/// the machine is ignored: it was written while the clock was wrong, and nothing can be charged. Throws
/// StorageError.
[[nodiscard]] TimeMs earliestMoment(Database& database, TimeMs machineNow);

} // namespace practice
