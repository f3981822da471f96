#pragma once

#include <boost/asio/ip/address.hpp>

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

namespace practice {

/// Slows down the guessing of passwords: after some failed sign-ins from one address, each further one has to
/// wait twice as long as the one before, and only one is checked at a time. The failures are forgotten after
/// a sign-in that succeeds, or a quarter of an hour without a failure.
class SignInBrake final {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr int freeFailures = 8;
    static constexpr std::chrono::seconds longestWait{60};
    static constexpr std::chrono::minutes memory{15};
    static constexpr std::size_t mostClients = 4096; ///< remembered at once

    /// The name of the client behind an address: the address itself, or its network for IPv6, all of which
    /// one client may have.
    [[nodiscard]] static std::string clientOf(const boost::asio::ip::address& address);

    /// How long the client has to wait before it may sign in; zero when it may now.
    [[nodiscard]] std::chrono::seconds waitOf(const std::string& client, Time now) const;

    /// A sign-in is being checked; succeeded() or failed() follows.
    void begun(const std::string& client, Time now);
    void succeeded(const std::string& client);
    void failed(const std::string& client, Time now);

private:
    struct Record {
        int failures = 0;
        int underWay = 0;
        Time lastTry;
        Time notBefore;
    };
    void makeRoom(Time now);

    std::map<std::string, Record> m_clients;
};

} // namespace practice
