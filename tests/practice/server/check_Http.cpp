#include "practice/Check.h"
#include "practice/server/HttpClient.h"
#include "practice/server/ServerProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <chrono>

namespace {

// One server for all cases: each of them must leave it in good health for the next.
ServerProcess& server()
{
    static const TemporaryFolder folder;
    static ServerProcess process((folder / "x.db").string());
    return process;
}

HttpReply raw(const std::string& bytes, bool withBody = true)
{
    HttpClient client(server().port());
    client.socket().send(bytes);
    return client.read(withBody);
}

} // namespace

TEST_CASE("one connection serves many requests")
{
    HttpClient client(server().port());
    for (int i = 0; i < 20; ++i)
        CHECK_EQ(client.get("/api/settings/public").status, 200);
    CHECK_EQ(client.get("/nowhere").status, 404);
    CHECK_EQ(client.get("/api/settings/public").status, 200);
}

TEST_CASE("requests sent at once are answered in their order")
{
    HttpClient client(server().port());
    client.socket().send("GET /api/settings/public HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\nGET /nowhere "
                         "HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"
                         "POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                         "application/json\r\nContent-Length: 2\r\n\r\n{}"
                         "GET /api/accounts HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    CHECK_EQ(client.read().status, 200);
    CHECK_EQ(client.read().status, 404);
    CHECK_EQ(client.read().status, 400);
    CHECK_EQ(client.read().status, 401);
}

TEST_CASE("a request that asks to close is answered and then closed")
{
    HttpClient client(server().port());
    client.socket().send("GET /api/settings/public HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
    CHECK_EQ(client.read().status, 200);
    CHECK(client.socket().readAll().empty());
    HttpClient old(server().port());
    old.socket().send("GET /api/settings/public HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n");
    CHECK_EQ(old.read().status, 200);
    CHECK(old.socket().readAll().empty());
}

TEST_CASE("every reply is JSON that nobody stores")
{
    HttpClient client(server().port());
    const HttpReply reply = client.get("/api/settings/public");
    CHECK_EQ(reply.headers.at("content-type"), std::string("application/json"));
    CHECK_EQ(reply.headers.at("cache-control"), std::string("no-store"));
    const HttpReply refused = client.get("/api/accounts");
    CHECK_EQ(refused.status, 401);
    CHECK_EQ(refused.headers.at("www-authenticate"), std::string("Bearer"));
    CHECK(!refused.message().empty());
}

TEST_CASE("a method that does not go with the address is answered with those that do")
{
    HttpClient client(server().port());
    const HttpReply reply = client.request("DELETE", "/api/drawings");
    CHECK_EQ(reply.status, 405);
    CHECK_EQ(reply.headers.at("allow"), std::string("GET, POST"));
    CHECK(reply.message().find("GET, POST") != std::string::npos);
    CHECK_EQ(client.get("/api/trades/place").status, 405);
    CHECK_EQ(client.request("POST", "/api/trades/modify/x", "{}").headers.at("allow"), std::string("PUT"));
    CHECK_EQ(client.request("OPTIONS", "/api/accounts").status, 405);
    CHECK_EQ(client.request("BREW", "/api/accounts").status, 405);
}

TEST_CASE("a HEAD request gets no body and the connection goes on")
{
    HttpClient client(server().port());
    const HttpReply head = client.request("HEAD", "/api/accounts");
    CHECK_EQ(head.status, 405);
    CHECK(head.body.empty());
    CHECK_EQ(client.get("/api/settings/public").status, 200);
}

TEST_CASE("a body above the limit is refused with a reason, announced or not")
{
    const HttpReply announced = raw("POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                                    "application/json\r\nContent-Length: 10000000\r\n\r\n"
        + std::string(300'000, ' '));
    CHECK_EQ(announced.status, 413);
    CHECK(!announced.message().empty());
    std::string chunked = "POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                          "application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (int i = 0; i < 80; ++i)
        chunked += "400\r\n" + std::string(1024, ' ') + "\r\n";
    CHECK_EQ(raw(chunked + "0\r\n\r\n").status, 413);
    CHECK_EQ(raw("POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                 "application/json\r\nContent-Length: 99999999999999999999\r\n\r\n")
                 .status,
        400);
}

TEST_CASE("a body of exactly 64 KiB is read")
{
    const std::string body = R"({"email":")" + std::string(std::size_t{64} * 1024 - 12, 'x') + R"("})";
    REQUIRE(body.size() == 64 * 1024);
    HttpClient client(server().port());
    CHECK_EQ(
        client.request("POST", "/api/auth/login", body).message(), std::string("\"password\" is missing."));
}

TEST_CASE("chunked bodies and bodies that wait for permission are read")
{
    const std::string start
        = "POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n";
    CHECK_EQ(raw(start + "Transfer-Encoding: chunked\r\n\r\n1\r\n{\r\n1\r\n}\r\n0\r\n\r\n").message(),
        std::string("\"email\" is missing."));
    HttpClient client(server().port());
    client.socket().send(start + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n");
    CHECK_EQ(client.read().status, 100);
    client.socket().send("{}");
    CHECK_EQ(client.read().status, 400);
}

TEST_CASE("a header above the limit is refused with a reason")
{
    const HttpReply reply
        = raw("GET /api/accounts HTTP/1.1\r\nHost: 127.0.0.1\r\nX: " + std::string(40'000, 'y') + "\r\n\r\n");
    CHECK_EQ(reply.status, 431);
    CHECK(!reply.message().empty());
}

TEST_CASE("what is not HTTP gets 400 and is closed")
{
    for (const char* bytes :
        {"hello\r\n\r\n", "GET\r\n\r\n", "GET / HTTP/9.9\r\n\r\n", "\x16\x03\x01\x02\x00\r\n\r\n",
            "GET / HTTP/1.1\r\nContent-Length: x\r\n\r\n", "GET / HTTP/1.1\r\nno colon\r\n\r\n"}) {
        HttpClient client(server().port());
        client.socket().send(bytes);
        CHECK_EQ(client.read().status, 400);
        CHECK(client.socket().readAll().empty());
    }
}

TEST_CASE("ids that walk the tree are ordinary unknown ids")
{
    HttpClient client(server().port());
    client.signIn();
    for (const char* target : {"/api/trades/close/..%2f..%2fetc%2fpasswd", "/api/trades/close/%2e%2e",
             "/api/trades/close/%27%20OR%201%3D1", "/api/trades/close/%ff%fe",
             "/api/trades/close/a%0d%0aX:%20y"}) {
        const HttpReply reply = client.request("POST", target, "{}");
        CHECK_EQ(reply.status, 404);
        CHECK(!reply.message().empty());
    }
    CHECK_EQ(client.request("POST", "/api/trades/close/../../etc/passwd", "{}").status, 404);
    CHECK_EQ(client.request("POST", "/api/trades/close/", "{}").status, 404);
    CHECK_EQ(client.request("POST", "/api/trades/close/a%00b", "{}").status, 400);
    CHECK_EQ(client.request("POST", "/api/trades/close/a%2", "{}").status, 400);
    CHECK_EQ(client.get("//api/accounts").status, 404);
    CHECK_EQ(client.get("/api/accounts/").status, 404);
}

TEST_CASE("a client that goes away in the middle of a request harms nobody")
{
    for (int i = 0; i < 30; ++i) {
        HttpClient client(server().port());
        client.socket().send("POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                             "application/json\r\nContent-Length: 60\r\n\r\n{\"email");
    }
    for (int i = 0; i < 5; ++i) {
        // Gone while the password is being checked.
        HttpClient client(server().port());
        client.socket().send("POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                             "application/json\r\nContent-Length: 33\r\n\r\n"
                             "{\"email\":\"nobody\",\"password\":\"x\"}");
    }
    HttpClient client(server().port());
    CHECK_EQ(client.get("/api/settings/public").status, 200);
    client.signIn();
    CHECK_EQ(client.get("/api/accounts").status, 200);
}

TEST_CASE("sign-ins beyond what can be checked are turned away, not queued without end")
{
    const std::string body = R"({"email":"nobody","password":"x"})";
    const std::string request = "POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: "
                                "application/json\r\nContent-Length: "
        + std::to_string(body.size()) + "\r\n\r\n" + body;
    std::vector<std::unique_ptr<HttpClient>> clients;
    for (int i = 0; i < 150; ++i) {
        clients.push_back(std::make_unique<HttpClient>(server().port()));
        clients.back()->socket().send(request);
    }
    int turnedAway = 0;
    for (const auto& client : clients) {
        const int status = client->read().status;
        CHECK(status == 401 || status == 429);
        turnedAway += status == 429 ? 1 : 0;
    }
    CHECK(turnedAway > 0);
    CHECK(turnedAway < 150);
}

CHECK_MAIN()
