#include "practice/Check.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <regex>
#include <set>

using nlohmann::json;

namespace {

/// A signed-in trader on a server that all cases share.
struct Trader {
    HttpClient client;
    json accounts;

    Trader()
        : client(server().port())
    {
        static const std::string token = [] {
            HttpClient first(server().port());
            first.signIn();
            return first.token();
        }();
        client.setToken(token);
        accounts = client.get("/api/accounts").json();
    }

    static ServerProcess& server()
    {
        static const TemporaryFolder folder;
        static ServerProcess process((folder / "x.db").string());
        return process;
    }

    [[nodiscard]] std::string account(const char* type) const
    {
        for (const json& row : accounts) {
            if (row.at("type") == type)
                return row.at("id").get<std::string>();
        }
        throw std::runtime_error("no such account");
    }
    [[nodiscard]] std::string demo() const { return account("DEMO"); }

    [[nodiscard]] json order() const
    {
        return {{"symbol", "EURUSD"}, {"lotSize", 0.1}, {"accountId", demo()}, {"orderKind", "MARKET"},
            {"type", "BUY"}};
    }
    [[nodiscard]] json pending() const
    {
        return {{"symbol", "EURUSD"}, {"lotSize", 0.1}, {"accountId", demo()}, {"orderKind", "BUY_LIMIT"},
            {"pendingPrice", 0.5}};
    }
    json list(const std::string& name)
    {
        return client.get("/api/trades/" + name + "?accountId=" + demo()).json();
    }
    [[nodiscard]] json find(const std::string& name, const std::string& id)
    {
        for (const json& row : list(name)) {
            if (row.at("id") == id)
                return row;
        }
        return {};
    }
};

bool isTime(const json& value)
{
    static const std::regex pattern(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)");
    return value.is_string() && std::regex_match(value.get<std::string>(), pattern);
}

void refused(const HttpReply& reply, int status)
{
    CHECK_EQ(reply.status, status);
    CHECK(!reply.message().empty());
}

json with(json body, const char* name, json value)
{
    body[name] = std::move(value);
    return body;
}

json without(json body, const char* name)
{
    body.erase(name);
    return body;
}

} // namespace

TEST_CASE("signing in gives a token and says who signed in")
{
    HttpClient client(Trader::server().port());
    const HttpReply reply
        = client.post("/api/auth/login", {{"email", "TRADER@practice.local"}, {"password", "practice"}});
    CHECK_EQ(reply.status, 200);
    const json body = reply.json();
    CHECK_EQ(body.at("token").get<std::string>().size(), std::size_t(64));
    CHECK_EQ(body.at("email"), "trader@practice.local");
    CHECK_EQ(body.at("user").at("email"), "trader@practice.local");
}

TEST_CASE("a wrong password and a wrong address are refused alike")
{
    HttpClient client(Trader::server().port());
    const auto wrongPassword
        = client.post("/api/auth/login", {{"email", "trader@practice.local"}, {"password", "Practice"}});
    const auto wrongAddress = client.post("/api/auth/login", {{"email", "nobody"}, {"password", "practice"}});
    refused(wrongPassword, 401);
    refused(wrongAddress, 401);
    CHECK_EQ(wrongPassword.body, wrongAddress.body);
    CHECK(!wrongPassword.json().contains("token"));
}

TEST_CASE("a sign-in that is no sign-in is refused with what is missing")
{
    HttpClient client(Trader::server().port());
    for (const char* body : {"", "{", "[]", "{}", R"({"email":"x"})", R"({"email":1,"password":"x"})",
             R"({"email":"x","password":""})", R"({"email":"x","password":["practice"]})"})
        refused(client.request("POST", "/api/auth/login", body), 400);
}

TEST_CASE("everything but sign-in and public settings needs a token")
{
    const std::vector<std::pair<std::string, std::string>> addresses{{"GET", "/api/accounts"},
        {"GET", "/api/trades/open?accountId=x"}, {"GET", "/api/trades/pending?accountId=x"},
        {"GET", "/api/trades/history?accountId=x"}, {"POST", "/api/trades/place"},
        {"POST", "/api/trades/close/x"}, {"POST", "/api/trades/cancel/x"}, {"PUT", "/api/trades/modify/x"},
        {"GET", "/api/candles?symbol=EURUSD&timeframe=1m"}, {"GET", "/api/drawings?symbol=EURUSD"},
        {"POST", "/api/drawings"}, {"PUT", "/api/drawings/x"}, {"DELETE", "/api/drawings/x"},
        {"GET", "/api/news/upcoming"}};
    HttpClient client(Trader::server().port());
    for (const auto& token :
        {std::string(), std::string("wrong"), std::string(64, '0'), std::string(600, 'a')}) {
        client.setToken(token);
        for (const auto& [method, target] : addresses)
            refused(client.request(method, target, "{}"), 401);
    }
    client.socket().send(
        "GET /api/accounts HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Basic dHJhZGVyOng=\r\n\r\n");
    refused(client.read(), 401);
}

TEST_CASE("public settings never move a terminal away from where it reached us")
{
    HttpClient client(Trader::server().port());
    const HttpReply reply = client.get("/api/settings/public");
    CHECK_EQ(reply.status, 200);
    CHECK_EQ(reply.json().at("settings").at("terminalServerUrl"), "");
}

TEST_CASE("a trader has a wallet, a demo, a funded account and a challenge")
{
    Trader trader;
    REQUIRE(trader.accounts.size() == 4);
    std::multiset<std::string> kinds;
    for (const json& account : trader.accounts) {
        CHECK(account.at("id").is_string() && account.at("balance").is_string()
            && account.at("phase").is_number_integer());
        CHECK_EQ(account.at("status"), "ACTIVE");
        const bool plan = account.at("type") == "PLAN";
        kinds.insert(account.at("isWallet").get<bool>()          ? "wallet"
                : !plan                                          ? "demo"
                : account.at("isFunded").get<bool>()             ? "funded"
                : account.at("Plan").at("steps").get<int>() == 2 ? "challenge"
                                                                 : "other");
        CHECK_EQ(plan, !account.at("Plan").at("name").get<std::string>().empty());
    }
    CHECK(kinds == std::multiset<std::string>({"wallet", "demo", "funded", "challenge"}));
}

TEST_CASE("a market order becomes a position, is closed and stands in the history")
{
    Trader trader;
    const HttpReply reply = trader.client.post("/api/trades/place",
        with(with(trader.order(), "stopLoss", 0.5), "comment", "it's \"mine\" \xE2\x82\xAC"));
    REQUIRE(reply.status == 200);
    const json placed = reply.json();
    const std::string id = placed.at("id").get<std::string>();
    CHECK_EQ(placed.at("status"), "OPEN");
    CHECK_EQ(placed.at("lotSize"), "0.10");
    CHECK_EQ(placed.at("stopLoss"), "0.50000");
    CHECK(placed.at("takeProfit").is_null() && placed.at("closedAt").is_null());
    CHECK(placed.at("margin").is_number() && placed.at("pnl").is_string() && isTime(placed.at("createdAt")));
    CHECK_EQ(placed.at("entryPrice").get<std::string>().size(), std::size_t(7));
    const json open = trader.find("open", id);
    CHECK_EQ(open.at("comment"), "it's \"mine\" \xE2\x82\xAC");
    CHECK_EQ(open.at("entryPrice"), placed.at("entryPrice"));

    const HttpReply close = trader.client.request("POST", "/api/trades/close/" + id, "{}");
    CHECK_EQ(close.status, 200);
    CHECK(trader.find("open", id).is_null());
    const json history = trader.list("history");
    CHECK_EQ(history.front().at("id"), id);
    CHECK_EQ(history.front().at("status"), "CLOSED");
    CHECK_EQ(history.front(), close.json());
    CHECK(isTime(history.front().at("closedAt")) && history.front().at("exitPrice").is_string());
    refused(trader.client.request("POST", "/api/trades/close/" + id, "{}"), 404);
    CHECK_EQ(trader.list("history").size(), history.size());
}

TEST_CASE("a pending order waits, is changed and is cancelled")
{
    Trader trader;
    const HttpReply reply = trader.client.post("/api/trades/place", trader.pending());
    REQUIRE(reply.status == 200);
    const std::string id = reply.json().at("id").get<std::string>();
    const json pending = trader.find("pending", id);
    CHECK_EQ(pending.at("status"), "PENDING");
    CHECK_EQ(pending.at("orderKind"), "BUY_LIMIT");
    CHECK_EQ(pending.at("type"), "BUY");
    CHECK_EQ(pending.at("pendingPrice"), "0.50000");
    CHECK(pending.at("entryPrice").is_null());
    CHECK_EQ(
        trader.client.put("/api/trades/modify/" + id, {{"pendingPrice", "0.6"}, {"takeProfit", 0.9}}).status,
        200);
    CHECK_EQ(trader.find("pending", id).at("pendingPrice"), "0.60000");
    CHECK_EQ(trader.find("pending", id).at("takeProfit"), "0.90000");
    refused(trader.client.request("POST", "/api/trades/close/" + id, "{}"), 400);
    CHECK_EQ(trader.client.request("POST", "/api/trades/cancel/" + id).status, 200);
    CHECK(trader.find("pending", id).is_null());
    CHECK(trader.find("history", id).is_null());
    refused(trader.client.request("POST", "/api/trades/cancel/" + id, "{}"), 404);
}

TEST_CASE("an absent level stays and an explicit zero removes it")
{
    Trader trader;
    const HttpReply placed = trader.client.post(
        "/api/trades/place", with(with(trader.order(), "stopLoss", 0.5), "takeProfit", 2.5));
    REQUIRE(placed.status == 200);
    const std::string id = placed.json().at("id").get<std::string>();
    const std::string target = "/api/trades/modify/" + id;
    CHECK_EQ(trader.client.put(target, json::object()).status, 200);
    CHECK_EQ(trader.find("open", id).at("stopLoss"), "0.50000");
    CHECK_EQ(trader.client.put(target, {{"stopLoss", 0}}).status, 200);
    CHECK(trader.find("open", id).at("stopLoss").is_null());
    CHECK_EQ(trader.find("open", id).at("takeProfit"), "2.50000");
    refused(trader.client.put(target, {{"pendingPrice", 1.0}}), 400);
    refused(trader.client.put(target, {{"stopLoss", -1}}), 400);
    refused(trader.client.put(target, {{"stopLoss", 2.4}, {"takeProfit", "x"}}), 400);
    refused(trader.client.put(target, {{"stopLoss", 2.4}}), 400);
    refused(trader.client.request("PUT", target, "{"), 400);
    refused(trader.client.put("/api/trades/modify/none", {{"stopLoss", 0.5}}), 404);
    CHECK(trader.find("open", id).at("stopLoss").is_null());
    CHECK_EQ(trader.find("open", id).at("takeProfit"), "2.50000");
    refused(trader.client.request("POST", "/api/trades/cancel/" + id, "{}"), 400);
    CHECK_EQ(trader.client.request("POST", "/api/trades/close/" + id, "{}").status, 200);
}

TEST_CASE("an order that makes no sense is refused with a reason and leaves nothing behind")
{
    Trader trader;
    const json open = trader.list("open");
    const json pending = trader.list("pending");
    const json good = trader.order();
    const std::vector<json> bad{without(good, "symbol"), without(good, "lotSize"), without(good, "accountId"),
        without(good, "orderKind"), without(good, "type"), with(good, "type", "HOLD"), with(good, "type", 1),
        with(good, "lotSize", 0), with(good, "lotSize", -1), with(good, "lotSize", 1e9),
        with(good, "lotSize", 0.001), with(good, "lotSize", "much"), with(good, "lotSize", json::object()),
        with(good, "orderKind", "market"), with(good, "stopLoss", 9), with(good, "takeProfit", 0.1),
        with(good, "stopLoss", -1), with(good, "stopLoss", "0,5"),
        with(good, "accountId", trader.account("WALLET")), with(good, "comment", std::string(300, 'x')),
        with(good, "comment", 5), with(good, "lotSize", 100), without(trader.pending(), "pendingPrice"),
        with(trader.pending(), "pendingPrice", 0), with(trader.pending(), "pendingPrice", -1),
        with(trader.pending(), "pendingPrice", 1e14), with(trader.pending(), "orderKind", "BUY_STOP"),
        json::array(), json(1)};
    for (const json& body : bad) {
        const HttpReply reply = trader.client.post("/api/trades/place", body);
        if (reply.status != 400 || reply.message().empty())
            std::cout << "  accepted: " << body << ' ' << reply.status << '\n';
        refused(reply, 400);
    }
    for (const char* text : {"", "{", "nonsense", R"({"lotSize":1e999})", "\xff\xfe"})
        refused(trader.client.request("POST", "/api/trades/place", text), 400);
    refused(trader.client.post("/api/trades/place", with(good, "symbol", "NOPE")), 400);
    refused(trader.client.post("/api/trades/place", with(good, "accountId", "nobody's")), 404);
    CHECK_EQ(trader.list("open").size(), open.size());
    CHECK_EQ(trader.list("pending"), pending);
}

TEST_CASE("trade lists ask for an account of one's own")
{
    Trader trader;
    for (const char* list : {"open", "pending", "history"}) {
        const std::string path = "/api/trades/" + std::string(list);
        refused(trader.client.get(path), 400);
        refused(trader.client.get(path + "?accountId="), 400);
        refused(trader.client.get(path + "?accountId=unknown"), 404);
        refused(trader.client.get(path + "?accountId=%ff%27"), 404);
        CHECK(trader.client.get(path + "?accountId=" + trader.account("WALLET")).json() == json::array());
    }
    for (const char* limit : {"0", "-1", "x", "5001", ""})
        refused(trader.client.get("/api/trades/history?accountId=" + trader.demo() + "&limit=" + limit), 400);
}

TEST_CASE("candles of every timeframe are enough for a chart and follow each other")
{
    Trader trader;
    for (const char* timeframe : {"1m", "5m", "15m", "1h", "4h", "1d", "1w", "1mn"}) {
        const auto rows
            = trader.client.get("/api/candles?symbol=XAUUSD&timeframe=" + std::string(timeframe)).json();
        REQUIRE(rows.is_array() && rows.size() >= 1000);
        bool sane = true;
        std::string last;
        for (const json& row : rows) {
            const double high = row.at("high").get<double>();
            const double low = row.at("low").get<double>();
            const std::string time = row.at("timestamp").get<std::string>();
            sane = sane && isTime(row.at("timestamp")) && time > last && row.at("volume").is_number_integer()
                && low > 0 && low <= row.at("open").get<double>() && row.at("open").get<double>() <= high
                && low <= row.at("close").get<double>() && row.at("close").get<double>() <= high;
            last = time;
        }
        CHECK(sane);
    }
    CHECK_EQ(trader.client.get("/api/candles?symbol=EURUSD&timeframe=1m").json().size(), std::size_t(1500));
    CHECK_EQ(
        trader.client.get("/api/candles?symbol=EURUSD&timeframe=1m&limit=3").json().size(), std::size_t(3));
}

TEST_CASE("candles of nothing known are refused")
{
    Trader trader;
    refused(trader.client.get("/api/candles"), 400);
    refused(trader.client.get("/api/candles?symbol=EURUSD"), 400);
    refused(trader.client.get("/api/candles?timeframe=1m"), 400);
    refused(trader.client.get("/api/candles?symbol=EURUSD&timeframe=2m"), 400);
    refused(trader.client.get("/api/candles?symbol=eurusd&timeframe=1m"), 404);
    refused(trader.client.get("/api/candles?symbol=EUR%2FUSD&timeframe=1m"), 404);
    for (const char* limit : {"0", "5001", "1.5", "all", "99999999999"})
        refused(
            trader.client.get("/api/candles?symbol=EURUSD&timeframe=1m&limit=" + std::string(limit)), 400);
}

TEST_CASE("a drawing is stored per symbol and account, changed and removed")
{
    Trader trader;
    const json body{{"symbol", "GBPUSD"}, {"toolType", "trendline"}, {"accountId", trader.demo()},
        {"points",
            {{{"time", "1700000000000"}, {"price", 1.25}}, {{"time", 1700000060000}, {"price", "1.26"}}}},
        {"style", {{"color", "#12abEF"}}}};
    const HttpReply created = trader.client.post("/api/drawings", body);
    REQUIRE(created.status == 201);
    const std::string id = created.json().at("id").get<std::string>();
    const std::string list = "/api/drawings?symbol=GBPUSD&accountId=" + trader.demo();
    const json stored = trader.client.get(list).json();
    REQUIRE(stored.size() == 1);
    CHECK_EQ(stored[0].at("id"), id);
    CHECK_EQ(stored[0].at("toolType"), "trendline");
    CHECK_EQ(stored[0].at("style").at("color"), "#12abEF");
    CHECK_EQ(stored[0].at("points").at(1).at("time"), "1700000060000");
    CHECK_EQ(stored[0].at("points").at(1).at("price"), 1.26);
    CHECK(trader.client.get("/api/drawings?symbol=GBPUSD").json() == json::array());
    CHECK(
        trader.client.get("/api/drawings?symbol=EURUSD&accountId=" + trader.demo()).json() == json::array());
    CHECK(trader.client.get("/api/drawings?symbol=GBPUSD&accountId=" + trader.account("PLAN")).json()
        == json::array());

    CHECK_EQ(trader.client.put("/api/drawings/" + id, {{"style", {{"color", "#000000"}}}}).status, 200);
    CHECK_EQ(trader.client.get(list).json()[0].at("style").at("color"), "#000000");
    CHECK_EQ(trader.client.get(list).json()[0].at("points"), stored[0].at("points"));
    refused(trader.client.put("/api/drawings/" + id, {{"points", json::array()}}), 400);

    CHECK_EQ(trader.client.request("DELETE", "/api/drawings/" + id).status, 200);
    CHECK(trader.client.get(list).json() == json::array());
    refused(trader.client.request("DELETE", "/api/drawings/" + id), 404);
    refused(trader.client.put("/api/drawings/" + id, json::object()), 404);
}

TEST_CASE("a drawing that cannot be drawn is refused")
{
    Trader trader;
    const json point{{"time", "1700000000000"}, {"price", 1.25}};
    const json good{{"symbol", "EURUSD"}, {"toolType", "hline"}, {"points", {point}}};
    const std::vector<json> bad{without(good, "symbol"), without(good, "toolType"), without(good, "points"),
        with(good, "toolType", "circle"), with(good, "toolType", "fibonacci"),
        with(good, "points", json::array()), with(good, "points", {point, point}), with(good, "points", {1}),
        with(good, "points", {without(point, "time")}), with(good, "points", {without(point, "price")}),
        with(good, "points", {with(point, "time", "noon")}), with(good, "points", {with(point, "time", 1.5)}),
        with(good, "points", {with(point, "price", "x")}),
        with(good, "points", {with(point, "price", 1e300)}), with(good, "style", "red"),
        with(good, "style", {{"color", "red"}}), with(good, "style", {{"color", "#12345g"}}), json::array()};
    for (const json& body : bad)
        refused(trader.client.post("/api/drawings", body), 400);
    refused(trader.client.post("/api/drawings", with(good, "symbol", "NOPE")), 404);
    refused(trader.client.post("/api/drawings", with(good, "accountId", "nobody's")), 404);
    refused(trader.client.get("/api/drawings"), 400);
    refused(trader.client.get("/api/drawings?symbol=NOPE"), 404);
    CHECK(trader.client.get("/api/drawings?symbol=EURUSD").json() == json::array());
    const HttpReply plain = trader.client.post("/api/drawings", good);
    CHECK_EQ(plain.json().at("style").at("color"), "#e0e0e0");
}

TEST_CASE("one chart holds five hundred drawings and no more")
{
    Trader trader;
    const json good{{"symbol", "USDCAD"}, {"toolType", "vline"}, {"points", {{{"time", 0}, {"price", 1}}}}};
    for (int i = 0; i < 500; ++i)
        CHECK_EQ(trader.client.post("/api/drawings", good).status, 201);
    refused(trader.client.post("/api/drawings", good), 400);
    CHECK_EQ(trader.client.post("/api/drawings", with(good, "symbol", "USDCHF")).status, 201);
}

TEST_CASE("the calendar lists what is near and a high-impact event within a quarter of an hour")
{
    Trader trader;
    const json body = trader.client.get("/api/news/upcoming").json();
    CHECK_EQ(body.at("settings").at("notifyMin"), 15);
    std::set<std::string> ids;
    int near = 0;
    for (const json& event : body.at("events")) {
        CHECK(isTime(event.at("eventTime")));
        CHECK(ids.insert(event.at("id").get<std::string>()).second);
        CHECK(!event.at("title").get<std::string>().empty()
            && event.at("currency").get<std::string>().size() == 3);
        const int minutes = event.at("minutesUntil").get<int>();
        near += event.at("impact") == "HIGH" && minutes >= 0 && minutes <= 15 ? 1 : 0;
    }
    CHECK(near >= 1);
}

CHECK_MAIN()
