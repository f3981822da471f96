#include "lab/core/study/StudyPage.h"

#include "lab/core/output/Texts.h"
#include "lab/core/study/SweepTable.h"
#include "lab/core/study/WalkFiles.h"

#include <algorithm>
#include <cstdint>

namespace lab {

namespace {

std::string countText(std::uint64_t count)
{
    return groupedText(static_cast<double>(count), 0);
}

std::string counted(std::uint64_t count, std::string_view one)
{
    return countText(count) + ' ' + std::string(one) + (count == 1 ? "" : "s");
}

std::string sweptText(const Grid& grid)
{
    std::string names;
    for (const GridAxis& axis : grid.axes()) {
        if (axis.values.size() > 1)
            names.append(names.empty() ? "; swept: " : ", ").append(shortened(axis.name, 60));
    }
    return names;
}

/// All values, or the first ones and the last.
std::string valuesText(const std::vector<std::string>& values)
{
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t number = 0; number < values.size(); ++number) {
        if (values.size() > most && number == most - 2) {
            return text + ", \xE2\x80\xA6, " + shortened(values.back(), 40) + " (" + countText(values.size())
                + " values)";
        }
        text.append(number > 0 ? ", " : "").append(shortened(values[number], 40));
    }
    return text;
}

void addInputs(const Grid& grid, StudyWords& words)
{
    for (const GridAxis& axis : grid.axes())
        words.settings.emplace_back("Input " + axis.name, valuesText(axis.values));
}

std::string orderText(const SweepOrder& order)
{
    return std::string("the ") + (order.sort.lowIsBest ? "lowest " : "highest ")
        + std::string(order.sort.row->name) + ", with at least " + counted(order.minTrades, "trade");
}

/// "9 windows of 30 days and one of 5 days"
std::string windowsOfText(const Walk& walk)
{
    const bool isCut = !walk.rows.empty() && walk.rows.back().window.shortBy > 0;
    if (isCut && walk.rows.size() == 1)
        return "1 window of " + lengthText(walk.rows.back().window.testLength());
    std::string text = counted(walk.rows.size() - (isCut ? 1 : 0), "window") + " of " + lengthText(walk.test);
    if (isCut)
        text += " and one of " + lengthText(walk.rows.back().window.testLength());
    return text;
}

/// What the last test has instead; empty where it is as long as the others.
std::string cutText(const Walk& walk)
{
    if (walk.rows.empty() || walk.rows.back().window.shortBy == 0)
        return {};
    return "; " + lengthText(walk.rows.back().window.testLength()) + " behind the last";
}

std::string windowsText(const Walk& walk)
{
    const auto without = std::ranges::count_if(walk.rows, [](const WalkRow& row) { return !row.chosen; });
    return countText(walk.rows.size())
        + (without > 0 ? ", " + countText(static_cast<std::uint64_t>(without)) + " of them without a choice"
                       : std::string());
}

} // namespace

StudyWords sweepWords(const SweepTable& table)
{
    StudyWords words{"Sweep",
        "Sweep, the best of " + counted(table.sets.size(), "set") + sweptText(table.grid) + '.',
        {{"Sets tried", countText(table.sets.size()) + " of " + countText(table.grid.size())},
            {"Sets failed", countText(table.choice.failed)}, {"Best by", orderText(table.order)}}};
    addInputs(table.grid, words);
    return words;
}

StudyWords walkWords(const Walk& walk)
{
    const std::string past = walk.isAnchored ? "all days before it (at least " + lengthText(walk.train) + ')'
                                             : "the " + lengthText(walk.train) + " before it";
    StudyWords words{"Walk-forward",
        "Walk-forward, " + windowsOfText(walk) + ", each with inputs chosen on " + past + sweptText(walk.grid)
            + '.',
        {{"Training", lengthText(walk.train) + (walk.isAnchored ? ", anchored: from the first day on" : "")},
            {"Test", lengthText(walk.test) + " behind each training" + cutText(walk)},
            {"Windows", windowsText(walk)}, {"Sets tried in each", countText(walk.setsPerWindow)},
            {"Chosen by", orderText(walk.order)}}};
    addInputs(walk.grid, words);
    return words;
}

} // namespace lab
