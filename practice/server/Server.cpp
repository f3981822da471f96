#include "practice/server/Server.h"

#include "practice/server/AccountsResource.h"
#include "practice/server/AuthResource.h"
#include "practice/server/CandlesResource.h"
#include "practice/server/DrawingsResource.h"
#include "practice/server/FeedResource.h"
#include "practice/server/NewsResource.h"
#include "practice/server/SettingsResource.h"
#include "practice/server/TradesResource.h"
#include "practice/storage/StorageError.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <exception>
#include <iostream>
#include <utility>

namespace practice {

namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;
using namespace std::chrono_literals;

namespace {

constexpr auto tradesInterval = 1000ms;
constexpr auto complaintInterval = 10s;
constexpr auto goodbyeTime = 300ms;
constexpr auto acceptPause = 100ms;
constexpr long mostTurnedAway = 64; // at once, while they are told why

// A fault in one connection must not take the others down with it.
void reportFault(const std::exception_ptr& fault)
{
    if (!fault)
        return;
    try {
        std::rethrow_exception(fault);
    } catch (const std::exception& error) {
        std::cerr << "tavoran-practice: connection: " << error.what() << std::endl;
    }
}

// Empty when the client has gone already.
std::string clientOf(const tcp::socket& socket)
{
    error_code error;
    const auto peer = socket.remote_endpoint(error);
    return error ? std::string() : SignInBrake::clientOf(peer.address());
}

} // namespace

Server::Server(net::io_context& context, tcp::acceptor acceptor, Database& database, PriceSource& market,
    const Clock& clock, const ServerSettings& settings)
    : m_context(context)
    , m_settings(settings)
    , m_sessions(database)
    , m_platform(database, market, clock)
    , m_hub(m_platform, m_settings.limits)
    , m_guard(settings.address, settings.hostName)
    , m_passwords(context)
    , m_router([this](std::string_view header) { return m_sessions.userOfHeader(header); })
    , m_acceptor(std::move(acceptor))
    , m_goodbye(context)
    , m_port(m_acceptor.local_endpoint().port())
    , m_connections(m_settings.limits.connections)
{
    addAccountsRoutes(m_router, m_platform);
    addAuthRoutes(m_router, m_sessions, m_passwords, m_brake, clock);
    addCandlesRoutes(m_router, m_platform);
    addDrawingsRoutes(m_router, m_platform);
    addFeedRoutes(m_router);
    addNewsRoutes(m_router, m_platform, settings.newsSeed);
    addSettingsRoutes(m_router);
    addTradesRoutes(m_router, m_platform);

    // So that there are prices before the first client comes.
    m_platform.advance();
    m_platform.addListener(m_hub);
    if (m_settings.recording) {
        m_recorder.emplace(m_platform, *m_settings.recording, m_settings.version);
        m_platform.addListener(*m_recorder);
    }
    // Without either of these two the platform would only seem to work, so a fault in one ends the context's
    // run.
    const auto rethrow = [](const std::exception_ptr& fault) {
        if (fault)
            std::rethrow_exception(fault);
    };
    net::co_spawn(m_context, listen(), rethrow);
    net::co_spawn(m_context, movePrices(), rethrow);
}

void Server::take(tcp::socket socket)
{
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    const ServerParts parts{m_router, m_sessions, m_hub, m_guard, m_settings.limits};
    if (auto place = m_connections.admit(clientOf(socket)))
        net::co_spawn(m_context, serveConnection(std::move(socket), parts, std::move(place)), reportFault);
    else if (m_turnedAway.use_count() <= mostTurnedAway)
        net::co_spawn(m_context, turnAway(std::move(socket), parts, m_turnedAway), reportFault);
}

net::awaitable<void> Server::listen()
{
    net::steady_timer pause(m_context);
    while (m_acceptor.is_open()) {
        error_code error;
        tcp::socket socket = co_await m_acceptor.async_accept(net::redirect_error(net::use_awaitable, error));
        if (!error) {
            take(std::move(socket));
        } else if (m_acceptor.is_open()) {
            // Usually no free descriptor; trying again at once would only burn time.
            pause.expires_after(acceptPause);
            co_await pause.async_wait(net::redirect_error(net::use_awaitable, error));
        }
    }
}

net::awaitable<void> Server::movePrices()
{
    net::steady_timer timer(m_context, m_settings.priceInterval);
    auto nextTrades = std::chrono::steady_clock::now() + tradesInterval;
    auto nextComplaint = std::chrono::steady_clock::now();
    while (m_acceptor.is_open()) {
        co_await timer.async_wait(net::use_awaitable);
        const auto now = std::chrono::steady_clock::now();
        try {
            m_platform.advance();
        } catch (const StorageError& error) {
            if (now >= nextComplaint) {
                std::cerr << "tavoran-practice: storage: " << error.what() << std::endl;
                nextComplaint = now + complaintInterval;
            }
        }
        if (now >= nextTrades) {
            m_hub.sendTrades();
            m_hub.dropStalled();
            nextTrades = now + tradesInterval;
        }
        // After a pause (a suspended machine) the beat starts anew instead of catching up.
        const auto due = timer.expiry() + m_settings.priceInterval;
        timer.expires_at(due > now ? due : now + m_settings.priceInterval);
    }
}

void Server::stop()
{
    if (!m_acceptor.is_open())
        return;
    error_code ignored;
    m_acceptor.close(ignored);
    m_hub.closeAll();
    m_goodbye.expires_after(goodbyeTime);
    m_goodbye.async_wait([this](error_code) { m_context.stop(); });
}

} // namespace practice
