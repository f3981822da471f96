#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace lab {

/// Ends a run from outside, even one whose script never returns: when somebody asks for it, or after a time.
class RunWatch final {
public:
    enum class Verdict { None, Stopped, TooLong };

    /// How long after its limit a run may take to notice.
    static constexpr std::chrono::milliseconds grace{2'000};

    /// Calls `end` once, from a thread of its own, when `stop` is set or `limit` is over; 0 is no limit, and
    /// without both there is no thread. When this object still lives for `grace` after the limit, `deaf` is
    /// called, unless it is empty. What they refer to must outlive this object.
    RunWatch(std::function<void()> end, const std::atomic<bool>* stop, std::chrono::milliseconds limit,
        std::function<void()> deaf = {});
    ~RunWatch();
    RunWatch(const RunWatch&) = delete;
    RunWatch& operator=(const RunWatch&) = delete;

    [[nodiscard]] Verdict verdict() const { return m_verdict.load(std::memory_order_relaxed); }

private:
    void watch(const std::atomic<bool>* stop, std::chrono::milliseconds limit);

    std::function<void()> m_end;
    std::function<void()> m_deaf;
    std::atomic<Verdict> m_verdict = Verdict::None;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isOver = false;
    std::thread m_thread;
};

} // namespace lab
