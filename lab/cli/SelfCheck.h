#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/RunSettings.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// What was found out about one thing that a result must not depend on.
struct CheckVerdict {
    /// Nothing is proved by comparing nothing: such a check has neither held nor failed.
    enum class Outcome { Holds, Fails, NotComparable };

    std::string name; ///< in a word
    Outcome outcome = Outcome::Fails;
    std::string text; ///< a sentence, which tells what was compared

    [[nodiscard]] bool holds() const { return outcome == Outcome::Holds; }
};

/// How runs are made for a check.
struct CheckRuns {
    /// A run of the script over the same prices with these settings.
    std::function<RunResult(const RunSettings&)> run;
    /// When a run with such a warm-up begins at the earliest; nothing where there is not enough history.
    std::function<std::optional<practice::TimeMs>(int warmupBars)> startAfter;
};

/// What two runs that begin alike say differently of the time before the earlier end, in a few words; nothing
/// when they agree to the byte: trades closed and equity reached by then, the first lines of the journal.
[[nodiscard]] std::optional<std::string> differenceBefore(const RunResult& shorter, const RunResult& longer);

// Each makes the runs that it needs; `base` is the run that is checked.

[[nodiscard]] CheckVerdict checkFuture(const CheckRuns& runs, const RunResult& base);
[[nodiscard]] CheckVerdict checkWarmup(const CheckRuns& runs, const RunResult& base);
[[nodiscard]] CheckVerdict checkExtremes(const CheckRuns& runs, const RunResult& base);
[[nodiscard]] CheckVerdict checkRepetition(const CheckRuns& runs, const RunResult& base);

using Check = CheckVerdict (*)(const CheckRuns&, const RunResult&);

/// All of them, in the order in which they are told.
[[nodiscard]] const std::vector<Check>& allChecks();

/// So many runs do all checks need, the base's among them, at the most.
inline constexpr int mostCheckRuns = 10;

} // namespace lab
