#pragma once

#include "experts/ExpertScript.h"
#include "lab/core/RunResult.h"
#include "lab/core/RunSettings.h"
#include "lab/run/PastCandles.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

namespace lab {

struct MinuteHistory;

/// The inputs of the script as it runs with these settings. What it changes by itself is a state, and told
/// only when it was given. Throws std::invalid_argument when the script has no such inputs.
[[nodiscard]] std::vector<RunInput> inputsAsRun(const RunSettings& settings, const ExpertScript& script);

/// What happens around a run and has no part in its result, unless it ends it early.
struct RunControl {
    /// Told now and then how much is done, from 0 to 1.
    std::function<void(double done)> progress;
    /// Set, from any thread or a signal handler, when the run shall end as soon as it can.
    const std::atomic<bool>* stop = nullptr;
    /// A script that has not come to its end by then is ended; 0 leaves it all the time that it wants.
    std::chrono::milliseconds limit{0};
    /// Called, from another thread, when the script does not notice the limit for RunWatch::grace, as one
    /// that tries endless combinations of a regular expression: the run cannot be ended by itself.
    std::function<void()> deaf;
    /// The chart keeps two or three times as many bars; older ones are made again for a script that asks.
    std::size_t barsAtATime = PastCandles::usualBlock;
};

/// Runs Expert Advisors, unchanged, over history: each has a chart whose bars grow with the prices, a clock
/// that follows them, and an account at the practice platform's broker. One run at a time in a process: Qt's
/// application object must exist, and its posted events are handed out here.
class LabRun final {
public:
    /// The history of the symbol that is traded, and then those of whatever pairs its money is converted by.
    /// All must outlive this object.
    explicit LabRun(std::vector<const MinuteHistory*> histories);

    /// `script` as it was read: the inputs of the settings take their places in it here. A script that fails
    /// gives a result up to there, with the reason in `error`; so does one that was stopped. Throws
    /// std::invalid_argument when the script has no such inputs.
    [[nodiscard]] RunResult run(
        const ExpertScript& script, const RunSettings& settings, const RunControl& control = {}) const;

    /// Of all the histories.
    [[nodiscard]] std::uint64_t dataHash() const { return m_dataHash; }

private:
    std::vector<const MinuteHistory*> m_histories;
    std::uint64_t m_dataHash = 0;
};

} // namespace lab
