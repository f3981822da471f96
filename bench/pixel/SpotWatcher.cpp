#include "pixel/SpotWatcher.h"

#include <algorithm>
#include <utility>

SpotWatcher::SpotWatcher(const Screen& screen, std::int64_t pauseNs)
    : m_screen(screen)
    , m_pauseNs(pauseNs)
    , m_thread([this] { run(); })
{
}

SpotWatcher::~SpotWatcher()
{
    {
        const std::lock_guard lock(m_mutex);
        m_leaving = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void SpotWatcher::watch(std::vector<const Spot*> spots, std::size_t price, std::int64_t endNs, Done done)
{
    std::unique_lock lock(m_mutex);
    m_spots = std::move(spots);
    m_price = price;
    m_endNs = endNs;
    m_done = std::move(done);
    m_looking = false;
    m_wanted = true;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_looking; });
}

void SpotWatcher::run()
{
    const Lookout lookout(m_pauseNs);
    if (m_pauseNs > 0)
        Lookout::goFirst();
    while (true) {
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_wanted || m_leaving; });
            if (m_leaving)
                return;
            m_wanted = false;
        }
        lookFor(lookout);
    }
}

void SpotWatcher::lookFor(const Lookout& lookout)
{
    const auto isThere
        = [this](const Spot* spot) { return m_screen.shows(spot->part, spot->pictures.at(m_price)); };
    const bool early = std::any_of(m_spots.cbegin(), m_spots.cend(), isThere);
    {
        const std::lock_guard lock(m_mutex);
        m_looking = true;
    }
    m_changed.notify_all();
    auto next = m_spots.cbegin();
    const auto sighting = lookout.lookUntil(m_endNs, [&] {
        next = std::find_if_not(next, m_spots.cend(), isThere);
        return next == m_spots.cend();
    });
    m_done({early, sighting});
}
