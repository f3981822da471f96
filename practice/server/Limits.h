#pragma once

#include <chrono>
#include <cstddef>

namespace practice {

/// What the server puts up with before it ends a connection.
struct Limits {
    /// Connections at once, feeds included. A process usually may have 1024 files open; half of them leaves
    /// room for the database and for telling the others why they are turned away.
    std::size_t connections = 512;
    std::chrono::milliseconds idle{75'000};        ///< from one request to the end of the next one's header
    std::chrono::milliseconds transfer{30'000};    ///< for a request's body, and for a reply
    std::chrono::milliseconds feedSilence{60'000}; ///< without any sign of life, pongs included
    std::chrono::milliseconds feedStall{20'000};   ///< for one message to be taken
    std::size_t feedEvents = 512;                  ///< that wait for one client
};

} // namespace practice
