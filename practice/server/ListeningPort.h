#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstdint>
#include <string>

namespace practice {

/// Takes the port that the platform answers on; 0 chooses a free one. Clients that connect wait until a
/// Server runs on it. Throws ListenError when the port cannot be had.
[[nodiscard]] boost::asio::ip::tcp::acceptor listenOn(
    boost::asio::io_context& context, const std::string& address, std::uint16_t port);

} // namespace practice
