#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Broker.h"
#include "practice/core/broker/ChangeSet.h"
#include "practice/core/broker/Records.h"

#include <nlohmann/json_fwd.hpp>

#include <span>
#include <string>
#include <vector>

namespace practice {

// The records as they travel. Exact decimals (balances, prices of trades, volumes, results, the day's open)
// go out as texts; quotes, candles, margins, contract data and counters as numbers; fields that a trade does
// not have are null. Times are ISO 8601 in UTC.

[[nodiscard]] nlohmann::json accountRecord(const Account& account, const AccountFigures& figures);

/// `digits` are the decimals of the trade's symbol.
[[nodiscard]] nlohmann::json tradeRecord(const Trade& trade, int digits);

[[nodiscard]] nlohmann::json symbolRecord(const SymbolSpec& symbol, double dailyOpen);

/// {"type":"orders_changed", ...} or {"type":"account_update", ...}
[[nodiscard]] std::string eventMessage(const OrdersChanged& event);
[[nodiscard]] std::string eventMessage(const Account& account, const AccountFigures& figures);

/// {"EURUSD":{"bid":1.08512,"ask":1.08524}, ...}
[[nodiscard]] std::string priceMap(
    const std::vector<SymbolSpec>& symbols, std::span<const SymbolQuote> quotes);

/// [{"timestamp":"2024-05-17T09:30:00.000Z","open":...}, ...]
[[nodiscard]] std::string candleArray(std::span<const Bar> bars, int digits);

} // namespace practice
