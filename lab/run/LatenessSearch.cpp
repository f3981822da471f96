#include "lab/run/LatenessSearch.h"

#include <cstdint>
#include <deque>
#include <utility>

namespace lab {

namespace {

std::uint64_t explained(const SessionVerdict& verdict)
{
    return verdict.orders + verdict.closings;
}

} // namespace

std::optional<SessionVerdict> searchLateness(
    const std::function<std::optional<SessionVerdict>(const std::set<Delay>&)>& follow)
{
    std::optional<SessionVerdict> best = follow({});
    bool isBetter = true;
    while (best && best->difference && std::exchange(isBetter, false)) {
        const std::deque<Delay> possible = best->possible;
        for (auto delay = possible.rbegin(); delay != possible.rend() && !isBetter; ++delay) {
            std::set<Delay> late = best->taken;
            late.insert(*delay);
            std::optional<SessionVerdict> next = follow(late);
            if (!next)
                return std::nullopt;
            isBetter = explained(*next) > explained(*best);
            if (isBetter)
                best = std::move(next);
        }
    }
    return best;
}

} // namespace lab
