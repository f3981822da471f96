#include "soak/Relay.h"

#include "support/FrameLength.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t rememberedPrices = 64;
constexpr std::size_t fullBuffer = 128 * 1024;

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int openSocket()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        throw std::runtime_error("no socket");
    return socket;
}

void sendAtOnce(int socket)
{
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// The other side learns of it as of a cable that was pulled and a machine that has forgotten.
void reset(int socket)
{
    const linger none{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    ::close(socket);
}

bool isText(std::string_view frame)
{
    return (static_cast<unsigned char>(frame[0]) & 0x0fU) == 1;
}

bool isOfPrices(std::string_view frame)
{
    return frame.substr(0, 64).find("\"price_update\"") != std::string_view::npos;
}

} // namespace

Relay::Relay(std::uint16_t platformPort)
    : m_platformPort(platformPort)
    , m_listener(openSocket())
    , m_bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(m_listener, 64) != 0
        || ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("the relay found no free port");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { run(); });
}

Relay::~Relay()
{
    m_leaving = true;
    wake();
    m_thread.join();
    cut(Wish::All);
    ::close(m_listener);
    ::close(m_bell);
}

void Relay::cutFeed()
{
    m_wish = Wish::Feed;
    wake();
}

void Relay::cutAll()
{
    m_wish = Wish::All;
    wake();
}

void Relay::flood(int messages)
{
    m_owed += messages;
    wake();
}

void Relay::wake() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_bell, &one, sizeof one);
}

void Relay::run()
{
    while (!m_leaving) {
        std::vector<pollfd> watched{{m_bell, POLLIN, 0}, {m_listener, POLLIN, 0}};
        for (Way& way : m_ways) {
            addFlood(way);
            // Who does not take what there is for him is not read for, either.
            const bool clientFull = way.toClient.size() > fullBuffer;
            const bool platformFull = way.toPlatform.size() > fullBuffer;
            const auto wants = [](bool read, bool write) {
                return static_cast<short>((read ? POLLIN : 0) | (write ? POLLOUT : 0));
            };
            watched.push_back({way.client, wants(!platformFull, !way.toClient.empty()), 0});
            watched.push_back(
                {way.platformLeft ? -1 : way.platform, wants(!clientFull, !way.toPlatform.empty()), 0});
        }
        if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR)
            return;
        if (watched[0].revents != 0) {
            std::uint64_t rung = 0;
            [[maybe_unused]] const ssize_t got = ::read(m_bell, &rung, sizeof rung);
        }
        std::size_t place = 2;
        for (auto way = m_ways.begin(); way != m_ways.end(); place += 2) {
            const bool goesOn = serve(*way, watched[place].revents, watched[place + 1].revents);
            if (goesOn) {
                ++way;
                continue;
            }
            ::close(way->client);
            ::close(way->platform);
            way = m_ways.erase(way);
        }
        cut(m_wish.exchange(Wish::None));
        if (watched[1].revents != 0)
            accept();
    }
}

void Relay::accept()
{
    const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0)
        return;
    const int platform = openSocket();
    const sockaddr_in address = loopback(m_platformPort);
    if (::connect(platform, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(client);
        ::close(platform);
        return;
    }
    sendAtOnce(client);
    sendAtOnce(platform);
    Way& way = m_ways.emplace_back();
    way.client = client;
    way.platform = platform;
}

/// False once the way is at its end.
bool Relay::serve(Way& way, short clientEvents, short platformEvents)
{
    if (clientEvents & (POLLIN | POLLERR | POLLHUP)) {
        if (!take(way.client, way.toPlatform))
            return false;
        if (!std::exchange(way.asked, true))
            way.feed = way.toPlatform.rfind("GET /ws/", 0) == 0;
    }
    if (!way.platformLeft && (platformEvents & (POLLIN | POLLERR | POLLHUP))) {
        way.platformLeft = !take(way.platform, way.feed ? way.unread : way.toClient);
        readFrames(way);
    }
    if (!way.platformLeft && !give(way.platform, way.toPlatform))
        way.platformLeft = true;
    if (!give(way.client, way.toClient))
        return false;
    return !way.platformLeft || !way.toClient.empty();
}

/// Appends what there is to read; false at the end of the connection.
bool Relay::take(int socket, std::string& into)
{
    std::array<char, 65536> bytes{};
    const ssize_t got = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (got > 0)
        into.append(bytes.data(), static_cast<std::size_t>(got));
    return got > 0 || (got < 0 && (errno == EAGAIN || errno == EINTR));
}

/// Sends as much as fits at once; false once the connection is broken.
bool Relay::give(int socket, std::string& from)
{
    if (from.empty())
        return true;
    const ssize_t sent = ::send(socket, from.data(), from.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent > 0)
        from.erase(0, static_cast<std::size_t>(sent));
    return sent >= 0 || errno == EAGAIN || errno == EINTR;
}

/// Hands on what is whole, so that a flood never gets between two parts of a message.
void Relay::readFrames(Way& way)
{
    if (!way.feed)
        return;
    if (!way.framed) {
        const std::size_t end = way.unread.find("\r\n\r\n");
        if (end == std::string::npos)
            return;
        way.framed = way.unread.rfind("HTTP/1.1 101", 0) == 0;
        way.feed = way.framed;
        m_sentHere = 0;
        way.toClient += way.unread.substr(0, way.framed ? end + 4 : way.unread.size());
        way.unread.erase(0, way.framed ? end + 4 : way.unread.size());
    }
    std::size_t begin = 0;
    const std::string_view bytes = way.unread;
    while (const std::optional<std::size_t> length = frameLength(bytes.substr(begin))) {
        if (bytes.size() - begin < *length)
            break;
        const std::string_view frame = bytes.substr(begin, *length);
        begin += *length;
        way.toClient += frame;
        if (!isText(frame))
            continue;
        ++m_passed;
        ++m_sentHere;
        if (!isOfPrices(frame))
            continue;
        m_prices.emplace_back(frame);
        if (m_prices.size() > rememberedPrices)
            m_prices.pop_front();
    }
    way.unread.erase(0, begin);
}

void Relay::addFlood(Way& way)
{
    if (!way.framed || m_prices.empty())
        return;
    // Somebody may end the flood meanwhile: what is owed is counted down from what it was.
    for (long owed = m_owed; owed > 0 && way.toClient.size() < fullBuffer; owed = m_owed) {
        way.toClient += m_prices[m_nextPrice++ % m_prices.size()];
        m_owed.compare_exchange_strong(owed, owed - 1);
        ++m_flooded;
        ++m_sentHere;
    }
}

void Relay::cut(Wish wish)
{
    for (auto way = m_ways.begin(); wish != Wish::None && way != m_ways.end();) {
        if (wish == Wish::Feed && !way->feed) {
            ++way;
            continue;
        }
        m_cuts += way->feed ? 1 : 0;
        reset(way->client);
        reset(way->platform);
        way = m_ways.erase(way);
    }
}
