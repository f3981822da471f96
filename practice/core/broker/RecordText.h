#pragma once

#include "practice/core/broker/Records.h"

#include <optional>
#include <string_view>

namespace practice {

/// The words used on the wire and in storage: "WALLET" "DEMO" "PLAN"; "ACTIVE" "FAILED" "PASSED";
/// "BUY" "SELL"; "MARKET" "BUY_LIMIT" "SELL_LIMIT" "BUY_STOP" "SELL_STOP" "BALANCE";
/// "PENDING" "OPEN" "CLOSED" "CANCELLED"; "" "MANUAL" "SL" "TP" "STOP_OUT" "RISK" "NO_MARGIN" "PHASE"
/// "RESET".
[[nodiscard]] std::string_view toText(AccountKind kind);
[[nodiscard]] std::string_view toText(AccountStatus status);
[[nodiscard]] std::string_view toText(Side side);
[[nodiscard]] std::string_view toText(OrderKind kind);
[[nodiscard]] std::string_view toText(TradeStatus status);
[[nodiscard]] std::string_view toText(CloseReason reason);

/// The value of such a text, case-sensitive; nothing for any other text.
[[nodiscard]] std::optional<AccountKind> accountKindFromText(std::string_view text);
[[nodiscard]] std::optional<AccountStatus> accountStatusFromText(std::string_view text);
[[nodiscard]] std::optional<Side> sideFromText(std::string_view text);
[[nodiscard]] std::optional<OrderKind> orderKindFromText(std::string_view text);
[[nodiscard]] std::optional<TradeStatus> tradeStatusFromText(std::string_view text);
[[nodiscard]] std::optional<CloseReason> closeReasonFromText(std::string_view text);

} // namespace practice
