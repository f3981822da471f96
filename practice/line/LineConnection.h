#pragma once

#include "practice/line/LineScript.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>

namespace practice {

/// One connection that is carried from a client to the server and back. It lives as long as it has something
/// to do.
class LineConnection final : public LineCarrier, public std::enable_shared_from_this<LineConnection> {
public:
    LineConnection(boost::asio::ip::tcp::socket client, std::unique_ptr<LineScript> script);

    /// Connects to the server, unless the script ends the connection.
    void start(const boost::asio::ip::tcp::endpoint& server);
    /// Resets both ends at once.
    void reset();

    void send(Way way, std::string bytes, std::chrono::nanoseconds delay) override;
    void end(LineEnd how) override;

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Piece {
        enum class Kind { Bytes, Close, Reset } kind = Kind::Bytes;
        std::string bytes;
        Time due;
    };
    /// What is under way in one direction.
    struct Lane {
        Lane(Way way, boost::asio::ip::tcp::socket& from, boost::asio::ip::tcp::socket& to);
        Way way;
        boost::asio::ip::tcp::socket& from;
        boost::asio::ip::tcp::socket& to;
        boost::asio::steady_timer timer;
        std::array<char, 16384> buffer{};
        std::deque<Piece> pieces;
        std::size_t waiting = 0; ///< bytes in pieces
        bool busy = false;       ///< a piece waits for its time or is being written
        bool reading = false;
        bool ended = false;    ///< nothing more comes from there
        bool finished = false; ///< nothing more goes there
    };

    [[nodiscard]] Lane& lane(Way way) { return way == Way::ToServer ? m_toServer : m_toClient; }
    void read(Lane& lane);
    void add(Lane& lane, Piece piece);
    void next(Lane& lane);
    void deliver(Lane& lane);
    void finish(Lane& lane);

    boost::asio::ip::tcp::socket m_client;
    boost::asio::ip::tcp::socket m_server;
    std::unique_ptr<LineScript> m_script;
    Lane m_toServer;
    Lane m_toClient;
    bool m_connected = false; ///< with the server
    bool m_silent = false;
    bool m_ending = false; ///< by the script, as soon as what was sent before has arrived
    bool m_over = false;
};

} // namespace practice
