#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// Reads the bytes as the program would, and demands what has to hold of whatever comes.
using Attempt = int (*)(const std::uint8_t* data, std::size_t size);

/// A fuzz target: several lie in one program, which is called by the name of the one that it is to be.
///
/// Short inputs reach what only long ones do: "~*", a letter and a byte stand for that byte once ("A"), twice
/// ("B"), four times ("C") and so on, "~(", a letter, some bytes and "~)" for all of these bytes as many
/// times. The target gets them written out.
class Target final {
public:
    /// No input is longer than `longest` bytes, nor with its repeats written out. It lies beyond the limits
    /// of the reader, but for those that docs/reliability.md names. `option` is one of libFuzzer's that the
    /// target is better off with.
    Target(const char* name, Attempt attempt, std::size_t longest = 4096, const char* option = nullptr);
};

} // namespace fuzz
