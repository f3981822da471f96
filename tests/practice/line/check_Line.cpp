#include "practice/Check.h"
#include "practice/server/WireSocket.h"

#include "practice/line/Line.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>

using namespace practice;
namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;

namespace {

tcp::acceptor listening(net::io_context& context)
{
    return {context, tcp::endpoint(net::ip::address_v4::loopback(), 0)};
}

/// A server that answers each line with the same line, and says good-bye to "bye".
class Echo final {
public:
    Echo()
        : m_acceptor(listening(m_context))
    {
        accept();
        m_thread = std::thread([this] { m_context.run(); });
    }
    ~Echo()
    {
        m_context.stop();
        m_thread.join();
    }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

    [[nodiscard]] tcp::endpoint endpoint() const { return m_acceptor.local_endpoint(); }
    [[nodiscard]] int lines() const { return m_lines; }
    [[nodiscard]] int ended() const { return m_ended; }

private:
    struct Guest {
        explicit Guest(tcp::socket s)
            : socket(std::move(s))
        {
        }
        tcp::socket socket;
        std::string text;
    };
    void accept()
    {
        m_acceptor.async_accept([this](error_code error, tcp::socket socket) {
            if (error)
                return;
            answer(std::make_shared<Guest>(std::move(socket)));
            accept();
        });
    }
    void answer(const std::shared_ptr<Guest>& guest)
    {
        net::async_read_until(guest->socket, net::dynamic_buffer(guest->text), '\n',
            [this, guest](error_code error, std::size_t count) {
                if (error) {
                    ++m_ended;
                    return;
                }
                ++m_lines;
                const std::string line = guest->text.substr(0, count);
                guest->text.erase(0, count);
                error_code ignored;
                net::write(guest->socket, net::buffer(line), ignored);
                if (line != "bye\n")
                    answer(guest);
            });
    }

    net::io_context m_context;
    tcp::acceptor m_acceptor;
    std::thread m_thread;
    std::atomic<int> m_lines{0};
    std::atomic<int> m_ended{0};
};

/// A script of functions.
struct Scripted final : LineScript {
    std::function<void(LineCarrier&)> onOpen = [](LineCarrier&) {};
    std::function<void(Way, std::string, LineCarrier&)> onPass
        = [](Way way, std::string bytes, LineCarrier& carrier) { carrier.send(way, std::move(bytes), {}); };
    std::chrono::nanoseconds lateEnd{};
    void open(LineCarrier& carrier) override { onOpen(carrier); }
    void pass(Way way, std::string bytes, LineCarrier& carrier) override
    {
        onPass(way, std::move(bytes), carrier);
    }
    std::chrono::nanoseconds endDelay() override { return lateEnd; }
};

/// A line to an echo, on a thread of its own.
class Place final {
public:
    explicit Place(const Scripted& script = {})
        : m_line(m_context, listening(m_context), echo.endpoint(),
            [script](std::uint64_t) { return std::make_unique<Scripted>(script); })
        , m_thread([this] { m_context.run(); })
    {
    }
    ~Place()
    {
        m_context.stop();
        m_thread.join();
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_line.port(); }
    void onLine(const std::function<void(Line&)>& work)
    {
        std::promise<void> done;
        net::post(m_context, [&] {
            work(m_line);
            done.set_value();
        });
        done.get_future().wait();
    }

    Echo echo;

private:
    net::io_context m_context{1};
    Line m_line;
    std::thread m_thread;
};

void awaitEnd(const Echo& echo, int ended)
{
    while (echo.ended() < ended)
        std::this_thread::yield();
}

} // namespace

TEST_CASE("what is handed on arrives, in pieces of any size, in both directions")
{
    Place place;
    WireSocket client(place.port());
    client.send("one\n");
    CHECK_EQ(client.readUntil("\n"), std::string("one\n"));
    const std::string large = std::string(700'000, 'l') + '\n';
    client.send(large);
    CHECK(client.readUntil("\n") == large);
}

TEST_CASE("the end of one side reaches the other, behind everything before it")
{
    Place place;
    WireSocket client(place.port());
    client.send("last\nbye\n");
    CHECK_EQ(client.readAll(), std::string("last\nbye\n"));
    {
        const WireSocket leaving(place.port());
    }
    awaitEnd(place.echo, 1);
    CHECK_EQ(place.echo.lines(), 2);
}

TEST_CASE("the end of one side is under way as well")
{
    constexpr std::chrono::milliseconds late(30);
    Scripted script;
    script.lateEnd = late;
    Place place(script);
    WireSocket client(place.port());
    const auto begin = std::chrono::steady_clock::now();
    client.send("bye\n");
    CHECK_EQ(client.readAll(), std::string("bye\n"));
    const auto left = std::chrono::steady_clock::now();
    CHECK(left - begin >= late);
    {
        const WireSocket leaving(place.port());
    }
    awaitEnd(place.echo, 1);
    CHECK(std::chrono::steady_clock::now() - left >= late);
}

TEST_CASE("delayed pieces keep their order")
{
    Scripted script;
    auto count = std::make_shared<int>(0);
    script.onPass = [count](Way way, std::string bytes, LineCarrier& carrier) {
        // The first of each two is to be later than the second.
        const std::size_t half = bytes.size() / 2;
        carrier.send(way, bytes.substr(0, half), std::chrono::milliseconds(20));
        carrier.send(way, bytes.substr(half), {});
    };
    Place place(script);
    WireSocket client(place.port());
    client.send("abcdef\n");
    CHECK_EQ(client.readUntil("\n"), std::string("abcdef\n"));
}

TEST_CASE("a connection that is ended as it opens never asks the server")
{
    for (const LineEnd how : {LineEnd::Reset, LineEnd::Close}) {
        Scripted script;
        script.onOpen = [how](LineCarrier& carrier) { carrier.end(how); };
        Place place(script);
        {
            WireSocket client(place.port());
            CHECK_EQ(client.readAll(), std::string());
        }
        place.onLine([](const Line& line) { CHECK_EQ(line.connections(), 1U); });
        CHECK_EQ(place.echo.ended(), 0);
    }
}

TEST_CASE("what was sent before an end arrives before it")
{
    for (const LineEnd how : {LineEnd::Reset, LineEnd::Close}) {
        Scripted script;
        script.onPass = [how](Way way, std::string bytes, LineCarrier& carrier) {
            if (way == Way::ToServer) {
                carrier.send(way, std::move(bytes), {});
                return;
            }
            carrier.send(way, "half", std::chrono::milliseconds(5));
            carrier.end(how);
            carrier.send(way, "never", {});
        };
        Place place(script);
        WireSocket client(place.port());
        client.send("whole\n");
        CHECK_EQ(client.read(4), std::string("half"));
        CHECK_EQ(client.readAll(), std::string());
    }
}

TEST_CASE("a script may answer in the server's place")
{
    Scripted script;
    script.onPass = [](Way, std::string, LineCarrier& carrier) {
        carrier.send(Way::ToClient, "no entry\n", {});
        carrier.end(LineEnd::Close);
    };
    Place place(script);
    WireSocket client(place.port());
    client.send("let me in\n");
    CHECK_EQ(client.readAll(), std::string("no entry\n"));
    CHECK_EQ(place.echo.lines(), 0);
}

TEST_CASE("a silent connection stays open until one end gives up, and then the other is told")
{
    Scripted script;
    script.onPass = [](Way way, std::string bytes, LineCarrier& carrier) {
        carrier.send(way, std::move(bytes), {});
        if (way == Way::ToServer)
            carrier.end(LineEnd::Silence);
    };
    Place place(script);
    {
        WireSocket client(place.port());
        client.send("heard\n");
        while (place.echo.lines() < 1)
            std::this_thread::yield();
        CHECK(client.isSilentFor(std::chrono::milliseconds(30)));
        CHECK_EQ(place.echo.ended(), 0);
    }
    awaitEnd(place.echo, 1);
    WireSocket client(place.port());
    client.send("bye\n"); // the server ends this one
    CHECK_EQ(client.readAll(), std::string());
}

TEST_CASE("all connections can be broken at once, and new ones are carried again")
{
    Place place;
    WireSocket first(place.port());
    WireSocket second(place.port());
    for (WireSocket* client : {&first, &second}) {
        client->send("there\n");
        CHECK_EQ(client->readUntil("\n"), std::string("there\n"));
    }
    place.onLine([](Line& line) { line.cutAll(); });
    first.awaitReset();
    second.awaitReset();
    awaitEnd(place.echo, 2);
    WireSocket third(place.port());
    third.send("again\n");
    CHECK_EQ(third.readUntil("\n"), std::string("again\n"));
}

TEST_CASE("a stopped line takes no more connections and keeps those it has")
{
    Place place;
    WireSocket client(place.port());
    client.send("one\n");
    CHECK_EQ(client.readUntil("\n"), std::string("one\n"));
    place.onLine([](Line& line) { line.stop(); });
    CHECK_THROWS(WireSocket(place.port()), std::runtime_error);
    client.send("two\n");
    CHECK_EQ(client.readUntil("\n"), std::string("two\n"));
}

CHECK_MAIN()
