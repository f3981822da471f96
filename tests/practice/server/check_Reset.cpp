#include "practice/Check.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>

/// "tavoran-practice reset" on the database of the real program.
using nlohmann::json;

namespace {

bool has(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

ServerProcess::Result reset(const std::string& database, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), {"reset", "--db", database});
    return ServerProcess::run(arguments);
}

/// The practice trader's accounts as the platform shows them.
class Books {
public:
    explicit Books(const std::string& database)
        : m_server(database)
        , m_client(m_server.port())
    {
        m_client.signIn();
    }
    [[nodiscard]] json account(const std::function<bool(const json&)>& wanted)
    {
        for (const json& row : m_client.get("/api/accounts").json()) {
            if (wanted(row))
                return row;
        }
        throw std::runtime_error("no such account");
    }
    [[nodiscard]] json demo() { return m_client.demoAccount(); }
    [[nodiscard]] json challenge()
    {
        return account([](const json& row) { return row.at("type") == "PLAN" && !row.at("isFunded"); });
    }
    [[nodiscard]] json list(const std::string& kind, const json& account)
    {
        return m_client.get("/api/trades/" + kind + "?accountId=" + account.at("id").get<std::string>())
            .json();
    }
    /// Buys and closes at once, which costs the spread and the commission.
    void lose(const json& account)
    {
        const std::string id = buy(account);
        REQUIRE(m_client.request("POST", "/api/trades/close/" + id, "{}").status == 200);
    }
    std::string buy(const json& account)
    {
        const HttpReply reply = m_client.post("/api/trades/place",
            {{"accountId", account.at("id")}, {"symbol", "EURUSD"}, {"lotSize", 1}, {"orderKind", "MARKET"},
                {"type", "BUY"}});
        REQUIRE(reply.status == 200);
        return reply.json().at("id").get<std::string>();
    }
    void waitFor(const json& account)
    {
        const HttpReply reply = m_client.post("/api/trades/place",
            {{"accountId", account.at("id")}, {"symbol", "EURUSD"}, {"lotSize", 1},
                {"orderKind", "BUY_LIMIT"}, {"pendingPrice", 0.5}});
        REQUIRE(reply.status == 200);
    }

private:
    ServerProcess m_server;
    HttpClient m_client;
};

double sumOf(const json& history)
{
    double sum = 0;
    for (const json& row : history)
        sum += std::stod(row.at("pnl").get<std::string>());
    return sum;
}

} // namespace

TEST_CASE("an account begins anew, and its history tells so to the cent")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    json demo;
    std::string open;
    {
        Books books(database);
        demo = books.demo();
        books.lose(demo);
        open = books.buy(demo);
        books.waitFor(demo);
        books.lose(books.challenge());
    }
    const auto result = reset(database, {"--account", demo.at("id").get<std::string>().substr(0, 8)});
    CHECK_EQ(result.exitCode, 0);
    CHECK(has(result.output, demo.at("id").get<std::string>()));
    CHECK(has(result.output, "100,000.00"));
    CHECK(result.errors.empty());

    Books books(database);
    CHECK_EQ(books.demo().at("balance"), "100000.00");
    CHECK_EQ(books.demo().at("id"), demo.at("id"));
    CHECK(books.list("open", demo).empty());
    CHECK(books.list("pending", demo).empty());
    const json history = books.list("history", demo);
    REQUIRE(history.size() == 4); // the loss, the position, the order, and what was paid in
    CHECK_NEAR(sumOf(history), 0, 0.001);
    for (const json& row : history) {
        if (row.at("id") == open) {
            CHECK_EQ(row.at("status"), "CANCELLED");
            CHECK_EQ(row.at("closeReason"), "RESET");
            CHECK_EQ(row.at("pnl"), "0.00");
        }
    }
    CHECK(books.challenge().at("balance") != "25000.00");
}

TEST_CASE("without an account all of them begin anew, and a second time changes nothing")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    {
        Books books(database);
        books.lose(books.demo());
        books.lose(books.challenge());
    }
    CHECK_EQ(reset(database).exitCode, 0);
    CHECK_EQ(reset(database, {"--quiet"}).output, std::string());
    Books books(database);
    CHECK_EQ(books.demo().at("balance"), "100000.00");
    CHECK_EQ(books.challenge().at("balance"), "25000.00");
    CHECK_EQ(books.challenge().at("status"), "ACTIVE");
    CHECK_EQ(books.challenge().at("phase"), 1);
    CHECK_EQ(books.list("history", books.demo()).size(), std::size_t(2));
    CHECK(books.account([](const json& row) { return row.at("isFunded"); }).at("phase") == 2);
}

TEST_CASE("what cannot be reset ends with 2 and one clear line")
{
    const TemporaryFolder folder;
    const std::string database = (folder / "x.db").string();
    const auto missing = reset(database);
    CHECK_EQ(missing.exitCode, 2);
    CHECK(has(missing.errors, database));
    CHECK(!std::filesystem::exists(database));
    {
        const ServerProcess running(database);
        const auto busy = reset(database);
        CHECK_EQ(busy.exitCode, 2);
        CHECK(has(busy.errors, "in use"));
    }
    const auto unknown = reset(database, {"--account", "zzz"});
    CHECK_EQ(unknown.exitCode, 2);
    CHECK(has(unknown.errors, "zzz"));
    CHECK(has(unknown.errors, "Practice 25K"));
    CHECK_EQ(reset(database, {"--account", ""}).exitCode, 2);
    const auto mixed = reset(database, {"--seed", "5"});
    CHECK_EQ(mixed.exitCode, 2);
    CHECK(has(mixed.errors, "--seed"));
    const auto alone = ServerProcess::run({"--account", "x", "--speed", "fast"});
    CHECK_EQ(alone.exitCode, 2);
}

CHECK_MAIN()
