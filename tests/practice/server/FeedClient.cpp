#include "practice/server/FeedClient.h"

#include <stdexcept>

namespace {

constexpr int textFrame = 1;
constexpr int closeFrame = 8;
constexpr int pingFrame = 9;
constexpr int pongFrame = 10;

} // namespace

FeedClient::FeedClient(std::uint16_t port, const std::string& token, int receiveBuffer)
    : m_socket(port, receiveBuffer)
{
    m_socket.send("GET /ws/terminal?token=" + token
        + " HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
          "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    const std::string head = m_socket.readUntil("\r\n\r\n");
    if (head.find("HTTP/1.1 101 ") != 0)
        throw std::runtime_error(head.substr(0, head.find('\r')));
    if (head.find("s3pPLMBiTxaQ9kYGzzhZRbK+xOo=") == std::string::npos)
        throw std::runtime_error("wrong handshake digest");
}

void FeedClient::sendFrame(int opcode, std::string_view payload)
{
    std::string frame(1, static_cast<char>(0x80 | opcode));
    if (payload.size() < 126) {
        frame.push_back(static_cast<char>(0x80 | payload.size()));
    } else {
        frame.push_back(static_cast<char>(0x80 | 127));
        for (int shift = 56; shift >= 0; shift -= 8)
            frame.push_back(static_cast<char>(payload.size() >> shift & 0xff));
    }
    const std::string mask = "\x12\x34\x56\x78";
    frame += mask;
    for (std::size_t i = 0; i < payload.size(); ++i)
        frame.push_back(static_cast<char>(payload[i] ^ mask[i % 4]));
    m_socket.send(frame);
}

void FeedClient::send(std::string_view text)
{
    sendFrame(textFrame, text);
}

FeedClient::Frame FeedClient::readFrame()
{
    const std::string head = m_socket.read(2);
    std::size_t size = static_cast<unsigned char>(head[1]) & 0x7fU;
    if (static_cast<unsigned char>(head[1]) & 0x80U)
        throw std::runtime_error("a server must not mask");
    const std::size_t extra = size == 126 ? 2 : size == 127 ? 8 : 0;
    if (extra > 0) {
        size = 0;
        for (const char byte : m_socket.read(extra))
            size = size << 8 | static_cast<unsigned char>(byte);
    }
    return {head[0] & 0xf, m_socket.read(size)};
}

nlohmann::json FeedClient::read()
{
    while (true) {
        const Frame frame = readFrame();
        if (frame.opcode == textFrame)
            return nlohmann::json::parse(frame.payload);
        if (frame.opcode == pingFrame)
            sendFrame(pongFrame, frame.payload);
        if (frame.opcode == closeFrame)
            throw std::runtime_error("the feed was closed");
    }
}

nlohmann::json FeedClient::readUntil(
    std::string_view type, const std::function<bool(const nlohmann::json&)>& wanted)
{
    // Prices come several times a second: this many messages are a matter of seconds.
    for (int i = 0; i < 2000; ++i) {
        auto message = read();
        if (message.at("type") == type && (!wanted || wanted(message)))
            return message;
    }
    throw std::runtime_error("no such message: " + std::string(type));
}

int FeedClient::readCloseCode()
{
    try {
        while (true) {
            const Frame frame = readFrame();
            if (frame.opcode == closeFrame && frame.payload.size() >= 2)
                return static_cast<unsigned char>(frame.payload[0]) << 8
                    | static_cast<unsigned char>(frame.payload[1]);
        }
    } catch (const std::exception&) {
        return 0;
    }
}
