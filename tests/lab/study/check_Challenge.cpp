#include "lab/core/study/Challenge.h"
#include "lab/core/study/StudyError.h"
#include "practice/Check.h"

#include <algorithm>
#include <nlohmann/json.hpp>

using namespace lab;

namespace {

ChallengeRow row(PlanOutcome outcome, double days)
{
    ChallengeRow made;
    made.start = 1'704'067'200'000;
    made.seed = 3;
    made.outcome = outcome;
    made.days = days;
    made.endBalance = 10'950'012;
    made.trades = 9;
    return made;
}

std::vector<ChallengeRow> tenRows()
{
    std::vector<ChallengeRow> rows;
    for (const double days : {4.0, 8.0, 20.0, 6.0})
        rows.push_back(row(PlanOutcome::Passed, days));
    for (const double days : {1.5, 2.5, 9.0})
        rows.push_back(row(PlanOutcome::DailyLoss, days));
    rows.push_back(row(PlanOutcome::TotalLoss, 12));
    rows.push_back(row(PlanOutcome::None, 30));
    rows.push_back(row(PlanOutcome::None, 10));
    return rows;
}

} // namespace

TEST_CASE("a plan that is over counts the days to its outcome, another one those to the end")
{
    RunResult result;
    result.settings.from = 0;
    result.settings.to = 10 * practice::dayMs;
    result.startBalance = 5;
    CHECK_EQ(challengeRowOf(result).days, 10.0);
    CHECK_EQ(challengeRowOf(result).endBalance, 5);
    result.outcome = PlanOutcome::Passed;
    result.outcomeTime = 5 * practice::dayMs / 2;
    CHECK_EQ(challengeRowOf(result).days, 2.5);
    result.error = "Bad: OnTick";
    CHECK_THROWS(static_cast<void>(challengeRowOf(result)), StudyError);
}

TEST_CASE("shares have Wilson's interval and the median of their days")
{
    const ChallengeSummary summary = challengeSummary(tenRows());
    REQUIRE(summary.shares.size() == 4);
    const auto& passed = summary.shares[0];
    CHECK(passed.outcome == PlanOutcome::Passed);
    CHECK_EQ(passed.count, 4U);
    // (p + z²/2n ± z·√(p(1−p)/n + z²/4n²)) / (1 + z²/n) with z = 1.96, p = 0.4, n = 10
    CHECK_NEAR(passed.share->share, 0.4, 1e-12);
    CHECK_NEAR(passed.share->low, 0.16818, 1e-4);
    CHECK_NEAR(passed.share->high, 0.68733, 1e-4);
    CHECK_EQ(passed.medianDays.value(), 7.0);
    CHECK_EQ(summary.shares[1].count, 3U);
    CHECK_EQ(summary.shares[1].medianDays.value(), 2.5);
    CHECK_EQ(summary.shares[2].count, 1U);
    CHECK_EQ(summary.shares[3].count, 2U);
}

TEST_CASE("runs that failed are no share of anything")
{
    std::vector<ChallengeRow> rows = tenRows();
    rows.push_back(row(PlanOutcome::None, 0));
    rows.back().failure = "it broke, \"badly\"";
    const ChallengeSummary summary = challengeSummary(rows);
    CHECK_EQ(summary.starts, 11U);
    CHECK_EQ(summary.failed, 1U);
    CHECK_NEAR(summary.shares[0].share->share, 0.4, 1e-12);
    const std::string csv = challengeCsv(rows);
    CHECK(csv.starts_with("start,seed,outcome,days,endBalance,trades,reason\n"
                          "2024-01-01T00:00:00.000Z,3,passed,4,109500.12,9,\n"));
    CHECK(csv.ends_with(",3,failed,,,,\"it broke, \"\"badly\"\"\"\n"));
    const auto json = nlohmann::json::parse(challengeJson(rows, {}, "1"));
    CHECK_EQ(json.at("passed").at("count").get<int>(), 4);
    CHECK_EQ(json.at("none").at("count").get<int>(), 2);
    CHECK_EQ(json.at("failed").get<int>(), 1);
}

TEST_CASE("without starts nothing is defined")
{
    const ChallengeSummary summary = challengeSummary({});
    CHECK(!summary.shares.at(0).share);
    CHECK(!summary.shares.at(0).medianDays);
    CHECK(nlohmann::json::parse(challengeJson({}, {}, "1")).at("passed").at("share").is_null());
}

TEST_CASE("a row goes through a pipe and comes out the same")
{
    const ChallengeRow made = row(PlanOutcome::TotalLoss, 1.25);
    CHECK(challengeRowFrom(bytesOf(made)) == made);
    CHECK_THROWS(static_cast<void>(challengeRowFrom("short")), StudyError);
}

CHECK_MAIN()
