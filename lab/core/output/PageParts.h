#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/ReportPage.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace lab {

// The parts of a report page, as HTML. Everything that a script, a file or a server has named is escaped in
// them.

/// How much of a long run a page shows.
struct PageLimits {
    std::size_t bars = 12'000;
    std::size_t drawnTrades = 5'000;
    std::size_t listedTrades = 2'000;
    std::size_t dots = 2'000;
    std::size_t journalBytes = 400'000;
    std::size_t texts = 200; ///< warnings, inputs and years, each
    [[nodiscard]] PageLimits half() const
    {
        return {bars / 2, drawnTrades / 2, listedTrades / 2, dots / 2, journalBytes / 2, texts / 2};
    }
};

/// " class=\"n gain\"" or the like: a number in a cell, coloured by its sign.
[[nodiscard]] std::string_view signedCell(double value);

[[nodiscard]] std::string verdictPart(
    const RunResult& result, const Figures& figures, const ReportWords& words, const PageLimits& limits);
[[nodiscard]] std::string settingsPart(
    const RunResult& result, const ReportWords& words, const PageLimits& limits);
[[nodiscard]] std::string figuresPart(const Figures& figures);
[[nodiscard]] std::string monthsPart(const RunResult& result, const PageLimits& limits);
[[nodiscard]] std::string histogramPart(const RunResult& result);
[[nodiscard]] std::string weekPart(const RunResult& result); ///< weekdays and hours
[[nodiscard]] std::string drawdownsPart(const RunResult& result);
[[nodiscard]] std::string excursionsPart(const RunResult& result, const PageLimits& limits);
[[nodiscard]] std::string barsPart(const RunResult& result, const PageLimits& limits);
[[nodiscard]] std::string tradesPart(const RunResult& result, const PageLimits& limits);
[[nodiscard]] std::string journalPart(const RunResult& result, const PageLimits& limits);

/// What the charts draw, as JSON: equity, drawdown, bars, trades.
[[nodiscard]] std::string pageData(const RunResult& result, const PageLimits& limits);

} // namespace lab
