#pragma once

#include "practice/line/ChanceScript.h"
#include "practice/line/Line.h"
#include "practice/line/LineQuality.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

namespace practice {

/// A line as bad as asked for, in front of a server.
class BadLine final {
public:
    /// `acceptor` listens already.
    BadLine(boost::asio::io_context& context, boost::asio::ip::tcp::acceptor acceptor,
        boost::asio::ip::tcp::endpoint server, const LineQuality& quality);

    [[nodiscard]] std::uint16_t port() const { return m_line.port(); }
    /// Takes no new connections, and breaks none any more.
    void stop();

private:
    void awaitCut();

    LineQuality m_quality;
    Throttles m_throttles;
    Line m_line;
    boost::asio::steady_timer m_cut;
    bool m_isStopped = false;
};

} // namespace practice
