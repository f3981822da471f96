#pragma once

#include "lab/run/SessionCheck.h"

#include <functional>
#include <optional>
#include <set>

namespace lab {

/// Follows a session, and where it differs once more with something that may have been late taken to be so,
/// as long as that explains a command that was recorded. The verdict that comes furthest. `follow` goes
/// through the session with what is late, or has to end without a verdict, which ends the search.
[[nodiscard]] std::optional<SessionVerdict> searchLateness(
    const std::function<std::optional<SessionVerdict>(const std::set<Delay>&)>& follow);

} // namespace lab
