// What a client of the feed sends behind its handshake: frames, read by the real feed, whose own frames are
// judged by them.

#include "fuzz/Answers.h"
#include "fuzz/Desk.h"

#include "practice/server/FeedRequest.h"

namespace fuzz_frames {

namespace {

constexpr std::string_view handshake = "GET /ws/terminal?token=first HTTP/1.1\r\n"
                                       "Host: 127.0.0.1\r\n"
                                       "Upgrade: websocket\r\n"
                                       "Connection: upgrade\r\n"
                                       "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
                                       "Sec-WebSocket-Version: 13\r\n\r\n";

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    static boost::asio::io_context context(1);
    static practice::PasswordWorker passwords(context);
    // One for all inputs: a feed changes nothing.
    static fuzz::Desk desk(context, passwords, fuzz::preparedDatabase(folder));
    const std::string_view frames = fuzz::textOf(data, size);
    const std::string answer = desk.answerTo(handshake, frames);
    fuzz::demand(answer.starts_with("HTTP/1.1 101 "), "the handshake is accepted");
    fuzz::demandAnswers(std::string(handshake) += frames, answer);
    return 0;
}

const fuzz::Target target("frames", &attempt, 4 * practice::longestFeedRequest, "-entropic=0");

} // namespace

} // namespace fuzz_frames
