#pragma once

#include "fuzz/Files.h"

#include "practice/core/market/PriceSource.h"
#include "practice/server/Clock.h"
#include "practice/server/Connections.h"
#include "practice/server/FeedHub.h"
#include "practice/server/Limits.h"
#include "practice/server/PasswordWorker.h"
#include "practice/server/Platform.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Router.h"
#include "practice/server/Sessions.h"
#include "practice/server/SignInBrake.h"
#include "practice/storage/Database.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// The word that stands in all that is only the second trader's, the token included.
inline constexpr std::string_view secondWord = "Zq7Xk2vW";

class StillClock final : public practice::Clock {
public:
    [[nodiscard]] practice::TimeMs now() const override;
};

/// The same price for everything, for ever.
class StillMarket final : public practice::PriceSource {
public:
    [[nodiscard]] const std::vector<practice::SymbolSpec>& symbols() const override;
    [[nodiscard]] practice::Quote quote(std::size_t symbol, practice::TimeMs now) override;
    [[nodiscard]] practice::TimeMs nextTick(std::size_t symbol, practice::TimeMs now) override;
    [[nodiscard]] practice::PriceSpan span(
        std::size_t symbol, practice::TimeMs from, practice::TimeMs to) override;
    [[nodiscard]] double dailyOpen(std::size_t symbol, practice::TimeMs now) override;
    [[nodiscard]] std::vector<practice::Bar> bars(
        std::size_t symbol, practice::Timeframe timeframe, std::size_t count, practice::TimeMs now) override;
};

/// All that a trader has.
struct Belongings {
    practice::BrokerState state;
    std::vector<practice::Trade> history;
    std::vector<std::string> drawings; ///< each as one text
    std::vector<std::string> ids;

    friend bool operator==(const Belongings&, const Belongings&) = default;
};

/// A database with two traders who have accounts, positions, orders and drawings: "first", which is the token
/// as well, and `secondWord`.
[[nodiscard]] std::filesystem::path preparedDatabase(const Folder& folder);

/// A platform as Server makes it, but for its port and the beat of its prices.
class Desk final {
public:
    Desk(boost::asio::io_context& context, practice::PasswordWorker& passwords,
        const std::filesystem::path& database);

    /// What the platform answers to a client that sends its requests, its frames once nothing more comes, and
    /// then, once nothing more comes again, closes its side.
    [[nodiscard]] std::string answerTo(std::string_view requests, std::string_view frames);

    [[nodiscard]] Belongings belongingsOf(const std::string& user);
    [[nodiscard]] practice::BrokerState live() const;
    [[nodiscard]] practice::BrokerState stored();

private:
    void read(boost::asio::local::stream_protocol::socket& client, std::string& answer);
    void settle();

    boost::asio::io_context& m_context;
    StillMarket m_market;
    StillClock m_clock;
    practice::Limits m_limits;
    practice::Database m_database;
    practice::Sessions m_sessions;
    practice::Platform m_platform;
    practice::FeedHub m_hub;
    practice::RequestGuard m_guard;
    practice::SignInBrake m_brake;
    practice::Connections m_connections{4};
    practice::Router m_router;
    std::array<char, 16384> m_piece{};
};

} // namespace fuzz
