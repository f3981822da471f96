#include "lab/core/figures/Warnings.h"

#include "lab/core/figures/DailyReturns.h"
#include "practice/core/broker/Money.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace lab {

namespace {

using practice::Cents;

constexpr double fewTrades = 30;
constexpr double fewDays = 30;
constexpr double daysForYears = 60;
constexpr double sureEnough = 0.95;

/// With the minus sign that people read.
std::string typeset(const std::string& number)
{
    return number.starts_with('-') ? "\xE2\x88\x92" + number.substr(1) : number;
}

std::string percentText(double fraction)
{
    std::array<char, 400> text{};
    const auto end
        = std::to_chars(text.data(), text.data() + text.size(), fraction * 100, std::chars_format::fixed, 1);
    const std::string number(text.data(), end.ptr);
    return typeset(number == "-0.0" ? "0.0" : number) + " %";
}

std::string moneyText(Cents amount)
{
    return typeset(practice::moneyText(amount));
}

/// "1 trade", "2 trades"
std::string counted(double number, std::string_view one)
{
    const auto whole = static_cast<std::int64_t>(number);
    std::string text = std::to_string(whole) + ' ';
    text += one;
    return whole == 1 ? text : text + 's';
}

std::string_view outcomeText(PlanOutcome outcome)
{
    switch (outcome) {
    case PlanOutcome::None:
        return {};
    case PlanOutcome::Passed:
        return "The plan was passed.";
    case PlanOutcome::DailyLoss:
        return "The plan failed: the daily loss limit was reached.";
    case PlanOutcome::TotalLoss:
        return "The plan failed: the total loss limit was reached.";
    }
    return {};
}

/// The result of all trades, had every ambiguous one met its other level first.
Cents otherNet(const RunResult& result)
{
    Cents net = 0;
    for (const TradeRow& trade : result.trades)
        net += trade.net() + (trade.ambiguous ? trade.otherProfit - trade.profit : 0);
    return net;
}

std::string ambiguityText(const RunResult& result, const Figures& figures)
{
    return "Of " + counted(*figures.trades, "trade") + ", "
        + std::to_string(static_cast<std::int64_t>(*figures.ambiguousExits))
        + " closed in a minute that held both stop loss and take profit. Had the other level come first, net "
          "profit "
          "would be "
        + moneyText(otherNet(result)) + " instead of " + moneyText(static_cast<Cents>(*figures.netProfit))
        + '.';
}

std::string tradesText(double trades)
{
    if (trades == 0)
        return "There was no trade.";
    return "Only " + counted(trades, "trade") + ": fewer than 30 say little about a strategy.";
}

} // namespace

std::vector<std::string> warningsOf(const RunResult& result, const Figures& figures)
{
    std::vector<std::string> warnings = result.warnings;
    const auto add = [&warnings](bool applies, const auto& text) {
        if (applies)
            warnings.push_back(text());
    };
    const double days = static_cast<double>(result.days.size());
    add(result.error.has_value(), [&] { return "The run ended early: " + *result.error; });
    add(result.outcome != PlanOutcome::None, [&] { return std::string(outcomeText(result.outcome)); });
    add(dailyReturns(result).ruined,
        [] { return std::string("Nothing of the account was left; returns end on that day."); });
    add(*figures.trades < fewTrades, [&] { return tradesText(*figures.trades); });
    add(days < fewDays,
        [&] { return "Only " + counted(days, "day") + " with prices: figures by day say little."; });
    add(days < daysForYears && figures.volatility, [&] {
        return "Yearly figures from " + counted(days, "day")
            + " say little: growth, volatility and the Sharpe, Sortino and Calmar ratios are stretched to a "
              "year.";
    });
    add(*figures.ambiguousExits > 0, [&] { return ambiguityText(result, figures); });
    const bool hasLost = figures.sharpe && *figures.sharpe < 0;
    add(hasLost && figures.psr, [&] {
        return "The days lost on average: the Sharpe ratio is below 0. The probability that the true one is "
               "above "
               "0 is "
            + percentText(*figures.psr) + '.';
    });
    add(!hasLost && figures.psr && *figures.psr < sureEnough, [&] {
        return "The probability that the true Sharpe ratio is above 0 is " + percentText(*figures.psr)
            + ": below 95 % it may be luck.";
    });
    add(*figures.refusals > 0, [&] { return counted(*figures.refusals, "order") + " refused."; });
    add(result.simulated, [] { return simulatedWarning(); });
    return warnings;
}

std::string simulatedWarning(std::string_view prices)
{
    return std::string(prices) + " are simulated: they can show the risk of a strategy, never an edge.";
}

std::string verdictOf(const RunResult& result, const Figures& figures)
{
    std::string text = "Net profit " + moneyText(static_cast<Cents>(*figures.netProfit));
    if (*figures.startBalance > 0)
        text += " (" + percentText(*figures.netProfit / *figures.startBalance) + ")";
    text += " in " + counted(*figures.trades, "trade") + " over " + counted(*figures.days, "calendar day");
    if (figures.maxDrawdown)
        text += ", deepest fall of equity " + percentText(*figures.maxDrawdown);
    text += '.';
    const std::string_view outcome = outcomeText(result.outcome);
    if (!outcome.empty())
        text.append(" ").append(outcome);
    if (result.error)
        text += " The run ended early.";
    return text;
}

} // namespace lab
