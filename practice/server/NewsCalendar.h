#pragma once

#include "practice/core/Types.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// One entry of the economic calendar.
struct NewsEvent {
    std::string id; ///< stays the same for the same event
    TimeMs time = 0;
    std::string_view impact; ///< "HIGH", "MEDIUM" or "LOW"
    std::string_view currency;
    std::string_view title;
    friend bool operator==(const NewsEvent&, const NewsEvent&) = default;
};

/// Invents the economic calendar. The same seed has the same events at the same times for ever; a
/// high-impact one falls on every quarter of an hour, so that one is always near.
class NewsCalendar final {
public:
    explicit NewsCalendar(std::uint64_t seed);

    /// From half an hour ago to a day ahead, the earliest first.
    [[nodiscard]] std::vector<NewsEvent> around(TimeMs now) const;

private:
    [[nodiscard]] NewsEvent highImpact(std::int64_t quarter) const;
    [[nodiscard]] NewsEvent minor(std::int64_t slot) const;

    std::uint64_t m_seed;
};

/// Whole minutes from `now` to `time`, rounded down: 0 in the last minute before, negative once begun.
[[nodiscard]] constexpr std::int64_t minutesUntil(TimeMs time, TimeMs now)
{
    return floorDivide(time - now, minuteMs);
}

} // namespace practice
