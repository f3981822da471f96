// Measures what more than one worker of the lab brings, and what memory one takes.
//   tavoran-bench-workers throughput ROUNDS
//   tavoran-bench-workers memory MINUTES

#include "lab/core/study/WorkerPool.h"
#include "lab/run/LabRun.h"
#include "scenes/Minutes.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t jobs = 8;

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Processor time that ended children have taken.
double childSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void carryOut(std::size_t count, std::size_t workers, const lab::Work& work,
    const std::function<void(const std::string&)>& take)
{
    lab::WorkerSettings settings;
    settings.workers = workers;
    const auto took = [&take](const lab::JobResult& result) {
        if (result.failure)
            throw std::runtime_error(*result.failure);
        take(result.bytes);
    };
    if (!lab::runJobs(count, work, took, settings))
        throw std::runtime_error("the workers were stopped");
}

void throughput(int rounds)
{
    const lab::MinuteHistory history = minuteWalk(50'000);
    const ExpertScript script = averagesScript();
    const lab::RunSettings settings = walkSettings(practice::Timeframe::M1, lab::Model::Ohlc);
    const lab::LabRun run({&history});
    const auto work = [&](std::size_t) { return std::to_string(run.run(script, settings).decisionPrint); };
    std::vector<double> onTheClock;
    std::vector<double> ofProcessors;
    for (int round = 0; round < rounds; ++round) {
        double clock[2] = {};
        double processor[2] = {};
        for (const std::size_t workers : {1U, 2U}) {
            const auto start = std::chrono::steady_clock::now();
            const double before = childSeconds();
            carryOut(jobs, workers, work, [](const std::string&) {});
            processor[workers - 1] = childSeconds() - before;
            clock[workers - 1]
                = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        }
        onTheClock.push_back(clock[0] / clock[1]);
        ofProcessors.push_back(2 * processor[0] / processor[1]);
    }
    std::cout << "two_workers " << medianOf(onTheClock) << "\ntwo_workers_cpu " << medianOf(ofProcessors)
              << '\n';
}

/// Memory in MB that this process has written to and shares with none.
double privateMegabytes()
{
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string word; file >> word;) {
        double kilobytes = 0;
        if (word == "Private_Dirty:" && file >> kilobytes)
            return kilobytes / 1024;
    }
    throw std::runtime_error("the system does not tell what memory is private");
}

/// The most that there has been from here to told(): a run takes most when it is nearly over.
class MemoryWatch final {
public:
    MemoryWatch()
        : m_thread([this] {
            while (!m_isOver) {
                m_most = std::max(m_most, privateMegabytes());
                std::this_thread::sleep_for(std::chrono::milliseconds{1});
            }
        })
    {
    }
    ~MemoryWatch()
    {
        if (m_thread.joinable())
            told();
    }
    double told()
    {
        m_isOver = true;
        m_thread.join();
        return m_most = std::max(m_most, privateMegabytes()); // the end may come between two looks
    }

private:
    std::atomic<bool> m_isOver = false;
    double m_most = 0;
    std::thread m_thread; // last: it uses the others
};

/// One call of the script a bar: memory does not depend on more of them.
void memory(std::size_t minutes)
{
    const lab::MinuteHistory history = minuteWalk(minutes);
    const ExpertScript script = averagesScript();
    const lab::LabRun run({&history});
    const auto measure = [&](const char* chart, practice::Timeframe timeframe) {
        const auto work = [&](std::size_t) {
            MemoryWatch watch;
            const lab::RunResult result = run.run(script, walkSettings(timeframe, lab::Model::Open));
            if (result.error)
                throw std::runtime_error(*result.error);
            return std::to_string(watch.told());
        };
        carryOut(1, 1, work, [chart](const std::string& megabytes) {
            std::cout << "worker_" << chart << "_mb " << megabytes << '\n';
        });
    };
    measure("m15", practice::Timeframe::M15);
    measure("m1", practice::Timeframe::M1);
}

} // namespace

int main(int argc, char** argv)
try {
    const QCoreApplication application(argc, argv);
    const std::string_view scene = argc == 3 ? argv[1] : "";
    if (scene == "throughput")
        throughput(std::stoi(argv[2]));
    else if (scene == "memory")
        memory(std::stoul(argv[2]));
    else
        return 2;
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
