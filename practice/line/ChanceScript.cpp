#include "practice/line/ChanceScript.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace practice {

namespace {

// No connection carries as much, so a later packet is none.
constexpr double mostPackets = 1e9;

std::size_t indexOf(Way way)
{
    return way == Way::ToServer ? 0 : 1;
}

std::optional<std::size_t> firstLost(double share, HashRandom& random)
{
    const double chance = random.uniform();
    if (share <= 0)
        return std::nullopt;
    if (share >= 1)
        return 0;
    const double packets = std::floor(std::log(chance) / std::log1p(-share));
    if (packets >= mostPackets)
        return std::nullopt;
    return static_cast<std::size_t>(packets) * ChanceScript::packet;
}

} // namespace

ChanceScript::ChanceScript(const LineQuality& quality, std::uint64_t connection, Throttles& throttles)
    : m_quality(quality)
    , m_throttles(throttles)
    , m_random(hashKey({hashText("line"), quality.seed, connection}))
{
    m_refused = m_random.uniform() < quality.refuse;
    for (auto& silentAfter : m_silentAfter)
        silentAfter = firstLost(quality.drop, m_random);
}

std::optional<std::size_t> ChanceScript::silentAfter(Way way) const
{
    return m_silentAfter.at(indexOf(way));
}

void ChanceScript::open(LineCarrier& carrier)
{
    if (m_refused)
        carrier.end(LineEnd::Reset);
}

void ChanceScript::pass(Way way, std::string bytes, LineCarrier& carrier)
{
    const std::size_t index = indexOf(way);
    std::size_t through = bytes.size();
    if (const auto limit = m_silentAfter.at(index))
        through = std::min(through, *limit - std::min(*limit, m_passed.at(index)));
    m_passed.at(index) += through;

    const auto now = std::chrono::steady_clock::now();
    const bool fallsSilent = through < bytes.size();
    bytes.resize(through);
    // In packets, so that a slow line brings a little at a time and no connection waits long for another.
    for (std::size_t begin = 0; begin < bytes.size(); begin += packet) {
        std::string piece = bytes.substr(begin, packet);
        const auto delay = m_throttles.at(index).enter(piece.size(), now) + underWay();
        carrier.send(way, std::move(piece), delay);
    }
    if (fallsSilent)
        carrier.end(LineEnd::Silence);
}

std::chrono::nanoseconds ChanceScript::endDelay()
{
    return underWay();
}

std::chrono::nanoseconds ChanceScript::underWay()
{
    const double most = std::chrono::duration<double, std::nano>(m_quality.jitter).count();
    return m_quality.latency + std::chrono::nanoseconds(std::llround(m_random.uniform() * most));
}

} // namespace practice
