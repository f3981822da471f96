#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// "; did you mean NAME?", with the one of the names that the word was most likely meant to be: one that
/// holds it, or one that few changes make of it, whatever the case of letters. Empty where none is near.
[[nodiscard]] std::string suggestion(std::string_view word, const std::vector<std::string_view>& names);

} // namespace lab
