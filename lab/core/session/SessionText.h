#pragma once

#include "practice/core/broker/Records.h"
#include "practice/core/broker/TradeCommand.h"

#include <string>

namespace lab {

// How a difference names what is different; for people.

/// The shortest text that reads as the same number.
[[nodiscard]] std::string numberText(double number);
[[nodiscard]] std::string textOf(const practice::Trade& trade);
[[nodiscard]] std::string textOf(const practice::Account& account);
[[nodiscard]] std::string textOf(const practice::TradeCommand& command);

} // namespace lab
