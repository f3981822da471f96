#include "practice/Check.h"

#include "lab/cli/SelfCheck.h"

#include <algorithm>

using lab::CheckRuns;
using lab::CheckVerdict;
using lab::RunResult;
using lab::RunSettings;

namespace {

constexpr practice::TimeMs start = 1'704'067'200'000; // 2024-01-01T00:00Z
constexpr practice::TimeMs end = start + 4 * practice::dayMs;

RunSettings usualSettings()
{
    RunSettings settings;
    settings.symbol = "EURUSD";
    settings.from = start;
    settings.to = end;
    return settings;
}

lab::TradeRow trade(practice::TimeMs closeTime, practice::Cents profit)
{
    lab::TradeRow row;
    row.lots = 10;
    row.openTime = closeTime - practice::hourMs;
    row.openPrice = row.closePrice = 1.1;
    row.closeTime = closeTime;
    row.profit = profit;
    return row;
}

/// A strategy that closes a trade every six hours; what it does besides is each case's.
RunResult tradesEverySixHours(const RunSettings& settings, practice::Cents profit = 100)
{
    RunResult result;
    result.settings = settings;
    result.warmupBars = static_cast<std::uint64_t>(settings.warmup());
    result.bars = static_cast<std::uint64_t>((*settings.to - *settings.from) / practice::hourMs);
    result.startBalance = 10'000'000;
    practice::Cents balance = result.startBalance;
    result.equity.push_back({*settings.from, balance, balance});
    for (practice::TimeMs time = *settings.from + 6 * practice::hourMs; time < *settings.to;
         time += 6 * practice::hourMs) {
        result.trades.push_back(trade(time, profit));
        balance += profit;
        result.equity.push_back({time, balance, balance});
        result.journal.push_back({time, "closed"});
    }
    // Each run ends by closing what is open.
    lab::TradeRow last = trade(*settings.to - 1, -7);
    last.reason = lab::ExitReason::End;
    result.trades.push_back(last);
    result.equity.push_back({last.closeTime, balance - 7, balance - 7});
    result.journal.push_back({last.closeTime, "stopped"});
    return result;
}

/// Runs that are made like this, with as much history before them as anybody wants.
template <typename Make> CheckRuns runsOf(Make make)
{
    return {make, [](int) { return std::optional(start); }};
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_CASE("a strategy that looks at nothing but the past passes every check")
{
    int made = 0;
    const CheckRuns runs = runsOf([&made](const RunSettings& settings) {
        ++made;
        return tradesEverySixHours(settings);
    });
    const RunResult base = runs.run(usualSettings());
    for (const lab::Check check : lab::allChecks()) {
        const CheckVerdict verdict = check(runs, base);
        CHECK(verdict.holds());
        CHECK(!verdict.name.empty() && verdict.text.ends_with('.'));
    }
    CHECK(made <= lab::mostCheckRuns);
    CHECK(made >= 9);
}

TEST_CASE("a verdict says how much was compared")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) { return tradesEverySixHours(settings); });
    const RunResult base = runs.run(usualSettings());
    CHECK_EQ(lab::checkFuture(runs, base).text,
        "Runs that end after 24, 48 and 72 bars agree with the whole run so far: 3, 7 and 11 closed trades "
        "and 3, 7 and 11 lines of the journal compared.");
    CHECK_EQ(lab::checkWarmup(runs, base).text,
        "750 or 3000 bars of warm-up give the same trades as 1500: 16 trades over 96 bars compared.");
    CHECK(contains(lab::checkExtremes(runs, base).text, "16 trades and 14.93, over 96 bars."));
    CHECK_EQ(lab::checkRepetition(runs, base).text,
        "Another run gives the same files: 16 trades and 14.93, over 96 bars.");
}

TEST_CASE("where there is nothing to compare, nothing is said to hold")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) {
        RunResult result = tradesEverySixHours(settings);
        result.trades.clear();
        result.journal.clear();
        return result;
    });
    const RunResult base = runs.run(usualSettings());
    for (const lab::Check check : {lab::checkFuture, lab::checkWarmup, lab::checkExtremes}) {
        const CheckVerdict verdict = check(runs, base);
        CHECK(verdict.outcome == CheckVerdict::Outcome::NotComparable);
        CHECK(contains(verdict.text, verdict.name == "future" ? "24, 48 and 72 bars" : "96 bars"));
    }
    RunSettings brief = usualSettings();
    brief.to = *brief.from + practice::minuteMs;
    CHECK(lab::checkFuture(runs, runs.run(brief)).outcome == CheckVerdict::Outcome::NotComparable);
    RunSettings unwarmed = usualSettings();
    unwarmed.warmupBars = 0;
    CHECK(lab::checkWarmup(runs, runs.run(unwarmed)).outcome == CheckVerdict::Outcome::NotComparable);
}

TEST_CASE("a journal alone is something to compare")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) {
        RunResult result = tradesEverySixHours(settings);
        result.trades.clear();
        return result;
    });
    const CheckVerdict verdict = lab::checkFuture(runs, runs.run(usualSettings()));
    CHECK(verdict.holds());
    CHECK(contains(verdict.text, "0, 0 and 0 closed trades and 3, 7 and 11 lines"));
}

TEST_CASE("the warm-up that there was is halved, not the one that was asked for")
{
    std::vector<int> warmups;
    const auto make = [&warmups](const RunSettings& settings) {
        warmups.push_back(settings.warmup());
        return tradesEverySixHours(settings);
    };
    RunResult base = tradesEverySixHours(usualSettings());
    base.warmupBars = 300;
    const CheckVerdict verdict = lab::checkWarmup({make, [](int) { return std::nullopt; }}, base);
    CHECK(contains(verdict.text, "150 bars of warm-up give the same trades as 300"));
    CHECK(warmups == std::vector<int>{150});
}

TEST_CASE("a result that depends on the end of the run fails")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) {
        // It knows how long the prices go on.
        return tradesEverySixHours(settings, (*settings.to - *settings.from) / practice::dayMs);
    });
    const CheckVerdict verdict = lab::checkFuture(runs, runs.run(usualSettings()));
    CHECK(!verdict.holds());
    CHECK(contains(verdict.text, "2024-01-02 00:00"));
    CHECK(contains(verdict.text, "trade 1"));
}

TEST_CASE("a trade that only the longer run has before the earlier end is a difference")
{
    const RunResult longer = tradesEverySixHours(usualSettings());
    RunSettings settings = usualSettings();
    settings.to = start + 2 * practice::dayMs;
    RunResult shorter = tradesEverySixHours(settings);
    CHECK(!lab::differenceBefore(shorter, longer));
    shorter.trades.erase(shorter.trades.begin() + 3);
    CHECK_EQ(lab::differenceBefore(shorter, longer).value_or(""), "trade 4");
}

TEST_CASE("equity and journal count too, but not what the end itself has changed")
{
    const RunResult longer = tradesEverySixHours(usualSettings());
    RunSettings settings = usualSettings();
    settings.to = start + 2 * practice::dayMs;
    const RunResult shorter = tradesEverySixHours(settings);
    RunResult other = shorter;
    ++other.equity[2].equity;
    CHECK_EQ(lab::differenceBefore(other, longer).value_or(""), "equity");
    other = shorter;
    other.journal[1].text = "closed at last";
    CHECK_EQ(lab::differenceBefore(other, longer).value_or(""), "line 2 of the journal");
    other = shorter;
    other.equity.back().equity -= 1'000;
    other.journal.back().text = "goodbye";
    CHECK(!lab::differenceBefore(other, longer));
}

TEST_CASE("a script that closes its positions as it ends is no liar")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) {
        RunResult result = tradesEverySixHours(settings);
        result.trades.back().reason = lab::ExitReason::Script;
        return result;
    });
    CHECK(lab::checkFuture(runs, runs.run(usualSettings())).holds());
}

TEST_CASE("trades that depend on the warm-up fail, with what they come to")
{
    const CheckRuns runs = runsOf([](const RunSettings& settings) {
        return tradesEverySixHours(settings, settings.warmup() >= 1500 ? 100 : 90);
    });
    const CheckVerdict verdict = lab::checkWarmup(runs, runs.run(usualSettings()));
    CHECK(!verdict.holds());
    CHECK(contains(verdict.text, "With 750 bars of warm-up there are 16 trades and 13.43"));
    CHECK(contains(verdict.text, "with 1500 there are 16 trades and 14.93"));
}

TEST_CASE("without the history for it the double warm-up is left out, and said to be")
{
    std::vector<int> warmups;
    const auto make = [&warmups](const RunSettings& settings) {
        warmups.push_back(settings.warmup());
        return tradesEverySixHours(settings);
    };
    const RunResult base = tradesEverySixHours(usualSettings());
    const CheckVerdict verdict = lab::checkWarmup({make, [](int) { return std::nullopt; }}, base);
    CHECK(verdict.holds());
    CHECK(contains(verdict.text, "not enough history to double it"));
    CHECK_EQ(warmups.size(), 1U);
    CHECK_EQ(warmups.front(), 750);
}

TEST_CASE("a start that leaves no room for the double warm-up is moved for all three runs")
{
    std::vector<std::pair<int, practice::TimeMs>> made;
    const auto make = [&made](const RunSettings& settings) {
        made.emplace_back(settings.warmup(), *settings.from - start);
        return tradesEverySixHours(settings);
    };
    const RunResult base = tradesEverySixHours(usualSettings());
    const CheckVerdict verdict
        = lab::checkWarmup({make, [](int) { return std::optional(start + practice::dayMs); }}, base);
    CHECK(verdict.holds());
    REQUIRE(made.size() == 3);
    CHECK(made[0] == std::make_pair(1500, practice::dayMs));
    CHECK(made[1] == std::make_pair(750, practice::dayMs));
    CHECK(made[2] == std::make_pair(3000, practice::dayMs));
}

TEST_CASE("a result that the order of the extremes makes fails, a small difference does not")
{
    const auto byExtremes = [](practice::Cents high, practice::Cents low) {
        return runsOf([high, low](const RunSettings& settings) {
            const bool isHigh = settings.extremes == lab::ExtremeOrder::HighFirst;
            return tradesEverySixHours(settings, isHigh ? high : low);
        });
    };
    const RunResult base = tradesEverySixHours(usualSettings());
    CHECK(lab::checkExtremes(byExtremes(100, 92), base).holds());
    CHECK(!lab::checkExtremes(byExtremes(100, 85), base).holds());
    CHECK(!lab::checkExtremes(byExtremes(100, -100), base).holds());
    CHECK(contains(lab::checkExtremes(byExtremes(100, -100), base).text,
        " trades and \xE2\x88\x92"
        "1"));
    CHECK(contains(lab::checkExtremes(byExtremes(100, 85), base).text, "High first there are 16 trades"));
    // Trades in one of the two orders alone are no lack of something to compare.
    for (const lab::ExtremeOrder idle : {lab::ExtremeOrder::HighFirst, lab::ExtremeOrder::LowFirst}) {
        const CheckVerdict verdict = lab::checkExtremes(runsOf([idle](const RunSettings& settings) {
            RunResult result = tradesEverySixHours(settings);
            if (settings.extremes == idle)
                result.trades.clear();
            return result;
        }),
            base);
        CHECK(verdict.outcome == CheckVerdict::Outcome::Fails);
    }
}

TEST_CASE("with a way through each minute the extremes are not in question")
{
    RunSettings settings = usualSettings();
    settings.model = lab::Model::Path;
    int made = 0;
    const auto make = [&made](const RunSettings& each) {
        ++made;
        return tradesEverySixHours(each);
    };
    CHECK(lab::checkExtremes(runsOf(make), tradesEverySixHours(settings)).holds());
    CHECK_EQ(made, 0);
}

TEST_CASE("a run that is not the same again fails")
{
    practice::Cents profit = 100;
    const CheckRuns runs
        = runsOf([&profit](const RunSettings& settings) { return tradesEverySixHours(settings, profit++); });
    const RunResult base = runs.run(usualSettings());
    const CheckVerdict verdict = lab::checkRepetition(runs, base);
    CHECK(!verdict.holds());
    CHECK(contains(verdict.text, "other files"));
}

CHECK_MAIN()
