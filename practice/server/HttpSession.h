#pragma once

#include "practice/server/Connections.h"

#include <utility> // awaitable.hpp of Boost 1.74 needs it before its own includes

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <memory>

namespace practice {

class FeedHub;
class RequestGuard;
class Router;
class Sessions;
struct Limits;

/// What a connection needs of the server; all of it outlives the connection.
struct ServerParts {
    const Router& router;
    Sessions& sessions;
    FeedHub& hub;
    const RequestGuard& guard;
    const Limits& limits;
};

/// Serves one connection: one HTTP request after the other, until the peer closes, asks to close, breaks the
/// rules or is silent for too long, until it turns into a feed, or until its place is cleared.
[[nodiscard]] boost::asio::awaitable<void> serveConnection(
    boost::asio::ip::tcp::socket socket, ServerParts parts, std::shared_ptr<Connections::Place> place);

/// Tells a connection that there are too many, and ends it. `ticket` is kept until then.
[[nodiscard]] boost::asio::awaitable<void> turnAway(
    boost::asio::ip::tcp::socket socket, ServerParts parts, std::shared_ptr<void> ticket);

} // namespace practice
