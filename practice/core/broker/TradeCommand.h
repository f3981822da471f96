#pragma once

#include "practice/core/broker/Requests.h"

#include <string>
#include <variant>

namespace practice {

struct CloseCommand {
    std::string tradeId;
};

struct CancelCommand {
    std::string tradeId;
};

struct ModifyCommand {
    std::string tradeId;
    ModifyRequest change;
};

/// What a trader wants done.
using TradeCommand = std::variant<PlaceRequest, CloseCommand, CancelCommand, ModifyCommand>;

} // namespace practice
