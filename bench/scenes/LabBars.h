#pragma once

#include <cstddef>

/// How many minutes the scenes of the lab go through, as the command line says.
[[nodiscard]] std::size_t labBars();
