#pragma once

#include <cstdint>
#include <vector>

/// Keeps a program and those that serve it off each other's processors. A desktop's kernel spreads them by
/// itself; that of a virtual machine may rather let a processor sleep, so that a program waits for the X
/// server that is to show what it has painted.
namespace ownprocessors {

/// The first processors for the program, the last one for the others, with all threads that they have now.
/// False with a single processor, when nothing is changed, and where the system forbids it.
bool separate(std::int64_t program, const std::vector<std::int64_t>& others);

} // namespace ownprocessors
