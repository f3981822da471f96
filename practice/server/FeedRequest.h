#pragma once

#include <cstddef>
#include <string>

namespace practice {

/// The longest message that a client of the feed may send, in bytes: it sends pings only.
inline constexpr std::size_t longestFeedRequest = 4096;

/// Whether a client's message asks for a pong. Any other text is none.
[[nodiscard]] bool isFeedPing(const std::string& text);

} // namespace practice
