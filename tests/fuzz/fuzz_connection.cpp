// All bytes of one connection to the platform: requests that its real handlers carry out on a real database,
// or a feed. Two traders have accounts, positions, orders and drawings. The token of the first one is
// "first"; that of the second one is the word that stands in all that is only the second one's, and no input
// holds it. Nothing may reach that trader without it, and no answer may tell of that trader.

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
#include "practice/server/Limits.h"
#include "practice/server/NewsResource.h"
#include "practice/server/PasswordWorker.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Router.h"
#include "practice/server/Sessions.h"
#include "practice/server/SettingsResource.h"
#include "practice/server/SignInBrake.h"
#include "practice/server/Target.h"
#include "practice/server/TradesResource.h"
#include "practice/storage/Statement.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <stdexcept>

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
constexpr std::string_view secondWord = "Zq7Xk2vW";

const std::string& second()
{
    static const std::string id(secondWord);
    return id;
}

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

void addTrades(practice::Broker& broker, practice::TradeStore& trades, const std::string& account,
    const std::string& comment)
{
    practice::PlaceRequest order{account, "EURUSD", "MARKET", "BUY", 0.1, {}, {}, {}, comment};
    trades.store(broker.place(order, noon).changes);
    order.orderKind = "BUY_LIMIT";
    order.pendingPrice = 1.0;
    trades.store(broker.place(order, noon).changes);
}

void addHistory(practice::Broker& broker, practice::TradeStore& trades, const std::string& account,
    const std::string& comment)
{
    const auto placed = broker.place({account, "EURUSD", "MARKET", "SELL", 0.01, {}, {}, {}, comment}, noon);
    trades.store(placed.changes);
    trades.store(broker.close(placed.tradeId, noon).changes);
}

/// The database that each connection finds.
std::filesystem::path prepare(const fuzz::Folder& folder)
{
    const std::filesystem::path file = folder.path() / "before.db";
    practice::Database database(file);
    practice::UserStore users(database);
    practice::TradeStore trades(database);
    practice::DrawingStore drawings(database);
    const practice::IdSource ids = numbers();
    StillMarket market;
    practice::Transaction transaction(database);
    std::map<std::string, std::string> owners;
    for (const std::string& name : {std::string("first"), second()}) {
        users.add({name, name + "@example.org", name, name == "first" ? "password" : name});
        const std::vector<practice::Account> accounts = practice::defaultAccounts(ids, noon);
        trades.addAccounts(name, accounts);
        for (const practice::Account& account : accounts)
            owners[account.id] = name;
        for (const std::string& account : {std::string(), accounts[1].id})
            drawings.add(name,
                {(name == "first" ? "line-" : "other-") + account, account, "EURUSD", "hline", "#00ff00",
                    R"([{"price":1.1,"time":"1"}])"});
    }
    practice::Broker broker(market.symbols(), ids, trades.load());
    const std::array<practice::SymbolQuote, 1> quotes{{{0, market.quote(0, noon)}}};
    trades.store(broker.onPrices(quotes, noon));
    for (const practice::Account& account : broker.accounts())
        addTrades(broker, trades, account.id, owners[account.id]);
    for (const practice::Account& account : broker.accounts())
        addHistory(broker, trades, account.id, owners[account.id]);
    transaction.commit();
    for (const std::string& name : {std::string("first"), second()})
        users.addToken(practice::tokenDigest(name), name, noon);
    return file;
}

/// What a broker has, to be compared: the order of the trades says nothing.
practice::BrokerState sorted(practice::BrokerState state)
{
    std::sort(state.liveTrades.begin(), state.liveTrades.end(),
        [](const practice::Trade& a, const practice::Trade& b) { return a.id < b.id; });
    return state;
}

/// All that a trader has.
struct Belongings {
    practice::BrokerState state;
    std::vector<practice::Trade> history;
    std::vector<std::string> drawings; ///< each as one text
    std::vector<std::string> ids;

    friend bool operator==(const Belongings&, const Belongings&) = default;
};

Belongings belongingsOf(const std::string& user, practice::Platform& platform, practice::Database& database)
{
    Belongings all;
    all.state = sorted(platform.broker().state());
    std::erase_if(all.state.accounts, [&](const auto& account) { return !platform.owns(user, account.id); });
    std::erase_if(
        all.state.liveTrades, [&](const auto& trade) { return !platform.owns(user, trade.accountId); });
    for (const practice::Trade& trade : all.state.liveTrades)
        all.ids.push_back(trade.id);
    for (const practice::Account& account : all.state.accounts) {
        all.ids.push_back(account.id);
        for (const practice::Trade& trade : platform.trades().history(account.id, 1000)) {
            all.ids.push_back(trade.id);
            all.history.push_back(trade);
        }
    }
    practice::Statement& rows
        = database.statement("SELECT id, account_id || ' ' || symbol || ' ' || tool || ' ' "
                             "|| color || ' ' || points FROM drawings WHERE user_id = ?1");
    rows.bind(1, user);
    while (rows.step()) {
        all.ids.push_back(rows.text(0));
        all.drawings.push_back(rows.text(0) + ' ' + rows.text(1));
    }
    return all;
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
        net::async_write(client, net::buffer(text), [&client](boost::system::error_code error, std::size_t) {
            client.shutdown(net::socket_base::shutdown_send, error);
        });
        std::string answer;
        read(client, answer);
        m_context.restart();
        m_context.run_for(std::chrono::minutes(10)); // the fuzzer itself is less patient
        demand(m_context.stopped(), "a connection whose client has ended ends too");
        return answer;
    }

    [[nodiscard]] Belongings belongingsOf(const std::string& user)
    {
        return fuzz_connection::belongingsOf(user, m_platform, m_database);
    }
    [[nodiscard]] practice::BrokerState live() const { return sorted(m_platform.broker().state()); }
    [[nodiscard]] practice::BrokerState stored() { return sorted(m_platform.trades().load()); }

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

/// A message at the beginning of a text.
template <typename Parser> struct Found {
    Parser parser;
    std::size_t header = 0; ///< its length in bytes; 0 where the text ends before it does
    std::size_t size = 0;   ///< the same of all of it
    boost::system::error_code error;

    void read(std::string_view text)
    {
        header = put(text);
        if (!parser.is_header_done())
            header = 0;
        parser.eager(true);
        size = header;
        while (header > 0 && !error && !parser.is_done() && size < text.size()) {
            const std::size_t taken = put(text.substr(size));
            size += taken;
            if (taken == 0)
                break;
        }
        if (!error && !parser.is_done())
            error = http::error::need_more;
    }

    [[nodiscard]] bool endsTooEarly() const
    {
        return error == http::error::need_more || error == http::error::partial_message;
    }

private:
    std::size_t put(std::string_view text)
    {
        try {
            return parser.put(net::buffer(text), error);
        } catch (const std::length_error&) { // a field of more than 64 KB, which the platform never gets to
            error = http::error::header_limit;
            return 0;
        }
    }
};

/// Without any of the platform's limits.
struct Request : Found<http::request_parser<http::string_body>> {
    explicit Request(std::string_view text)
    {
        parser.header_limit(std::numeric_limits<std::uint32_t>::max());
        parser.body_limit(std::numeric_limits<std::uint64_t>::max());
        if (text.empty())
            error = http::error::need_more;
        else
            read(text);
    }
};

struct Response : Found<http::response_parser<http::string_body>> {
    Response(std::string_view text, bool hasBody)
    {
        parser.body_limit(16U << 20U);
        parser.skip(!hasBody);
        read(text);
        demand(!error, "an answer is whole");
    }
};

/// Whether the client may have been let in to the feed.
bool opensFeed(const http::request<http::string_body>& request)
{
    const auto target = practice::Target::parse({request.target().data(), request.target().size()});
    const auto token = target ? target->item("token") : std::nullopt;
    return boost::beast::websocket::is_upgrade(request)
        && target->segments == std::vector<std::string>{"ws", "terminal"}
    && (token == "first" || token == secondWord);
}

void demandProper(const http::response<http::string_body>& response, bool hasBody)
{
    const unsigned status = response.result_int();
    demand(status / 100 == 2 || status / 100 == 4, "no request is the platform's fault, and it has room");
    if (!hasBody)
        return;
    const auto json = nlohmann::json::parse(response.body(), nullptr, false);
    demand(!json.is_discarded(), "an answer is JSON");
    demand(status / 100 == 2 || (json.is_object() && json.contains("message") && !json["message"].empty()),
        "a refusal says why");
}

void demandLimits(const Request& request, unsigned status)
{
    const std::size_t body = request.parser.get().body().size();
    const bool isTooLong = status == 413 || status == 431;
    // The first line and what follows it have that limit each.
    if (body > practice::longestBody || request.header > 2 * practice::longestHeader)
        demand(isTooLong, "no request is longer than accepted");
    // Between the pieces of a body there may be more than there is room for.
    if (body <= practice::longestBody && request.header <= practice::longestHeader
        && !request.parser.chunked())
        demand(!isTooLong, "what is accepted is not too long");
}

/// Each request that is whole has its answer, in their order, and nothing else has one.
void demandAnswers(std::string_view text, std::string_view answer)
{
    while (true) {
        const Request request(text);
        if (answer.starts_with("HTTP/1.1 100 ") || answer.starts_with("HTTP/1.0 100 ")) {
            demand(request.header > 0 && request.parser.get().count(http::field::expect) > 0,
                "only who waits is told to go on");
            answer.remove_prefix(Response(answer, false).size);
        }
        if (answer.empty()) {
            // What is wrong in a header that comes in pieces is found once its end is there.
            const bool isCut = text.find("\r\n\r\n") == std::string_view::npos;
            demand(request.endsTooEarly() || isCut, "a whole request has an answer");
            return;
        }
        const std::string_view told = answer.substr(std::min<std::size_t>(answer.size(), 9), 3);
        const bool isHead = !request.error && request.parser.get().method() == http::verb::head;
        const bool hasBody = !isHead || told == "413" || told == "431";
        const Response response(answer, hasBody);
        const auto& reply = response.parser.get();
        if (reply.result_int() == 101) {
            demand(!request.error && opensFeed(request.parser.get()), "the feed is for those signed in");
            demand(answer.find(R"({"type":"hello")") != std::string_view::npos, "a feed begins with a hello");
            return;
        }
        demandProper(reply, hasBody);
        if (request.error) {
            demand(request.endsTooEarly() ? reply.result_int() == 413 || reply.result_int() == 431
                                          : reply.result_int() / 100 == 4,
                "what is no whole request is refused");
            demand(!reply.keep_alive() && response.size == answer.size(), "a refusal is the end");
            return;
        }
        demandLimits(request, reply.result_int());
        answer.remove_prefix(response.size);
        text.remove_prefix(request.size);
        if (!reply.keep_alive()) {
            demand(answer.empty(), "the last answer is the end");
            return;
        }
        demand(request.parser.get().keep_alive(), "a connection goes on as it was asked");
    }
}

/// Somebody else's ids may be named by the client, but not by the platform.
void demandNothingOf(const Belongings& owner, std::string_view answer)
{
    demand(answer.find(secondWord) == std::string_view::npos, "no answer tells of another trader");
    for (const std::string& id : owner.ids) {
        for (const char* key : {"\"id", "ccountId", "radeId"})
            demand(answer.find(key + (R"(":")" + id) + '"') == std::string_view::npos,
                "no answer shows what is another trader's");
    }
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    static net::io_context context(1);
    static practice::PasswordWorker passwords(context);
    static const std::filesystem::path prepared = prepare(folder);
    const std::filesystem::path file = folder.path() / "desk.db";
    for (const char* side : {"", "-wal", "-shm"})
        std::filesystem::remove(file.string() + side);
    std::filesystem::copy_file(prepared, file);

    const std::string_view text = fuzz::textOf(data, size);
    Desk desk(context, passwords, file);
    const Belongings before = desk.belongingsOf(second());
    const std::string answer = desk.answerTo(text);
    demandAnswers(text, answer);
    demand(desk.stored() == desk.live(), "what has changed is stored");
    if (text.find(secondWord) != std::string_view::npos)
        return 0;
    demand(desk.belongingsOf(second()) == before, "nobody reaches another trader's account");
    demandNothingOf(before, answer);
    return 0;
}

constexpr std::size_t longest = 2 * practice::longestHeader + practice::longestBody;
// An input reaches so many places that weighing them would take longer by far than the connection does.
const fuzz::Target target("connection", &attempt, longest, "-entropic=0");

} // namespace

} // namespace fuzz_connection
