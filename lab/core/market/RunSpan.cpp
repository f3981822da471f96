#include "lab/core/market/RunSpan.h"

#include "practice/core/PointScale.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace lab {
namespace {

practice::TimeMs barOf(const MinuteHistory& history, practice::Timeframe timeframe, std::size_t minute)
{
    return practice::barStart(history.timeAt(minute), timeframe);
}

std::string dayText(practice::TimeMs time)
{
    const std::chrono::year_month_day date{
        std::chrono::sys_days(std::chrono::days(practice::floorDivide(time, practice::dayMs)))};
    const auto padded = [](int number, std::size_t width) {
        const std::string text = std::to_string(number);
        return std::string(width - std::min(width, text.size()), '0') + text;
    };
    return padded(static_cast<int>(date.year()), 4) + '-'
        + padded(static_cast<int>(static_cast<unsigned>(date.month())), 2) + '-'
        + padded(static_cast<int>(static_cast<unsigned>(date.day())), 2);
}

[[noreturn]] void failEmpty(const MinuteHistory& history)
{
    std::string reason = history.spec.name + ": no prices in this period";
    if (history.size() > 0)
        reason += "; there are some from " + dayText(history.timeAt(0)) + " to "
            + dayText(history.timeAt(history.size() - 1));
    throw HistoryError(reason);
}

// A warm-up that nobody has asked for leaves most of the history to the run.
constexpr int usualPart = 4;

// The bars up to a minute, as far as anybody counts.
int countBars(const MinuteHistory& history, practice::Timeframe timeframe, std::size_t end, int most)
{
    int bars = 0;
    for (std::size_t minute = 0; minute < end && bars < most; ++minute)
        bars += beginsBar(history, timeframe, minute) ? 1 : 0;
    return bars;
}

int usualWarmupIn(const MinuteHistory& history, practice::Timeframe timeframe, std::size_t end)
{
    return countBars(history, timeframe, end, usualPart * usualWarmup) / usualPart;
}

// The first minute of the bar that has the warm-up before it.
std::size_t afterWarmup(const MinuteHistory& history, const RunSettings& settings, std::size_t end)
{
    const int usual = usualWarmupIn(history, settings.timeframe, end);
    const int wanted = std::max(0, settings.warmupBars.value_or(usual));
    int bars = 0;
    for (std::size_t minute = 0; minute < end; ++minute) {
        if (beginsBar(history, settings.timeframe, minute) && bars++ == wanted)
            return minute;
    }
    if (bars == 0)
        failEmpty(history);
    throw HistoryError(history.spec.name + ": " + std::to_string(bars)
        + (bars == 1 ? " bar of " : " bars of ") + std::string(practice::timeframeKey(settings.timeframe))
        + ", and none after a warm-up of " + std::to_string(wanted) + "; --warmup " + std::to_string(usual)
        + " leaves most of them to the run");
}

} // namespace

bool beginsBar(const MinuteHistory& history, practice::Timeframe timeframe, std::size_t minute)
{
    return minute == 0 || barOf(history, timeframe, minute) != barOf(history, timeframe, minute - 1);
}

RunSpan spanOf(const MinuteHistory& history, const RunSettings& settings)
{
    RunSpan span;
    // A minute belongs to the run when it ends by then.
    span.endMinute = settings.to ? history.firstFrom(*settings.to - practice::minuteMs + 1) : history.size();
    span.firstMinute
        = settings.from ? history.firstFrom(*settings.from) : afterWarmup(history, settings, span.endMinute);
    if (span.firstMinute >= span.endMinute)
        failEmpty(history);
    return span;
}

std::vector<practice::Bar> barsBefore(
    const MinuteHistory& history, practice::Timeframe timeframe, int count, std::size_t minute)
{
    std::size_t first = minute; // of the oldest bar
    for (int bars = 0; first > 0 && bars < count; ++bars) {
        do
            --first;
        while (!beginsBar(history, timeframe, first));
    }
    const double unit = practice::pointsPerUnit(history.spec.digits);
    std::vector<practice::Bar> bars;
    for (std::size_t next = first; next < minute;) {
        const practice::TimeMs start = barOf(history, timeframe, next);
        practice::GridBar bar = history.at(next).bar;
        while (++next < minute && !beginsBar(history, timeframe, next))
            bar.append(history.at(next).bar);
        bars.push_back({start, static_cast<double>(bar.open) / unit, static_cast<double>(bar.high) / unit,
            static_cast<double>(bar.low) / unit, static_cast<double>(bar.close) / unit, bar.volume});
    }
    return bars;
}

} // namespace lab
