#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/HttpClient.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/broker/DefaultAccounts.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Failure.h"
#include "practice/server/FirstUse.h"
#include "practice/server/Secrets.h"
#include "practice/server/Server.h"

#include <boost/asio/post.hpp>

#include <atomic>
#include <future>
#include <thread>

using namespace practice;
using nlohmann::json;

namespace {

class SettableClock final : public Clock {
public:
    [[nodiscard]] TimeMs now() const override { return m_now; }
    void set(TimeMs now) { m_now = now; }

private:
    std::atomic<TimeMs> m_now{1'750'000'000'000};
};

/// EURUSD and as many copies of it as asked for. A test sets the price of the first and of all others.
class ManualMarket final : public PriceSource {
public:
    explicit ManualMarket(std::size_t copies)
        : m_symbols({symbolCatalog().front()})
    {
        for (std::size_t i = 1; i <= copies; ++i) {
            m_symbols.push_back(m_symbols.front());
            m_symbols.back().name += std::to_string(i);
            m_symbols.back().sortOrder += static_cast<int>(i);
        }
    }
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const override { return m_symbols; }
    [[nodiscard]] Quote quote(std::size_t symbol, TimeMs) override
    {
        if (m_quotesFail)
            throw boost::system::system_error(boost::asio::error::no_descriptors);
        const double bid = symbol == 0 ? m_bid : m_others;
        return {bid, bid + 0.0001};
    }
    [[nodiscard]] double dailyOpen(std::size_t, TimeMs) override { return 1.1; }
    [[nodiscard]] std::vector<Bar> bars(std::size_t, Timeframe, std::size_t, TimeMs) override
    {
        if (m_barsFail)
            throw std::runtime_error("no bars");
        return {};
    }
    void failBars() { m_barsFail = true; }
    void failQuotes() { m_quotesFail = true; }
    void setBid(double bid) { m_bid = bid; }
    void setOthers(double bid) { m_others = bid; }

private:
    std::vector<SymbolSpec> m_symbols;
    std::atomic<double> m_bid{1.1};
    std::atomic<double> m_others{1.1};
    std::atomic<bool> m_barsFail{false};
    std::atomic<bool> m_quotesFail{false};
};

/// The server in this process, on a thread of its own.
struct InProcess {
    TemporaryFolder folder;
    SettableClock clock;
    ManualMarket market;
    Database database{folder / "x.db"};
    boost::asio::io_context context{1};
    std::unique_ptr<Server> server;
    std::thread thread;

    explicit InProcess(std::size_t copies = 0, const Limits& limits = {})
        : market(copies)
    {
        prepareFirstUse(database, clock.now());
        UserStore(database).add({"second", "second@example.test", "Second", hashPassword("other")});
        server = std::make_unique<Server>(context, database, market, clock,
            ServerSettings{"127.0.0.1", 0, 1, std::chrono::milliseconds(10), limits});
        thread = std::thread([this] { context.run(); });
    }
    ~InProcess()
    {
        context.stop();
        thread.join();
    }

    /// Runs the work on the server's thread.
    void onServer(const std::function<void()>& work)
    {
        std::promise<void> done;
        boost::asio::post(context, [&] {
            work();
            done.set_value();
        });
        done.get_future().wait();
    }
};

/// Whether the server takes one more connection than those that are there.
bool hasRoom(const InProcess& place)
{
    return HttpClient(place.server->port()).get("/api/settings/public").status == 200;
}

/// A feed whose client does not read, with so much on its way that the next message will wait.
struct BlockedFeed {
    FeedClient keen;
    FeedClient lazy;
    double bid = 1.1;

    BlockedFeed(InProcess& place, const std::string& token)
        : keen(place.server->port(), token)
        , lazy(place.server->port(), token, 4096)
    {
        CHECK_EQ(keen.read().at("type"), "hello");
        CHECK_EQ(lazy.read().at("type"), "hello");
        for (int i = 0; i < 150; ++i)
            update(place);
    }

    /// 2 000 symbols: some 100 KB.
    void update(InProcess& place)
    {
        bid += 0.0001;
        place.onServer([&] { place.market.setOthers(bid); });
        CHECK(keen.readUntil("price_update").at("data").size() == 2000);
    }
};

std::string accountOf(HttpClient& client, const char* type, bool funded = false)
{
    for (const json& account : client.get("/api/accounts").json()) {
        if (account.at("type") == type && account.at("isFunded") == funded)
            return account.at("id").get<std::string>();
    }
    throw std::runtime_error("no such account");
}

json order(const std::string& account, double lots)
{
    return {{"symbol", "EURUSD"}, {"lotSize", lots}, {"accountId", account}, {"orderKind", "MARKET"},
        {"type", "BUY"}};
}

} // namespace

TEST_CASE("what belongs to one trader does not exist for another")
{
    InProcess place;
    HttpClient mine(place.server->port());
    mine.signIn();
    const std::string account = accountOf(mine, "DEMO");
    const std::string trade
        = mine.post("/api/trades/place", order(account, 0.1)).json().at("id").get<std::string>();
    const std::string drawing
        = mine.post("/api/drawings",
                  {{"symbol", "EURUSD"}, {"toolType", "hline"}, {"points", {{{"time", 0}, {"price", 1}}}}})
              .json()
              .at("id")
              .get<std::string>();

    HttpClient other(place.server->port());
    const HttpReply login
        = other.post("/api/auth/login", {{"email", "second@example.test"}, {"password", "other"}});
    REQUIRE(login.status == 200);
    other.setToken(login.json().at("token").get<std::string>());
    CHECK(other.get("/api/accounts").json() == json::array());
    for (const char* list : {"open", "pending", "history"})
        CHECK_EQ(other.get("/api/trades/" + std::string(list) + "?accountId=" + account).status, 404);
    CHECK_EQ(other.post("/api/trades/place", order(account, 0.1)).status, 404);
    CHECK_EQ(other.request("POST", "/api/trades/close/" + trade, "{}").status, 404);
    CHECK_EQ(other.put("/api/trades/modify/" + trade, {{"stopLoss", 1.0}}).status, 404);
    CHECK(other.get("/api/drawings?symbol=EURUSD").json() == json::array());
    CHECK_EQ(other.request("DELETE", "/api/drawings/" + drawing).status, 404);
    CHECK_EQ(mine.get("/api/trades/open?accountId=" + account).json().size(), std::size_t(1));

    FeedClient feed(place.server->port(), other.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    CHECK_EQ(mine.request("POST", "/api/trades/close/" + trade, "{}").status, 200);
    feed.send(R"({"type":"ping"})");
    while (true) {
        const json message = feed.read();
        CHECK(message.at("type") != "orders_changed" && message.at("type") != "trades_update");
        if (message.at("type") == "pong")
            break;
    }
}

TEST_CASE("a pending order that is reached is announced as filled")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    const std::string account = accountOf(client, "DEMO");
    FeedClient feed(place.server->port(), client.token());
    json body = order(account, 0.1);
    body.erase("type");
    body["orderKind"] = "BUY_LIMIT";
    body["pendingPrice"] = 1.09;
    const std::string id = client.post("/api/trades/place", body).json().at("id").get<std::string>();
    place.market.setBid(1.085);
    const json event
        = feed.readUntil("orders_changed", [](const json& m) { return m.value("filled", false); });
    CHECK_EQ(event.at("tradeId"), id);
    CHECK_EQ(client.get("/api/trades/open?accountId=" + account).json().at(0).at("entryPrice"), "1.08510");
}

TEST_CASE("a challenge that breaks its limit fails with an account update")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    const std::string account = accountOf(client, "PLAN");
    FeedClient feed(place.server->port(), client.token());
    CHECK_EQ(client.post("/api/trades/place", order(account, 2)).status, 200);
    place.market.setBid(1.09); // 2 lots lose 2 000 of 25 000 USD: more than 5 %
    const json update = feed.readUntil("account_update");
    CHECK_EQ(update.at("accountId"), account);
    CHECK_EQ(update.at("status"), "FAILED");
    CHECK_EQ(update.at("id"), account);
    CHECK(update.at("Plan").is_object());
    CHECK(client.get("/api/trades/open?accountId=" + account).json() == json::array());
    CHECK_EQ(client.post("/api/trades/place", order(account, 0.1)).status, 400);
}

TEST_CASE("what cannot be stored is refused and did not happen")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    const std::string account = accountOf(client, "DEMO");
    const std::string id
        = client.post("/api/trades/place", order(account, 0.1)).json().at("id").get<std::string>();
    place.onServer([&] { place.database.execute("PRAGMA query_only=ON"); });
    const HttpReply refused = client.post("/api/trades/place", order(account, 0.2));
    CHECK_EQ(refused.status, 503);
    CHECK(!refused.message().empty());
    CHECK_EQ(client.request("POST", "/api/trades/close/" + id, "{}").status, 503);
    const json open = client.get("/api/trades/open?accountId=" + account).json();
    REQUIRE(open.size() == 1);
    CHECK_EQ(open[0].at("id"), id);
    place.onServer([&] { place.database.execute("PRAGMA query_only=OFF"); });
    CHECK_EQ(client.request("POST", "/api/trades/close/" + id, "{}").status, 200);
    CHECK_EQ(client.get("/api/trades/history?accountId=" + account).json().size(), std::size_t(1));
}

TEST_CASE("a command that was stored is never reported as failed")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    const std::string account = accountOf(client, "DEMO");
    const std::string id
        = client.post("/api/trades/place", order(account, 0.1)).json().at("id").get<std::string>();
    // Once stored, the row cannot be read back.
    place.onServer([&] {
        place.database.execute("CREATE TRIGGER spoil AFTER UPDATE ON trades WHEN NEW.side <> '?'"
                               " BEGIN UPDATE trades SET side = '?' WHERE id = NEW.id; END");
    });
    const HttpReply closed = client.request("POST", "/api/trades/close/" + id, "{}");
    CHECK_EQ(closed.status, 200);
    CHECK_EQ(closed.json().at("status"), "CLOSED");
    CHECK_EQ(closed.json().at("closeReason"), "MANUAL");
    CHECK_EQ(client.get("/api/trades/history?accountId=" + account).status, 503);
}

TEST_CASE("a fault of the platform itself is answered with 500, and the connection goes on")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    place.market.failBars();
    const HttpReply reply = client.get("/api/candles?symbol=EURUSD&timeframe=1m");
    CHECK_EQ(reply.status, 500);
    CHECK(!reply.message().empty());
    CHECK_EQ(client.get("/api/accounts").status, 200);
}

TEST_CASE("a port that is taken is a matter of listening, a fault while running is not")
{
    InProcess place;
    boost::asio::io_context context{1};
    Database database(place.folder / "second.db");
    prepareFirstUse(database, place.clock.now());
    const auto serveOn = [&](std::uint16_t port) {
        return Server(context, database, place.market, place.clock,
            ServerSettings{"127.0.0.1", port, 1, std::chrono::milliseconds(1), {}});
    };
    std::string reason;
    try {
        serveOn(place.server->port());
    } catch (const ListenError& error) {
        reason = error.what();
    }
    CHECK(reason.find("cannot listen on 127.0.0.1 port " + std::to_string(place.server->port())) == 0);

    ManualMarket broken(0);
    Server server(context, database, broken, place.clock,
        ServerSettings{"127.0.0.1", 0, 1, std::chrono::milliseconds(1), {}});
    broken.failQuotes();
    CHECK_THROWS(context.run(), boost::system::system_error);
}

TEST_CASE("one connection too many is told so and let in once there is room, feeds being counted")
{
    Limits limits;
    limits.connections = 2;
    InProcess place(0, limits);
    HttpClient client(place.server->port());
    client.signIn();
    {
        FeedClient feed(place.server->port(), client.token());
        CHECK_EQ(feed.read().at("type"), "hello");
        for (int i = 0; i < 100; ++i) {
            HttpClient third(place.server->port());
            const HttpReply reply = i % 2 == 0 ? third.read() : third.get("/api/settings/public");
            CHECK_EQ(reply.status, 503);
            CHECK(reply.message().find("Too many connections") != std::string::npos);
            CHECK_EQ(reply.headers.at("connection"), std::string("close"));
            CHECK(third.socket().readAll().empty());
        }
        CHECK_EQ(client.get("/api/accounts").status, 200);
    }
    int attempts = 0;
    while (!hasRoom(place) && attempts < 1000)
        ++attempts;
    CHECK(attempts < 1000);
}

TEST_CASE("who takes no message for too long is disconnected")
{
    Limits limits;
    limits.connections = 3;
    limits.feedStall = std::chrono::milliseconds(200);
    InProcess place(2000, limits);
    HttpClient client(place.server->port());
    client.signIn();
    BlockedFeed feeds(place, client.token());
    int updates = 0;
    for (; !hasRoom(place) && updates < 2000; ++updates)
        feeds.update(place);
    CHECK(updates < 2000);
    static_cast<void>(feeds.lazy.socket().readAll()); // ends
}

TEST_CASE("who lets events pile up is disconnected")
{
    Limits limits;
    limits.connections = 3;
    limits.feedEvents = 20;
    InProcess place(2000, limits);
    HttpClient client(place.server->port());
    client.signIn();
    const std::string account = accountOf(client, "DEMO");
    BlockedFeed feeds(place, client.token());
    json pending = order(account, 0.01);
    pending.erase("type");
    pending["orderKind"] = "BUY_LIMIT";
    pending["pendingPrice"] = 0.5;
    for (int i = 0; i < 20; ++i)
        CHECK_EQ(client.post("/api/trades/place", pending).status, 200);
    CHECK(!hasRoom(place));
    CHECK_EQ(client.post("/api/trades/place", pending).status, 200);
    int attempts = 0;
    while (!hasRoom(place) && attempts < 1000)
        ++attempts;
    CHECK(attempts < 1000);
    static_cast<void>(feeds.lazy.socket().readAll()); // ends
    for (int i = 0; i < 21; ++i)
        CHECK(feeds.keen.readUntil("orders_changed").contains("tradeId"));
}

TEST_CASE("a feed without a sign of life ends; one that answers pings goes on")
{
    Limits limits;
    limits.feedSilence = std::chrono::milliseconds(1000);
    InProcess place(0, limits);
    HttpClient client(place.server->port());
    client.signIn();
    FeedClient alive(place.server->port(), client.token());
    CHECK_EQ(alive.read().at("type"), "hello");
    auto next = std::async(std::launch::async, [&] { return alive.read(); });
    for (int i = 0; i < 2; ++i) {
        FeedClient dead(place.server->port(), client.token());
        CHECK_EQ(dead.read().at("type"), "hello");
        static_cast<void>(dead.socket().readAll()); // ends
    }
    place.market.setBid(1.2);
    CHECK_EQ(next.get().at("type"), "price_update");
}

TEST_CASE("a connection that sends nothing, half a request, or never takes its answers ends")
{
    Limits limits;
    limits.idle = std::chrono::milliseconds(100);
    InProcess idle(0, limits);
    HttpClient silent(idle.server->port());
    CHECK(silent.socket().readAll().empty());

    limits = {};
    limits.transfer = std::chrono::milliseconds(100);
    limits.connections = 1;
    InProcess place(0, limits);
    HttpClient half(place.server->port());
    half.socket().send("POST /api/auth/login HTTP/1.1\r\nHost: x\r\nContent-Length: 60\r\n\r\n{\"email");
    CHECK(half.socket().readAll().empty());

    HttpClient greedy(place.server->port(), 4096);
    greedy.signIn();
    std::string requests;
    for (int i = 0; i < 1000; ++i)
        requests += "GET /api/news/upcoming HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer " + greedy.token()
            + "\r\n\r\n";
    greedy.socket().send(requests);
    int attempts = 0;
    while (!hasRoom(place) && attempts < 20000)
        ++attempts;
    CHECK(attempts < 20000);
}

TEST_CASE("a market that stands still sends no prices")
{
    InProcess place;
    HttpClient client(place.server->port());
    client.signIn();
    FeedClient feed(place.server->port(), client.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    CHECK(feed.socket().isSilentFor(std::chrono::milliseconds(300)));
    place.market.setBid(1.2);
    CHECK_EQ(feed.read(),
        json({{"type", "price_update"}, {"data", {{"EURUSD", {{"bid", 1.2}, {"ask", 1.2001}}}}}}));
}

TEST_CASE("a client that does not read misses steps in between but never the last price, and holds up nobody")
{
    // Each update is some 100 KB, so that a few dozen fill every buffer of the system.
    InProcess place(2000);
    HttpClient client(place.server->port());
    client.signIn();
    FeedClient lazy(place.server->port(), client.token(), 4096);
    FeedClient keen(place.server->port(), client.token());
    CHECK_EQ(keen.read().at("type"), "hello");
    CHECK_EQ(lazy.read().at("type"), "hello");
    constexpr int updates = 150;
    double bid = 1.1;
    for (int i = 0; i < updates; ++i) {
        bid = 1.1 + (i + 1) * 0.0001;
        // On the server's thread, so that no update catches half of the symbols.
        place.onServer([&] { place.market.setOthers(bid); });
        CHECK_EQ(keen.read().at("data").size(), std::size_t(2000));
    }
    // The very last step moves one symbol only; those that moved in steps left out must not be forgotten.
    place.market.setBid(1.5);
    CHECK_EQ(keen.read().at("data").size(), std::size_t(1));
    int received = 0;
    json known;
    while (known.empty() || std::abs(known.at("EURUSD").at("bid").get<double>() - 1.5) > 1e-9) {
        known.update(lazy.readUntil("price_update").at("data"));
        ++received;
        if (!known.contains("EURUSD"))
            known["EURUSD"] = {{"bid", 0}};
    }
    CHECK_NEAR(known.at("EURUSD2000").at("bid").get<double>(), bid, 1e-9);
    CHECK(received < updates);
}

TEST_CASE("time and prices that go by leave nothing in the database")
{
    InProcess place;
    const auto rows = [&] {
        std::int64_t total = 0;
        place.onServer([&] {
            for (const char* table : {"meta", "users", "tokens", "accounts", "trades", "drawings"}) {
                Statement& query = place.database.statement("SELECT count(*) FROM " + std::string(table));
                while (query.step())
                    total += query.integer(0);
            }
        });
        return total;
    };
    HttpClient client(place.server->port());
    client.signIn();
    FeedClient feed(place.server->port(), client.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    const std::int64_t before = rows();
    for (int i = 1; i <= 50; ++i) {
        place.clock.set(1'750'000'000'000 + i * dayMs / 10);
        place.market.setBid(1.1 + i * 0.0001);
        CHECK_EQ(feed.read().at("type"), "price_update");
    }
    CHECK_EQ(rows(), before);
}

CHECK_MAIN()
