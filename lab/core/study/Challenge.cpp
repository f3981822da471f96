#include "lab/core/study/Challenge.h"

#include "lab/core/figures/Warnings.h"
#include "lab/core/output/ConditionsJson.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/Bytes.h"
#include "lab/core/study/SweepFiles.h"
#include "practice/core/broker/RiskRules.h"

#include <algorithm>
#include <array>

namespace lab {

namespace {

constexpr std::array outcomes{
    PlanOutcome::Passed, PlanOutcome::DailyLoss, PlanOutcome::TotalLoss, PlanOutcome::None};

Figure median(std::vector<double> values)
{
    if (values.empty())
        return {};
    std::ranges::sort(values);
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

/// The first and the last, as JSON; `rows` are in the order of their seeds.
std::string seedsJson(const std::vector<ChallengeRow>& rows)
{
    if (rows.empty())
        return "null";
    return '[' + std::to_string(rows.front().seed) + ',' + std::to_string(rows.back().seed) + ']';
}

/// The rules that the broker judges a plan by.
std::string planJson()
{
    JsonObject plan;
    plan.raw("targetPercent", std::to_string(practice::riskLimits::targetPercent));
    plan.raw("dailyLossPercent", std::to_string(practice::riskLimits::dailyLossPercent));
    plan.raw("totalLossPercent", std::to_string(practice::riskLimits::totalLossPercent));
    return plan.value(1);
}

} // namespace

ChallengeRow challengeRowOf(const RunResult& result)
{
    if (result.error)
        throw StudyError(*result.error);
    ChallengeRow row;
    row.start = result.settings.from.value_or(0);
    row.seed = result.settings.seed;
    row.outcome = result.outcome;
    const practice::TimeMs end
        = result.outcome == PlanOutcome::None ? result.settings.to.value_or(row.start) : result.outcomeTime;
    row.days = static_cast<double>(end - row.start) / static_cast<double>(practice::dayMs);
    row.endBalance = result.equity.empty() ? result.startBalance : result.equity.back().balance;
    row.trades = result.trades.size();
    return row;
}

std::string bytesOf(const ChallengeRow& row)
{
    ByteWriter bytes;
    bytes.number(static_cast<std::uint64_t>(row.start));
    bytes.number(row.seed);
    bytes.number(static_cast<std::uint64_t>(row.outcome));
    bytes.real(row.days);
    bytes.number(static_cast<std::uint64_t>(row.endBalance));
    bytes.number(row.trades);
    return bytes.take();
}

ChallengeRow challengeRowFrom(std::string_view bytes)
{
    ByteReader reader(bytes);
    ChallengeRow row;
    row.start = static_cast<practice::TimeMs>(reader.number());
    row.seed = reader.number();
    row.outcome = static_cast<PlanOutcome>(reader.number());
    row.days = reader.real();
    row.endBalance = static_cast<practice::Cents>(reader.number());
    row.trades = reader.number();
    return row;
}

ChallengeSummary challengeSummary(const std::vector<ChallengeRow>& rows)
{
    ChallengeSummary summary;
    summary.starts = rows.size();
    summary.failed = static_cast<std::size_t>(
        std::ranges::count_if(rows, [](const ChallengeRow& row) { return row.failure.has_value(); }));
    for (const PlanOutcome outcome : outcomes) {
        ChallengeSummary::Share& share = summary.shares.emplace_back();
        share.outcome = outcome;
        std::vector<double> days;
        for (const ChallengeRow& row : rows) {
            if (!row.failure && row.outcome == outcome)
                days.push_back(row.days);
        }
        share.count = days.size();
        share.share = wilsonInterval(days.size(), summary.starts - summary.failed);
        share.medianDays = median(std::move(days));
    }
    return summary;
}

std::string challengeCsv(const std::vector<ChallengeRow>& rows)
{
    std::string csv = "start,seed,outcome,days,endBalance,trades,reason\n";
    for (const ChallengeRow& row : rows) {
        csv += isoTime(row.start) + ',' + std::to_string(row.seed) + ',';
        if (row.failure)
            csv += "failed,,,," + csvCell(*row.failure);
        else
            csv += std::string(outcomeText(row.outcome)) + ',' + shortestText(row.days) + ','
                + fixedText(static_cast<double>(row.endBalance) / 100, 2) + ',' + std::to_string(row.trades)
                + ',';
        csv += '\n';
    }
    return csv;
}

std::vector<std::string> challengeWarnings(const RunResult& about)
{
    std::vector<std::string> warnings = about.warnings;
    if (about.simulated)
        warnings.push_back(simulatedWarning());
    return warnings;
}

std::string challengeJson(
    const std::vector<ChallengeRow>& rows, const RunResult& about, std::string_view version)
{
    const ChallengeSummary summary = challengeSummary(rows);
    const RunSettings& settings = about.settings;
    JsonObject inputs;
    for (const RunInput& input : runInputs(about))
        inputs.text(input.name, input.literal);
    JsonObject json;
    json.count("format", 1);
    json.text("version", version);
    json.text("scriptHash", hexText(about.scriptHash));
    json.text("dataHash", hexText(about.dataHash));
    json.text("symbol", settings.symbol);
    json.text("timeframe", practice::timeframeKey(settings.timeframe));
    json.time("from", settings.from);
    json.time("to", settings.to);
    addConditions(json, about);
    json.raw("plan", planJson());
    json.raw("seeds", about.simulated ? seedsJson(rows) : "null");
    json.raw("inputs", inputs.value(1));
    json.count("starts", summary.starts);
    json.count("failed", summary.failed);
    for (const ChallengeSummary::Share& share : summary.shares) {
        JsonObject part;
        part.count("count", share.count);
        part.number("share", share.share ? Figure(share.share->share) : Figure());
        part.number("low95", share.share ? Figure(share.share->low) : Figure());
        part.number("high95", share.share ? Figure(share.share->high) : Figure());
        part.number("medianDays", share.medianDays);
        json.raw(outcomeText(share.outcome), part.value(1));
    }
    json.texts("warnings", challengeWarnings(about));
    return json.document();
}

std::string_view challengeWord(PlanOutcome outcome)
{
    switch (outcome) {
    case PlanOutcome::Passed:
        return "passed";
    case PlanOutcome::DailyLoss:
        return "daily loss";
    case PlanOutcome::TotalLoss:
        return "total loss";
    case PlanOutcome::None:
        break;
    }
    return "unfinished";
}

} // namespace lab
