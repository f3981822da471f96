#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

/// A plain TCP connection to the loopback, from an address of it unless that is empty. Reading gives up, with
/// an exception, after ten seconds of silence.
/// Where the environment names a folder in TAVORAN_WIRE_COPIES, both ways of each connection are kept in it,
/// so that they can be held to the description of the wire when the check is over. What lay there before is
/// removed.
class WireSocket final {
public:
    explicit WireSocket(std::uint16_t port, int receiveBuffer = 0, const std::string& from = {});
    ~WireSocket();
    WireSocket(const WireSocket&) = delete;
    WireSocket& operator=(const WireSocket&) = delete;

    void send(std::string_view bytes);
    /// Everything up to and including `mark`.
    [[nodiscard]] std::string readUntil(std::string_view mark);
    [[nodiscard]] std::string read(std::size_t count);
    /// Everything until the peer closes. A reset counts as closed.
    [[nodiscard]] std::string readAll();
    /// Returns once the peer has broken the connection off; what it sent before stays unread.
    void awaitReset();
    /// True when no byte is waiting and none comes within the time.
    [[nodiscard]] bool isSilentFor(std::chrono::milliseconds time);

private:
    /// False at the end.
    bool fill();

    int m_socket = -1;
    std::string m_buffer;
    std::ofstream m_sentCopy;
    std::ofstream m_receivedCopy;
};
