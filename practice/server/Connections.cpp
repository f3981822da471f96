#include "practice/server/Connections.h"

#include <map>
#include <tuple>
#include <utility>

namespace practice {

Connections::Place::Place(std::string client)
    : m_client(std::move(client))
    , m_since(std::chrono::steady_clock::now())
{
}

void Connections::Place::enter(Phase phase, Time now)
{
    m_hasAsked = m_hasAsked || phase == Phase::Answering;
    m_phase = phase;
    m_since = now;
}

Connections::Connections(std::size_t most)
    : m_most(most)
{
}

std::shared_ptr<Connections::Place> Connections::admit(const std::string& client)
{
    std::erase_if(m_places, [](const auto& taken) {
        const auto place = taken.lock();
        return !place || place->m_cleared;
    });
    if (m_places.size() >= m_most && !clearOne())
        return nullptr;
    auto place = std::make_shared<Place>(client);
    m_places.push_back(place);
    return place;
}

bool Connections::clearOne()
{
    std::vector<std::shared_ptr<Place>> places;
    std::map<std::string, int> crowd;
    for (const auto& taken : m_places) {
        places.push_back(taken.lock());
        ++crowd[places.back()->m_client];
    }
    const auto rank = [&](const Place& place) {
        int hurry = place.m_hasAsked ? 1 : 0;
        if (place.m_phase == Phase::Bringing)
            hurry = 2;
        else if (place.m_phase == Phase::Replying)
            hurry = 3;
        return std::tuple(-crowd[place.m_client], hurry, place.m_since);
    };
    std::shared_ptr<Place> chosen;
    for (const auto& place : places) {
        if (place->m_end && place->m_phase != Phase::Answering && (!chosen || rank(*place) < rank(*chosen)))
            chosen = place;
    }
    if (!chosen)
        return false;
    chosen->m_cleared = true;
    chosen->m_end();
    return true;
}

} // namespace practice
