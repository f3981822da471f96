#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace lab {

/// How the jobs of a study are carried out.
struct WorkerSettings {
    std::size_t workers = 1;
    std::chrono::milliseconds limit{0};      ///< for each job; 0: none
    std::chrono::milliseconds grace{2'000};  ///< more than the limit, before a worker is killed for it
    std::uint64_t memoryBytes = 0;           ///< what a worker may take besides what it begins with; 0: all
    const std::atomic<bool>* stop = nullptr; ///< set when no more is wanted
};

struct JobResult {
    std::size_t job = 0;
    std::string bytes;                  ///< what the work has returned
    std::optional<std::string> failure; ///< why there is no result, in a line
};

/// Carries out one job, in a process of its own; what it throws is the reason of its failure.
using Work = std::function<std::string(std::size_t job)>;

/// Carries out the jobs 0..count−1 in forked workers, which share what has been loaded, and hands each result
/// over in the order in which they come. A worker that crashes, takes too much memory or does not end costs
/// its job alone. The process must have no other threads. False when it was stopped: jobs that were under
/// way are given up. Throws StudyError when not even one worker can be started; and what `take` throws,
/// after ending the workers.
[[nodiscard]] bool runJobs(std::size_t count, const Work& work, const std::function<void(JobResult)>& take,
    const WorkerSettings& settings);

} // namespace lab
