#include "pixel/WakeSampler.h"

#include "pixel/Monotonic.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace {

struct Sleeps {
    std::string name;
    long count = -1;
};

Sleeps sleepsIn(const std::filesystem::path& task)
{
    Sleeps sleeps;
    std::ifstream file(task / "status");
    for (std::string line; std::getline(file, line);) {
        const std::string::size_type tab = line.find('\t');
        if (line.starts_with("Name:"))
            sleeps.name = line.substr(tab + 1);
        else if (line.starts_with("voluntary_ctxt_switches:"))
            sleeps.count = std::stol(line.substr(tab + 1));
    }
    return sleeps;
}

} // namespace

WakeSampler::WakeSampler(std::int64_t processId)
    : m_tasks("/proc/" + std::to_string(processId) + "/task")
    , m_mainThread(std::to_string(processId))
    , m_thread([this] { run(); })
{
}

WakeSampler::~WakeSampler()
{
    m_leaving = true;
    if (m_thread.joinable())
        m_thread.join();
}

std::vector<Wake> WakeSampler::finish()
{
    m_leaving = true;
    m_thread.join();
    return std::move(m_wakes);
}

void WakeSampler::run()
{
    while (!m_leaving) {
        look();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    look();
}

void WakeSampler::look()
{
    std::error_code gone;
    for (const auto& task : std::filesystem::directory_iterator(m_tasks, gone)) {
        const std::string id = task.path().filename();
        const Sleeps sleeps = sleepsIn(task.path());
        if (sleeps.count < 0)
            continue;
        // Of a thread that begins later, everything counts.
        const auto [known, isNew] = m_seen.try_emplace(id, m_first ? sleeps.count : 0);
        if (const long more = sleeps.count - std::exchange(known->second, sleeps.count); more > 0)
            m_wakes.push_back({monotonicNs(), sleeps.name, id == m_mainThread, static_cast<int>(more)});
    }
    m_first = false;
}
