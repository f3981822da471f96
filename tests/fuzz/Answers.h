#pragma once

#include "fuzz/Desk.h"

#include <cstddef>
#include <string_view>

namespace fuzz {

/// Where the request ends that asks for the feed; a client waits there for its answer. All of the text
/// without one.
[[nodiscard]] std::size_t endOfFeedRequest(std::string_view text);

/// Each request that is whole has its answer, in their order, and nothing else has one. Behind the answer
/// that opens a feed stand its frames.
void demandAnswers(std::string_view text, std::string_view answer);

/// Somebody else's ids may be named by the client, but not by the platform.
void demandNothingOf(const Belongings& owner, std::string_view answer);

} // namespace fuzz
