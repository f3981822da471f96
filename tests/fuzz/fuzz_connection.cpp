// All bytes of one connection to the platform: requests that its real handlers carry out on a real database,
// or a feed. Two traders have accounts, a position, an order and a drawing each; the tokens are "first" and
// "second", and the second one's is never used by the inputs kept here. Nothing may reach that trader without
// it.

#include "fuzz/Files.h"

#include "practice/core/broker/DefaultAccounts.h"
#include "practice/server/AccountsResource.h"
#include "practice/server/AuthResource.h"
#include "practice/server/CandlesResource.h"
#include "practice/server/Credentials.h"
#include "practice/server/DrawingsResource.h"
#include "practice/server/FeedHub.h"
#include "practice/server/FeedResource.h"
#include "practice/server/HttpSession.h"
#include "practice/server/NewsResource.h"
#include "practice/server/PasswordWorker.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Router.h"
#include "practice/server/Sessions.h"
#include "practice/server/SettingsResource.h"
#include "practice/server/SignInBrake.h"
#include "practice/server/TradesResource.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/http.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <limits>

#include <sys/socket.h>

using fuzz::demand;
namespace net = boost::asio;
namespace http = boost::beast::http;

// A real check of a password takes a tenth of a second and a thread; what the answer depends on is the same
// here.
namespace practice {

PasswordWorker::PasswordWorker(boost::asio::io_context& context)
    : m_context(context)
{
}

PasswordWorker::~PasswordWorker() = default;

bool PasswordWorker::check(std::string password, std::string hash, Done done)
{
    net::post(m_context, [matches = password == hash, done = std::move(done)] { done(matches); });
    return true;
}

} // namespace practice

namespace fuzz_connection {

namespace {

constexpr practice::TimeMs noon = 1'750'000'000'000;
constexpr std::string_view secondToken = "second";

class StillClock final : public practice::Clock {
public:
    [[nodiscard]] practice::TimeMs now() const override { return noon; }
};

/// The same price for everything, for ever.
class StillMarket final : public practice::PriceSource {
public:
    [[nodiscard]] const std::vector<practice::SymbolSpec>& symbols() const override
    {
        return practice::symbolCatalog();
    }
    [[nodiscard]] practice::Quote quote(std::size_t /*symbol*/, practice::TimeMs /*now*/) override
    {
        return {1.1, 1.2};
    }
    [[nodiscard]] practice::TimeMs nextTick(std::size_t /*symbol*/, practice::TimeMs /*now*/) override
    {
        return std::numeric_limits<practice::TimeMs>::max();
    }
    [[nodiscard]] practice::PriceSpan span(
        std::size_t /*symbol*/, practice::TimeMs /*from*/, practice::TimeMs /*to*/) override
    {
        return {1.15, 1.15, 0.05};
    }
    [[nodiscard]] double dailyOpen(std::size_t /*symbol*/, practice::TimeMs /*now*/) override { return 1.1; }
    [[nodiscard]] std::vector<practice::Bar> bars(std::size_t /*symbol*/, practice::Timeframe /*timeframe*/,
        std::size_t count, practice::TimeMs now) override
    {
        return std::vector<practice::Bar>(std::min<std::size_t>(count, 3), {now, 1.1, 1.2, 1.1, 1.2, 5});
    }
};

/// Ids that corpora can name: id-1 and so on.
practice::IdSource numbers()
{
    return [count = 0]() mutable { return "id-" + std::to_string(++count); };
}

void addTrades(practice::Broker& broker, practice::TradeStore& trades, const std::string& account)
{
    practice::PlaceRequest order{account, "EURUSD", "MARKET", "BUY", 0.1, {}, {}, {}, "kept"};
    trades.store(broker.place(order, noon).changes);
    order.orderKind = "BUY_LIMIT";
    order.pendingPrice = 1.0;
    trades.store(broker.place(order, noon).changes);
}

/// The database that each connection finds.
std::filesystem::path prepare(const fuzz::Folder& folder)
{
    const std::filesystem::path file = folder.path() / "before.db";
    practice::Database database(file);
    practice::UserStore users(database);
    practice::TradeStore trades(database);
    const practice::IdSource ids = numbers();
    StillMarket market;
    practice::Transaction transaction(database);
    for (const std::string name : {"first", "second"}) {
        users.add({name, name + "@example.org", name, "password"});
        trades.addAccounts(name, practice::defaultAccounts(ids, noon));
    }
    practice::Broker broker(market.symbols(), ids, trades.load());
    const std::array<practice::SymbolQuote, 1> quotes{{{0, market.quote(0, noon)}}};
    trades.store(broker.onPrices(quotes, noon));
    for (const practice::Account& account : broker.accounts())
        addTrades(broker, trades, account.id);
    transaction.commit();
    for (const char* name : {"first", "second"})
        users.addToken(practice::tokenDigest(name), name, noon);
    return file;
}

/// What a trader has, to be compared.
practice::BrokerState stateOf(const practice::Platform& platform, std::string_view user)
{
    practice::BrokerState state = platform.broker().state();
    std::erase_if(state.accounts, [&](const auto& account) { return !platform.owns(user, account.id); });
    std::erase_if(state.liveTrades, [&](const auto& trade) { return !platform.owns(user, trade.accountId); });
    return state;
}

/// A platform as Server makes it, but for its port and the beat of its prices.
class Desk final {
public:
    Desk(net::io_context& context, practice::PasswordWorker& passwords, const std::filesystem::path& file)
        : m_context(context)
        , m_database(file)
        , m_sessions(m_database)
        , m_platform(m_database, m_market, m_clock)
        , m_hub(m_platform, m_limits)
        , m_guard("127.0.0.1", {})
        , m_router([this](std::string_view header) { return m_sessions.userOfHeader(header); })
    {
        addAccountsRoutes(m_router, m_platform);
        addAuthRoutes(m_router, m_sessions, passwords, m_brake, m_clock);
        addCandlesRoutes(m_router, m_platform);
        addDrawingsRoutes(m_router, m_platform);
        addFeedRoutes(m_router);
        addNewsRoutes(m_router, m_platform, 1);
        addSettingsRoutes(m_router);
        addTradesRoutes(m_router, m_platform);
        m_platform.advance();
        m_platform.addListener(m_hub);
    }

    /// What the platform answers to a client that sends this and then closes its side.
    std::string answerTo(std::string_view text)
    {
        std::array<int, 2> ends{};
        demand(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0, "there is a pair of sockets");
        net::local::stream_protocol::socket client(m_context, net::local::stream_protocol(), ends[0]);
        net::ip::tcp::socket server(m_context, net::ip::tcp::v4(), ends[1]);
        net::co_spawn(m_context,
            practice::serveConnection(std::move(server), {m_router, m_sessions, m_hub, m_guard, m_limits},
                m_connections.admit("client")),
            [](const std::exception_ptr& fault) { demand(!fault, "a connection ends without a fault"); });
        boost::system::error_code error;
        net::write(client, net::buffer(text), error);
        client.shutdown(net::socket_base::shutdown_send, error);
        std::string answer;
        read(client, answer);
        m_context.restart();
        m_context.run_for(std::chrono::minutes(10)); // the fuzzer itself is less patient
        demand(m_context.stopped(), "a connection whose client has ended ends too");
        return answer;
    }

    [[nodiscard]] const practice::Platform& platform() const { return m_platform; }
    [[nodiscard]] practice::BrokerState stored() { return m_platform.trades().load(); }

private:
    void read(net::local::stream_protocol::socket& client, std::string& answer)
    {
        client.async_read_some(net::buffer(m_piece),
            [this, &client, &answer](boost::system::error_code error, std::size_t size) {
                answer.append(m_piece.data(), size);
                if (!error)
                    read(client, answer);
            });
    }

    net::io_context& m_context;
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

/// The first answer; those behind it depend on where one request ends and the next one begins.
void demandProper(const std::string& answer, bool hasBody)
{
    if (answer.empty())
        return; // what was no HTTP at all, or ended before its end
    http::response_parser<http::string_body> parser;
    parser.body_limit(16U << 20U);
    parser.eager(true);
    parser.skip(!hasBody);
    boost::system::error_code error;
    parser.put(net::buffer(answer), error);
    const http::response<http::string_body>& response = parser.get();
    const unsigned status = response.result_int();
    if (status == 100 || status == 101)
        return;
    demand(!error && parser.is_done(), "an answer is whole");
    demand(status / 100 == 2 || (status >= 400 && status < 500) || status == 503,
        "no request is the platform's fault");
    if (!hasBody || status == 204)
        return;
    const auto json = nlohmann::json::parse(response.body(), nullptr, false);
    demand(!json.is_discarded(), "an answer is JSON");
    demand(status / 100 == 2 || (json.is_object() && json.contains("message")), "a refusal says why");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    static net::io_context context(1);
    static practice::PasswordWorker passwords(context);
    static const std::filesystem::path before = prepare(folder);
    const std::filesystem::path file = folder.path() / "desk.db";
    for (const char* side : {"", "-wal", "-shm"})
        std::filesystem::remove(file.string() + side);
    std::filesystem::copy_file(before, file);

    const std::string_view text = fuzz::textOf(data, size);
    Desk desk(context, passwords, file);
    const practice::BrokerState second = stateOf(desk.platform(), "second");
    const std::string answer = desk.answerTo(text);
    demandProper(answer, !text.starts_with("HEAD "));
    const practice::BrokerState state = desk.platform().broker().state();
    const practice::BrokerState stored = desk.stored();
    demand(stored.liveTrades.size() == state.liveTrades.size()
            && stored.accounts.size() == state.accounts.size(),
        "what has changed is stored");
    if (text.find(secondToken) == std::string_view::npos)
        demand(stateOf(desk.platform(), "second") == second, "nobody reaches another trader's account");
    return 0;
}

const fuzz::Target target("connection", &attempt);

} // namespace

} // namespace fuzz_connection
