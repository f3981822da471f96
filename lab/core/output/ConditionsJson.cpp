#include "lab/core/output/ConditionsJson.h"

#include "lab/core/output/RunWords.h"

#include <algorithm>

namespace lab {

void addConditions(JsonObject& json, const RunResult& result)
{
    const RunSettings& settings = result.settings;
    json.count("warmupWanted", static_cast<std::uint64_t>(std::max(0, settings.warmup())));
    json.text("model", modelText(settings.model));
    json.text("extremes", extremesText(settings.extremes));
    if (settings.spreadPoints)
        json.raw("spread", std::to_string(*settings.spreadPoints));
    else
        json.nothing("spread");
    json.raw("delay", std::to_string(settings.delayMs));
    json.text("account", rulesText(settings.rules));
    json.money("balance", settings.balance);
    json.raw("leverage", std::to_string(settings.leverage));
    json.count("seed", settings.seed);
    json.flag("simulated", result.simulated);
    if (result.simulated)
        json.number("speed", settings.speed);
    else
        json.nothing("speed");
}

} // namespace lab
