#pragma once

#include "pixel/Monotonic.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <optional>

/// Looks again and again until something is there. It sleeps between two looks, so that it takes no processor
/// from those it looks at; what it sees is dated late by one such pause at most, and by what the machine
/// keeps it from waking, which is measured.
class Lookout final {
public:
    /// Pauses of so many nanoseconds; 0 never sleeps, which takes one processor whole.
    explicit Lookout(std::int64_t pauseNs);

    /// Lets this thread look before others run, where the system allows it (root may): otherwise whoever
    /// computes on all processors dates sightings late, by milliseconds. Not for looking without pauses.
    static void goFirst();

    struct Sighting {
        std::int64_t seenNs = 0;
        std::int64_t lookedBeforeNs = 0; ///< when it was not there yet; the same for what was there at once
    };

    /// When `there()` was first true, or nothing until that moment of CLOCK_MONOTONIC.
    template <typename Predicate>
    [[nodiscard]] std::optional<Sighting> lookUntil(std::int64_t endNs, const Predicate& there) const
    {
        std::optional<std::int64_t> before;
        while (true) {
            const bool found = there();
            const std::int64_t now = monotonicNs();
            if (found)
                return Sighting{now, before.value_or(now)};
            if (now >= endNs)
                return std::nullopt;
            before = now;
            pause(std::min(m_pauseNs, endNs - now));
        }
    }

private:
    static void pause(std::int64_t ns);

    std::int64_t m_pauseNs;
};
