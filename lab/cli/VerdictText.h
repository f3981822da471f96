#pragma once

#include "lab/run/SessionCheck.h"

#include <string>

namespace lab {

/// What following a session has found, for a person; lines.
[[nodiscard]] std::string verdictText(const SessionVerdict& verdict, const SessionSeat& seat, bool colours);

} // namespace lab
