#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/ServerFixture.h"

#include "practice/server/Failure.h"

#include <cmath>

using namespace practice;
using nlohmann::json;

namespace {

bool closing(const json& message)
{
    return message.contains("closeReason");
}

} // namespace

TEST_CASE("what belongs to one trader does not exist for another")
{
    InProcess place;
    Trader mine(place);
    const std::string account = mine.account("DEMO");
    const std::string trade = mine.place(order(account, 0.1));
    const std::string drawing
        = mine.client
              .post("/api/drawings",
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
    CHECK_EQ(mine.client.get("/api/trades/open?accountId=" + account).json().size(), std::size_t(1));

    FeedClient feed(place.server->port(), other.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    CHECK_EQ(mine.client.request("POST", "/api/trades/close/" + trade, "{}").status, 200);
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
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    FeedClient feed(place.server->port(), trader.client.token());
    const std::string id = trader.place(buyLimit(account, 0.1, 1.09));
    place.market.setBid(1.085);
    const json event
        = feed.readUntil("orders_changed", [](const json& m) { return m.value("filled", false); });
    CHECK_EQ(event.at("tradeId"), id);
    CHECK_EQ(
        trader.client.get("/api/trades/open?accountId=" + account).json().at(0).at("entryPrice"), "1.08510");
}

TEST_CASE("an order that cannot be filled is announced with its reason and stands in the history")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    FeedClient feed(place.server->port(), trader.client.token());
    const std::string id = trader.place(buyLimit(account, 50, 1.09));
    trader.place(order(account, 50));
    place.market.setBid(1.0895); // 50 lots need 54 500 of some 47 000 USD
    const json event = feed.readUntil("orders_changed", closing);
    CHECK_EQ(event.at("tradeId"), id);
    CHECK_EQ(event.at("closeReason"), "CANCELLED_NO_MARGIN");
    CHECK(!event.contains("filled"));
    const json history = trader.client.get("/api/trades/history?accountId=" + account).json();
    REQUIRE(history.size() == 1);
    CHECK_EQ(history.at(0).at("id"), id);
    CHECK_EQ(history.at(0).at("status"), "CANCELLED");
    CHECK_EQ(history.at(0).at("closeReason"), "NO_MARGIN");
    CHECK_EQ(history.at(0).at("pnl"), "0.00");
    CHECK(history.at(0).at("closedAt").is_string());
}

TEST_CASE("a loss beyond the balance is written off in the history")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    FeedClient feed(place.server->port(), trader.client.token());
    const std::string id = trader.place(order(account, 50));
    place.market.setBid(1.0);
    CHECK_EQ(feed.readUntil("orders_changed", closing).at("closeReason"), "STOP_OUT");
    const json event = feed.readUntil("orders_changed");
    CHECK(!closing(event));
    const json history = trader.client.get("/api/trades/history?accountId=" + account).json();
    REQUIRE(history.size() == 2);
    double sum = 100'000;
    for (const json& row : history) {
        CHECK_EQ(row.at("status"), "CLOSED");
        CHECK_EQ(row.at("orderKind"), row.at("id") == id ? "MARKET" : "BALANCE");
        sum += std::stod(row.at("pnl").get<std::string>());
    }
    CHECK_NEAR(sum, 0, 0.001);
    for (const json& row : trader.client.get("/api/accounts").json()) {
        if (row.at("id") == account)
            CHECK_EQ(row.at("balance"), "0.00");
    }
}

TEST_CASE("a challenge that breaks its limit fails with an account update")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("PLAN");
    FeedClient feed(place.server->port(), trader.client.token());
    CHECK_EQ(trader.client.post("/api/trades/place", order(account, 2)).status, 200);
    place.market.setBid(1.09); // 2 lots lose 2 000 of 25 000 USD: more than 5 %
    const json update = feed.readUntil("account_update");
    CHECK_EQ(update.at("accountId"), account);
    CHECK_EQ(update.at("status"), "FAILED");
    CHECK_EQ(update.at("id"), account);
    CHECK(update.at("Plan").is_object());
    CHECK(trader.client.get("/api/trades/open?accountId=" + account).json() == json::array());
    CHECK_EQ(trader.client.post("/api/trades/place", order(account, 0.1)).status, 400);
}

TEST_CASE("a challenge that reaches its target goes on to the next phase and passes after the last")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("PLAN");
    FeedClient feed(place.server->port(), trader.client.token());
    json request = order(account, 2);
    request["takeProfit"] = 1.114;
    trader.place(request);
    place.market.setBid(1.114); // 139 pips of 20 USD and the commission: more than 10 % of 25 000 USD
    CHECK_EQ(feed.readUntil("orders_changed", closing).at("closeReason"), "TP");
    json update = feed.readUntil("account_update");
    CHECK_EQ(update.at("accountId"), account);
    CHECK_EQ(update.at("status"), "ACTIVE");
    CHECK_EQ(update.at("phase"), 2);

    request["takeProfit"] = 1.128;
    trader.place(request);
    place.market.setBid(1.128);
    CHECK_EQ(feed.readUntil("orders_changed", closing).at("closeReason"), "TP");
    update = feed.readUntil("account_update");
    CHECK_EQ(update.at("accountId"), account);
    CHECK_EQ(update.at("status"), "PASSED");
    CHECK_EQ(trader.client.post("/api/trades/place", order(account, 0.1)).status, 400);
}

TEST_CASE("losses of several days fail a challenge although no day broke its own limit")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("PLAN");
    FeedClient feed(place.server->port(), trader.client.token());
    trader.place(order(account, 2));
    double bid = 1.1;
    for (int day = 0; day < 2; ++day) {
        bid -= 0.0055; // 1 100 USD: less than 5 %
        place.market.setBid(bid);
        const json prices = feed.readUntil("price_update", [&](const json& m) {
            return std::abs(m.at("data").at("EURUSD").at("bid").get<double>() - bid) < 1e-9;
        });
        CHECK(prices.at("data").contains("EURUSD"));
        place.clock.set(place.clock.now() + dayMs);
        CHECK_EQ(trader.client.get("/api/trades/open?accountId=" + account).json().size(), std::size_t(1));
    }
    place.market.setBid(bid - 0.004); // 2 990 USD in all
    CHECK_EQ(feed.readUntil("orders_changed", closing).at("closeReason"), "RISK");
    CHECK_EQ(feed.readUntil("account_update").at("status"), "FAILED");
}

TEST_CASE("too little margin closes the position and says why, on the feed and in the history")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    FeedClient feed(place.server->port(), trader.client.token());
    const std::string id = trader.place(order(account, 50));
    place.market.setBid(1.085); // loses 75 500 of 100 000 USD with 55 005 USD of margin
    const json event = feed.readUntil("orders_changed", closing);
    CHECK_EQ(event.at("closeReason"), "STOP_OUT");
    CHECK_EQ(event.at("tradeId"), id);
    const json history = trader.client.get("/api/trades/history?accountId=" + account).json();
    REQUIRE(history.size() == 1);
    CHECK_EQ(history[0].at("closeReason"), "STOP_OUT");
    CHECK_EQ(history[0].at("status"), "CLOSED");
}

TEST_CASE("what cannot be stored is refused and did not happen")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    const std::string id = trader.place(order(account, 0.1));
    place.onServer([&] { place.database.execute("PRAGMA query_only=ON"); });
    const HttpReply refused = trader.client.post("/api/trades/place", order(account, 0.2));
    CHECK_EQ(refused.status, 503);
    CHECK(!refused.message().empty());
    CHECK_EQ(trader.client.request("POST", "/api/trades/close/" + id, "{}").status, 503);
    const json open = trader.client.get("/api/trades/open?accountId=" + account).json();
    REQUIRE(open.size() == 1);
    CHECK_EQ(open[0].at("id"), id);
    place.onServer([&] { place.database.execute("PRAGMA query_only=OFF"); });
    CHECK_EQ(trader.client.request("POST", "/api/trades/close/" + id, "{}").status, 200);
    CHECK_EQ(trader.client.get("/api/trades/history?accountId=" + account).json().size(), std::size_t(1));
}

TEST_CASE("a command that was stored is never reported as failed")
{
    InProcess place;
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    const std::string id = trader.place(order(account, 0.1));
    // Once stored, the row cannot be read back.
    place.onServer([&] {
        place.database.execute("CREATE TRIGGER spoil AFTER UPDATE ON trades WHEN NEW.side <> '?'"
                               " BEGIN UPDATE trades SET side = '?' WHERE id = NEW.id; END");
    });
    const HttpReply closed = trader.client.request("POST", "/api/trades/close/" + id, "{}");
    CHECK_EQ(closed.status, 200);
    CHECK_EQ(closed.json().at("status"), "CLOSED");
    CHECK_EQ(closed.json().at("closeReason"), "MANUAL");
    CHECK_EQ(trader.client.get("/api/trades/history?accountId=" + account).status, 503);
}

TEST_CASE("a fault of the platform itself is answered with 500, and the connection goes on")
{
    InProcess place;
    Trader trader(place);
    place.market.failBars();
    const HttpReply reply = trader.client.get("/api/candles?symbol=EURUSD&timeframe=1m");
    CHECK_EQ(reply.status, 500);
    CHECK(!reply.message().empty());
    CHECK_EQ(trader.client.get("/api/accounts").status, 200);
}

TEST_CASE("a port that is taken is a matter of listening, a fault while running is not")
{
    InProcess place;
    boost::asio::io_context context{1};
    Database database(place.folder / "second.db");
    prepareFirstUse(database, place.clock.now());
    std::string reason;
    try {
        static_cast<void>(listenOn(context, "127.0.0.1", place.server->port()));
    } catch (const ListenError& error) {
        reason = error.what();
    }
    CHECK(reason.find("cannot listen on 127.0.0.1 port " + std::to_string(place.server->port())) == 0);

    ManualMarket broken(0);
    Server server(context, listenOn(context, "127.0.0.1", 0), database, broken, place.clock,
        ServerSettings{"127.0.0.1", {}, 1, std::chrono::milliseconds(1), {}});
    broken.failQuotes();
    CHECK_THROWS(context.run(), boost::system::system_error);
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
    Trader trader(place);
    FeedClient feed(place.server->port(), trader.client.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    // The first day that turns leaves word of how far time was played; from then on that is kept up to
    // date.
    place.clock.set(1'750'000'000'000 + dayMs);
    place.market.setBid(1.09);
    CHECK_EQ(feed.read().at("type"), "price_update");
    const std::int64_t before = rows();
    for (int i = 11; i <= 60; ++i) {
        place.clock.set(1'750'000'000'000 + i * dayMs / 10);
        place.market.setBid(1.1 + i * 0.0001);
        CHECK_EQ(feed.read().at("type"), "price_update");
    }
    CHECK_EQ(rows(), before);
}

CHECK_MAIN()
