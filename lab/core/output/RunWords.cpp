#include "lab/core/output/RunWords.h"

#include <array>
#include <cstddef>

namespace lab {

std::string_view modelText(Model model)
{
    constexpr std::array<std::string_view, 4> texts{"open", "ohlc", "path", "feed"};
    return texts[static_cast<std::size_t>(model)];
}

std::string_view extremesText(ExtremeOrder order)
{
    constexpr std::array<std::string_view, 3> texts{"usual", "high-first", "low-first"};
    return texts[static_cast<std::size_t>(order)];
}

std::string_view rulesText(AccountRules rules)
{
    return rules == AccountRules::Plan ? "plan" : "demo";
}

std::string_view outcomeText(PlanOutcome outcome)
{
    constexpr std::array<std::string_view, 4> texts{"none", "passed", "daily-loss", "total-loss"};
    return texts[static_cast<std::size_t>(outcome)];
}

std::vector<RunInput> runInputs(const RunResult& result)
{
    if (!result.inputs.empty())
        return result.inputs;
    std::vector<RunInput> inputs;
    for (const auto& [name, literal] : result.settings.inputs)
        inputs.push_back({name, literal, true});
    return inputs;
}

const std::string& symbolOf(const TradeRow& trade, const RunResult& result)
{
    return trade.symbol.empty() ? result.settings.symbol : trade.symbol;
}

int digitsOf(const TradeRow& trade, const RunResult& result)
{
    return trade.digits < 0 ? result.digits : trade.digits;
}

} // namespace lab
