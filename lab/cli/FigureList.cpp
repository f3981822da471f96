#include "lab/cli/FigureList.h"

#include "lab/cli/Screen.h"
#include "lab/core/RunResult.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/figures/ReportSeries.h"
#include "lab/core/figures/Warnings.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/Texts.h"

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace lab {

namespace {

/// Pairs that stand beside one another.
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> looked{{
    {"netProfit", "trades"},
    {"cagr", "winRate"},
    {"sharpe", "profitFactor"},
    {"sortino", "expectancy"},
    {"maxDrawdown", "payoff"},
    {"longestDrawdownDays", "averageDurationMinutes"},
    {"recoveryFactor", "exposure"},
    {"psr", "commission"},
    {"buyAndHold", "swap"},
    {"annualDays", "spreadCost"},
}};

void addFigure(std::vector<std::string>& line, std::string_view key, const Figures& figures)
{
    const FigureRow* row = figureRow(key);
    line.emplace_back(row->name);
    line.push_back(figureText(row->kind, row->of(figures)));
}

/// "Closed by  SL 16, TP 3"; empty without trades.
std::string exitsLine(const RunResult& result)
{
    std::string line;
    for (const ExitSum& sum : exitSums(result))
        line += (line.empty() ? "Closed by  " : ", ") + std::string(reasonText(sum.reason)) + ' '
            + std::to_string(sum.trades);
    return line.empty() ? line : line + '\n';
}

} // namespace

std::string figureList(const RunResult& result, const Figures& figures, bool colours)
{
    std::string text
        = toned(wrapped(verdictOf(result, figures), screenWidth, ""), Tone::Strong, colours) + '\n';
    for (const std::string& warning : figures.warnings)
        text += toned("! " + wrapped(oneLine(warning), screenWidth - 2, "  "), Tone::Warning, colours) + '\n';
    std::vector<std::vector<std::string>> lines;
    for (const auto& [left, right] : looked) {
        std::vector<std::string>& line = lines.emplace_back();
        addFigure(line, left, figures);
        line.emplace_back();
        addFigure(line, right, figures);
    }
    return text + '\n' + columns(lines, {1, 4}) + exitsLine(result);
}

} // namespace lab
