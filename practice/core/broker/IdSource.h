#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>

namespace practice {

/// Gives a new identifier with every call; it must never give one twice over the life of a database.
using IdSource = std::function<std::string()>;

/// Random (version 4) UUIDs in lower case: "3f2b8c1e-....-4...-....-............". The same seed gives the
/// same sequence, which is for tests only: a server that reuses a seed over a restart would hand out ids
/// that its history already holds, so it uses fresh().
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
