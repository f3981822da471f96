#include "lab/core/output/ConditionsJson.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"

namespace lab {

namespace {

std::string closedTradesJson(const RunResult& result, std::string_view version)
{
    JsonObject run;
    run.count("format", 1);
    run.text("version", version);
    run.flag("closedTradesOnly", true);
    run.text("symbol", result.settings.symbol);
    run.time("from", result.settings.from);
    run.time("to", result.settings.to);
    run.money("balance", result.startBalance);
    return run.document();
}

} // namespace

std::string runJson(const RunResult& result, std::string_view version)
{
    if (result.closedTradesOnly)
        return closedTradesJson(result, version);
    const RunSettings& settings = result.settings;
    JsonObject inputs;
    std::vector<std::string> changed;
    std::vector<std::string> swept;
    for (const RunInput& input : runInputs(result)) {
        if (input.isSwept) {
            swept.push_back(input.name);
            continue;
        }
        inputs.text(input.name, input.literal);
        if (input.isChanged)
            changed.push_back(input.name);
    }

    JsonObject run;
    run.count("format", 1);
    run.text("version", version);
    run.text("scriptHash", hexText(result.scriptHash));
    run.text("dataHash", hexText(result.dataHash));
    run.text("tickPrint", hexText(result.tickPrint));
    run.text("decisionPrint", hexText(result.decisionPrint));
    run.text("symbol", settings.symbol);
    run.text("timeframe", practice::timeframeKey(settings.timeframe));
    run.time("from", settings.from);
    run.time("to", settings.to);
    run.count("warmup", result.warmupBars);
    addConditions(run, result);
    run.raw("inputs", inputs.value(1));
    run.texts("changedInputs", changed);
    if (!swept.empty())
        run.texts("sweptInputs", swept);
    run.text("outcome", outcomeText(result.outcome));
    if (result.outcome == PlanOutcome::None)
        run.nothing("outcomeTime");
    else
        run.time("outcomeTime", result.outcomeTime);
    if (result.error) {
        run.text("error", *result.error);
        run.time("errorTime", result.errorTime);
    } else {
        run.nothing("error");
        run.nothing("errorTime");
    }
    return run.document();
}

} // namespace lab
