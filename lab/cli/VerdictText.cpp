#include "lab/cli/VerdictText.h"

#include "lab/cli/Screen.h"
#include "lab/core/output/Texts.h"
#include "lab/core/session/SessionText.h"

#include <algorithm>

namespace lab {

namespace {

constexpr std::size_t mostMoved = 20;

std::string count(std::uint64_t number, const char* one, const char* many)
{
    return std::to_string(number) + ' ' + (number == 1 ? one : many);
}

std::string movedText(const MovedFill& fill)
{
    const std::string by = fill.worseBy > 0
        ? count(static_cast<std::uint64_t>(fill.worseBy), "point worse", "points worse")
        : count(static_cast<std::uint64_t>(-fill.worseBy), "point better", "points better");
    return "  " + isoTime(fill.time) + "  " + oneLine(fill.order) + "\n      decided at "
        + numberText(fill.decided) + ", filled at " + numberText(fill.filled) + ": " + by + ", after "
        + std::to_string(fill.after) + " ms\n";
}

std::string latencyText(const SessionVerdict& verdict)
{
    std::string text = "Latency   " + std::to_string(verdict.longestDelay)
        + " ms at most from a price to the command; " + count(verdict.moved.size(), "fill", "fills")
        + " moved by it\n";
    const std::size_t shown = std::min(verdict.moved.size(), mostMoved);
    for (std::size_t i = 0; i < shown; ++i)
        text += movedText(verdict.moved[i]);
    if (shown < verdict.moved.size())
        text += "  and " + std::to_string(verdict.moved.size() - shown) + " more\n";
    return text;
}

std::string lateText(const std::set<Delay>& late)
{
    std::string text = "Late      " + count(late.size(), "moment", "moments")
        + " at which the terminal was behind the platform\n";
    std::size_t shown = 0;
    for (const Delay& delay : late) {
        if (++shown > mostMoved)
            return text + "  and " + std::to_string(late.size() - mostMoved) + " more\n";
        text += "  " + isoTime(delay.time)
            + (delay.what == Late::Price ? "  a price just before the end of a bar, seen in the next one\n"
                                         : "  a price just after news of the account, seen before it\n");
    }
    return text;
}

} // namespace

std::string verdictText(const SessionVerdict& verdict, const SessionSeat& seat, bool colours)
{
    std::string text = "Chart     " + oneLine(seat.symbol) + ','
        + std::string(practice::timeframeKey(seat.timeframe)) + ", account " + oneLine(seat.accountId) + "\n";
    text += "Script    called " + count(verdict.calls, "time", "times") + " for "
        + count(verdict.prices, "price", "prices") + "\n";
    text += "Commands  " + count(verdict.orders, "order", "orders") + " and "
        + count(verdict.closings, "closing", "closings") + " as recorded, " + std::to_string(verdict.refused)
        + " of them refused\n";
    text += "Broker    " + count(verdict.trades, "change", "changes") + " of trades as recorded\n";
    if (verdict.orders + verdict.closings > 0)
        text += latencyText(verdict);
    else if (!verdict.difference)
        text += "Note      no command was asked for and none is recorded\n";
    if (!verdict.taken.empty())
        text += lateText(verdict.taken);
    if (verdict.unanswered > 0)
        text += "Note      " + count(verdict.unanswered, "command was", "commands were")
            + " asked for just before the session ended, and cannot be judged\n";
    if (verdict.scriptError)
        text += "Note      the script has ended by itself: " + oneLine(*verdict.scriptError) + "\n";
    if (!verdict.difference)
        return text + '\n' + toned("No divergence", Tone::Good, colours) + '\n';
    text += '\n' + toned("Divergence", Tone::Bad, colours) + " at " + isoTime(verdict.difference->time)
        + "\n  expected  " + oneLine(verdict.difference->expected) + "\n  recorded  "
        + oneLine(verdict.difference->recorded) + '\n';
    if (!verdict.hint.empty())
        text += "  (" + oneLine(verdict.hint) + ")\n";
    return text;
}

} // namespace lab
