#pragma once

#include "fuzz/Target.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

/// What every fuzz target shares.
namespace fuzz {

/// Ends the program where something does not hold; the fuzzer keeps the input as a finding.
inline void demand(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Takes the first line off a text, for targets that read several things: they lie in one input as lines, so
/// that corpora stay readable.
inline std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// The same for texts of several lines, with a line "===" between them.
inline std::string_view takePart(std::string_view& text)
{
    constexpr std::string_view mark = "===\n";
    const std::size_t end = text.find(mark);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + mark.size());
    return part;
}

} // namespace fuzz
