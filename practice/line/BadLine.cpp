#include "practice/line/BadLine.h"

#include <chrono>
#include <memory>
#include <utility>

namespace practice {

namespace net = boost::asio;
using net::ip::tcp;

BadLine::BadLine(
    net::io_context& context, tcp::acceptor acceptor, tcp::endpoint server, const LineQuality& quality)
    : m_quality(quality)
    , m_throttles{Throttle(quality.throttle), Throttle(quality.throttle)}
    , m_line(context, std::move(acceptor), std::move(server),
          [this](std::uint64_t connection) {
              return std::make_unique<ChanceScript>(m_quality, connection, m_throttles);
          })
    , m_cut(context)
{
    if (m_quality.cutInterval.count() > 0) {
        m_cut.expires_after(m_quality.cutInterval);
        awaitCut();
    }
}

void BadLine::stop()
{
    m_isStopped = true;
    m_cut.cancel();
    m_line.stop();
}

void BadLine::awaitCut()
{
    m_cut.async_wait([this](boost::system::error_code error) {
        // Whoever is due already is not cancelled any more.
        if (error || m_isStopped)
            return;
        m_line.cutAll();
        // After a pause (a suspended machine) the beat starts anew instead of catching up.
        const auto now = std::chrono::steady_clock::now();
        const auto due = m_cut.expiry() + m_quality.cutInterval;
        m_cut.expires_at(due > now ? due : now + m_quality.cutInterval);
        awaitCut();
    });
}

} // namespace practice
