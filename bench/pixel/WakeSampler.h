#pragma once

#include "pixel/WakeLedger.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <vector>

/// Reads again and again how often the threads of a process have gone to sleep of their own accord, which is
/// as often as they were woken. The kernel counts; the process notices nothing.
class WakeSampler final {
public:
    /// Begins at once.
    explicit WakeSampler(std::int64_t processId);
    ~WakeSampler();
    WakeSampler(const WakeSampler&) = delete;
    WakeSampler& operator=(const WakeSampler&) = delete;

    /// Ends the sampling, and tells what was found. A thread that has gone meanwhile counts up to the last
    /// look.
    [[nodiscard]] std::vector<Wake> finish();

private:
    void run();
    void look();

    std::string m_tasks;
    std::string m_mainThread;
    std::map<std::string, long> m_seen; ///< by thread id
    bool m_first = true;
    std::vector<Wake> m_wakes;
    std::atomic<bool> m_leaving = false;
    std::thread m_thread;
};
