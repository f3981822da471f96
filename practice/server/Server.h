#pragma once

#include "practice/core/market/PriceSource.h"
#include "practice/server/Clock.h"
#include "practice/server/Connections.h"
#include "practice/server/FeedHub.h"
#include "practice/server/HttpSession.h"
#include "practice/server/Limits.h"
#include "practice/server/PasswordWorker.h"
#include "practice/server/Platform.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Router.h"
#include "practice/server/SessionRecorder.h"
#include "practice/server/Sessions.h"
#include "practice/server/SignInBrake.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace practice {

/// How the server runs.
struct ServerSettings {
    std::string address = "127.0.0.1"; ///< that it listens on, and by which it is called
    std::string hostName;              ///< another name by which it is called; empty: none
    std::uint64_t newsSeed = 1;
    std::chrono::milliseconds priceInterval{250};
    Limits limits;
    RecordFile* recording = nullptr; ///< the session is written to it; outlives the server
    std::string version{};           ///< of the program, for the recording
};

/// The practice platform on the wire: the REST interface and the feed on one port, everything on the thread
/// that runs `context`.
class Server final {
public:
    /// `acceptor` listens already.
    Server(boost::asio::io_context& context, boost::asio::ip::tcp::acceptor acceptor, Database& database,
        PriceSource& market, const Clock& clock, const ServerSettings& settings);

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    /// Takes no new connections, says good-bye to the feed and, a moment later, stops the context.
    void stop();

private:
    void take(boost::asio::ip::tcp::socket socket);
    boost::asio::awaitable<void> listen();
    boost::asio::awaitable<void> movePrices();

    boost::asio::io_context& m_context;
    ServerSettings m_settings;
    Sessions m_sessions;
    Platform m_platform;
    FeedHub m_hub;
    std::optional<SessionRecorder> m_recorder;
    RequestGuard m_guard;
    SignInBrake m_brake;
    PasswordWorker m_passwords;
    Router m_router;
    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_goodbye;
    std::uint16_t m_port;
    Connections m_connections;
    // Every connection that is turned away holds a copy; the copies are the count.
    std::shared_ptr<void> m_turnedAway = std::make_shared<int>();
};

} // namespace practice
