#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/figures/StudyStatistics.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// How a plan went from one start.
struct ChallengeRow {
    practice::TimeMs start = 0;
    std::uint64_t seed = 0;
    PlanOutcome outcome = PlanOutcome::None; ///< None: the prices ended before the plan did
    double days = 0;                         ///< to the outcome, else to the end
    practice::Cents endBalance = 0;
    std::uint64_t trades = 0;
    std::optional<std::string> failure; ///< the run came to nothing, for this reason
    friend bool operator==(const ChallengeRow&, const ChallengeRow&) = default;
};

/// The plan of a run that came to its end. Throws StudyError with the reason for one that did not.
[[nodiscard]] ChallengeRow challengeRowOf(const RunResult& result);

/// For a pipe between two processes of the same program.
[[nodiscard]] std::string bytesOf(const ChallengeRow& row);
[[nodiscard]] ChallengeRow challengeRowFrom(std::string_view bytes);

/// How the plan went from all starts; runs that failed count nowhere but as such.
struct ChallengeSummary {
    std::size_t starts = 0;
    std::size_t failed = 0;
    struct Share {
        PlanOutcome outcome = PlanOutcome::None;
        std::size_t count = 0;
        std::optional<ShareRange> share; ///< with its Wilson interval; absent without starts
        Figure medianDays;               ///< absent without any
    };
    std::vector<Share> shares; ///< passed, both losses, none
};

[[nodiscard]] ChallengeSummary challengeSummary(const std::vector<ChallengeRow>& rows);

/// challenge.csv: a line for each start.
[[nodiscard]] std::string challengeCsv(const std::vector<ChallengeRow>& rows);

/// What a reader has to know before believing the shares: the warnings of `about`, and whether the prices are
/// simulated.
[[nodiscard]] std::vector<std::string> challengeWarnings(const RunResult& about);

/// challenge.json: the summary. `about` has been run, from the first start on.
[[nodiscard]] std::string challengeJson(
    const std::vector<ChallengeRow>& rows, const RunResult& about, std::string_view version);

/// "passed", "daily loss", "total loss" or "unfinished".
[[nodiscard]] std::string_view challengeWord(PlanOutcome outcome);

} // namespace lab
