#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace practice {

/// The longest of a request that is read, in bytes.
inline constexpr std::uint32_t longestHeader = 16 * 1024;
inline constexpr std::uint64_t longestBody = 64UL * 1024;

/// What the server puts up with before it ends a connection.
struct Limits {
    // A process usually may have 1024 files open; half of them leaves room for the database, and for
    // connections that are told why they are turned away.
    std::size_t connections = 256;                 ///< HTTP connections at once
    std::size_t feeds = 256;                       ///< at once
    std::chrono::milliseconds opening{15'000};     ///< until a new connection's first byte
    std::chrono::milliseconds idle{75'000};        ///< from one request to the next one's first byte
    std::chrono::milliseconds header{10'000};      ///< from a request's first byte to its header's last one
    std::chrono::milliseconds transfer{30'000};    ///< for a request's body, and for a reply
    std::chrono::milliseconds feedSilence{60'000}; ///< without any sign of life, pongs included
    std::chrono::milliseconds feedStall{20'000};   ///< for one message to be taken
    std::size_t feedEvents = 512;                  ///< waiting for one client
};

} // namespace practice
