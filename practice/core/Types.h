#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace practice {

/// Milliseconds since 1970-01-01T00:00:00 UTC. Times before it are negative and valid.
using TimeMs = std::int64_t;

/// A two-sided price. Both sides lie on the symbol's price grid and bid < ask.
struct Quote {
    double bid = 0;
    double ask = 0;
    friend bool operator==(const Quote&, const Quote&) = default;
};

/// One bar of MID prices. `time` is the bar's first millisecond; `volume` counts ticks; the volume of a
/// longer bar is the sum of those of the shorter bars in it.
struct Bar {
    TimeMs time = 0;
    double open = 0;
    double high = 0;
    double low = 0;
    double close = 0;
    std::int64_t volume = 0;
    friend bool operator==(const Bar&, const Bar&) = default;
};

/// The bar lengths a chart can ask for. MN is a fixed 30 days.
enum class Timeframe { M1, M5, M15, H1, H4, D1, W1, MN };

inline constexpr std::array allTimeframes{Timeframe::M1, Timeframe::M5, Timeframe::M15, Timeframe::H1,
    Timeframe::H4, Timeframe::D1, Timeframe::W1, Timeframe::MN};

inline constexpr TimeMs minuteMs = 60'000;
inline constexpr TimeMs hourMs = 60 * minuteMs;
inline constexpr TimeMs dayMs = 24 * hourMs;

/// Length of a bar in milliseconds.
[[nodiscard]] constexpr TimeMs timeframeLength(Timeframe timeframe)
{
    switch (timeframe) {
    case Timeframe::M1:
        return minuteMs;
    case Timeframe::M5:
        return 5 * minuteMs;
    case Timeframe::M15:
        return 15 * minuteMs;
    case Timeframe::H1:
        return hourMs;
    case Timeframe::H4:
        return 4 * hourMs;
    case Timeframe::D1:
        return dayMs;
    case Timeframe::W1:
        return 7 * dayMs;
    case Timeframe::MN:
        return 30 * dayMs;
    }
    return minuteMs;
}

/// Key as it travels on the wire: "1m", "5m", "15m", "1h", "4h", "1d", "1w", "1mn".
[[nodiscard]] constexpr std::string_view timeframeKey(Timeframe timeframe)
{
    constexpr std::array<std::string_view, allTimeframes.size()> keys{
        "1m", "5m", "15m", "1h", "4h", "1d", "1w", "1mn"};
    return keys[static_cast<std::size_t>(timeframe)];
}

/// The timeframe with this key; nothing for any other text (keys are case-sensitive).
[[nodiscard]] constexpr std::optional<Timeframe> timeframeFromKey(std::string_view key)
{
    for (const Timeframe timeframe : allTimeframes) {
        if (timeframeKey(timeframe) == key)
            return timeframe;
    }
    return std::nullopt;
}

/// Division rounding towards minus infinity, so that times before 1970 fall into the bar that holds them.
[[nodiscard]] constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor)
{
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

/// First millisecond of the bar that holds `time`: the multiple of the bar's length at or before it.
[[nodiscard]] constexpr TimeMs barStart(TimeMs time, Timeframe timeframe)
{
    return floorDivide(time, timeframeLength(timeframe)) * timeframeLength(timeframe);
}

} // namespace practice
