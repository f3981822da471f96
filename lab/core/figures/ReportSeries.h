#pragma once

#include "lab/core/figures/Figures.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lab {

/// A year of the monthly table: what daily equity did within each month, as a fraction of that before it.
struct YearRow {
    int year = 0;
    std::array<Figure, 12> months; ///< absent: no prices, or nothing left to lose
    Figure whole;
};

/// Years that had prices, oldest first.
[[nodiscard]] std::vector<YearRow> monthlyTable(const RunResult& result);

/// How many of the daily returns are at least `from` and below `to`.
struct HistogramBin {
    double from = 0;
    double to = 0;
    std::size_t count = 0;
};

/// The daily returns in bins of equal, round widths; 0 is always a border. Empty without returns.
[[nodiscard]] std::vector<HistogramBin> returnHistogram(const RunResult& result);

/// The trades that were opened in one part of the week or of the day.
struct TimeSlot {
    std::int64_t trades = 0;
    std::int64_t wins = 0;
    practice::Cents net = 0;
};

[[nodiscard]] std::array<TimeSlot, 7> weekdayTable(const RunResult& result); ///< Monday first, UTC
[[nodiscard]] std::array<TimeSlot, 24> hourTable(const RunResult& result);   ///< UTC

/// How far a trade went against its owner and for him before it was closed. Cents.
struct ExcursionPoint {
    int ticket = 0;
    practice::Cents worst = 0;
    practice::Cents best = 0;
    practice::Cents net = 0;
};

/// The trades' excursions in their order, at most `most` (at least 2) of them: the worst and the best of each
/// group of neighbours where there are more.
[[nodiscard]] std::vector<ExcursionPoint> excursions(const RunResult& result, std::size_t most = 2000);

/// Which values of a curve to draw so that no peak and no bottom is lost: ascending places, the first and the
/// last among them, at most `most` (which counts as at least 4); between these the lowest and the highest of
/// each bucket.
[[nodiscard]] std::vector<std::size_t> thinned(std::span<const double> curve, std::size_t most = 2000);

/// Neighbouring bars joined, so that at most `most` (at least 1) are left.
[[nodiscard]] std::vector<BarRow> joinedBars(std::span<const BarRow> bars, std::size_t most);

/// The trades that were closed for one reason.
struct ExitSum {
    ExitReason reason = ExitReason::Script;
    std::size_t trades = 0;
    practice::Cents net = 0;
};

/// Of each reason that occurs, in the order of the enumeration.
[[nodiscard]] std::vector<ExitSum> exitSums(const RunResult& result);

} // namespace lab
