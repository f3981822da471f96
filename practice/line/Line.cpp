#include "practice/line/Line.h"

#include "practice/line/LineConnection.h"

#include <chrono>
#include <utility>

namespace practice {

namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;

namespace {

constexpr std::chrono::milliseconds acceptPause{100};

} // namespace

Line::Line(net::io_context& context, tcp::acceptor acceptor, tcp::endpoint server, Scripts scripts)
    : m_acceptor(std::move(acceptor))
    , m_pause(context)
    , m_server(std::move(server))
    , m_scripts(std::move(scripts))
    , m_port(m_acceptor.local_endpoint().port())
{
    accept();
}

Line::~Line() = default;

void Line::cutAll()
{
    for (const auto& connection : std::exchange(m_connections, {})) {
        if (const auto alive = connection.lock())
            alive->reset();
    }
}

void Line::stop()
{
    error_code ignored;
    m_acceptor.close(ignored);
    m_pause.cancel();
}

void Line::accept()
{
    m_acceptor.async_accept([this](error_code error, tcp::socket client) {
        if (error == net::error::operation_aborted || !m_acceptor.is_open())
            return;
        if (error) {
            // Usually no free descriptor; trying again at once would only burn time.
            m_pause.expires_after(acceptPause);
            m_pause.async_wait([this](error_code stopped) {
                if (!stopped)
                    accept();
            });
            return;
        }
        std::erase_if(m_connections, [](const auto& connection) { return connection.expired(); });
        auto connection = std::make_shared<LineConnection>(std::move(client), m_scripts(m_count++));
        m_connections.push_back(connection);
        connection->start(m_server);
        accept();
    });
}

} // namespace practice
