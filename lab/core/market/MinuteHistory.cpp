#include "lab/core/market/MinuteHistory.h"

#include "practice/core/market/HashRandom.h"

#include <algorithm>

namespace lab {

MinuteView MinuteHistory::at(std::size_t number) const
{
    const practice::MinuteRecord record = minutes.at(number);
    return {timeAt(number), record.bar, record.halfSpread};
}

std::size_t MinuteHistory::firstFrom(practice::TimeMs time) const
{
    const auto startsBefore = [](std::int32_t number, practice::TimeMs moment) {
        return practice::TimeMs(number) * practice::minuteMs < moment;
    };
    return static_cast<std::size_t>(
        std::lower_bound(starts.begin(), starts.end(), time, startsBefore) - starts.begin());
}

bool MinuteHistory::opensWithGap(std::size_t number) const
{
    return number == 0 || starts[number] - 1 != starts[number - 1]
        || minutes.at(number).bar.open != minutes.at(number - 1).bar.close;
}

bool MinuteHistory::weekendsTrade() const
{
    constexpr std::int64_t minutesADay = practice::dayMs / practice::minuteMs;
    return std::any_of(starts.begin(), starts.end(), [](std::int32_t number) {
        const std::int64_t day = practice::floorDivide(number, minutesADay); // 0 was a Thursday
        return day - 7 * practice::floorDivide(day, 7) == 2;
    });
}

std::size_t MinuteHistory::bytes() const
{
    return minutes.bytes() + starts.capacity() * sizeof(std::int32_t);
}

std::uint64_t dataHash(const MinuteHistory& history)
{
    std::uint64_t hash = practice::hashKey({practice::hashText(history.spec.name),
        static_cast<std::uint64_t>(history.spec.digits), history.minutes.digest()});
    for (std::size_t minute = 0; minute < history.size(); ++minute)
        hash = practice::hashKey({hash, static_cast<std::uint64_t>(history.timeAt(minute))});
    return hash;
}

} // namespace lab
