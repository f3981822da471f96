// Writes pages to look at into a folder: sample_pages FOLDER.

#include "GeneratedRun.h"
#include "ResultPlace.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/Comparison.h"
#include "lab/core/output/HeatMap.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/ResultFolder.h"
#include "lab/core/study/WalkFiles.h"

#include <cstdlib>
#include <iostream>

namespace {

lab::SavedRun savedRun(const lab::RunResult& run, const std::string& name)
{
    const lab::samples::ResultPlace place;
    lab::ResultFolder folder(place.path() / name);
    folder.add("summary.json", lab::summaryJson(lab::figuresOf(run)));
    folder.add("trades.csv", lab::tradesCsv(run));
    folder.add("equity.csv", lab::equityCsv(run));
    folder.commit();
    return lab::readSavedRun(place.path() / name);
}

/// The windows of a year's walk over four inputs.
std::string walkPart()
{
    const auto axis = [](const char* name, const char* values) { return lab::axisOf(name, values, true); };
    lab::Walk walk{lab::Grid({axis("RangeBars", "8:32:8"), axis("FromHour", "6:9:1"),
                       axis("Reward", "1:2:0.5"), axis("Lots", "0.10")}),
        {lab::sortFigureOf("sharpe"), 30}, 48, 0, false, {}, {}};
    for (int number = 0; number < 12; ++number) {
        const practice::TimeMs from
            = lab::samples::monday + number * 30 * practice::dayMs + 26 * practice::hourMs;
        lab::WalkRow row{{from, from + 90 * practice::dayMs, from + 120 * practice::dayMs}, {}, {}, {}, {}};
        lab::SetResult chosen;
        chosen.number = static_cast<std::uint64_t>(number * 3);
        row.chosen = chosen;
        row.test = lab::figuresOf(lab::samples::smallRun());
        walk.rows.push_back(row);
    }
    walk.whole = walk.rows.front().test;
    return lab::walkPart(walk);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "sample_pages FOLDER\n";
        return EXIT_FAILURE;
    }
    lab::ResultFolder folder(argv[1]);
    const lab::RunResult year = lab::samples::generatedRun(25'000, 420, 0);
    folder.add("year.html", lab::reportPage(year, lab::figuresOf(year), {"moving_average.js", {}}));
    const lab::RunResult small = lab::samples::smallRun();
    folder.add("small.html", lab::reportPage(small, lab::figuresOf(small), {"moving_average.js", {}}));
    lab::RunResult other = year;
    for (std::size_t number = 200; number < other.trades.size(); ++number)
        other.trades[number].profit += 300;
    for (std::size_t number = 200; number < other.equity.size(); ++number)
        other.equity[number].equity += 300 * static_cast<practice::Cents>(number - 200);
    folder.add("compare.html", lab::comparePage({savedRun(year, "fast 5"), savedRun(other, "fast 8")}));
    lab::HeatGrid grid{"sharpe", "Fast", "Slow", {}, {}, {}};
    for (int row = 0; row < 9; ++row) {
        grid.rows.push_back(std::to_string(20 + 5 * row));
        grid.values.emplace_back();
        for (int column = 0; column < 16; ++column) {
            if (row == 0)
                grid.columns.push_back(std::to_string(5 + column));
            const double far = (row - 5) * (row - 5) / 10.0 + (column - 6) * (column - 6) / 30.0;
            grid.values.back().push_back(column == 14 ? std::nullopt : std::optional(1.6 - far));
        }
    }
    folder.add("sweep.html",
        lab::reportPage(small, lab::figuresOf(small), {"moving_average.js", {lab::heatMap(grid)}}));
    folder.add(
        "walk.html", lab::reportPage(small, lab::figuresOf(small), {"moving_average.js", {walkPart()}}));
    const lab::RunResult nothing;
    folder.add("nothing.html", lab::reportPage(nothing, lab::figuresOf(nothing), {"nothing.js", {}}));
    folder.commit();
    return EXIT_SUCCESS;
}
