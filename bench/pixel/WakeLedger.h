#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// Sleeps that threads of a program have ended by themselves, found at this moment.
struct Wake final {
    std::int64_t ns = 0; ///< CLOCK_MONOTONIC; the wake-ups came shortly before
    std::string thread;
    bool mainThread = false;
    int count = 0;
};

/// Which wake-ups known timers explain, and how many are left.
class WakeLedger final {
public:
    /// Something that the program did at this moment because of a timer, seen from outside, such as a ping;
    /// whatever wakes within the time that it takes belongs to it.
    struct Deed {
        std::int64_t atNs = 0;
        std::int64_t takesNs = 0;
    };

    /// With the period of a timer of the main thread that turns for ever: one wake-up in each period is its
    /// own, or two in the period after one without.
    WakeLedger(const std::vector<Wake>& wakes, std::int64_t periodNs, const std::vector<Deed>& deeds);

    [[nodiscard]] int all() const { return m_all; }
    [[nodiscard]] int ofTimer() const { return m_ofTimer; }
    [[nodiscard]] int ofDeeds() const { return m_ofDeeds; }
    /// What nothing explains.
    [[nodiscard]] int beyond() const { return m_all - m_ofTimer - m_ofDeeds; }
    /// All, by the name of the thread.
    [[nodiscard]] const std::map<std::string, int>& byThread() const { return m_byThread; }

private:
    int m_all = 0;
    int m_ofTimer = 0;
    int m_ofDeeds = 0;
    std::map<std::string, int> m_byThread;
};
