#pragma once

#include "practice/core/Types.h"

namespace practice {

class Database;

inline constexpr const char* practiceEmail = "trader@practice.local";
inline constexpr const char* practicePassword = "practice";

/// Adds the practice trader with the default accounts to a database without users; does nothing to any other.
void prepareFirstUse(Database& database, TimeMs now);

} // namespace practice
