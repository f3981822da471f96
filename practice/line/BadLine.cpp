#include "practice/line/BadLine.h"

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
    m_cut.cancel();
    m_line.stop();
}

void BadLine::awaitCut()
{
    m_cut.async_wait([this](boost::system::error_code error) {
        if (error)
            return;
        m_line.cutAll();
        m_cut.expires_at(m_cut.expiry() + m_quality.cutInterval);
        awaitCut();
    });
}

} // namespace practice
