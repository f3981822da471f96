#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// Places of a line, as the narrowest usual terminal has them.
inline constexpr std::size_t screenWidth = 80;

enum class Stream { Output, Error };

/// A person looks at it.
[[nodiscard]] bool isTerminal(Stream stream);

/// Whether what goes to the standard output may be coloured: on a terminal that can, unless the environment
/// has a NO_COLOR that is not empty.
[[nodiscard]] bool hasColours();

enum class Tone { Plain, Strong, Good, Bad, Warning };

/// The text in this tone; as it is, where there are no colours.
[[nodiscard]] std::string toned(std::string_view text, Tone tone, bool colours);

/// Lines whose words stand in columns, the last one ragged. The columns named in `right` are flush right.
[[nodiscard]] std::string columns(
    const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right = {});

/// How many places a UTF-8 text takes on a terminal, one for each character.
[[nodiscard]] std::size_t placesOf(std::string_view text);

/// The text in lines of at most so many places, broken at blanks but those before a per cent sign; each but
/// the first begins with `indent`.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t places, std::string_view indent);

/// Says on the standard error what has gone wrong: in lines that fit a terminal, in one of them elsewhere.
void tellError(std::string_view text);

} // namespace lab
