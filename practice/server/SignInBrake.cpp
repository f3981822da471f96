#include "practice/server/SignInBrake.h"

#include <algorithm>

namespace practice {

using namespace std::chrono_literals;

namespace {

std::chrono::seconds waitAfter(int failures)
{
    constexpr int mostDoublings = 10; // enough to exceed the longest wait
    const int doublings = std::min(failures - SignInBrake::freeFailures, mostDoublings);
    return doublings < 0 ? 0s
                         : std::min<std::chrono::seconds>(SignInBrake::longestWait, 1s * (1 << doublings));
}

} // namespace

std::string SignInBrake::clientOf(const boost::asio::ip::address& address)
{
    if (address.is_v4())
        return address.to_string();
    const auto v6 = address.to_v6();
    auto bytes = v6.to_bytes();
    if (v6.is_v4_mapped())
        return boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, v6).to_string();
    std::fill(bytes.begin() + 8, bytes.end(), static_cast<unsigned char>(0));
    return boost::asio::ip::address_v6(bytes).to_string();
}

std::chrono::seconds SignInBrake::waitOf(const std::string& client, Time now) const
{
    const auto found = m_clients.find(client);
    if (found == m_clients.end())
        return 0s;
    const Record& record = found->second;
    if (record.failures < freeFailures || now - record.lastTry > memory)
        return 0s;
    if (record.underWay > 0)
        return 1s;
    return std::max(0s, std::chrono::ceil<std::chrono::seconds>(record.notBefore - now));
}

void SignInBrake::begun(const std::string& client, Time now)
{
    if (!m_clients.contains(client))
        makeRoom(now);
    Record& record = m_clients[client];
    if (now - record.lastTry > memory)
        record.failures = 0;
    record.lastTry = now;
    ++record.underWay;
}

void SignInBrake::succeeded(const std::string& client)
{
    const auto found = m_clients.find(client);
    if (found == m_clients.end())
        return;
    found->second.failures = 0;
    if (--found->second.underWay <= 0)
        m_clients.erase(found);
}

void SignInBrake::failed(const std::string& client, Time now)
{
    const auto found = m_clients.find(client);
    if (found == m_clients.end())
        return;
    Record& record = found->second;
    record.underWay = std::max(0, record.underWay - 1);
    ++record.failures;
    record.lastTry = now;
    record.notBefore = now + waitAfter(record.failures);
}

void SignInBrake::makeRoom(Time now)
{
    if (m_clients.size() < mostClients)
        return;
    std::erase_if(m_clients, [now](const auto& entry) { return now - entry.second.lastTry > memory; });
    if (m_clients.size() >= mostClients) {
        m_clients.erase(std::min_element(m_clients.begin(), m_clients.end(),
            [](const auto& left, const auto& right) { return left.second.lastTry < right.second.lastTry; }));
    }
}

} // namespace practice
