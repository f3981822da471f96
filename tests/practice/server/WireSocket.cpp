#include "practice/server/WireSocket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// Where the next connection keeps its copies, without an ending; empty when none are wanted.
std::string nextCopy()
{
    static const std::string folder = [] {
        const char* wanted = std::getenv("TAVORAN_WIRE_COPIES");
        if (wanted == nullptr || *wanted == '\0')
            return std::string();
        std::filesystem::remove_all(wanted);
        std::filesystem::create_directories(wanted);
        return std::string(wanted);
    }();
    static int count = 0;
    return folder.empty() ? folder : folder + '/' + std::to_string(++count);
}

} // namespace

WireSocket::WireSocket(std::uint16_t port, int receiveBuffer, const std::string& from)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    if (receiveBuffer > 0)
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    const timeval limit{10, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_in source{};
    source.sin_family = AF_INET;
    const bool placed = from.empty()
        || (::inet_pton(AF_INET, from.c_str(), &source.sin_addr) == 1
            && ::bind(m_socket, reinterpret_cast<const sockaddr*>(&source), sizeof source) == 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (!placed || ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_socket);
        throw std::runtime_error("cannot connect");
    }
    if (const std::string copy = nextCopy(); !copy.empty()) {
        m_sentCopy.open(copy + ".sent", std::ios::binary);
        m_receivedCopy.open(copy + ".received", std::ios::binary);
    }
}

WireSocket::~WireSocket()
{
    ::close(m_socket);
}

void WireSocket::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            throw std::runtime_error("cannot send");
        m_sentCopy.write(bytes.data(), sent);
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

bool WireSocket::fill()
{
    char chunk[16 * 1024];
    const ssize_t got = ::recv(m_socket, chunk, sizeof chunk, 0);
    if (got < 0 && errno != ECONNRESET)
        throw std::runtime_error("no answer");
    if (got <= 0)
        return false;
    m_buffer.append(chunk, static_cast<std::size_t>(got));
    m_receivedCopy.write(chunk, got);
    return true;
}

std::string WireSocket::readUntil(std::string_view mark)
{
    std::size_t at = 0;
    while ((at = m_buffer.find(mark)) == std::string::npos) {
        if (!fill())
            throw std::runtime_error("connection ended");
    }
    return read(at + mark.size());
}

std::string WireSocket::read(std::size_t count)
{
    while (m_buffer.size() < count) {
        if (!fill())
            throw std::runtime_error("connection ended");
    }
    std::string bytes = m_buffer.substr(0, count);
    m_buffer.erase(0, count);
    return bytes;
}

std::string WireSocket::readAll()
{
    while (fill()) { }
    return std::move(m_buffer);
}

void WireSocket::awaitReset()
{
    constexpr int patienceMs = 10'000;
    pollfd waiting{m_socket, 0, 0};
    if (::poll(&waiting, 1, patienceMs) != 1 || (waiting.revents & POLLERR) == 0)
        throw std::runtime_error("no reset");
}

bool WireSocket::isSilentFor(std::chrono::milliseconds time)
{
    pollfd waiting{m_socket, POLLIN, 0};
    return m_buffer.empty() && ::poll(&waiting, 1, static_cast<int>(time.count())) == 0;
}
