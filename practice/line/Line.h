#pragma once

#include "practice/line/LineScript.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace practice {

class LineConnection;

/// Carries connections to a server, each as its script says. Everything runs on the thread that runs
/// `context`.
class Line final {
public:
    /// The script of a connection, by its number: 0 for the first.
    using Scripts = std::function<std::unique_ptr<LineScript>(std::uint64_t connection)>;

    /// `acceptor` listens already.
    Line(boost::asio::io_context& context, boost::asio::ip::tcp::acceptor acceptor,
        boost::asio::ip::tcp::endpoint server, Scripts scripts);
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    /// Connections that came so far.
    [[nodiscard]] std::uint64_t connections() const { return m_count; }

    /// Resets every connection.
    void cutAll();
    /// Takes no new connections; those that are there go on.
    void stop();

private:
    void accept();

    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_pause;
    boost::asio::ip::tcp::endpoint m_server;
    Scripts m_scripts;
    std::vector<std::weak_ptr<LineConnection>> m_connections;
    std::uint64_t m_count = 0;
    std::uint16_t m_port;
};

} // namespace practice
