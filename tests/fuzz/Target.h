#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// Reads the bytes as the program would, and demands what has to hold of whatever comes.
using Attempt = int (*)(const std::uint8_t* data, std::size_t size);

/// A fuzz target: several lie in one program, which is called by the name of the one that it is to be.
class Target final {
public:
    Target(const char* name, Attempt attempt);
};

} // namespace fuzz
