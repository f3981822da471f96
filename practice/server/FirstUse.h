#pragma once

#include "practice/core/Types.h"

namespace practice {

class Database;

inline constexpr const char* practiceEmail = "trader@practice.local";
inline constexpr const char* practicePassword = "practice";

/// Gives a database without users the practice trader with the default accounts; leaves any other alone.
void prepareFirstUse(Database& database, TimeMs now);

} // namespace practice
