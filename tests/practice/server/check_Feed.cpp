#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <csignal>

using nlohmann::json;

namespace {

struct Desk {
    TemporaryFolder folder;
    ServerProcess server;
    HttpClient client{server.port()};
    std::string demo;

    explicit Desk(const std::string& speed = "2")
        : server((folder / "x.db").string(), {"--speed", speed})
    {
        client.signIn();
        demo = client.demoAccount().at("id");
    }

    std::string buy()
    {
        const HttpReply reply = client.post("/api/trades/place",
            {{"symbol", "EURUSD"}, {"lotSize", 0.1}, {"accountId", demo}, {"orderKind", "MARKET"},
                {"type", "BUY"}});
        REQUIRE(reply.status == 200);
        return reply.json().at("id").get<std::string>();
    }
};

std::string handshakeError(std::uint16_t port, const std::string& token)
{
    try {
        const FeedClient client(port, token);
    } catch (const std::exception& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST_CASE("a bad token is refused with 401 before the upgrade and the connection ends")
{
    Desk desk;
    for (const std::string& token :
        {std::string(), std::string("wrong"), std::string(64, 'f'), std::string("%zz")})
        CHECK(handshakeError(desk.server.port(), token).find("HTTP/1.1 401") == 0);
    HttpClient client(desk.server.port());
    client.socket().send(
        "GET /ws/terminal HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
        "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    const HttpReply reply = client.read();
    CHECK_EQ(reply.status, 401);
    CHECK(!reply.message().empty());
    CHECK(client.socket().readAll().empty());
}

TEST_CASE("the feed's address says what it is to those who come without a WebSocket")
{
    Desk desk;
    const HttpReply reply = desk.client.get("/ws/terminal?token=" + desk.client.token());
    CHECK_EQ(reply.status, 400);
    CHECK(reply.message().find("WebSocket") != std::string::npos);
    HttpClient client(desk.server.port());
    client.socket().send("GET /ws/other?token=" + desk.client.token()
        + " HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
          "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    CHECK_EQ(client.read().status, 404);
}

TEST_CASE("a handshake that cannot be accepted is refused like any other request, with the version that can")
{
    Desk desk;
    const std::string key = "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";
    const std::string version = "Sec-WebSocket-Version: 13\r\n";
    for (const std::string& rest : {std::string(), key, version, key + "Sec-WebSocket-Version: 12\r\n",
             "Sec-WebSocket-Key: " + std::string(25, 'a') + "\r\n" + version}) {
        HttpClient client(desk.server.port());
        client.socket().send("GET /ws/terminal?token=" + desk.client.token()
            + " HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n" + rest
            + "\r\n");
        const HttpReply reply = client.read();
        CHECK_EQ(reply.status, 400);
        CHECK(reply.message().find("WebSocket") != std::string::npos);
        CHECK(reply.headers.contains("sec-websocket-version"));
        CHECK(client.socket().readAll().empty());
    }
}

TEST_CASE("the hello comes first, with every symbol and its price")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    const json hello = feed.read();
    CHECK_EQ(hello.at("type"), "hello");
    CHECK(hello.at("symbols").size() >= 12);
    CHECK_EQ(hello.at("symbols").size(), hello.at("prices").size());
    for (const json& symbol : hello.at("symbols")) {
        const json& price = hello.at("prices").at(symbol.at("name").get<std::string>());
        CHECK(price.at("bid").is_number() && price.at("bid") < price.at("ask") && price.at("bid") > 0);
        CHECK(symbol.at("digits").is_number_integer() && symbol.at("sortOrder").is_number_integer());
        CHECK(!symbol.at("description").get<std::string>().empty());
        CHECK(std::stod(symbol.at("dailyOpen").get<std::string>()) > 0);
        CHECK(symbol.at("contractSize").is_number() && symbol.at("commission").is_number()
            && symbol.at("swapLong").is_number() && symbol.at("swapShort").is_number());
    }
}

TEST_CASE("price updates carry what changed and only that")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    json known = feed.read().at("prices");
    for (int i = 0; i < 12; ++i) {
        const json update = feed.readUntil("price_update");
        CHECK(!update.at("data").empty());
        for (const auto& [symbol, price] : update.at("data").items()) {
            CHECK(known.at(symbol) != price);
            known[symbol] = price;
        }
    }
}

TEST_CASE("a ping is answered with a pong, anything else is ignored")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    for (const char* text : {"", "hello", "[]", "{}", R"({"type":1})", R"({"type":"pong"})",
             R"({"type":{"a":[]}})", "\xff\xfe is not sent as text"}) {
        if (text[0] != '\xff')
            feed.send(text);
    }
    feed.send(R"({"type":"ping"})");
    const json pong = feed.readUntil("pong");
    CHECK_EQ(pong, json({{"type", "pong"}}));
}

TEST_CASE("a message that no terminal sends closes the feed with 1009")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    feed.send(std::string(100'000, 'x'));
    CHECK_EQ(feed.readCloseCode(), 1009);
    CHECK_EQ(desk.client.get("/api/accounts").status, 200);
}

TEST_CASE("open positions are reported about once a second with their profit")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    const std::string id = desk.buy();
    int reports = 0;
    int updates = 0;
    while (reports < 4) {
        const json message = feed.read();
        updates += message.at("type") == "price_update" && reports > 0 ? 1 : 0;
        if (message.at("type") != "trades_update")
            continue;
        ++reports;
        const json rows = message.at("data");
        REQUIRE(rows.size() == 1);
        CHECK_EQ(rows[0].at("id"), id);
        CHECK_EQ(rows[0].at("accountId"), desk.demo);
        CHECK(rows[0].at("pnl").is_number());
    }
    // Prices move eight times a second here: profits do not come with each of them.
    CHECK(updates >= 2 * reports);
}

TEST_CASE("orders that change are announced on every connection of the trader")
{
    Desk desk;
    FeedClient first(desk.server.port(), desk.client.token());
    FeedClient second(desk.server.port(), desk.client.token());
    CHECK_EQ(first.read().at("type"), "hello");
    CHECK_EQ(second.read().at("type"), "hello");
    const std::string id = desk.buy();
    CHECK_EQ(first.readUntil("orders_changed").at("tradeId"), id);
    CHECK_EQ(second.readUntil("orders_changed").at("accountId"), desk.demo);
    CHECK_EQ(desk.client.request("POST", "/api/trades/close/" + id, "{}").status, 200);
    CHECK_EQ(first.readUntil("orders_changed").at("closeReason"), "MANUAL");
}

TEST_CASE("a stop loss that is hit closes the position and says so")
{
    Desk desk("20"); // a price goes this far within a second, whatever the hour
    FeedClient feed(desk.server.port(), desk.client.token());
    const json price = feed.read().at("prices").at("EURUSD");
    // Close enough to be hit within moments; far enough to be accepted most of the time.
    HttpReply reply;
    for (int attempt = 0; attempt < 50 && reply.status != 200; ++attempt) {
        const json now
            = feed.readUntil("price_update", [](const json& m) { return m.at("data").contains("EURUSD"); })
                  .at("data")
                  .at("EURUSD");
        reply = desk.client.post("/api/trades/place",
            {{"symbol", "EURUSD"}, {"lotSize", 0.1}, {"accountId", desk.demo}, {"orderKind", "MARKET"},
                {"type", "BUY"}, {"stopLoss", now.at("bid").get<double>() - 0.00002},
                {"takeProfit", now.at("ask").get<double>() + 0.00002}});
    }
    REQUIRE(reply.status == 200);
    const std::string id = reply.json().at("id").get<std::string>();
    const json event = feed.readUntil(
        "orders_changed", [&](const json& m) { return m.at("tradeId") == id && m.contains("closeReason"); });
    CHECK(event.at("closeReason") == "SL" || event.at("closeReason") == "TP");
    const json history = desk.client.get("/api/trades/history?accountId=" + desk.demo).json();
    CHECK_EQ(history.at(0).at("id"), id);
    CHECK_EQ(history.at(0).at("closeReason"), event.at("closeReason"));
}

TEST_CASE("the feed says good-bye when the server ends")
{
    Desk desk;
    FeedClient feed(desk.server.port(), desk.client.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    ::kill(desk.server.pid(), SIGTERM);
    CHECK_EQ(feed.readCloseCode(), 1001);
    CHECK_EQ(desk.server.terminate(SIGTERM), 0);
}

CHECK_MAIN()
