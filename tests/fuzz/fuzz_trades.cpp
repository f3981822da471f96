// An account's history, of which `tavoran-lab report` makes a result.

#include "fuzz/Files.h"

#include "lab/cli/TradeHistory.h"
#include "lab/cli/UsageError.h"
#include "lab/core/output/ResultFiles.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <optional>

using fuzz::demand;

namespace fuzz_trades {

namespace {

constexpr std::string_view name = "history.json";

/// Whether it is one line that begins with the file and one of its rows, but for what is said of all of them.
bool namesPlace(std::string_view refusal, std::string_view content)
{
    const std::string file = std::string(name) + ": ";
    if (!fuzz::isOneLine(refusal) || !refusal.starts_with(file))
        return false;
    refusal.remove_prefix(file.size());
    const auto rows = nlohmann::json::parse(content, nullptr, false);
    if (!rows.is_array())
        return refusal == "is no list of trades in JSON";
    constexpr std::string_view mark = "row ";
    if (refusal.starts_with(mark)) {
        const std::size_t row = fuzz::placeAt(refusal.substr(mark.size()));
        return row >= 1 && row <= rows.size();
    }
    constexpr std::array<std::string_view, 3> ofAll{
        "holds trades of several accounts", "no closed trade", "covers more than 100 years"};
    return std::find(ofAll.begin(), ofAll.end(), refusal) != ofAll.end();
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    std::optional<lab::RunResult> result;
    try {
        result = lab::resultOfTrades(fuzz::textOf(data, size), std::string(name), {});
    } catch (const lab::UsageError& error) {
        demand(
            namesPlace(error.what(), fuzz::textOf(data, size)), "a refusal is one line that names its row");
        return 0;
    }
    demand(
        !result->trades.empty() && !result->equity.empty() && !result->days.empty(), "a result has trades");
    practice::Cents balance = result->startBalance;
    for (const lab::TradeRow& trade : result->trades) {
        demand(trade.closeTime >= trade.openTime, "a trade is closed after it was opened");
        balance += trade.net();
    }
    demand(result->equity.back().balance == balance && result->days.back().balance == balance,
        "the balance at the end is the sum of all trades");
    for (std::size_t i = 1; i < result->equity.size(); ++i)
        demand(result->equity[i - 1].time <= result->equity[i].time, "equity goes on in time");
    const std::string csv = lab::tradesCsv(*result);
    demand(static_cast<std::size_t>(std::count(csv.begin(), csv.end(), '\n')) == result->trades.size() + 1,
        "each trade is one line");
    return 0;
}

constexpr std::size_t longest = 20'000; // more rows than the platform sends at a time
const fuzz::Target target("trades", &attempt, longest);

} // namespace

} // namespace fuzz_trades
