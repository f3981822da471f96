#include "practice/core/broker/RecordText.h"

#include <array>
#include <cstddef>

namespace practice {
namespace {

using namespace std::string_view_literals;

constexpr std::array accountKinds{"WALLET"sv, "DEMO"sv, "PLAN"sv};
constexpr std::array accountStatuses{"ACTIVE"sv, "FAILED"sv, "PASSED"sv};
constexpr std::array sides{"BUY"sv, "SELL"sv};
constexpr std::array orderKinds{
    "MARKET"sv, "BUY_LIMIT"sv, "SELL_LIMIT"sv, "BUY_STOP"sv, "SELL_STOP"sv, "BALANCE"sv};
constexpr std::array tradeStatuses{"PENDING"sv, "OPEN"sv, "CLOSED"sv, "CANCELLED"sv};
constexpr std::array closeReasons{
    ""sv, "MANUAL"sv, "SL"sv, "TP"sv, "STOP_OUT"sv, "RISK"sv, "NO_MARGIN"sv, "PHASE"sv, "RESET"sv};

template <typename Enum, std::size_t Size>
std::optional<Enum> find(const std::array<std::string_view, Size>& words, std::string_view text)
{
    for (std::size_t i = 0; i < Size; ++i) {
        if (words[i] == text)
            return static_cast<Enum>(i);
    }
    return std::nullopt;
}

} // namespace

std::string_view toText(AccountKind kind)
{
    return accountKinds.at(static_cast<std::size_t>(kind));
}

std::string_view toText(AccountStatus status)
{
    return accountStatuses.at(static_cast<std::size_t>(status));
}

std::string_view toText(Side side)
{
    return sides.at(static_cast<std::size_t>(side));
}

std::string_view toText(OrderKind kind)
{
    return orderKinds.at(static_cast<std::size_t>(kind));
}

std::string_view toText(TradeStatus status)
{
    return tradeStatuses.at(static_cast<std::size_t>(status));
}

std::string_view toText(CloseReason reason)
{
    return closeReasons.at(static_cast<std::size_t>(reason));
}

std::optional<AccountKind> accountKindFromText(std::string_view text)
{
    return find<AccountKind>(accountKinds, text);
}

std::optional<AccountStatus> accountStatusFromText(std::string_view text)
{
    return find<AccountStatus>(accountStatuses, text);
}

std::optional<Side> sideFromText(std::string_view text)
{
    return find<Side>(sides, text);
}

std::optional<OrderKind> orderKindFromText(std::string_view text)
{
    return find<OrderKind>(orderKinds, text);
}

std::optional<TradeStatus> tradeStatusFromText(std::string_view text)
{
    return find<TradeStatus>(tradeStatuses, text);
}

std::optional<CloseReason> closeReasonFromText(std::string_view text)
{
    return find<CloseReason>(closeReasons, text);
}

} // namespace practice
