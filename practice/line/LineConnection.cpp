#include "practice/line/LineConnection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <utility>

namespace practice {

namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;

namespace {

// With as much on its way no more is read, as on a real line whose sender has to wait.
constexpr std::size_t mostWaiting = 256 * 1024;

void resetSocket(tcp::socket& socket)
{
    error_code ignored;
    socket.set_option(net::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
}

} // namespace

LineConnection::Lane::Lane(Way direction, tcp::socket& source, tcp::socket& sink)
    : way(direction)
    , from(source)
    , to(sink)
    , timer(source.get_executor())
{
}

LineConnection::LineConnection(tcp::socket client, std::unique_ptr<LineScript> script)
    : m_client(std::move(client))
    , m_server(m_client.get_executor())
    , m_script(std::move(script))
    , m_toServer(Way::ToServer, m_client, m_server)
    , m_toClient(Way::ToClient, m_server, m_client)
{
}

void LineConnection::start(const tcp::endpoint& server)
{
    error_code ignored;
    m_client.set_option(tcp::no_delay(true), ignored);
    m_script->open(*this);
    if (m_over)
        return;
    read(m_toServer);
    if (m_silent || m_ending)
        return;
    m_server.async_connect(server, [self = shared_from_this()](error_code error) {
        if (self->m_over)
            return;
        if (error) {
            self->reset();
            return;
        }
        error_code none;
        self->m_server.set_option(tcp::no_delay(true), none);
        self->m_connected = true;
        self->read(self->m_toClient);
        self->next(self->m_toServer);
    });
}

void LineConnection::reset()
{
    if (m_over)
        return;
    m_over = true;
    m_toServer.timer.cancel();
    m_toClient.timer.cancel();
    resetSocket(m_client);
    resetSocket(m_server);
}

void LineConnection::send(Way way, std::string bytes, std::chrono::nanoseconds delay)
{
    if (m_over || m_silent || m_ending || bytes.empty())
        return;
    add(lane(way),
        {Piece::Kind::Bytes, std::move(bytes),
            std::chrono::steady_clock::now() + std::chrono::duration_cast<Time::duration>(delay)});
}

void LineConnection::end(LineEnd how)
{
    if (m_over || m_silent || m_ending)
        return;
    if (how == LineEnd::Silence) {
        m_silent = true;
        return;
    }
    m_ending = true;
    const auto kind = how == LineEnd::Close ? Piece::Kind::Close : Piece::Kind::Reset;
    if (kind == Piece::Kind::Reset && m_toClient.pieces.empty())
        reset();
    else
        add(m_toClient, {kind, {}, std::chrono::steady_clock::now()});
}

void LineConnection::read(Lane& lane)
{
    if (m_over || lane.reading || lane.ended)
        return;
    lane.reading = true;
    lane.from.async_read_some(
        net::buffer(lane.buffer), [self = shared_from_this(), &lane](error_code error, std::size_t count) {
            lane.reading = false;
            if (self->m_over)
                return;
            if (!error) {
                if (!self->m_silent && !self->m_ending)
                    self->m_script->pass(lane.way, std::string(lane.buffer.data(), count), *self);
                if (lane.waiting < mostWaiting)
                    self->read(lane);
                return;
            }
            lane.ended = true;
            if (self->m_silent) {
                self->reset(); // one end has given up
                return;
            }
            self->add(lane,
                {error == net::error::eof ? Piece::Kind::Close : Piece::Kind::Reset, {},
                    std::chrono::steady_clock::now()
                        + std::chrono::duration_cast<Time::duration>(self->m_script->endDelay())});
        });
}

void LineConnection::add(Lane& lane, Piece piece)
{
    if (lane.finished)
        return;
    if (!lane.pieces.empty())
        piece.due = std::max(piece.due, lane.pieces.back().due);
    lane.waiting += piece.bytes.size();
    lane.pieces.push_back(std::move(piece));
    next(lane);
}

void LineConnection::next(Lane& lane)
{
    if (m_over || lane.busy || lane.pieces.empty() || (lane.way == Way::ToServer && !m_connected))
        return;
    lane.busy = true;
    lane.timer.expires_at(lane.pieces.front().due);
    lane.timer.async_wait([self = shared_from_this(), &lane](error_code error) {
        if (!error && !self->m_over)
            self->deliver(lane);
    });
}

void LineConnection::deliver(Lane& lane)
{
    const Piece& piece = lane.pieces.front();
    if (piece.kind == Piece::Kind::Reset) {
        reset();
        return;
    }
    if (piece.kind == Piece::Kind::Close) {
        finish(lane);
        return;
    }
    net::async_write(
        lane.to, net::buffer(piece.bytes), [self = shared_from_this(), &lane](error_code error, std::size_t) {
            if (self->m_over)
                return;
            if (error) {
                self->reset();
                return;
            }
            lane.waiting -= lane.pieces.front().bytes.size();
            lane.pieces.pop_front();
            lane.busy = false;
            self->next(lane);
            if (lane.waiting < mostWaiting && self->lane(lane.way).from.is_open())
                self->read(lane);
        });
}

void LineConnection::finish(Lane& lane)
{
    lane.pieces.clear();
    lane.waiting = 0;
    error_code ignored;
    lane.to.shutdown(tcp::socket::shutdown_send, ignored);
    lane.finished = true;
    if (!m_toServer.finished || !m_toClient.finished)
        return;
    m_over = true;
    m_client.close(ignored);
    m_server.close(ignored);
}

} // namespace practice
