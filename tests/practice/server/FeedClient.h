#pragma once

#include "practice/server/WireSocket.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>

/// A WebSocket on the feed.
class FeedClient final {
public:
    /// Throws std::runtime_error with the answer's status line when the handshake is refused.
    FeedClient(std::uint16_t port, const std::string& token, int receiveBuffer = 0);

    void send(std::string_view text);
    /// The next message; pings of the server are answered on the way. Throws when the connection ends.
    [[nodiscard]] nlohmann::json read();
    /// The next message of this type for which `wanted` holds; others are skipped.
    [[nodiscard]] nlohmann::json readUntil(
        std::string_view type, const std::function<bool(const nlohmann::json&)>& wanted = {});
    /// The code of the server's closing message; 0 when it ends without one.
    [[nodiscard]] int readCloseCode();
    [[nodiscard]] WireSocket& socket() { return m_socket; }

private:
    struct Frame {
        int opcode;
        std::string payload;
    };
    [[nodiscard]] Frame readFrame();
    void sendFrame(int opcode, std::string_view payload);

    WireSocket m_socket;
};
