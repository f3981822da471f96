// What a client of the feed sends behind its handshake: frames, read with the limits of FeedSession.

#include "fuzz/Fuzz.h"

#include "practice/server/FeedRequest.h"

#include <boost/asio/io_context.hpp>
#include <boost/beast/_experimental/test/stream.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/stream.hpp>

using fuzz::demand;
namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace fuzz_frames {

namespace {

constexpr std::size_t mostMessages = 64;

http::request<http::empty_body> handshake()
{
    http::request<http::empty_body> request{http::verb::get, "/ws/terminal", 11};
    request.set(http::field::host, "127.0.0.1");
    request.set(http::field::upgrade, "websocket");
    request.set(http::field::connection, "upgrade");
    request.set(http::field::sec_websocket_key, "dGhlIHNhbXBsZSBub25jZQ==");
    request.set(http::field::sec_websocket_version, "13");
    return request;
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    boost::asio::io_context context;
    beast::websocket::stream<beast::test::stream> stream(context);
    beast::test::stream client = beast::test::connect(stream.next_layer());
    stream.read_message_max(practice::longestFeedRequest);
    beast::error_code error;
    stream.accept(handshake(), error);
    demand(!error, "the handshake is accepted");
    stream.next_layer().append({reinterpret_cast<const char*>(data), size});
    client.close();
    beast::flat_buffer buffer(practice::longestFeedRequest * 2);
    for (std::size_t count = 0; count < mostMessages; ++count) {
        stream.read(buffer, error);
        if (error)
            return 0;
        demand(buffer.size() <= practice::longestFeedRequest, "no message is longer than accepted");
        const std::string text = beast::buffers_to_string(buffer.data());
        buffer.consume(buffer.size());
        if (stream.got_text() && practice::isFeedPing(text))
            demand(text.find("ping") != std::string::npos || text.find('\\') != std::string::npos,
                "a ping says so");
    }
    return 0;
}

const fuzz::Target target("frames", &attempt, 4 * practice::longestFeedRequest);

} // namespace

} // namespace fuzz_frames
