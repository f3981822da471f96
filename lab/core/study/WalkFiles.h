#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/study/SweepTable.h"
#include "lab/core/study/WalkWindows.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// A window of a walk with what was chosen in it and what came of that.
struct WalkRow {
    WalkWindow window;
    std::optional<SetResult> chosen; ///< of the training; absent where no set has figure and trades enough
    std::optional<Figures> test;     ///< absent as well where the walk was over before
    Choice choice;                   ///< among the sets of the training
    std::string ending;              ///< why the walk ended in this window's test; empty where it went on

    /// Takes the best of the training.
    void choose(std::vector<SetResult> training, const SweepOrder& order);
    /// Why nothing was tried, or went on from here, or the test is shorter than others, in a few words; empty
    /// where all is well.
    [[nodiscard]] std::string reason(const SweepOrder& order) const;
    /// A figure of the test; absent as well where the test is too short for one by the year.
    [[nodiscard]] Figure tested(std::string_view key) const;
    /// Growth a year behind the choice / before it; absent unless the latter is above 0, and not a trifle
    /// beside the former.
    [[nodiscard]] Figure efficiency() const;
};

/// A whole walk.
struct Walk {
    Grid grid;
    SweepOrder order;
    std::size_t setsPerWindow = 0;
    std::size_t failed = 0; ///< runs of the trainings
    bool isAnchored = false;
    std::vector<WalkRow> rows;
    std::optional<Figures> whole; ///< of the stitched tests
    practice::TimeMs train = 0;   ///< the length of a window's past, the shortest of anchored ones
    practice::TimeMs test = 0;    ///< the length of what follows; the last window's may be shorter

    /// Mean growth a year, on their pasts, of the choices that were tested.
    [[nodiscard]] Figure pastGrowth() const;
    /// Growth a year over all tests / the mean of the choices' growths a year; absent unless the latter is
    /// above 0, and not a trifle beside the former.
    [[nodiscard]] Figure efficiency() const;
    /// Why there is none, in a few words; empty where there is.
    [[nodiscard]] std::string efficiencyGap() const;
    /// Among the sets of all trainings.
    [[nodiscard]] Choice choice() const;
    /// How many windows were tested.
    [[nodiscard]] std::size_t tested() const;
};

/// "30 days", "4.9 days" (rounded down), below a day "23 hours" or "40 minutes".
[[nodiscard]] std::string lengthText(practice::TimeMs length);

/// walk.csv: a line for each window.
[[nodiscard]] std::string walkCsv(const Walk& walk);

/// walk.json: what was walked, and what came of it. `about` are the stitched tests, or the study where there
/// are none.
[[nodiscard]] std::string walkJson(const Walk& walk, const RunResult& about, std::string_view version);

/// A part for the report of the stitched tests: the windows.
[[nodiscard]] std::string walkPart(const Walk& walk);

} // namespace lab
