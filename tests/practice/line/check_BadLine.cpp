#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/line/BadLine.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <numeric>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// The real program behind a bad line.

using practice::BadLine;

namespace {

boost::asio::ip::tcp::acceptor listening(boost::asio::io_context& context)
{
    return {context, {boost::asio::ip::address_v4::loopback(), 0}};
}

using Clock = std::chrono::steady_clock;

/// Whether a connection is refused: every question on it fails.
bool isRefused(std::uint16_t port)
{
    try {
        HttpClient client(port);
        return client.get("/api/settings/public").status != 200;
    } catch (const std::runtime_error&) {
        return true;
    }
}

/// How long each of so many small questions takes, on a connection that is open already.
std::vector<Clock::duration> answerTimes(std::uint16_t port, int count)
{
    HttpClient client(port);
    CHECK_EQ(client.get("/api/settings/public").status, 200);
    std::vector<Clock::duration> times;
    for (int question = 0; question < count; ++question) {
        const auto begin = Clock::now();
        CHECK_EQ(client.get("/api/settings/public").status, 200);
        times.push_back(Clock::now() - begin);
    }
    return times;
}

/// What ends a feed, in the words of the client; nothing if it was broken before its greeting.
std::string endOfFeed(std::uint16_t port)
{
    std::optional<FeedClient> feed;
    try {
        HttpClient client(port);
        client.signIn();
        feed.emplace(port, client.token());
        CHECK_EQ(feed->read().at("type"), "hello");
    } catch (const std::runtime_error&) {
        return {};
    }
    try {
        (void)feed->readUntil("what never comes");
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing";
}

} // namespace

TEST_CASE("on a line that is not bad a question is answered at once")
{
    const TemporaryFolder folder;
    const ServerProcess server((folder / "x.db").string(), {});
    const auto times = answerTimes(server.port(), 10);
    CHECK(*std::min_element(times.begin(), times.end()) < std::chrono::milliseconds(20));
}

TEST_CASE("latency is what each question and each answer take longer")
{
    const TemporaryFolder folder;
    const ServerProcess server((folder / "x.db").string(), {"--latency", "20"});
    for (const Clock::duration time : answerTimes(server.port(), 5))
        CHECK(time >= std::chrono::milliseconds(40));
}

TEST_CASE("jitter takes another time with each question, half of it each way in the middle")
{
    const TemporaryFolder folder;
    const ServerProcess server((folder / "x.db").string(), {"--jitter", "40"});
    const auto times = answerTimes(server.port(), 12);
    CHECK(
        std::accumulate(times.begin(), times.end(), Clock::duration()) >= 12 * std::chrono::milliseconds(20));
    const auto [least, most] = std::minmax_element(times.begin(), times.end());
    CHECK(*most - *least >= std::chrono::milliseconds(20));
    CHECK(*least < std::chrono::milliseconds(40));
}

TEST_CASE("behind a slow line everything works, only later: requests, orders and the feed")
{
    const TemporaryFolder folder;
    ServerProcess server((folder / "x.db").string(), {"--latency", "20", "--jitter", "5"});
    HttpClient client(server.port());
    client.signIn();
    const HttpReply reply = client.post("/api/trades/place",
        {{"symbol", "EURUSD"}, {"lotSize", 0.1}, {"accountId", client.demoAccount().at("id")},
            {"orderKind", "MARKET"}, {"type", "BUY"}});
    CHECK_EQ(reply.status, 200);
    CHECK_EQ(client.get("/api/trades/open?accountId=" + client.demoAccount().at("id").get<std::string>())
                 .json()
                 .size(),
        1U);
    FeedClient feed(server.port(), client.token());
    CHECK_EQ(feed.read().at("type"), "hello");
    CHECK_EQ(feed.readUntil("price_update").at("type"), "price_update");
    CHECK_EQ(server.terminate(SIGTERM), 0);
}

TEST_CASE("a throttled line brings a large reply in as long as it takes")
{
    const TemporaryFolder folder;
    ServerProcess server((folder / "x.db").string(), {"--throttle", "400"});
    HttpClient client(server.port());
    client.signIn();
    const auto begin = Clock::now();
    const HttpReply reply = client.get("/api/candles?symbol=EURUSD&timeframe=1m&limit=1000");
    CHECK_EQ(reply.status, 200);
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    CHECK(seconds >= static_cast<double>(reply.body.size()) / 400e3);
}

TEST_CASE("a line that is cut breaks feed and requests, again and again")
{
    const TemporaryFolder folder;
    ServerProcess server((folder / "x.db").string(), {"--cut", "0.3"});
    int broken = 0;
    for (int attempt = 0; attempt < 100 && broken < 2; ++attempt) {
        try {
            HttpClient client(server.port());
            CHECK_EQ(client.get("/api/settings/public").status, 200);
            client.socket().awaitReset();
            ++broken;
        } catch (const std::runtime_error&) { // broken before it was answered
        }
    }
    CHECK_EQ(broken, 2);
    std::vector<std::string> ends;
    for (int attempt = 0; attempt < 100 && ends.size() < 2; ++attempt) {
        if (const std::string end = endOfFeed(server.port()); !end.empty())
            ends.push_back(end);
    }
    CHECK(ends == (std::vector<std::string>{"connection ended", "connection ended"}));
}

TEST_CASE("the share of refused connections is refused, the same ones with the same seed")
{
    std::vector<std::vector<bool>> runs;
    for (const char* seed : {"5", "5", "6"}) {
        const TemporaryFolder folder;
        ServerProcess server((folder / "x.db").string(), {"--refuse", "0.5", "--seed", seed});
        std::vector<bool> refused;
        for (int connection = 0; connection < 24; ++connection)
            refused.push_back(isRefused(server.port()));
        runs.push_back(refused);
    }
    CHECK(runs[0] == runs[1]);
    CHECK(runs[0] != runs[2]);
}

TEST_CASE("with every packet dropped a connection stays open and silent, and ends with the program")
{
    const TemporaryFolder folder;
    ServerProcess server((folder / "x.db").string(), {"--drop", "1"});
    WireSocket client(server.port());
    client.send("GET /api/settings/public HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    CHECK(client.isSilentFor(std::chrono::milliseconds(200)));
    CHECK_EQ(server.terminate(SIGTERM), 0);
    CHECK_EQ(client.readAll(), std::string());
}

TEST_CASE("a line that stops when a cut is due makes none any more")
{
    boost::asio::io_context context;
    BadLine line(context, listening(context), {}, {.cutInterval = std::chrono::milliseconds(1)});
    boost::asio::steady_timer before(context, std::chrono::steady_clock::time_point::min());
    before.async_wait([&line](boost::system::error_code) { line.stop(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    context.run_for(std::chrono::seconds(1));
    CHECK(context.stopped()); // nothing is left to be done
}

TEST_CASE("cuts that a sleeping machine has missed are not made up for")
{
    boost::asio::io_context context;
    BadLine line(context, listening(context), {}, {.cutInterval = std::chrono::milliseconds(50)});
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const std::size_t cuts = context.poll();
    CHECK(cuts >= 1);
    CHECK(cuts <= 3); // on a busy machine another one is due by now
    line.stop();
}

CHECK_MAIN()
