#include "lab/cli/WalkText.h"

#include "lab/cli/Screen.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/SweepFiles.h"

#include <sstream>
#include <string_view>
#include <vector>

namespace lab {

namespace {

/// What stands above a window's two lines: its inputs, or why there are none.
std::string headText(const Walk& walk, const WalkRow& row)
{
    const auto counted = [](std::size_t count) { return groupedText(static_cast<double>(count), 0); };
    std::string text = row.chosen ? inputsText(walk.grid.inputsOf(row.chosen->number)) : std::string();
    text += (text.empty() ? "" : "; ") + counted(row.choice.eligible) + " of " + counted(row.choice.sets)
        + " sets eligible";
    if (row.efficiency())
        text += "; efficiency " + figureText(FigureKind::Fraction, row.efficiency());
    if (const std::string reason = row.reason(walk.order); !reason.empty())
        text += "; " + reason;
    return text;
}

/// A figure of all tests together; undefined without any.
Figure tests(const Walk& walk, std::string_view key)
{
    return walk.whole ? figureRow(key)->of(*walk.whole) : Figure();
}

} // namespace

std::string walkTable(const Walk& walk)
{
    std::vector<std::string_view> keys{walk.order.sort.row->key, "trades"};
    if (walk.order.sort.row->key != "netProfit")
        keys.emplace_back("netProfit");
    std::vector<std::vector<std::string>> lines{{"", "from", "to"}};
    lines[0].insert(lines[0].end(), keys.begin(), keys.end());
    const auto line = [&](const char* name, practice::TimeMs from, practice::TimeMs to, const auto& valueOf) {
        lines.push_back({name, minuteText(from), minuteText(to)});
        for (const std::string_view key : keys) {
            const FigureRow& figure = *figureRow(key);
            lines.back().push_back(figureText(figure.kind, valueOf(figure)));
        }
    };
    for (const WalkRow& row : walk.rows) {
        line("past", row.window.trainFrom, row.window.testFrom,
            [&](const FigureRow& figure) { return row.chosen ? row.chosen->figure(figure.key) : Figure(); });
        line("test", row.window.testFrom, row.window.testTo,
            [&](const FigureRow& figure) { return row.tested(figure.key); });
    }
    std::istringstream table(columns(lines, {3, 4, 5}));
    const std::size_t digits = std::to_string(walk.rows.size()).size();
    const std::string indent(digits + 2, ' ');
    std::string text;
    std::size_t count = 0;
    for (std::string each; std::getline(table, each); ++count) {
        if (count % 2 == 1) {
            const std::string number = std::to_string(count / 2 + 1);
            text += std::string(digits - number.size(), ' ') + number + "  "
                + wrapped(headText(walk, walk.rows[count / 2]), screenWidth - indent.size(), indent) + '\n';
        }
        text += indent + each + '\n';
    }
    return text;
}

std::string walkWhole(const Walk& walk)
{
    std::string efficiency = figureText(FigureKind::Fraction, walk.efficiency());
    if (const std::string gap = walk.efficiencyGap(); !gap.empty())
        efficiency += " (" + gap + ')';
    else
        efficiency += " (" + figureText(FigureKind::Fraction, walk.whole->cagr) + " a year / "
            + figureText(FigureKind::Fraction, walk.pastGrowth()) + " on the pasts)";
    return columns(
        {{"Windows tested", std::to_string(walk.tested()) + " of " + std::to_string(walk.rows.size())},
            {"Net profit of the tests", figureText(FigureKind::Money, tests(walk, "netProfit"))},
            {"Sharpe ratio of the tests", figureText(FigureKind::Number, tests(walk, "sharpe"))},
            {"Efficiency", efficiency}});
}

} // namespace lab
