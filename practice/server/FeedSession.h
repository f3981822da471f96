#pragma once

#include "practice/server/SharedMessage.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace practice {

class FeedHub;

/// One terminal on the live feed.
///
/// A client that reads slowly costs a bounded amount: while a message is on its way, price updates and trade
/// updates are merged into the next one of their kind, and a client that lets events pile up or does not read
/// at all is disconnected.
class FeedSession final : public std::enable_shared_from_this<FeedSession> {
public:
    using Stream = boost::beast::websocket::stream<boost::beast::tcp_stream>;
    using Upgrade = boost::beast::http::request<boost::beast::http::string_body>;

    /// `ticket` is given back when the connection ends.
    FeedSession(
        boost::beast::tcp_stream stream, FeedHub& hub, std::string userId, std::shared_ptr<void> ticket);

    /// Accepts the handshake, sends the hello and joins the hub.
    void start(Upgrade upgrade);

    /// Something that happened once; never merged and never left out.
    void sendEvent(SharedMessage message);
    /// The state of the trades; replaces one that was not sent yet.
    void sendTrades(SharedMessage message);
    /// New prices; `changed` marks the symbols in `message`.
    void sendPrices(const SharedMessage& message, const std::vector<bool>& changed);

    /// Disconnects a client that has not taken a message for too long.
    void dropIfStalled();
    /// Ends the connection at once.
    void drop() { leave(); }
    /// Says good-bye and ends the connection.
    void close();

    /// Whether the client has sent anything since it was let in, even an answer to a ping.
    [[nodiscard]] bool hasSpoken() const { return m_hasSpoken; }

    [[nodiscard]] const std::string& userId() const { return m_userId; }

private:
    void onAccepted(boost::system::error_code error);
    void read();
    void onRead(boost::system::error_code error);
    void pump();
    [[nodiscard]] SharedMessage next();
    void onWritten(boost::system::error_code error);
    void leave();

    Stream m_stream;
    FeedHub& m_hub;
    std::string m_userId;
    std::shared_ptr<void> m_ticket;
    boost::beast::flat_buffer m_incoming;

    std::deque<SharedMessage> m_events;
    SharedMessage m_trades;
    SharedMessage m_prices;      ///< waiting, complete for m_changed unless m_merged
    std::vector<bool> m_changed; ///< symbols with prices that were not sent yet
    bool m_merged = false;       ///< several updates wait; one message is made of them when its turn comes
    bool m_pongDue = false;
    SharedMessage m_writing;
    std::chrono::steady_clock::time_point m_writingSince;
    bool m_hasSpoken = false;
    bool m_open = false;
    bool m_closing = false;
};

} // namespace practice
