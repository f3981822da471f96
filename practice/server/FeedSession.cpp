#include "practice/server/FeedSession.h"

#include "practice/server/FeedHub.h"
#include "practice/server/FeedRequest.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/buffers_to_string.hpp>

#include <utility>

namespace practice {

namespace beast = boost::beast;
namespace websocket = boost::beast::websocket;

FeedSession::FeedSession(
    beast::tcp_stream stream, FeedHub& hub, std::string userId, std::shared_ptr<void> ticket)
    : m_stream(std::move(stream))
    , m_hub(hub)
    , m_userId(std::move(userId))
    , m_ticket(std::move(ticket))
    , m_incoming(longestFeedRequest * 2)
{
}

void FeedSession::start(Upgrade upgrade)
{
    // The WebSocket layer keeps its own time; a dead peer is found out by its silence after a ping.
    m_stream.next_layer().expires_never();
    websocket::stream_base::timeout limits{};
    limits.handshake_timeout = std::chrono::seconds(15);
    limits.idle_timeout = m_hub.limits().feedSilence;
    limits.keep_alive_pings = true;
    m_stream.set_option(limits);
    m_stream.read_message_max(longestFeedRequest);
    m_stream.auto_fragment(false);
    const auto request = std::make_shared<Upgrade>(std::move(upgrade));
    m_stream.async_accept(*request,
        [self = shared_from_this(), request](boost::system::error_code error) { self->onAccepted(error); });
}

void FeedSession::onAccepted(boost::system::error_code error)
{
    if (error)
        return;
    m_stream.text(true);
    m_stream.control_callback([this](websocket::frame_type, beast::string_view) { m_hasSpoken = true; });
    m_open = true;
    m_changed.assign(m_hub.symbolCount(), false);
    m_hub.join(shared_from_this());
    sendEvent(m_hub.hello());
    read();
}

void FeedSession::read()
{
    m_stream.async_read(m_incoming,
        [self = shared_from_this()](boost::system::error_code error, std::size_t) { self->onRead(error); });
}

void FeedSession::onRead(boost::system::error_code error)
{
    if (error)
        return leave();
    const std::string text = beast::buffers_to_string(m_incoming.data());
    m_incoming.consume(m_incoming.size());
    m_hasSpoken = true;
    // Pings that come while a message is being sent get one answer together, so that nothing piles up here.
    if (m_stream.got_text() && isFeedPing(text)) {
        m_pongDue = true;
        pump();
    }
    read();
}

void FeedSession::sendEvent(SharedMessage message)
{
    if (m_events.size() >= m_hub.limits().feedEvents)
        return leave();
    m_events.push_back(std::move(message));
    pump();
}

void FeedSession::sendTrades(SharedMessage message)
{
    m_trades = std::move(message);
    pump();
}

void FeedSession::sendPrices(const SharedMessage& message, const std::vector<bool>& changed)
{
    m_merged = m_prices != nullptr;
    m_prices = message;
    for (std::size_t symbol = 0; symbol < m_changed.size(); ++symbol)
        m_changed[symbol] = m_changed[symbol] || changed[symbol];
    pump();
}

void FeedSession::pump()
{
    if (!m_open || m_closing || m_writing)
        return;
    m_writing = next();
    if (!m_writing)
        return;
    m_writingSince = std::chrono::steady_clock::now();
    m_stream.async_write(boost::asio::buffer(*m_writing),
        [self = shared_from_this()](
            boost::system::error_code error, std::size_t) { self->onWritten(error); });
}

SharedMessage FeedSession::next()
{
    if (!m_events.empty()) {
        SharedMessage message = std::move(m_events.front());
        m_events.pop_front();
        return message;
    }
    if (m_pongDue) {
        static const SharedMessage pong = std::make_shared<const std::string>(R"({"type":"pong"})");
        m_pongDue = false;
        return pong;
    }
    if (m_trades)
        return std::exchange(m_trades, nullptr);
    if (!m_prices)
        return nullptr;
    SharedMessage message = m_merged ? m_hub.prices(m_changed) : m_prices;
    m_prices = nullptr;
    m_merged = false;
    m_changed.assign(m_changed.size(), false);
    return message;
}

void FeedSession::onWritten(boost::system::error_code error)
{
    m_writing = nullptr;
    if (error)
        return leave();
    pump();
}

void FeedSession::dropIfStalled()
{
    if (m_writing && std::chrono::steady_clock::now() - m_writingSince > m_hub.limits().feedStall)
        leave();
}

void FeedSession::close()
{
    if (!m_open || m_closing)
        return;
    m_closing = true;
    m_stream.async_close(websocket::close_code::going_away,
        [self = shared_from_this()](boost::system::error_code) { self->leave(); });
}

void FeedSession::leave()
{
    if (!std::exchange(m_open, false))
        return;
    m_events.clear();
    m_trades = nullptr;
    m_prices = nullptr;
    m_ticket = nullptr;
    beast::get_lowest_layer(m_stream).close();
    m_hub.leave(*this);
}

} // namespace practice
