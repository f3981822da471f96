#include "practice/server/HttpSession.h"

#include "practice/server/Api.h"
#include "practice/server/FeedHub.h"
#include "practice/server/FeedSession.h"
#include "practice/server/Limits.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Router.h"
#include "practice/server/Sessions.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <array>
#include <chrono>
#include <memory>
#include <optional>

namespace practice {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;

namespace {

constexpr std::chrono::seconds lingerLimit{2};
constexpr std::size_t lingerBytes = 1024UL * 1024;
constexpr const char* serverName = "tavoran-practice";
constexpr const char* webSocketVersion = "13";

using RequestParser = http::request_parser<http::string_body>;
using Request = http::request<http::string_body>;

std::string_view view(beast::string_view text)
{
    return {text.data(), text.size()};
}

/// One connection. Lives in the coroutine that serves it.
class Connection final {
public:
    Connection(net::ip::tcp::socket socket, ServerParts parts, std::shared_ptr<Connections::Place> place)
        : m_stream(std::move(socket))
        , m_parts(parts)
        , m_place(std::move(place))
        , m_buffer(longestHeader + longestBody)
    {
        m_place->setEnd([this] { m_stream.close(); });
    }

    net::awaitable<void> serve();
    net::awaitable<void> turnAway();

private:
    net::awaitable<error_code> awaitFirstByte();
    net::awaitable<error_code> readRequest(RequestParser& parser);
    net::awaitable<ApiReply> handle(Request& request);
    net::awaitable<bool> write(ApiReply reply, unsigned version, bool keepAlive, bool withBody);
    net::awaitable<void> refuse(error_code error);
    net::awaitable<void> linger();
    [[nodiscard]] std::optional<std::string> feedUser(const Request& request) const;

    beast::tcp_stream m_stream;
    ServerParts m_parts;
    std::shared_ptr<Connections::Place> m_place;
    beast::flat_buffer m_buffer;
};

bool isFeed(const Request& request)
{
    const std::string_view target = view(request.target());
    return boost::beast::websocket::is_upgrade(request)
        && target.substr(0, target.find('?')) == "/ws/terminal";
}

/// Whether Boost accepts it: what it refuses by itself gets no answer as others do.
bool isHandshake(const Request& request)
{
    constexpr std::size_t longestKey = 24; // 16 bytes in base64
    return request.version() == 11 && request.count(http::field::sec_websocket_key) > 0
        && request[http::field::sec_websocket_key].size() <= longestKey
        && view(request[http::field::sec_websocket_version]) == webSocketVersion;
}

/// For a client that may not have the feed.
ApiReply feedRefusal(bool isSignedIn, bool isProper)
{
    if (!isSignedIn)
        return errorReply(401, "The feed needs a valid token. Please sign in again.");
    if (isProper)
        return errorReply(503, "Too many feeds at the moment. Close one, or try again in a moment.");
    ApiReply reply
        = errorReply(400, "This is no handshake of a WebSocket of version 13, which the feed needs.");
    reply.webSocketVersion = webSocketVersion;
    return reply;
}

RequestFacts factsOf(const Request& request)
{
    return {request.count(http::field::host), view(request[http::field::host]),
        request.count(http::field::origin), view(request[http::field::origin]), !request.body().empty(),
        view(request[http::field::content_type])};
}

net::awaitable<void> Connection::serve()
{
    while (true) {
        RequestParser parser;
        const error_code error = co_await readRequest(parser);
        if (error) {
            co_await refuse(error);
            co_return;
        }
        Request request = parser.release();
        const auto objection = m_parts.guard.objection(factsOf(request));
        if (isFeed(request)) {
            auto user = objection ? std::nullopt : feedUser(request);
            const bool isProper = isHandshake(request);
            auto ticket = user && isProper ? m_parts.hub.admit() : nullptr;
            if (ticket) {
                std::make_shared<FeedSession>(
                    std::move(m_stream), m_parts.hub, std::move(*user), std::move(ticket))
                    ->start(std::move(request));
                co_return;
            }
            // Some clients wait for ever on a refused handshake whose connection stays open.
            ApiReply refusal = objection ? errorReply(objection->status, objection->message)
                                         : feedRefusal(user.has_value(), isProper);
            co_await write(std::move(refusal), request.version(), false, true);
            co_await linger();
            co_return;
        }
        const unsigned version = request.version();
        const bool keepAlive = request.keep_alive();
        const bool withBody = request.method() != http::verb::head;
        m_place->enter(Connections::Phase::Answering);
        ApiReply reply;
        if (objection)
            reply = errorReply(objection->status, objection->message);
        else
            reply = co_await handle(request);
        const bool goOn = co_await write(std::move(reply), version, keepAlive, withBody);
        if (!goOn)
            break;
        m_place->enter(Connections::Phase::Asking);
    }
    co_await linger();
}

net::awaitable<void> Connection::turnAway()
{
    ApiReply reply
        = errorReply(503, "Too many connections at the moment. Close one, or try again in a moment.");
    co_await write(std::move(reply), 11, false, true);
    co_await linger();
}

net::awaitable<error_code> Connection::awaitFirstByte()
{
    constexpr std::size_t usualRequest = 1024;
    error_code error;
    m_stream.expires_after(m_place->hasAsked() ? m_parts.limits.idle : m_parts.limits.opening);
    m_buffer.commit(co_await m_stream.async_read_some(
        m_buffer.prepare(usualRequest), net::redirect_error(net::use_awaitable, error)));
    co_return error;
}

net::awaitable<error_code> Connection::readRequest(RequestParser& parser)
{
    parser.header_limit(longestHeader);
    parser.body_limit(longestBody);
    error_code error;
    if (m_buffer.size() == 0)
        error = co_await awaitFirstByte();
    if (error)
        co_return error;
    m_stream.expires_after(m_parts.limits.header);
    co_await http::async_read_header(
        m_stream, m_buffer, parser, net::redirect_error(net::use_awaitable, error));
    if (error || parser.is_done())
        co_return error;
    m_place->enter(Connections::Phase::Bringing);
    m_stream.expires_after(m_parts.limits.transfer);
    if (beast::iequals(parser.get()[http::field::expect], "100-continue")) {
        http::response<http::empty_body> goOn{http::status::continue_, parser.get().version()};
        co_await http::async_write(m_stream, goOn, net::redirect_error(net::use_awaitable, error));
        if (error)
            co_return error;
    }
    co_await http::async_read(m_stream, m_buffer, parser, net::redirect_error(net::use_awaitable, error));
    co_return error;
}

net::awaitable<ApiReply> Connection::handle(Request& request)
{
    // The answer may come later: until then this coroutine waits on a timer that never runs out.
    struct Waiting {
        std::optional<ApiReply> reply;
        net::steady_timer timer;
    };
    const auto waiting = std::make_shared<Waiting>(
        Waiting{{}, net::steady_timer(m_stream.get_executor(), net::steady_timer::time_point::max())});
    const Respond respond = [waiting](ApiReply reply) {
        waiting->reply = std::move(reply);
        waiting->timer.cancel();
    };
    const std::string method(view(request.method_string()));
    const std::string target(view(request.target()));
    const std::string authorization(view(request[http::field::authorization]));
    m_parts.router.handle(
        method, target, {authorization, m_place->client()}, std::move(request.body()), respond);
    if (!waiting->reply) {
        error_code cancelled;
        co_await waiting->timer.async_wait(net::redirect_error(net::use_awaitable, cancelled));
    }
    co_return std::move(*waiting->reply);
}

net::awaitable<bool> Connection::write(ApiReply reply, unsigned version, bool keepAlive, bool withBody)
{
    http::response<http::string_body> response{static_cast<http::status>(reply.status), version};
    response.set(http::field::server, serverName);
    response.set(http::field::content_type, "application/json");
    response.set(http::field::cache_control, "no-store");
    if (reply.status == 401)
        response.set(http::field::www_authenticate, "Bearer");
    if (!reply.allow.empty())
        response.set(http::field::allow, reply.allow);
    if (!reply.webSocketVersion.empty())
        response.set(http::field::sec_websocket_version, reply.webSocketVersion);
    response.keep_alive(keepAlive);
    const std::size_t length = reply.body.size();
    if (withBody)
        response.body() = std::move(reply.body);
    response.content_length(length);
    m_place->enter(Connections::Phase::Replying);
    m_stream.expires_after(m_parts.limits.transfer);
    error_code error;
    co_await http::async_write(m_stream, response, net::redirect_error(net::use_awaitable, error));
    co_return !error && keepAlive;
}

net::awaitable<void> Connection::refuse(error_code error)
{
    if (error == http::error::end_of_stream || error == http::error::partial_message
        || error.category() != http::make_error_code(http::error::bad_method).category())
        co_return;
    ApiReply reply = errorReply(400, "The request is not proper HTTP.");
    if (error == http::error::body_limit)
        reply = errorReply(413, "The request body is too long; 64 KiB are accepted.");
    else if (error == http::error::header_limit || error == http::error::buffer_overflow)
        reply = errorReply(431, "The request header is too long; 16 KiB are accepted.");
    co_await write(std::move(reply), 11, false, true);
    co_await linger();
}

// A connection closed with unread bytes is reset, and the peer may lose the answer it was just sent.
net::awaitable<void> Connection::linger()
{
    error_code error;
    m_stream.socket().shutdown(net::ip::tcp::socket::shutdown_send, error);
    if (error)
        co_return;
    m_stream.expires_after(lingerLimit);
    const auto rest = std::make_unique<std::array<char, 4096>>();
    std::size_t total = 0;
    while (!error && total < lingerBytes) {
        total += co_await m_stream.async_read_some(
            net::buffer(*rest), net::redirect_error(net::use_awaitable, error));
    }
}

std::optional<std::string> Connection::feedUser(const Request& request) const
{
    const auto target = Target::parse(view(request.target()));
    const auto token = target ? target->item("token") : std::nullopt;
    return token ? m_parts.sessions.userOfToken(*token) : std::nullopt;
}

} // namespace

net::awaitable<void> serveConnection(
    net::ip::tcp::socket socket, ServerParts parts, std::shared_ptr<Connections::Place> place)
{
    Connection connection(std::move(socket), parts, std::move(place));
    co_await connection.serve();
}

net::awaitable<void> turnAway(
    net::ip::tcp::socket socket, ServerParts parts, [[maybe_unused]] std::shared_ptr<void> ticket)
{
    Connection connection(std::move(socket), parts, std::make_shared<Connections::Place>(std::string()));
    co_await connection.turnAway();
}

} // namespace practice
