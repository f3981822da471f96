#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/Types.h"
#include "practice/storage/Database.h"
#include "practice/storage/Statement.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <thread>

using nlohmann::json;

namespace {

bool oneLine(const std::string& text)
{
    return !text.empty() && text.find('\n') == text.size() - 1;
}

} // namespace

TEST_CASE("help and version are printed and end with 0")
{
    const auto help = ServerProcess::run({"--help"});
    CHECK_EQ(help.exitCode, 0);
    CHECK(help.output.find("--replay") != std::string::npos);
    const auto version = ServerProcess::run({"--version"});
    CHECK_EQ(version.exitCode, 0);
    CHECK(version.output.find("tavoran-practice ") == 0);
}

TEST_CASE("bad arguments end with 2 and one line on stderr")
{
    const TemporaryFolder folder;
    for (const std::vector<std::string>& arguments :
        std::vector<std::vector<std::string>>{{"--port", "99999"}, {"--nonsense"}, {"--speed", "fast"},
            {"--address", "0.0.0.0"}, {"--replay", "/none"}, {"--seed"}}) {
        const auto result = ServerProcess::run(arguments);
        CHECK_EQ(result.exitCode, 2);
        CHECK(oneLine(result.errors));
        CHECK(result.output.empty());
    }
}

TEST_CASE("a recording is written until the end, and one that is there already ends with 2 and stays")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const std::string path = (folder / "session").string();
    {
        ServerProcess server(database, {"--record", path});
        CHECK_EQ(server.terminate(SIGTERM), 0);
    }
    std::ifstream file(path);
    std::string first;
    std::string last;
    std::getline(file, first);
    for (std::string line; std::getline(file, line);)
        last = line;
    CHECK(first.starts_with("tavoran-session\t1\t"));
    CHECK(last.starts_with("end\t"));

    const auto size = std::filesystem::file_size(path);
    const auto result = ServerProcess::run({"--port", "0", "--db", database, "--record", path});
    CHECK_EQ(result.exitCode, 2);
    CHECK(result.errors.find(path) != std::string::npos);
    CHECK_EQ(std::filesystem::file_size(path), size);
    CHECK_EQ(ServerProcess::run({"--port", "0", "--db", database, "--record", "/no/where"}).exitCode, 2);
}

TEST_CASE("a port that is taken ends with 2 and says which")
{
    const TemporaryFolder folder;
    const ServerProcess first((folder / "1.db").string());
    const std::string port = std::to_string(first.port());
    const auto result = ServerProcess::run({"--port", port, "--db", (folder / "2.db").string()});
    CHECK_EQ(result.exitCode, 2);
    CHECK(oneLine(result.errors));
    CHECK(result.errors.find(port) != std::string::npos);
}

TEST_CASE("a database that cannot be used ends with 2 and names the file")
{
    const TemporaryFolder folder;
    const std::string file = (folder / "notes.txt").string();
    std::ofstream(file) << std::string(3000, 'n');
    const ServerProcess first((folder / "taken.db").string());
    for (const std::string& unusable :
        {file, folder.path().string(), std::string("/proc/x/y.db"), (folder / "taken.db").string()}) {
        const auto result = ServerProcess::run({"--port", "0", "--db", unusable});
        CHECK_EQ(result.exitCode, 2);
        CHECK(oneLine(result.errors));
        CHECK(result.errors.find(unusable) != std::string::npos);
        CHECK_EQ(result.errors.find("in use by another program") != std::string::npos,
            unusable.ends_with("taken.db"));
    }
}

TEST_CASE("a replay file with a broken line ends with 2 and names file and line")
{
    const TemporaryFolder folder;
    std::ofstream(folder / "EURUSD-1m.csv") << "time,open,high,low,close,volume\n"
                                               "2024-01-02T00:00:00Z,1.1,1.2,1.0,1.1,5\n"
                                               "rubbish\n";
    const auto result = ServerProcess::run(
        {"--port", "0", "--db", (folder / "x.db").string(), "--replay", folder.path().string()});
    CHECK_EQ(result.exitCode, 2);
    CHECK(oneLine(result.errors));
    CHECK(result.errors.find("EURUSD-1m.csv") != std::string::npos);
    CHECK(result.errors.find('3') != std::string::npos);
}

TEST_CASE("asked to end it ends with 0 and frees database and port")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    for (const int signal : {SIGTERM, SIGINT}) {
        ServerProcess server(database);
        HttpClient client(server.port());
        client.signIn();
        CHECK_EQ(server.terminate(signal), 0);
    }
    const ServerProcess again(database);
    CHECK(again.port() != 0);
}

TEST_CASE("asked to end while it goes through missed time it ends at once, and the next start goes on")
{
    const TemporaryFolder folder;
    const std::string file = (folder / "x.db").string();
    {
        ServerProcess server(file);
        HttpClient client(server.port());
        client.signIn();
        CHECK_EQ(client
                     .post("/api/trades/place",
                         {{"accountId", client.demoAccount().at("id")}, {"symbol", "EURUSD"},
                             {"orderKind", "MARKET"}, {"type", "BUY"}, {"lotSize", 1}})
                     .status,
            200);
        server.kill();
    }
    constexpr std::int64_t days = 800;
    const std::string time = std::to_string(days * practice::dayMs);
    const auto lastDay = [&](practice::Database& database) {
        practice::Statement& query = database.statement("SELECT min(day_index) FROM accounts");
        std::int64_t day = 0;
        while (query.step())
            day = query.integer(0);
        return day;
    };
    std::int64_t today = 0;
    {
        practice::Database database(file);
        today = lastDay(database);
        database.execute(
            "UPDATE trades SET created_at = created_at - " + time + ", updated_at = updated_at - " + time);
        database.execute("UPDATE accounts SET day_index = day_index - " + std::to_string(days));
        database.execute("UPDATE meta SET value = CAST(value - " + time + " AS TEXT) WHERE key = 'playedTo'");
    }
    const auto hasBegun = [&] {
        std::error_code error;
        const auto size = std::filesystem::file_size(file + "-wal", error);
        return !error && size > 200'000;
    };
    const auto begun = ServerProcess::interrupt({"--quiet", "--port", "0", "--db", file}, SIGTERM, hasBegun);
    CHECK(begun.output.empty());
    {
        practice::Database database(file);
        CHECK(lastDay(database) > today - days);
        CHECK(lastDay(database) < today);
    }
    ServerProcess(file).kill();
    practice::Database database(file);
    practice::Statement& query = database.statement("SELECT swap FROM trades WHERE status = 'OPEN'");
    REQUIRE(query.step());
    CHECK_EQ(query.integer(0), -720 * (lastDay(database) - (today - days))); // 7.2 points of 1 USD a night
}

TEST_CASE("sessions and the market survive a restart")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    std::string token;
    json candles;
    const auto finished = [](HttpClient& client) {
        auto rows = client.get("/api/candles?symbol=EURUSD&timeframe=1h&limit=50").json();
        std::map<std::string, json> closed;
        for (std::size_t i = 0; i + 1 < rows.size(); ++i)
            closed[rows[i].at("timestamp").get<std::string>()] = rows[i];
        return closed;
    };
    std::map<std::string, json> before;
    {
        ServerProcess server(database, {"--seed", "77"});
        HttpClient client(server.port());
        client.signIn();
        token = client.token();
        before = finished(client);
        server.kill();
    }
    const ServerProcess server(database);
    HttpClient client(server.port());
    client.setToken(token);
    int compared = 0;
    for (const auto& [time, candle] : finished(client)) {
        if (before.contains(time)) {
            CHECK_EQ(candle, before[time]);
            ++compared;
        }
    }
    CHECK(compared >= 48);
}

TEST_CASE("two platforms with the same seed and speed have the same market, others have others")
{
    const TemporaryFolder folder;
    const auto minutes = [&](const char* name, std::vector<std::string> arguments) {
        const ServerProcess server((folder / name).string(), std::move(arguments));
        HttpClient client(server.port());
        client.signIn();
        std::map<std::string, json> finished;
        const json rows = client.get("/api/candles?symbol=GBPUSD&timeframe=1m&limit=100").json();
        for (std::size_t i = 0; i + 1 < rows.size(); ++i)
            finished[rows[i].at("timestamp").get<std::string>()] = rows[i];
        return finished;
    };
    const auto first = minutes("a.db", {"--seed", "5", "--speed", "60"});
    CHECK(first.size() > 90);
    const auto same = [&](const std::map<std::string, json>& other) {
        int count = 0;
        for (const auto& [time, candle] : other)
            count += first.contains(time) && first.at(time) == candle;
        return count;
    };
    CHECK(same(minutes("b.db", {"--seed", "5", "--speed", "60"})) >= 95);
    CHECK(same(minutes("c.db", {"--seed", "6", "--speed", "60"})) < 5);
    CHECK(same(minutes("d.db", {"--seed", "5", "--speed", "30"})) < 5);
}

TEST_CASE("a start whose clock is behind the open trades goes on from their time")
{
    const TemporaryFolder folder;
    const std::string file = (folder / "x.db").string();
    std::string token;
    std::string account;
    const auto lastBar = [&token](const ServerProcess& server) {
        HttpClient client(server.port());
        client.setToken(token);
        const json rows = client.get("/api/candles?symbol=EURUSD&timeframe=1m&limit=1").json();
        return rows.back().at("timestamp").get<std::string>();
    };
    std::string today;
    {
        const ServerProcess server(file);
        HttpClient client(server.port());
        client.signIn();
        token = client.token();
        account = client.demoAccount().at("id");
        today = lastBar(server);
        CHECK_EQ(client
                     .post("/api/trades/place",
                         {{"accountId", account}, {"symbol", "EURUSD"}, {"lotSize", 0.01},
                             {"orderKind", "BUY_LIMIT"}, {"pendingPrice", 0.2}})
                     .status,
            200);
    }
    const auto moveTrades = [&file](practice::TimeMs days) {
        practice::Database database(file);
        const std::string time = std::to_string(days * practice::dayMs);
        database.execute(
            "UPDATE trades SET created_at = created_at + " + time + ", updated_at = updated_at + " + time);
    };
    moveTrades(1000);
    std::string later;
    {
        const ServerProcess server(file);
        later = lastBar(server);
        CHECK(later.substr(0, 4) > today.substr(0, 4));
        HttpClient client(server.port());
        client.setToken(token); // the session is none the worse for it
        const json orders = client.get("/api/trades/pending?accountId=" + account).json();
        REQUIRE(orders.size() == 1);
        CHECK_EQ(client.request("POST", "/api/trades/cancel/" + orders[0].at("id").get<std::string>(), "{}")
                     .status,
            200);
    }
    const ServerProcess server(file); // with nothing open the clock is believed again
    CHECK(lastBar(server) < later);
    CHECK(lastBar(server) >= today);
}

TEST_CASE("hundreds of silent connections keep no newcomer out")
{
    const TemporaryFolder folder;
    const ServerProcess server((folder / "x.db").string());
    HttpClient early(server.port());
    early.signIn();
    const std::string token = early.token();
    const std::string head = "Host: 127.0.0.1\r\nContent-Type: application/json\r\n";
    const std::vector<std::string> beginnings{"", "GET /api/acc", "GET /api/accounts HTTP/1.1\r\n" + head,
        "POST /api/auth/login HTTP/1.1\r\n" + head + "Content-Length: 60\r\n\r\n{\"email",
        "GET /ws/terminal HTTP/1.1\r\n" + head
            + "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: "
              "dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n"};
    std::vector<std::unique_ptr<WireSocket>> silent;
    std::vector<std::unique_ptr<FeedClient>> feeds;
    for (std::size_t i = 0; i < 550; ++i) {
        silent.push_back(std::make_unique<WireSocket>(server.port()));
        silent.back()->send(beginnings[i % beginnings.size()]);
    }
    for (int i = 0; i < 300; ++i)
        feeds.push_back(std::make_unique<FeedClient>(server.port(), token));

    for (int newcomer = 0; newcomer < 3; ++newcomer) {
        HttpClient client(server.port());
        client.signIn();
        const std::string account = client.demoAccount().at("id");
        FeedClient feed(server.port(), client.token());
        CHECK_EQ(feed.read().at("type"), "hello");
        const HttpReply placed = client.post("/api/trades/place",
            {{"accountId", account}, {"symbol", "EURUSD"}, {"lotSize", 0.01}, {"orderKind", "MARKET"},
                {"type", "BUY"}});
        CHECK_EQ(placed.status, 200);
        const std::string id = placed.json().at("id").get<std::string>();
        CHECK_EQ(feed.readUntil("orders_changed").at("tradeId"), id);
        CHECK_EQ(client.post("/api/trades/close/" + id, json::object()).status, 200);
        CHECK_EQ(feed.readUntil("orders_changed").at("tradeId"), id);
    }
}

TEST_CASE("killed at any moment it loses no acknowledged order and has none twice")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    std::mt19937 random(4711);
    std::string token;
    std::string account;
    // What the server acknowledged: the id of each order by its comment, and the ids that were closed.
    std::map<std::string, std::string> placed;
    std::set<std::string> closed;
    int number = 0;
    for (int round = 0; round < 12; ++round) {
        ServerProcess server(database);
        if (token.empty()) {
            HttpClient client(server.port());
            client.signIn();
            token = client.token();
            account = client.demoAccount().at("id");
        }
        std::thread killer([&, delay = std::chrono::microseconds(random() % 200'000)] {
            std::this_thread::sleep_for(delay);
            ::kill(server.pid(), SIGKILL);
        });
        try {
            HttpClient client(server.port());
            client.setToken(token);
            while (true) {
                const std::string comment = "order " + std::to_string(++number);
                // An account takes so many only; the rest is traded without leaving anything open.
                const bool full = placed.size() - closed.size() >= static_cast<std::size_t>(30 * (round + 1));
                const bool market = full || number % 2 == 0;
                json body{{"accountId", account}, {"symbol", "EURUSD"}, {"lotSize", 0.01},
                    {"comment", comment}, {"orderKind", market ? "MARKET" : "BUY_LIMIT"}};
                if (market)
                    body["type"] = "BUY";
                else
                    body["pendingPrice"] = 0.5;
                const HttpReply reply = client.post("/api/trades/place", body);
                CHECK_EQ(reply.status, 200);
                placed[comment] = reply.json().at("id").get<std::string>();
                if (market && (full || number % 4 == 0)
                    && client.request("POST", "/api/trades/close/" + placed[comment], "{}").status == 200)
                    closed.insert(placed[comment]);
            }
        } catch (const std::exception&) {
            // The connection ended in mid-flight.
        }
        killer.join();
    }
    CHECK(placed.size() >= 20);

    const ServerProcess server(database);
    HttpClient client(server.port());
    client.setToken(token);
    std::map<std::string, int> seen;
    std::map<std::string, std::string> idOf;
    double closedResult = 0;
    for (const char* list : {"open", "pending", "history"}) {
        for (const json& trade :
            client.get("/api/trades/" + std::string(list) + "?accountId=" + account).json()) {
            const std::string comment = trade.at("comment").get<std::string>();
            ++seen[comment];
            idOf[comment] = trade.at("id").get<std::string>();
            if (closed.contains(idOf[comment]))
                CHECK_EQ(std::string(list), std::string("history"));
            if (list == std::string("history"))
                closedResult += std::stod(trade.at("pnl").get<std::string>());
        }
    }
    for (const auto& [comment, id] : placed) {
        CHECK_EQ(seen[comment], 1);
        CHECK_EQ(idOf[comment], id);
    }
    for (const auto& [comment, count] : seen)
        CHECK_EQ(count, 1);
    // The balance tells the same story as the history.
    for (const json& row : client.get("/api/accounts").json()) {
        if (row.at("id") == account)
            CHECK_NEAR(std::stod(row.at("balance").get<std::string>()), 100'000 + closedResult, 0.005);
    }
}

CHECK_MAIN()
