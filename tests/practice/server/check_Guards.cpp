#include "practice/Check.h"
#include "practice/server/FeedClient.h"
#include "practice/server/ServerFixture.h"
#include "practice/server/ServerProcess.h"

#include "practice/server/RequestGuard.h"

/// Who is kept out: web pages that a browser on this machine shows, and who guesses passwords.
using namespace practice;
using nlohmann::json;

namespace {

constexpr const char* signIn = R"({"email":"trader@practice.local","password":"practice"})";
constexpr const char* guess = R"({"email":"trader@practice.local","password":"guess"})";

/// A sign-in with these headers instead of the usual ones.
HttpReply post(std::uint16_t port, const std::string& headers, const std::string& body = signIn,
    const std::string& from = {})
{
    HttpClient client(port, 0, from);
    client.socket().send("POST /api/auth/login HTTP/1.1\r\n" + headers
        + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
    return client.read();
}

std::string host(const std::string& name)
{
    return "Host: " + name + "\r\nContent-Type: application/json\r\n";
}

std::string feedAnswer(std::uint16_t port, const std::string& token, const std::string& headers)
{
    HttpClient client(port);
    client.socket().send("GET /ws/terminal?token=" + token + " HTTP/1.1\r\n" + headers
        + "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
          "Sec-WebSocket-Version: 13\r\n\r\n");
    return client.socket().readUntil("\r\n").substr(0, 12);
}

/// What a platform that listens on this address answers to a request for this host.
int answerFor(const char* address, std::string_view host, std::string_view origin = {})
{
    const auto objection
        = RequestGuard(address, "").objection({1, host, origin.empty() ? 0U : 1U, origin, false, {}});
    return objection ? objection->status : 200;
}

} // namespace

TEST_CASE("only who calls the platform by its own address is served")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    const std::string number = std::to_string(port);
    for (const std::string& own :
        {"127.0.0.1:" + number, std::string("127.0.0.1"), "localhost:" + number, "LocalHost:" + number})
        CHECK_EQ(post(port, host(own)).status, 200);
    for (const std::string& foreign :
        {std::string("evil.example"), "evil.example:" + number, std::string("127.0.0.1.evil.example"),
            std::string("localhost.evil.example"), std::string("127.0.0.2"), std::string("[::1]"),
            std::string("127.0.0.1:evil"), std::string("[127.0.0.1"), std::string("")}) {
        const HttpReply reply = post(port, host(foreign));
        CHECK_EQ(reply.status, 421);
        CHECK(reply.message().find("--host-name") != std::string::npos);
    }
    CHECK_EQ(post(port, "Host: 127.0.0.1\r\n" + host("127.0.0.1")).status, 421);
    CHECK_EQ(post(port, "Content-Type: application/json\r\n").status, 421);
}

TEST_CASE("an IPv6 address is called in brackets, however it is written")
{
    for (const char* own : {"[::1]:5001", "[::1]", "[0:0:0:0:0:0:0:1]:5001", "localhost:5001"})
        CHECK_EQ(answerFor("::1", own), 200);
    CHECK_EQ(answerFor("::1", "[::1]:5001", "http://[::1]:5001"), 200);
    CHECK_EQ(answerFor("::1", "[::1]:5001", "http://[::1]:8080"), 403);
    for (const char* foreign : {"::1", "[::1", "[::1]5001", "[::1]:evil", "[::1].evil.example", "[::2]:5001",
             "[]", "127.0.0.1:5001"})
        CHECK_EQ(answerFor("::1", foreign), 421);
}

TEST_CASE("where every address is listened on, any number is ours and no name but localhost")
{
    for (const char* everywhere : {"0.0.0.0", "::"}) {
        for (const char* own : {"192.0.2.7:5001", "192.0.2.7", "[2001:db8::1]:5001", "127.0.0.1:5001",
                 "[::1]:5001", "localhost:5001"})
            CHECK_EQ(answerFor(everywhere, own), 200);
        CHECK_EQ(answerFor(everywhere, "192.0.2.7:5001", "http://192.0.2.7:5001"), 200);
        CHECK_EQ(answerFor(everywhere, "192.0.2.7:5001", "http://192.0.2.8:5001"), 403);
        for (const char* foreign : {"evil.example:5001", "192.0.2.7.evil.example", "192.0.2.7:evil",
                 "192.0.2", "[evil.example]:5001", ""})
            CHECK_EQ(answerFor(everywhere, foreign), 421);
    }
    CHECK_EQ(answerFor("192.0.2.7", "192.0.2.8:5001"), 421);
    CHECK_EQ(answerFor("192.0.2.7", "localhost:5001"), 421);
}

TEST_CASE("a page of another site is not served")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    const std::string own = "127.0.0.1:" + std::to_string(port);
    CHECK_EQ(post(port, host(own) + "Origin: http://" + own + "\r\n").status, 200);
    for (const char* origin : {"http://evil.example", "null", "http://127.0.0.1", "http://127.0.0.1:8080",
             "https://evil.example", "file://", ""}) {
        const HttpReply reply = post(port, host(own) + "Origin: " + origin + "\r\n");
        CHECK_EQ(reply.status, 403);
        CHECK(!reply.message().empty());
    }
    CHECK_EQ(
        post(port, host(own) + "Origin: http://" + own + "\r\nOrigin: http://evil.example\r\n").status, 403);
}

TEST_CASE("a body that is not declared as JSON is refused, and one that is none is not asked for a type")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    const std::string own = "Host: 127.0.0.1\r\n";
    for (const char* type : {"text/plain", "application/x-www-form-urlencoded", "multipart/form-data",
             "application/jsonp", "text/plain; x=application/json"}) {
        const HttpReply reply = post(port, own + "Content-Type: " + type + "\r\n");
        CHECK_EQ(reply.status, 415);
        CHECK(reply.message().find("application/json") != std::string::npos);
    }
    CHECK_EQ(post(port, own).status, 415);
    CHECK_EQ(post(port, own + "Content-Type: Application/JSON; charset=utf-8\r\n").status, 200);
    CHECK_EQ(post(port, own, "").status, 400); // the body is what is missing
}

TEST_CASE("the feed keeps pages out as well")
{
    InProcess place;
    Trader trader(place);
    const std::uint16_t port = place.server->port();
    const std::string own = "127.0.0.1:" + std::to_string(port);
    const std::string token = trader.client.token();
    CHECK_EQ(feedAnswer(port, token, "Host: " + own + "\r\n"), std::string("HTTP/1.1 101"));
    CHECK_EQ(feedAnswer(port, token, "Host: " + own + "\r\nOrigin: http://evil.example\r\n"),
        std::string("HTTP/1.1 403"));
    CHECK_EQ(feedAnswer(port, token, "Host: evil.example\r\n"), std::string("HTTP/1.1 421"));
}

TEST_CASE("a name that was given is a name of the platform's")
{
    const TemporaryFolder folder;
    const ServerProcess server((folder / "x.db").string(), {"--host-name", "Desk.Example"});
    CHECK_EQ(
        post(server.port(), host("desk.example:443") + "Origin: https://desk.example:443\r\n").status, 200);
    CHECK_EQ(post(server.port(), host("127.0.0.1")).status, 200);
    CHECK_EQ(post(server.port(), host("other.example")).status, 421);
}

TEST_CASE("who guesses passwords has to wait, longer each time, and is told how long")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    int refused = 0;
    HttpReply last;
    for (int i = 0; i < 30 && refused < 2; ++i) {
        last = post(port, host("127.0.0.1"), guess);
        CHECK(last.status == 401 || last.status == 429);
        refused += last.status == 429 ? 1 : 0;
    }
    CHECK_EQ(refused, 2);
    CHECK(last.message().find("second") != std::string::npos);
    // The right password has to wait as well, or guessing would only look slower.
    CHECK_EQ(post(port, host("127.0.0.1")).status, 429);
}

TEST_CASE("who guesses passwords holds up nobody at another address")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    int status = 0;
    for (int i = 0; i < 30 && status != 429; ++i)
        status = post(port, host("127.0.0.1"), guess, "127.0.0.1").status;
    CHECK_EQ(status, 429);
    CHECK_EQ(post(port, host("127.0.0.1"), signIn, "127.0.0.2").status, 200);
    CHECK_EQ(post(port, host("127.0.0.1"), signIn, "127.0.0.1").status, 429);
}

TEST_CASE("who signs in meanwhile is forgiven, and a few slips cost nothing")
{
    InProcess place;
    const std::uint16_t port = place.server->port();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < SignInBrake::freeFailures - 1; ++i)
            CHECK_EQ(post(port, host("127.0.0.1"), guess).status, 401);
        CHECK_EQ(post(port, host("127.0.0.1")).status, 200);
    }
}

TEST_CASE("the wait doubles up to a minute, goes alone, and is forgotten in a quarter of an hour")
{
    using namespace std::chrono_literals;
    SignInBrake brake;
    SignInBrake::Time now{1h};
    const auto fail = [&](const std::string& client) {
        brake.begun(client, now);
        brake.failed(client, now);
        return brake.waitOf(client, now);
    };
    for (int i = 1; i < SignInBrake::freeFailures; ++i)
        CHECK(fail("a") == 0s);
    for (const auto wait : {1s, 2s, 4s, 8s, 16s, 32s, 60s, 60s}) {
        CHECK(fail("a") == wait);
        CHECK(brake.waitOf("a", now + wait - 1ms) == 1s);
        CHECK(brake.waitOf("a", now + wait) == 0s);
        now += wait;
    }
    CHECK(brake.waitOf("b", now) == 0s);
    brake.begun("a", now);
    CHECK(brake.waitOf("a", now) == 1s); // one is being checked
    brake.failed("a", now);
    CHECK(brake.waitOf("a", now) == 60s);
    now += 16min;
    CHECK(brake.waitOf("a", now) == 0s);
    CHECK(fail("a") == 0s);
    brake.begun("a", now);
    brake.succeeded("a");
    CHECK(brake.waitOf("a", now) == 0s);
}

TEST_CASE("an IPv6 network is one client, and a crowd of clients takes no more than its room")
{
    using namespace std::chrono_literals;
    const auto clientOf
        = [](const char* text) { return SignInBrake::clientOf(boost::asio::ip::make_address(text)); };
    CHECK_EQ(clientOf("192.0.2.7"), std::string("192.0.2.7"));
    CHECK_EQ(clientOf("::ffff:192.0.2.7"), std::string("192.0.2.7"));
    CHECK_EQ(clientOf("2001:db8:1:2:3:4:5:6"), clientOf("2001:db8:1:2::9"));
    CHECK(clientOf("2001:db8:1:2::9") != clientOf("2001:db8:1:3::9"));

    SignInBrake brake;
    SignInBrake::Time now{1h};
    const auto guessFrom = [&](const std::string& client) {
        now += 1ms;
        brake.begun(client, now);
        brake.failed(client, now);
    };
    for (int i = 0; i < SignInBrake::freeFailures; ++i)
        guessFrom("first");
    for (std::size_t i = 0; i < SignInBrake::mostClients; ++i)
        guessFrom("client " + std::to_string(i));
    CHECK(brake.waitOf("first", now) == 0s); // made room
    for (int i = 0; i < SignInBrake::freeFailures; ++i)
        guessFrom("last");
    CHECK(brake.waitOf("last", now) > 0s);
}

CHECK_MAIN()
