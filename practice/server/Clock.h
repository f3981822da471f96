#pragma once

#include "practice/core/Types.h"

#include <chrono>
#include <ctime>

namespace practice {

/// The only place from which the platform learns what time it is.
class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual TimeMs now() const = 0;

    /// Milliseconds since some moment. Setting the clock does not change this, and it goes on while the
    /// machine sleeps.
    [[nodiscard]] virtual TimeMs elapsed() const { return now(); }
};

/// The machine's time.
class SystemClock final : public Clock {
public:
    [[nodiscard]] TimeMs now() const override
    {
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }

    [[nodiscard]] TimeMs elapsed() const override
    {
        timespec time{};
        ::clock_gettime(CLOCK_BOOTTIME, &time);
        return TimeMs(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
    }
};

} // namespace practice
