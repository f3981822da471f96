#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>

namespace practice {

/// Gives a new identifier with every call; it must never give one twice over the life of a database.
using IdSource = std::function<std::string()>;

/// Random (version 4) UUIDs in lower case: "3f2b8c1e-....-4...-....-............". The same seed gives the
/// same sequence; that is for tests only. A server uses fresh(), since with the same seed it would give out
/// ids after a restart that its history already holds.
class UuidSource {
public:
    explicit UuidSource(std::uint64_t seed);
    /// A sequence that nobody has seen yet.
    [[nodiscard]] static UuidSource fresh();
    [[nodiscard]] std::string operator()();

private:
    std::mt19937_64 m_random;
};

} // namespace practice
