#pragma once

#include "practice/core/Types.h"

#include <chrono>

namespace practice {

/// The only place from which the platform learns what time it is.
class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual TimeMs now() const = 0;
};

/// The machine's time.
class SystemClock final : public Clock {
public:
    [[nodiscard]] TimeMs now() const override
    {
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }
};

} // namespace practice
