#pragma once

#include "lab/core/output/JsonObject.h"

namespace lab {

/// Under which conditions a run was made: warm-up, ways through the minutes, costs, account and market,
/// without which nobody could make it again.
void addConditions(JsonObject& json, const RunResult& result);

} // namespace lab
