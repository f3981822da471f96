#pragma once

#include "practice/server/Clock.h"

namespace practice {

class Database;

/// The platform's own time: the machine's, but it never runs backwards and is not led astray by a clock that
/// is set while the platform runs.
///
/// - A clock set forward by up to a day is followed at once. One set further is not: years that nobody lived
///   through would be charged, and taken back by nobody when the clock is put right. The next start follows
///   it.
/// - While the clock is behind by up to a day, time goes at half its pace until the clock has caught up; a
///   clock further behind is not waited for.
/// - Time that passes while the process stands still or the machine sleeps is time like any other.
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

/// Where the time of a platform with these data has to begin: not before the last moment that they tell of,
/// lest a night be charged twice. Data without a live trade that are more than a day ahead of the machine are
/// no reason: they were written while its clock was wrong, and nothing can be charged. Throws StorageError.
[[nodiscard]] TimeMs earliestMoment(Database& database, TimeMs machineNow);

} // namespace practice
