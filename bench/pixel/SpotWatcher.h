#pragma once

#include "pixel/Lookout.h"
#include "pixel/Screen.h"
#include "pixel/Spot.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Watches spots of a screen in a thread of its own, so that whoever sends the prices can go on sending.
class SpotWatcher final {
public:
    struct Result {
        bool early = false;                        ///< a spot showed the price before it was sent
        std::optional<Lookout::Sighting> sighting; ///< of the last spot; nothing when one never showed it
    };
    using Done = std::function<void(const Result&)>;

    /// The screen must outlive the watcher.
    SpotWatcher(const Screen& screen, std::int64_t pauseNs);
    ~SpotWatcher();
    SpotWatcher(const SpotWatcher&) = delete;
    SpotWatcher& operator=(const SpotWatcher&) = delete;

    /// Looks for a price in all of these spots until that moment, and tells in the watcher's thread. Comes
    /// back once it looks: what is sent then is not seen late. One price at a time; the spots must stay until
    /// it is told.
    void watch(std::vector<const Spot*> spots, std::size_t price, std::int64_t endNs, Done done);

private:
    void run();
    void lookFor(const Lookout& lookout);

    const Screen& m_screen;
    std::int64_t m_pauseNs;
    std::vector<const Spot*> m_spots;
    std::size_t m_price = 0;
    std::int64_t m_endNs = 0;
    Done m_done;
    bool m_wanted = false;
    bool m_looking = false;
    bool m_leaving = false;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
};
