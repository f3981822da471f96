#pragma once

#include "practice/core/Types.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace practice {

/// Compact JSON text. Strings that are not UTF-8 are repaired, never refused.
[[nodiscard]] std::string jsonText(const nlohmann::json& value);

/// Appends a number in fixed notation, with a point whatever the locale.
void appendFixed(std::string& text, double value, int digits);
[[nodiscard]] std::string fixedText(double value, int digits);

/// "2024-05-17T09:30:00.000Z"
[[nodiscard]] std::string isoTime(TimeMs time);

} // namespace practice
