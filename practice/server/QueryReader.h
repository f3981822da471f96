#pragma once

#include "practice/server/Target.h"

#include <string>
#include <string_view>

namespace practice {

/// The query item; ApiError 400 when it is absent or empty.
[[nodiscard]] std::string requiredItem(const Target& target, std::string_view name);

/// A whole number from 1 to `most`; `usual` when absent; ApiError 400 for anything else.
[[nodiscard]] int countItem(const Target& target, std::string_view name, int usual, int most);

} // namespace practice
