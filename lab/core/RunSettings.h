#pragma once

#include "practice/core/Types.h"
#include "practice/core/broker/Money.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lab {

/// At which prices of a minute (of a bar, for Open) the script is called.
enum class Model {
    Open, ///< once for each bar of the chart, at its open
    Ohlc, ///< four times a minute: open, the two extremes, close
    Path, ///< at each price of the practice market's own way through the minute
    Feed, ///< every 250 ms, with the price of that way then
};

/// Which extreme of a minute comes first.
enum class ExtremeOrder {
    Usual, ///< the one nearer to the open; the low, where both are as near
    HighFirst,
    LowFirst,
};

enum class AccountRules { Demo, Plan };

/// What the limits of a plan's account are counted from, money in cents.
struct PlanCourse {
    practice::Cents initialBalance = 0;
    practice::Cents dayStartEquity = 0; ///< when the UTC day `dayIndex` began
    std::int64_t dayIndex = 0;          ///< since 1970-01-01; 0: it has seen no day yet
};

/// So many bars does a chart begin with when nobody says otherwise.
inline constexpr int usualWarmup = 1500;

/// What a run was asked to do, apart from script and prices. Two runs with equal settings, scripts and
/// prices give equal results.
struct RunSettings {
    std::string symbol;
    practice::Timeframe timeframe = practice::Timeframe::M15;
    std::optional<practice::TimeMs> from; ///< absent: as soon as the chart has its warm-up
    std::optional<practice::TimeMs> to;   ///< the first moment that no longer belongs to the run
    /// Of the chart before the first tick, fewer where there are fewer; absent: as many as usual.
    std::optional<int> warmupBars;
    Model model = Model::Ohlc;
    ExtremeOrder extremes = ExtremeOrder::Usual;
    std::optional<std::int64_t> spreadPoints; ///< absent: as recorded, else as usual for the symbol
    practice::TimeMs delayMs = 0;             ///< from a script's order to its execution
    AccountRules rules = AccountRules::Demo;
    practice::Cents balance = 10'000'000;
    std::optional<PlanCourse> course; ///< of an account that another run has left; absent: it begins
    /// The account is meant to outlive this run, traded on or not: what the end closes counts for its plan.
    bool goesOn = false;
    int leverage = 100;
    std::uint64_t seed = 1; ///< of everything random, the script's included
    double speed = 1;       ///< of simulated prices: a minute moves as far as so many minutes
    std::vector<std::pair<std::string, std::string>>
        inputs; ///< name and literal, as given, in the script's order

    [[nodiscard]] int warmup() const { return warmupBars.value_or(usualWarmup); }
};

} // namespace lab
