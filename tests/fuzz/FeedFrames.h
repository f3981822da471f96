#pragma once

#include <string_view>

namespace fuzz {

/// Judges the platform's end of a feed: `told` are its bytes behind the handshake, `sent` those of a client
/// that sent them once it had the hello, and closed its side once nothing more came.
///
/// The platform's frames are whole and as a server has to make them, its texts are messages of the feed, the
/// hello first. Each ping frame has its pong with the same content, in order. Messages that ask for a pong
/// may share one, but none is left without. What breaks the rules, and what says good-bye, is answered by a
/// close frame with the code that is meant for it, behind which nothing comes; nobody else is told good-bye.
void demandFeed(std::string_view sent, std::string_view told);

} // namespace fuzz
