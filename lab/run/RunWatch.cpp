#include "lab/run/RunWatch.h"

#include <utility>

namespace lab {

namespace {

constexpr std::chrono::milliseconds step{20};

} // namespace

RunWatch::RunWatch(std::function<void()> end, const std::atomic<bool>* stop, std::chrono::milliseconds limit,
    std::function<void()> deaf)
    : m_end(std::move(end))
    , m_deaf(std::move(deaf))
{
    if (stop || limit.count() > 0)
        m_thread = std::thread([this, stop, limit] { watch(stop, limit); });
}

RunWatch::~RunWatch()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void RunWatch::watch(const std::atomic<bool>* stop, std::chrono::milliseconds limit)
{
    const auto begin = std::chrono::steady_clock::now();
    const auto verdict = [&] {
        if (stop && stop->load())
            return Verdict::Stopped;
        const bool isLate = limit.count() > 0 && std::chrono::steady_clock::now() - begin >= limit;
        return isLate ? Verdict::TooLong : Verdict::None;
    };
    std::unique_lock lock(m_mutex);
    while (!m_isOver) {
        if (const Verdict now = verdict(); now != Verdict::None) {
            m_verdict = now;
            m_end();
            const bool isDeaf = now == Verdict::TooLong && m_deaf
                && !m_wake.wait_for(lock, grace, [this] { return m_isOver; });
            if (isDeaf)
                m_deaf();
            return;
        }
        m_wake.wait_for(lock, step);
    }
}

} // namespace lab
