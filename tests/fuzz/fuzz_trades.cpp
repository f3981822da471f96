// An account's history, of which `tavoran-lab report` makes a result.

#include "fuzz/Files.h"

#include "lab/cli/TradeHistory.h"
#include "lab/cli/UsageError.h"
#include "lab/core/output/ResultFiles.h"

#include <algorithm>
#include <optional>

using fuzz::demand;

namespace fuzz_trades {

namespace {

int attempt(const std::uint8_t* data, std::size_t size)
{
    std::optional<lab::RunResult> result;
    try {
        result = lab::resultOfTrades(fuzz::textOf(data, size), "history.json", {});
    } catch (const lab::UsageError& error) {
        const std::string_view what = error.what();
        demand(what.starts_with("history.json: ") && fuzz::isOneLine(what), "a refusal is one line");
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

const fuzz::Target target("trades", &attempt);

} // namespace

} // namespace fuzz_trades
