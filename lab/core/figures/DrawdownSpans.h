#pragma once

#include "lab/core/RunResult.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lab {

/// A stretch of the daily equity below its highest value so far. Days since 1970-01-01.
struct DrawdownSpan {
    std::int32_t peakDay = 0; ///< the last day at the highest value; that before the run for its beginning
    std::int32_t bottomDay = 0;
    std::optional<std::int32_t> recoveredDay; ///< the first at or above the peak; absent: not by the end
    double depth = 0;                         ///< fraction of the peak, above 0; may exceed 1
    std::int32_t days = 0;                    ///< from the peak to the recovery or to the last day
};

/// All drawdowns of the daily equity, oldest first. The curve begins with the starting balance, dated the day
/// before the first.
[[nodiscard]] std::vector<DrawdownSpan> drawdownSpans(const RunResult& result);

/// The deepest `most` of them, deepest first, of equal ones the older.
[[nodiscard]] std::vector<DrawdownSpan> worstDrawdowns(const RunResult& result, std::size_t most = 5);

/// For each point its distance below the highest equity so far, as a fraction of that, at least 0.
[[nodiscard]] std::vector<double> drawdownCurve(std::span<const EquityPoint> equity);

} // namespace lab
