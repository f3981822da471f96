#pragma once

#include "practice/server/Clock.h"

namespace practice {

/// The clock of a machine, moved by hand: what it shows can be set, and time passes all the same.
class HandClock final : public Clock {
public:
    static constexpr TimeMs firstMoment = 1'750'000'000'000;

    [[nodiscard]] TimeMs now() const override { return shown; }
    [[nodiscard]] TimeMs elapsed() const override { return passed; }
    void pass(TimeMs time)
    {
        shown += time;
        passed += time;
    }
    /// What it would show had nobody set it.
    [[nodiscard]] TimeMs unset() const { return firstMoment + passed - firstPassed; }

    TimeMs shown = firstMoment;
    TimeMs passed = firstPassed;

private:
    static constexpr TimeMs firstPassed = 12'345;
};

} // namespace practice
