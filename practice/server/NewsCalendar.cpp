#include "practice/server/NewsCalendar.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

constexpr TimeMs quarterMs = 15 * minuteMs;
constexpr TimeMs minorSlotMs = 50 * minuteMs;
constexpr TimeMs shownBefore = 30 * minuteMs;
constexpr TimeMs shownAfter = dayMs;

constexpr std::array<std::string_view, 8> currencies{"USD", "EUR", "GBP", "JPY", "AUD", "CAD", "CHF", "NZD"};
constexpr std::array<std::string_view, 10> highTitles{"Interest Rate Decision", "Consumer Price Index y/y",
    "Employment Change", "Gross Domestic Product q/q", "Central Bank Press Conference", "Retail Sales m/m",
    "Unemployment Rate", "Core Inflation m/m", "Central Bank Governor Speaks", "Monetary Policy Statement"};
constexpr std::array<std::string_view, 10> minorTitles{"Manufacturing PMI", "Services PMI", "Trade Balance",
    "Consumer Confidence", "Industrial Production m/m", "Building Permits", "Crude Oil Inventories",
    "Factory Orders m/m", "Producer Price Index m/m", "Bond Auction"};

// A well-mixed number for each place in the calendar.
std::uint64_t mixed(std::uint64_t seed, std::uint64_t place)
{
    std::uint64_t value = seed ^ (place + 0x9e3779b97f4a7c15ULL) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ value >> 30) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ value >> 27) * 0x94d049bb133111ebULL;
    return value ^ value >> 31;
}

template <std::size_t Size>
std::string_view pick(const std::array<std::string_view, Size>& choices, std::uint64_t number)
{
    return choices[number % Size];
}

} // namespace

NewsCalendar::NewsCalendar(std::uint64_t seed)
    : m_seed(seed)
{
}

NewsEvent NewsCalendar::highImpact(std::int64_t quarter) const
{
    const std::uint64_t number = mixed(m_seed, static_cast<std::uint64_t>(quarter) * 2);
    return {"news-high-" + std::to_string(quarter), quarter * quarterMs, "HIGH", pick(currencies, number),
        pick(highTitles, number >> 16)};
}

NewsEvent NewsCalendar::minor(std::int64_t slot) const
{
    const std::uint64_t number = mixed(m_seed, static_cast<std::uint64_t>(slot) * 2 + 1);
    const TimeMs offset = static_cast<TimeMs>((number >> 32) % 10) * 5 * minuteMs;
    return {"news-" + std::to_string(slot), slot * minorSlotMs + offset, number % 3 == 0 ? "LOW" : "MEDIUM",
        pick(currencies, number >> 8), pick(minorTitles, number >> 16)};
}

std::vector<NewsEvent> NewsCalendar::around(TimeMs now) const
{
    const TimeMs first = now - shownBefore;
    const TimeMs last = now + shownAfter;
    std::vector<NewsEvent> events;
    for (std::int64_t quarter = floorDivide(first, quarterMs); quarter * quarterMs <= last; ++quarter)
        events.push_back(highImpact(quarter));
    for (std::int64_t slot = floorDivide(first, minorSlotMs); slot * minorSlotMs <= last; ++slot)
        events.push_back(minor(slot));
    std::erase_if(events, [&](const NewsEvent& event) { return event.time < first || event.time > last; });
    std::ranges::stable_sort(events, {}, &NewsEvent::time);
    return events;
}

} // namespace practice
