#pragma once

#include <string>
#include <string_view>

namespace practice {

/// A new session token: 256 random bits as 64 hexadecimal digits. It can stand in a URL as it is.
[[nodiscard]] std::string newToken();

/// The digest of a token, which is stored in its place. It needs no salt: nobody guesses 256 random bits.
[[nodiscard]] std::string tokenDigest(std::string_view token);

/// A salted, deliberately slow hash of a password (tens of milliseconds). Throws std::runtime_error when
/// the system offers none.
[[nodiscard]] std::string hashPassword(const std::string& password);

/// Whether the password gave this hash. As slow as hashing; false for a hash that cannot be read.
[[nodiscard]] bool passwordMatches(const std::string& password, const std::string& hash);

/// Compares in a time that depends on the lengths alone.
[[nodiscard]] bool equalInConstantTime(std::string_view left, std::string_view right);

} // namespace practice
