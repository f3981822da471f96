#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/ServerFixture.h"

#include <cmath>
#include <future>

using namespace practice;
using nlohmann::json;

namespace {

/// Whether the server takes one more feed than those that are there.
bool hasRoom(const InProcess& place, const std::string& token)
{
    try {
        const FeedClient feed(place.server->port(), token);
        return true;
    } catch (const std::runtime_error& refused) {
        CHECK_EQ(std::string(refused.what()), std::string("HTTP/1.1 503 Service Unavailable"));
        return false;
    }
}

/// Whether it does within so many attempts, while feeds that end are being cleared away.
bool getsRoom(const InProcess& place, const std::string& token, int mostAttempts)
{
    for (int i = 0; i < mostAttempts; ++i) {
        if (hasRoom(place, token))
            return true;
    }
    return false;
}

/// Lets the server know that there is somebody.
void speak(FeedClient& feed)
{
    feed.send(R"({"type":"ping"})");
    static_cast<void>(feed.readUntil("pong"));
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
        speak(keen);
        speak(lazy);
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

} // namespace

TEST_CASE("one feed too many is told so and let in once there is room, requests having places of their own")
{
    Limits limits;
    limits.feeds = 1;
    limits.connections = 2;
    InProcess place(0, limits);
    Trader trader(place);
    const std::string token = trader.client.token();
    {
        FeedClient feed(place.server->port(), token);
        CHECK_EQ(feed.read().at("type"), "hello");
        speak(feed);
        for (int i = 0; i < 100; ++i) {
            CHECK(!hasRoom(place, token));
            CHECK_EQ(trader.client.get("/api/accounts").status, 200);
        }
        place.market.setBid(1.2);
        CHECK_EQ(feed.read().at("type"), "price_update");
    }
    CHECK(getsRoom(place, token, 1000));
}

TEST_CASE("a feed that has never said anything goes for one that comes")
{
    Limits limits;
    limits.feeds = 2;
    InProcess place(0, limits);
    const Trader trader(place);
    FeedClient alive(place.server->port(), trader.client.token());
    CHECK_EQ(alive.read().at("type"), "hello");
    speak(alive);
    FeedClient silent(place.server->port(), trader.client.token());
    CHECK_EQ(silent.read().at("type"), "hello");
    FeedClient newcomer(place.server->port(), trader.client.token());
    CHECK_EQ(newcomer.read().at("type"), "hello");
    static_cast<void>(silent.socket().readAll()); // ends
    speak(newcomer);
    speak(alive);
    CHECK(!hasRoom(place, trader.client.token()));
}

TEST_CASE("who comes while all connections are at work is told so")
{
    Limits limits;
    limits.connections = 0;
    const InProcess place(0, limits);
    for (int i = 0; i < 100; ++i) {
        HttpClient client(place.server->port());
        const HttpReply reply = i % 2 == 0 ? client.read() : client.get("/api/settings/public");
        CHECK_EQ(reply.status, 503);
        CHECK(reply.message().find("Too many connections") != std::string::npos);
        CHECK_EQ(reply.headers.at("connection"), std::string("close"));
        CHECK(client.socket().readAll().empty());
    }
}

TEST_CASE("a connection that only waits goes for one that comes, the silent before the idle")
{
    Limits limits;
    limits.connections = 2;
    const InProcess place(0, limits);
    HttpClient idle(place.server->port());
    CHECK_EQ(idle.get("/api/settings/public").status, 200);
    HttpClient silent(place.server->port());
    HttpClient first(place.server->port());
    CHECK_EQ(first.get("/api/settings/public").status, 200);
    CHECK(silent.socket().readAll().empty());
    CHECK_EQ(idle.get("/api/settings/public").status, 200); // now first has been idle for longer
    HttpClient second(place.server->port());
    CHECK_EQ(second.get("/api/settings/public").status, 200);
    CHECK(first.socket().readAll().empty());
    CHECK_EQ(idle.get("/api/settings/public").status, 200);
}

TEST_CASE("who is sending a request's body on a slow line is not taken for silent")
{
    Limits limits;
    limits.connections = 2;
    InProcess place(0, limits);
    const Trader trader(place);
    HttpClient slow(place.server->port());
    slow.socket().send("POST /api/trades/place HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Bearer "
        + trader.client.token()
        + "\r\nContent-Type: application/json\r\nExpect: 100-continue\r\nContent-Length: 2\r\n\r\n");
    CHECK(slow.socket().readUntil("\r\n\r\n").starts_with("HTTP/1.1 100"));
    slow.socket().send("{");
    HttpClient silent(place.server->port());
    HttpClient newcomer(place.server->port());
    CHECK_EQ(newcomer.get("/api/settings/public").status, 200);
    CHECK(silent.socket().readAll().empty());
    HttpClient another(place.server->port());
    CHECK_EQ(another.get("/api/settings/public").status, 200);
    CHECK(newcomer.socket().readAll().empty());
    slow.socket().send("}");
    CHECK_EQ(slow.read().status, 400); // an order that says nothing
}

TEST_CASE("who takes no message for too long is disconnected")
{
    Limits limits;
    limits.feeds = 2;
    limits.feedStall = std::chrono::seconds(1); // so that who does read is in time on a busy machine, too
    InProcess place(2000, limits);
    Trader trader(place);
    BlockedFeed feeds(place, trader.client.token());
    int updates = 0;
    for (; !hasRoom(place, trader.client.token()) && updates < 2000; ++updates)
        feeds.update(place);
    CHECK(updates < 2000);
    static_cast<void>(feeds.lazy.socket().readAll()); // ends
}

TEST_CASE("who lets events pile up is disconnected")
{
    Limits limits;
    limits.feeds = 2;
    limits.feedEvents = 20;
    InProcess place(2000, limits);
    Trader trader(place);
    const std::string account = trader.account("DEMO");
    BlockedFeed feeds(place, trader.client.token());
    const json pending = buyLimit(account, 0.01, 0.5);
    for (int i = 0; i < 20; ++i)
        CHECK_EQ(trader.client.post("/api/trades/place", pending).status, 200);
    CHECK(!hasRoom(place, trader.client.token()));
    CHECK_EQ(trader.client.post("/api/trades/place", pending).status, 200);
    CHECK(getsRoom(place, trader.client.token(), 1000));
    static_cast<void>(feeds.lazy.socket().readAll()); // ends
    for (int i = 0; i < 21; ++i)
        CHECK(feeds.keen.readUntil("orders_changed").contains("tradeId"));
}

TEST_CASE("a feed without a sign of life ends; one that answers pings goes on")
{
    Limits limits;
    limits.feedSilence = std::chrono::milliseconds(1000);
    InProcess place(0, limits);
    Trader trader(place);
    FeedClient alive(place.server->port(), trader.client.token());
    CHECK_EQ(alive.read().at("type"), "hello");
    auto next = std::async(std::launch::async, [&] { return alive.read(); });
    for (int i = 0; i < 2; ++i) {
        FeedClient dead(place.server->port(), trader.client.token());
        CHECK_EQ(dead.read().at("type"), "hello");
        static_cast<void>(dead.socket().readAll()); // ends
    }
    place.market.setBid(1.2);
    CHECK_EQ(next.get().at("type"), "price_update");
}

TEST_CASE("a connection that sends nothing, half a request, or never takes its answers ends")
{
    Limits limits;
    limits.opening = std::chrono::milliseconds(100);
    InProcess opening(0, limits);
    HttpClient silent(opening.server->port());
    CHECK(silent.socket().readAll().empty());

    limits = {};
    limits.idle = std::chrono::milliseconds(100);
    InProcess idle(0, limits);
    HttpClient paused(idle.server->port());
    CHECK_EQ(paused.get("/api/settings/public").status, 200);
    CHECK(paused.socket().readAll().empty());

    limits = {};
    limits.header = std::chrono::milliseconds(100);
    InProcess header(0, limits);
    HttpClient begun(header.server->port());
    begun.socket().send("GET /api/settings/public HTTP/1.1\r\nHost: ");
    CHECK(begun.socket().readAll().empty());

    limits = {};
    limits.transfer = std::chrono::milliseconds(100);
    InProcess place(0, limits);
    HttpClient half(place.server->port());
    half.socket().send("POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                       "application/json\r\nContent-Length: 60\r\n\r\n{\"email");
    CHECK(half.socket().readAll().empty());

    Trader greedy(place, 4096);
    std::string requests;
    for (int i = 0; i < 1000; ++i)
        requests += "GET /api/news/upcoming HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Bearer "
            + greedy.client.token() + "\r\n\r\n";
    greedy.client.socket().send(requests);
    greedy.client.socket().awaitReset();
}

TEST_CASE("a market that stands still sends no prices")
{
    InProcess place;
    Trader trader(place);
    FeedClient feed(place.server->port(), trader.client.token());
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
    Trader trader(place);
    FeedClient lazy(place.server->port(), trader.client.token(), 4096);
    FeedClient keen(place.server->port(), trader.client.token());
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

CHECK_MAIN()
