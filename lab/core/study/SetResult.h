#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/figures/Figures.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// What equity did on a UTC day, as a fraction of what it was before.
struct DayGain {
    std::int32_t day = 0; ///< since 1970-01-01
    double gain = 0;
    friend bool operator==(const DayGain&, const DayGain&) = default;
};

/// What is kept of one run of a study.
struct SetResult {
    std::uint64_t number = 0;           ///< of the set in its grid
    std::optional<std::string> failure; ///< why there are no figures, in a line
    std::vector<Figure> figures;        ///< in the order of figureRows(); empty after a failure
    Figure daySharpe;                   ///< Sharpe ratio a day, not a year
    std::uint64_t tickPrint = 0;
    std::uint64_t decisionPrint = 0;
    std::vector<DayGain> days;

    /// The figure with this key; absent where it is undefined and after a failure.
    [[nodiscard]] Figure figure(std::string_view key) const;
    friend bool operator==(const SetResult&, const SetResult&) = default;
};

/// What is kept of a run that came to its end. Throws StudyError with the reason for one that did not.
[[nodiscard]] SetResult setResultOf(std::uint64_t number, const RunResult& result);

/// For a pipe between two processes of the same program.
[[nodiscard]] std::string bytesOf(const SetResult& result);
/// Throws StudyError for bytes that are none of a result.
[[nodiscard]] SetResult setResultFrom(std::string_view bytes);

/// Days as bytes that every machine writes alike.
[[nodiscard]] std::string bytesOf(const std::vector<DayGain>& days);
[[nodiscard]] std::vector<DayGain> daysFrom(std::string_view bytes);

} // namespace lab
