#pragma once

#include <string>
#include <string_view>

namespace practice {

/// SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256Hex(std::string_view bytes);

} // namespace practice
