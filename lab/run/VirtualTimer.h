#pragma once

#include "experts/ExpertTimer.h"
#include "practice/core/Types.h"

#include <limits>

namespace lab {

/// What a script's timer and its dates go by.
struct VirtualClock {
    practice::TimeMs now = 0;
};

/// Times out by a run's clock, when it is asked to.
class VirtualTimer final : public ExpertTimer {
public:
    /// `clock` must outlive this object.
    explicit VirtualTimer(const VirtualClock& clock)
        : m_clock(clock)
    {
    }

    void onTimeout(std::function<void()> call) override { m_call = std::move(call); }
    void start(int ms) override
    {
        m_interval = ms;
        m_due = m_clock.now + ms;
    }
    void stop() override { m_due = never; }

    /// Times out once when the clock says so. What has been missed is not made up for: the next time-out is
    /// then a whole interval from now, as with the computer's clock.
    /// Tells whether it did.
    bool run()
    {
        const bool isDue = m_clock.now >= m_due;
        if (isDue)
            timeOut();
        return isDue;
    }

private:
    static constexpr practice::TimeMs never = std::numeric_limits<practice::TimeMs>::max();

    void timeOut();

    const VirtualClock& m_clock;
    std::function<void()> m_call;
    practice::TimeMs m_interval = 0;
    practice::TimeMs m_due = never;
};

} // namespace lab
