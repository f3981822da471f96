#include "faults/TlsFaultScript.h"

#include "faults/FaultyLine.h"

#include <utility>

namespace faults {

using practice::LineCarrier;
using practice::Way;

namespace {

constexpr std::size_t recordHead = 5;
constexpr char applicationData = 23;
// A client's Finished is shorter, and a request with its token longer.
constexpr std::size_t leastRequest = 150;

/// The length of the first whole record; 0 while it has not come whole.
std::size_t wholeRecord(const std::string& bytes)
{
    if (bytes.size() < recordHead)
        return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const std::size_t whole = recordHead + (std::size_t{byte(3)} << 8U | byte(4));
    return bytes.size() < whole ? 0 : whole;
}

} // namespace

void TlsFaultScript::open(LineCarrier&)
{
    ++m_state.news.connections;
}

void TlsFaultScript::pass(Way way, std::string bytes, LineCarrier& carrier)
{
    std::string& rest = way == Way::ToServer ? m_toServer : m_toClient;
    rest += bytes;
    while (const std::size_t whole = wholeRecord(rest)) {
        std::string record = rest.substr(0, whole);
        rest.erase(0, whole);
        const bool isRequest = record[0] == applicationData && record.size() >= leastRequest;
        if (way == Way::ToServer && isRequest) {
            ++m_requests;
            m_sinceRequest = 0;
            if (isRequestDue()) {
                ++m_state.news.struck;
                m_state.news.holding = true; // the server of the tests ends nothing for that
                record.back() = static_cast<char>(record.back() ^ 1);
            }
        } else if (way == Way::ToClient && isDue(record)) {
            ++m_state.news.struck;
            record.back() = static_cast<char>(record.back() ^ 1);
        }
        carrier.send(way, std::move(record), {});
    }
}

bool TlsFaultScript::isRequestDue() const
{
    return m_state.plan
        && (m_state.plan->moment == Moment::Sending
            || (m_state.plan->moment == Moment::Between && m_requests > 1));
}

bool TlsFaultScript::isDue(const std::string& record)
{
    if (!m_state.plan)
        return false;
    switch (m_state.plan->moment) {
    case Moment::Connecting: // the server's first word
        return m_requests == 0 && record[0] != applicationData;
    case Moment::Headers:
        return m_requests > 0 && record[0] == applicationData && m_sinceRequest++ == 0;
    case Moment::Body: // an answer of several records; tickets of the session are shorter
        return m_requests > 0 && record.size() > 1000 && m_sinceRequest++ == 1;
    case Moment::Sending:
    case Moment::Between:
        return false;
    }
    return false;
}

} // namespace faults
